#include "flowmere/persistence/FCReader.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/foundation/Prefetch.h"
#include "flowmere/model/ConnectorIndex.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/NodeKinds.h"
#include "flowmere/persistence/CatalogAbsence.h"
#include "flowmere/persistence/ShapeElements.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>

using flowmere::AttributeRow;
using flowmere::AttributeTable;
using flowmere::WideText;
using XERCES_CPP_NAMESPACE::DOMDocument;
using XERCES_CPP_NAMESPACE::DOMElement;

namespace {

// Node types that the reader tells apart.
constexpr int kProcess = 56;
constexpr int kSubProcess = 61;
constexpr int kConnector = 68;
constexpr int kFolder = 71;
constexpr int kLibraryFolder = 73;
constexpr int kExistingProcesses = 76;
constexpr int kCode = 79;
constexpr int kFirstWorkflow = 150;
constexpr int kWorkflowProcess = 160;
constexpr int kLastWorkflow = 167;

constexpr int kPageHeight = 1300;
constexpr double kOldPageInches = 12.0; // the page of connectors without a version
constexpr int kOldStartHandle = 6;
constexpr int kOldEndHandle = 2;

constexpr std::size_t kElementSize = 1024; // what a usual element and its first attributes take in the document

constexpr int kMaxOpenLinks = 32;
constexpr int kMaxLinks = 4096;

// Elements that are no object of the block family.
enum class Tag {
    Application,
    Border,
    Bpm,
    Code,
    Connection,
    Dimension,
    FileLink,
    FileLinkLib,
    Flags,
    Font,
    Help,
    Option,
    Other,
    Port,
    Process,
    ProcessVariables,
    Script,
    SubGroup,
    SubProcess,
    TemplateVariables,
    Variable,
};

struct TagRow {
    std::u16string_view name;
    Tag tag;
};

constexpr TagRow kTags[] = {
    {u"APPLICATION", Tag::Application},
    {u"BORDER", Tag::Border},
    {u"BPM", Tag::Bpm},
    {u"CODE", Tag::Code},
    {u"CONNECTION", Tag::Connection},
    {u"CONNECTOR", Tag::Connection},
    {u"DIMENSION", Tag::Dimension},
    {u"FILE_LINK", Tag::FileLink},
    {u"FILE_LINK_LIB", Tag::FileLinkLib},
    {u"FLAGS", Tag::Flags},
    {u"FONT", Tag::Font},
    {u"HELP", Tag::Help},
    {u"OPTION", Tag::Option},
    {u"PORT", Tag::Port},
    {u"PROCESS", Tag::Process},
    {u"PROCESS_VARIABLES", Tag::ProcessVariables},
    {u"SCRIPT", Tag::Script},
    {u"SUB_GRP", Tag::SubGroup},
    {u"SUB_PROCESS", Tag::SubProcess},
    {u"TEMPLATE_VARIABLES", Tag::TemplateVariables},
    {u"VARIABLE", Tag::Variable},
};
static_assert(std::is_sorted(std::begin(kTags), std::end(kTags),
                             [](TagRow const& left, TagRow const& right) { return left.name < right.name; }));
// Otherwise the rows below would not be found.
static_assert(std::all_of(std::begin(kTags), std::end(kTags),
                          [](TagRow const& row) { return row.name.front() >= u'A' && row.name.front() <= u'Z'; }));

// Where the rows of each letter begin, and those of the next one: few tags share a letter.
constexpr auto kTagsByLetter = [] {
    std::array<std::size_t, 27> begins{};
    for (std::size_t letter = 0; letter < begins.size(); ++letter) {
        while (begins[letter] < std::size(kTags) &&
               static_cast<std::size_t>(kTags[begins[letter]].name.front() - u'A') < letter)
            ++begins[letter];
    }
    return begins;
}();

Tag tagFor(std::u16string_view name) {
    if (name.empty() || name.front() < u'A' || name.front() > u'Z')
        return Tag::Other;
    auto const letter = static_cast<std::size_t>(name.front() - u'A');
    for (std::size_t row = kTagsByLetter[letter]; row < kTagsByLetter[letter + 1]; ++row) {
        if (kTags[row].name == name)
            return kTags[row].tag;
    }
    return Tag::Other;
}

// Truncates toward zero; a number that no int holds ends at the limits, and NaN is 0.
int truncated(double value) {
    if (std::isnan(value))
        return 0;
    constexpr double kLowest = std::numeric_limits<int>::min();
    constexpr double kHighest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, kLowest, kHighest));
}

int fromPageFoot(double inches) {
    std::int64_t const y = std::int64_t{kPageHeight} - truncated(inches * 100.0);
    return static_cast<int>(std::min<std::int64_t>(y, std::numeric_limits<int>::max()));
}

// An absent attribute reads as the empty text.
WideText textOf(std::u16string_view value) {
    return WideText(value);
}

bool isWordTrue(std::u16string_view value) {
    return flowmere::equalsNoCase(value, u"true");
}

bool isWorkflowType(int type) {
    return type >= kFirstWorkflow && type <= kLastWorkflow;
}

CFCBlockData* blockDataOf(IFCNode* node) {
    return node != nullptr ? node->GetFCBlockData() : nullptr;
}

CFCBPMBlockData* workflowDataOf(IFCNode* node) {
    return node != nullptr ? node->GetBPMBlockData() : nullptr;
}

struct Point {
    double x = 0.0;
    double y = 0.0;
};

Point pointOf(DOMElement* element) {
    static constexpr AttributeTable kNames(u"Location_X", u"Location_Y");
    AttributeRow const row(element, kNames);
    Point point;
    row.real(0, point.x);
    row.real(1, point.y);
    return point;
}

template <typename Visit>
void forEachPoint(DOMElement* element, Visit const& visit) {
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) == u"POINT")
            visit(pointOf(child));
    }
}

// The elements below an object that only fill its block data.

void loadFlags(DOMElement* element, CFCBlockData* block) {
    static constexpr AttributeTable kNames(u"Undo", u"Skip", u"Break", u"Reference");
    if (block == nullptr)
        return;
    AttributeRow const row(element, kNames);
    bool undo = false;
    bool skip = false;
    bool stop = false;
    row.flag(0, undo);
    row.flag(1, skip);
    row.flag(2, stop);
    block->SetUndoFlag(undo);
    block->SetSkipFlag(skip);
    block->SetStopFlag(stop);
    // A missing attribute counts as any other word does.
    std::u16string_view const reference = row.view(3);
    int const value = reference == u"0" ? 0 : (reference == u"1" ? 1 : 2);
    block->SetReferenceBlock(static_cast<ERefBlock>(value));
}

void loadPorts(DOMElement* element, CFCBlockData* block) {
    static constexpr AttributeTable kNames(u"InPort", u"OutPort", u"NextPort");
    if (block == nullptr)
        return;
    AttributeRow const row(element, kNames);
    for (int index = 0; index < 3; ++index)
        block->GetPortList()->GetPort(index)->SetPortName(textOf(row.view(static_cast<std::size_t>(index))));
}

void loadHelp(DOMElement* element, CFCBlockData* block) {
    static constexpr AttributeTable kNames(u"MicroHelp", u"Description", u"KnowledgeAdvisory");
    if (block == nullptr)
        return;
    AttributeRow const row(element, kNames);
    block->SetToolTip(textOf(row.view(0)));
    block->SetDescription(textOf(row.view(1)));
    block->SetHelpFile(textOf(row.view(2)));
}

void loadTask(DOMElement* element, CFCBPMBlockData* task) {
    static constexpr AttributeTable kNames(u"Description");
    if (task != nullptr)
        task->SetTaskDescription(textOf(AttributeRow(element, kNames).view(0)));
}

void loadApplication(DOMElement* element, CFCBPMBlockData* task) {
    static constexpr AttributeTable kNames(u"Name", u"Deployment", u"Executable");
    if (task == nullptr)
        return;
    AttributeRow const row(element, kNames);
    task->SetApplication(textOf(row.view(0)));
    task->SetDeployment(textOf(row.view(1)));
    task->SetExecutable(textOf(row.view(2)));
}

void loadScript(DOMElement* element, CFCBlockData* block) {
    static constexpr AttributeTable kNames(u"Name", u"ScriptType", u"ScriptCmdInterface", u"ScriptCMD",
                                           u"ScriptExecute");
    AttributeRow const row(element, kNames);
    block->SetScriptName(textOf(row.view(0)));
    block->SetScriptType(textOf(row.view(1)).text());
    block->SetCOMInteface(textOf(row.view(2)));
    block->SetCOMCommand(textOf(row.view(3)));
    block->SetExecuteMethod(textOf(row.view(4)));
}

// Gives a counter its value back at the end of a call.
class Restored {
public:
    explicit Restored(int& counter) : m_counter(counter), m_value(counter) {}
    ~Restored() { m_counter = m_value; }
    Restored(Restored const&) = delete;
    Restored& operator=(Restored const&) = delete;

private:
    int& m_counter;
    int m_value;
};

// Raises a counter for the time of a call.
class Raised : public Restored {
public:
    explicit Raised(int& counter) : Restored(counter) { ++counter; }
};

// Whether a fresh connector was left out of the list: one between the same blocks is there already.
bool isLeftOut(CFCConnector* connector, CFCConnectorList* list) {
    if (list == nullptr || connector->GetNext() != nullptr || connector->GetPrev() != nullptr)
        return false;
    auto* const position = reinterpret_cast<__FCPOSITION*>(static_cast<IFCNode*>(connector));
    return list->GetHeadPosition() != position && list->GetTailPosition() != position &&
           flowmere::holdsTwin(*list, *connector);
}

} // namespace

CFCReader::CFCReader() = default;
CFCReader::CFCReader(CFCReader const& other) = default;
CFCReader& CFCReader::operator=(CFCReader const& other) = default;
CFCReader::~CFCReader() = default;

void CFCReader::SetNodeFactory(CFCNodeFactory* factory) {
    m_pNodeFactory = factory;
}

void CFCReader::SetContainer(CFCBaseContainer* container) {
    m_pContainer = container;
}

void CFCReader::Attach(IFCNode* node) {
    if (m_pContainer != nullptr && node != nullptr)
        m_pContainer->Attach(node);
}

IFCNode* CFCReader::Create(int type) {
    return m_pNodeFactory != nullptr ? m_pNodeFactory->Create(type) : nullptr;
}

void CFCReader::CheckDataFile(wchar_t const* path) {
    std::wstring_view const text = path != nullptr ? std::wstring_view(path) : std::wstring_view();
    m_bOldCoordinates = text.size() >= 4 && text.substr(text.size() - 3) == L"fmr";
}

bool CFCReader::Parse(wchar_t const* path, IFCNode** out, int maxDepth) {
    m_nMaxDepth = maxDepth;
    m_nCurrentDepth = 1;
    m_nLinksFollowed = 0;
    m_findings.clear();
    TuString const file(path);
    if (file.IsEmpty() || out == nullptr || m_pNodeFactory == nullptr)
        return false;
    CFCEnumTranslator::SetArrays();
    if (!Initialize(file))
        return false;
    CheckDataFile(file);
    DOMElement* const root = m_pDocument->getDocumentElement();
    IFCNode* const node = Create(kProcess);
    if (node == nullptr)
        return false;
    node->SetNodeCaption(L"Block Library");
    LoadRootProperties(root, node);
    Load(root, node, nullptr);
    CFCNodeHelper::ConvertToLinkedVariable(node);
    *out = node;
    return true;
}

TuString CFCReader::resolveLink(wchar_t const* path, IFCNode* node) {
    constexpr int kMacroFolder = 1;
    TuString resolved;
    if (m_pNodeFactory->IsFileExists(path))
        return TuString(path);
    int const type = node->GetNodeType();
    if (node->GetNodeLocationType() == kMacroFolder)
        return TuString(m_pNodeFactory->GetMacroPath(resolved));
    if ((type == kExistingProcesses || type == kWorkflowProcess) && !node->IsNewPath())
        return TuString(isWorkflowType(type) ? CFCEnvironment::GetBPMProcessListFilePath()
                                             : CFCEnvironment::GetProcessListFilePath());
    if (isWorkflowType(type))
        return TuString(CFCEnvironment::GetUserProcessListPath(true));
    if (type == kExistingProcesses)
        return TuString(CFCEnvironment::GetUserProcessListPath(false));
    return TuString(CFCEnvironment::GetFullPath(path));
}

bool CFCReader::LoadFileNode(wchar_t const* path, IFCNode* node, bool) {
    if (node == nullptr || m_pNodeFactory == nullptr)
        return false;
    TuString const file(path);
    CFCEnumTranslator::SetArrays();
    if (m_nElementDepth == 0)
        m_nLinksFollowed = 0; // a call from outside, not a link met while reading
    // A file that links to itself would be read again and again below any depth: past these bounds
    // a link stays unloaded, as beyond the depth.
    bool const isTooMuch = m_nOpenLinks >= kMaxOpenLinks || m_nLinksFollowed >= kMaxLinks;
    if (m_nMaxDepth < m_nCurrentDepth || isTooMuch) {
        node->SetFileLink(true);
        node->SetLoaded(false);
        node->SetFileLinkPath(file);
        return true;
    }
    TuString const resolved = resolveLink(file, node);
    if (!m_pNodeFactory->IsFileExists(resolved)) {
        m_findings.push_back({CFCReadFinding::FileNotRead, node, file, TuString()});
        return false;
    }
    CheckDataFile(resolved);
    flowmere::XmlPlatform const platform;
    DOMDocument* document = nullptr;
    if (!InitXML(resolved, &document)) {
        TuString cause;
        if (GetErrorLine() > 0)
            cause.Format(L"line %d, column %d: ", GetErrorLine(), GetErrorColumn());
        cause += GetErrorText();
        m_findings.push_back({CFCReadFinding::FileNotRead, node, file, cause});
        return false;
    }
    flowmere::XmlDocumentPointer const owner(document);
    Raised const open(m_nOpenLinks);
    ++m_nLinksFollowed;
    DOMDocument* const outerDocument = m_pLinkedDocument;
    m_pLinkedDocument = document;
    Load(document->getDocumentElement(), node, nullptr);
    m_pLinkedDocument = outerDocument;
    return true;
}

void CFCReader::followLink(wchar_t const* path, IFCNode* node) {
    Raised const depth(m_nCurrentDepth);
    LoadFileNode(path, node, false);
}

// Levels of the document stand in a list, not on the stack: a file may be as deep as the parser lets it.
bool CFCReader::Load(DOMElement* element, IFCNode* node, IFCNode*) {
    struct Level {
        DOMElement* next; // child element to read
        IFCNode* node;
    };
    if (element == nullptr)
        return true;
    Restored const depth(m_nElementDepth);
    flowmere::CatalogAbsence const absence;
    std::vector<Level> levels;
    auto const enter = [&](DOMElement* parent, IFCNode* owner) {
        // Across links the levels add up, and a host's walk over the tree may recurse.
        DOMElement* const first =
            m_nElementDepth < flowmere::kMaxElementDepth ? flowmere::firstElement(parent) : nullptr;
        ++m_nElementDepth;
        levels.push_back({first, owner});
    };
    auto const leave = [&] {
        --m_nElementDepth;
        levels.pop_back();
    };
    enter(element, node);
    for (;;) {
        Level const level = levels.back();
        if (level.next == nullptr) {
            if (level.node != nullptr)
                level.node->TransferToDraw();
            Attach(level.node);
            leave();
            if (levels.empty())
                return true;
            continue;
        }
        flowmere::prefetch(level.next->getNextSibling(), kElementSize);
        IFCNode* inner = nullptr;
        bool const isRead = loadChild(level.next, level.node, inner);
        levels.back().next = flowmere::nextElement(level.next);
        if (!isRead) {
            // The rest of this element stays unread, and only a caller from outside could tell.
            leave();
            if (levels.empty())
                return false;
        } else if (inner != nullptr) {
            enter(level.next, inner);
        }
    }
}

bool CFCReader::loadChild(DOMElement* element, IFCNode* node, IFCNode*& inner) {
    std::u16string_view const name = flowmere::tagOf(element);
    switch (tagFor(name)) {
    case Tag::FileLinkLib:
        loadLibraryLink(element, node);
        break;
    case Tag::FileLink:
        loadLink(element, node);
        break;
    case Tag::Process:
        inner = loadNestedProcess(element, node);
        break;
    case Tag::SubGroup:
        inner = loadFolder(element, node);
        break;
    case Tag::Code:
        inner = loadCodeNode(element, node);
        break;
    case Tag::SubProcess:
        inner = loadObject(element, node, kSubProcess);
        break;
    case Tag::Dimension:
        loadDimension(element, node);
        break;
    case Tag::Flags:
        loadFlags(element, blockDataOf(node));
        break;
    case Tag::Border:
        flowmere::readBorder(element, blockDataOf(node));
        break;
    case Tag::Font:
        flowmere::readFont(element, blockDataOf(node));
        break;
    case Tag::Port:
        loadPorts(element, blockDataOf(node));
        break;
    case Tag::Help:
        loadHelp(element, blockDataOf(node));
        break;
    case Tag::Bpm:
        loadTask(element, workflowDataOf(node));
        break;
    case Tag::Application:
        loadApplication(element, workflowDataOf(node));
        break;
    case Tag::Script: {
        CFCBlockData* const block = blockDataOf(node);
        if (block == nullptr)
            break;
        if (CFCPointerConverter::GetNodeFromBlockData(block) == nullptr)
            return false;
        loadScript(element, block);
        break;
    }
    case Tag::Connection:
        loadConnector(element, node);
        break;
    case Tag::ProcessVariables:
        LoadVariables(element, node, false);
        break;
    case Tag::TemplateVariables:
        LoadVariables(element, node, true);
        break;
    case Tag::Variable:
        LoadVariable(element, node, false);
        break;
    case Tag::Option:
        break;
    case Tag::Other: {
        int const type = flowmere::nodeTypeOfElement(textOf(name).view());
        if (type != 0)
            inner = loadObject(element, node, type);
        break;
    }
    }
    return true;
}

// A folder of the block library, filled from its file.
void CFCReader::loadLibraryLink(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"FileName");
    struct LibraryRow {
        wchar_t const* caption;
        int type;
        int locationType;
    };
    static constexpr LibraryRow kLibraries[] = {
        {L"Default Blocks", 74, 0},
        {L"Existing Process Blocks", kExistingProcesses, 2},
        {L"Existing BPM Blocks", kWorkflowProcess, 2},
        {L"Library Blocks", 75, 0},
        {L"Macro Blocks", 77, 1},
    };
    if (node == nullptr)
        return;
    node->SetNodeType(kLibraryFolder);
    TuString const caption(node->GetNodeCaption());
    for (LibraryRow const& row : kLibraries) {
        if (caption == row.caption) {
            node->SetNodeType(row.type);
            if (row.locationType != 0)
                node->SetNodeLocationType(row.locationType);
            break;
        }
    }
    LoadPropertiesLite(element, node);
    WideText const fileName(AttributeRow(element, kNames).view(0));
    if (fileName.view().empty())
        return;
    Raised const depth(m_nCurrentDepth);
    LoadFileNode(fileName, node, false);
    int const type = node->GetNodeType();
    if (type == kExistingProcesses || type == kWorkflowProcess) {
        // The common list first, then the user's, into the same folder.
        bool const wasNewPath = node->IsNewPath();
        if (!wasNewPath)
            node->SetNewPath(true);
        LoadFileNode(fileName, node, false);
        node->SetNewPath(wasNewPath);
    }
}

void CFCReader::loadLink(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"FileName");
    if (node == nullptr)
        return;
    LoadPropertiesLite(element, node);
    WideText const fileName(AttributeRow(element, kNames).view(0));
    if (!fileName.view().empty())
        followLink(fileName, node);
}

IFCNode* CFCReader::appendNew(int type, IFCNode* parent) {
    IFCNode* const node = parent != nullptr ? Create(type) : nullptr;
    if (node != nullptr)
        parent->AppendChild(node, false);
    return node;
}

IFCNode* CFCReader::loadNestedProcess(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"Type", u"FILE");
    AttributeRow const row(element, kNames);
    bool const isTask = flowmere::equalsNoCase(row.view(0), u"task");
    IFCNode* const process = appendNew(isTask ? kWorkflowProcess : kProcess, node);
    if (process == nullptr)
        return nullptr;
    if (row.view(1).empty()) {
        LoadRootProperties(element, process);
        LoadProperties(element, process);
        return process;
    }
    // What stands inside the element is a copy of what the file has.
    LoadPropertiesLite(element, process);
    TuString path(process->GetItemFilePath());
    if (path.IsEmpty())
        row.text(1, path);
    Raised const depth(m_nCurrentDepth);
    if (!path.IsEmpty())
        LoadFileNode(path, process, false);
    IFCNode* const root = node->GetRootNode();
    IFCNode* const newest = root != nullptr ? root->GetChild() : nullptr;
    if (newest != nullptr && newest->IsNewPath())
        process->SetNewPath(true);
    return nullptr;
}

IFCNode* CFCReader::loadFolder(DOMElement* element, IFCNode* node) {
    IFCNode* const folder = appendNew(kFolder, node);
    if (folder != nullptr)
        LoadPropertiesLite(element, folder);
    return folder;
}

IFCNode* CFCReader::loadCodeNode(DOMElement* element, IFCNode* node) {
    IFCNode* const code = appendNew(kCode, node);
    if (code != nullptr) {
        LoadPropertiesLite(element, code);
        LoadCode(element, code);
    }
    return code;
}

IFCNode* CFCReader::loadObject(DOMElement* element, IFCNode* node, int type) {
    IFCNode* const object = appendNew(type, node);
    if (object != nullptr)
        LoadProperties(element, object);
    return object;
}

void CFCReader::LoadCode(DOMElement* element, IFCNode* node) {
    TuString text;
    if (node != nullptr && flowmere::ownText(element, text) && !text.IsEmpty())
        node->SetNodeCode(text);
}

void CFCReader::LoadPropertiesLite(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"Name", u"BlockString", u"FILE");
    if (node == nullptr)
        return;
    AttributeRow const row(element, kNames);
    std::u16string_view const caption = row.view(0).empty() ? row.view(1) : row.view(0);
    if (!caption.empty())
        node->SetNodeCaption(textOf(caption));
    if (!row.view(2).empty())
        node->SetItemFilePath(textOf(row.view(2)));
}

void CFCReader::LoadProperties(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"Name", u"BlockString", u"ExecutionStatus", u"FailedReason", u"IsImage",
                                           u"RelativeImage", u"ProcessID", u"Run");
    if (node == nullptr)
        return;
    AttributeRow const row(element, kNames);
    node->SetNodeCaption(textOf(row.view(1).empty() ? row.view(0) : row.view(1)));
    node->SetNodeId(textOf(row.view(0)));
    unsigned int processId = 0;
    row.unsignedInteger(6, processId);
    node->SetNodeProcessID(processId);
    // A process of the workflow keeps no reason of its own.
    if (auto* const task = dynamic_cast<CFCBPMTaskNode*>(node))
        task->SetFailedReason(textOf(row.view(3)));
    CFCBlockData* const block = node->GetFCBlockData();
    if (block == nullptr)
        return;
    auto state = static_cast<EExecutionStateType>(0);
    CFCEnumTranslator::StringToEnum(textOf(row.view(2)).text(), state);
    if (static_cast<int>(state) != 0)
        block->SetExecutionStateType(state);
    bool isImage = false;
    row.flag(4, isImage);
    block->SetImage(isImage);
    if (!row.view(5).empty())
        block->SetRelativeImagePath(textOf(row.view(5)));
    bool shouldRun = false;
    row.flag(7, shouldRun);
    block->SetShouldRun(shouldRun);
}

namespace {

// True for an element that says anything at all.
bool hasContent(DOMElement* element) {
    if (flowmere::firstElement(element) != nullptr)
        return true;
    XERCES_CPP_NAMESPACE::DOMNamedNodeMap const* const attributes = element->getAttributes();
    XMLSize_t const count = attributes != nullptr ? attributes->getLength() : 0;
    for (XMLSize_t index = 0; index < count; ++index) {
        if (!flowmere::equals(attributes->item(index)->getNodeName(), u"xmlns"))
            return true;
    }
    return false;
}

} // namespace

void CFCReader::LoadRootProperties(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"Name", u"ProjectDirectory", u"SaveRestore", u"ScriptType", u"Type",
                                           u"ProcessID", u"ProcessFlowType", u"RandomExecute", u"RunOnLoad",
                                           u"ModelDependency", u"Diagram", u"VariableSave", u"ScriptCmdInterface",
                                           u"ScriptCMD", u"ScriptExecute");
    CFCProcessNode* const process = CFCPointerConverter::GetProcessNode(node);
    if (process == nullptr || element == nullptr)
        return;
    AttributeRow const row(element, kNames);
    // An element that says nothing keeps the caption it has.
    if (row.has(0) || hasContent(element)) {
        std::u16string_view const name = row.has(0) ? row.view(0) : std::u16string_view(u"ProcessRoot");
        if (!name.empty())
            process->SetNodeCaption(textOf(name));
    }
    process->setProjectDirectory(textOf(row.view(1)));
    process->setSaveRestoreScript(textOf(row.view(2)));
    auto scriptType = static_cast<EScriptType>(1);
    CFCEnumTranslator::StringToEnum(row.has(3) ? textOf(row.view(3)).text() : L"PYTHON", scriptType);
    process->setSaveRestoreScriptType(scriptType);
    auto projectType = static_cast<EProjectType>(0);
    CFCEnumTranslator::StringToEnum(textOf(row.view(4)).text(), projectType);
    process->SetProjectType(projectType);
    unsigned int processId = 0;
    row.unsignedInteger(5, processId);
    process->SetNodeProcessID(processId);
    process->setProcessFlowType(textOf(row.view(6)));
    // The switches are only ever turned on by a file.
    if (isWordTrue(row.view(7)))
        process->setRandomExecutionStatus(true);
    if (isWordTrue(row.view(8)))
        process->setRunOnLoadStatus(true);
    if (isWordTrue(row.view(9)))
        process->setModelDependency(true);
    if (isWordTrue(row.view(10)))
        process->showDiagram(true);
    if (isWordTrue(row.view(11)))
        process->SerializeVariablesToTNB(true);
    process->SetCOMInteface(textOf(row.view(12)));
    process->SetCOMCommand(textOf(row.view(13)));
    process->SetExecuteMethod(textOf(row.view(14)));
}

void CFCReader::loadDimension(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"Point_X", u"Point_Y", u"Width", u"Hight", u"Height", u"Order", u"Shape");
    if (node == nullptr)
        return;
    AttributeRow const row(element, kNames);
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    int order = 0;
    row.real(0, x);
    row.real(1, y);
    row.real(2, width);
    row.real(3, height);
    if (height < 0.001)
        row.real(4, height); // the spelling of older files
    row.integer(5, order);
    if (width > 0.0 && height > 0.0) {
        if (m_bOldCoordinates)
            node->SetTuRectInInchFlowmere(x, y, width, height);
        else if (order != 0)
            node->SetTuRectInInch(x, y, width, height);
        else
            node->SetTuRectInInchReverse(x, y, width, height);
    }
    int const type = flowmere::nodeTypeOfShape(textOf(row.view(6)).view());
    if (type != 0)
        node->SetNodeType(type);
}

CFCConnector* CFCReader::createConnector() {
    IFCNode* const node = Create(kConnector);
    CFCConnector* const connector = CFCPointerConverter::GetConnector(node);
    if (connector == nullptr)
        delete node;
    return connector;
}

void CFCReader::loadConnector(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"StartBlock", u"EndBlock", u"StartPortName", u"EndPortName", u"StartHandle",
                                           u"EndHandle", u"Version");
    if (node == nullptr)
        return;
    AttributeRow const row(element, kNames);
    int startHandle = 0;
    int endHandle = 0;
    int version = 0;
    row.integer(4, startHandle);
    row.integer(5, endHandle);
    row.integer(6, version);
    CFCBlockNode* const start = CFCPointerConverter::GetBlockNode(node->FindNodeSimple(textOf(row.view(0))));
    CFCBlockNode* const end = CFCPointerConverter::GetBlockNode(node->FindNodeSimple(textOf(row.view(1))));
    if (start == nullptr || end == nullptr) {
        m_findings.push_back({CFCReadFinding::ConnectorWithoutBlock, node, TuString(textOf(row.view(0)).text()),
                              TuString(textOf(row.view(1)).text())});
        return;
    }
    CFCConnector* const connector = createConnector();
    if (connector == nullptr)
        return;
    bool const isOldForm = version < 1;
    connector->SetStartNode(isOldForm ? kOldStartHandle : startHandle, start, textOf(row.view(2)));
    connector->SetEndNode(isOldForm ? kOldEndHandle : endHandle, end, textOf(row.view(3)));
    if (!isOldForm)
        LoadPoints(element, node, connector, version);
    bool const isKept = node->GetFCBlockData() != nullptr;
    if (isKept) {
        node->AddConnector(connector);
        Attach(connector);
    }
    if (isOldForm)
        LoadPointsOld(element, node, connector);
    // One that neither a list nor a container has seen is nobody's.
    if (!isKept || (m_pContainer == nullptr && isLeftOut(connector, node->GetConnectorList())))
        delete connector;
}

bool CFCReader::LoadPoints(DOMElement* element, IFCNode*, CFCConnector* connector, int) {
    if (connector != nullptr) {
        forEachPoint(element, [connector](Point const& point) {
            connector->AddPoint(truncated(point.x * 100.0), fromPageFoot(point.y));
        });
    }
    return true;
}

bool CFCReader::LoadPointsOld(DOMElement* element, IFCNode*, CFCConnector* connector) {
    if (connector == nullptr)
        return false;
    int count = 0;
    _TgPointLStr last{};
    forEachPoint(element, [&](Point const& point) {
        _TgPointLStr position{};
        position.x = truncated(point.x * 100.0);
        position.y = truncated((kOldPageInches - point.y) * 100.0);
        CFCBlockNode* const start = connector->GetStartObject();
        if (count == 0 && start != nullptr) {
            int const handle = start->HitTestConnector(position);
            if (handle > 0)
                connector->SetStartHandle(handle);
        }
        last = position;
        ++count;
    });
    CFCBlockNode* const end = connector->GetEndObject();
    if (count >= 2 && end != nullptr) {
        int const handle = end->HitTestConnector(last);
        if (handle > 0)
            connector->SetEndHandle(handle);
    }
    return true;
}

void CFCReader::SetConnectorNode(CFCConnector* connector, _TgPointLStr* point, bool isStart) {
    if (connector == nullptr || point == nullptr)
        return;
    CFCBlockNode* const block = isStart ? connector->GetStartObject() : connector->GetEndObject();
    if (block == nullptr)
        return;
    int const handle = block->HitTestConnector(*point);
    if (handle == 0)
        return;
    if (isStart)
        connector->SetStartHandle(handle);
    else
        connector->SetEndHandle(handle);
}

void CFCReader::LoadVariables(DOMElement* element, IFCNode* node, bool isTemplate) {
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        std::u16string_view const name = flowmere::tagOf(child);
        if (name == u"VARIABLE")
            LoadVariable(child, node, false);
        else if (name == u"TEMPLATE_VARIABLE")
            LoadVariable(child, node, isTemplate);
    }
}

void CFCReader::LoadVariable(DOMElement* element, IFCNode* node, bool isTemplate) {
    static constexpr AttributeTable kNames(u"Name", u"DisplayName", u"DataType", u"LinkPath", u"Array",
                                           u"TemplateVariable", u"Hidden", u"Deployed", u"Displayable", u"IOType",
                                           u"Type", u"Scope", u"EntityType", u"Value");
    CFCBlockData* const block = element != nullptr ? blockDataOf(node) : nullptr;
    CFCVariableData* const variable = block != nullptr ? block->CreateNewVariable() : nullptr;
    if (variable == nullptr)
        return;
    AttributeRow const row(element, kNames);
    bool isArray = false;
    bool isTemplateVariable = false;
    bool isHidden = false;
    bool isDeployed = false;
    bool isVisible = true;
    row.flag(4, isArray);
    row.flag(5, isTemplateVariable);
    row.flag(6, isHidden);
    row.flag(7, isDeployed);
    row.flag(8, isVisible);
    std::u16string_view dataType = row.view(2);
    // Six characters are compared with five, so that only the whole word counts; the names of the
    // array types make arrays by themselves.
    if (dataType == u"Array")
        isArray = true;
    std::u16string_view const type = row.view(10);
    if (!flowmere::equalsNoCase(type, u"data") && flowmere::equalsNoCase(dataType, u"file"))
        dataType = type;
    if (dataType.empty())
        dataType = u"String";

    TuString value;
    flowmere::ownText(element, value);
    if (isTemplate && !row.view(13).empty())
        row.text(13, value);
    if (!value.IsEmpty()) {
        value.Replace(L'\n', L' ');
        value.TrimLeft();
        value.TrimRight();
    }

    variable->SetVariableName(textOf(row.view(0)));
    variable->SetCaption(textOf(row.view(1).empty() ? row.view(0) : row.view(1)));
    variable->SetValue(value);
    variable->SetStatusType(row.view(9).empty() ? L"Input" : textOf(row.view(9)).text());
    variable->SetScopeType(textOf(row.view(11)).text());
    {
        WideText const typeName(dataType);
        CFCNodeHelper::SetDataTypeNode(variable, typeName);
        variable->SetDataType(typeName.text());
    }
    variable->SetArray(isArray);
    variable->SetTemplateVariable(isTemplate || isTemplateVariable);
    variable->SetLinkPath(textOf(row.view(3)));
    variable->SetVisible(isVisible);
    variable->HideNode(isHidden);
    variable->SetDeployed(isDeployed);
    variable->SetEntityType(textOf(row.view(12)));
    variable->UpdateValue();
    if (isTemplate || isTemplateVariable)
        LoadVariableOptions(element, variable);
}

void CFCReader::LoadVariableOptions(DOMElement* element, CFCVariableData* variable) {
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) == u"OPTION")
            LoadVariableOption(child, variable);
    }
}

void CFCReader::LoadVariableOption(DOMElement* element, CFCVariableData* variable) {
    static constexpr AttributeTable kNames(u"Value");
    WideText const value(AttributeRow(element, kNames).view(0));
    if (variable != nullptr && !value.view().empty())
        variable->AddOption(value);
}

bool CFCReader::IsFile(DOMElement* element) {
    XMLCh const* const path = flowmere::attributeOf(element, u"FILE");
    return !flowmere::xmlView(path).empty();
}

bool CFCReader::FindObject(IFCNode*, TuString&, TuString&, int&, CDoBaseObject** out) {
    if (out != nullptr)
        *out = nullptr;
    return false;
}

bool CFCReader::FindObject(IFCNode*, TuString&, CDoBaseObject** out) {
    if (out != nullptr)
        *out = nullptr;
    return false;
}

void CFCReader::Format(IFCNode*) {}

void CFCReader::ClearFormating() {}

void CFCReader::ParseFileData() {}
