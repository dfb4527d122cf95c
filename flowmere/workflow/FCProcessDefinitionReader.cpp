#include "flowmere/workflow/FCProcessDefinitionReader.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/foundation/Paths.h"
#include "flowmere/foundation/TuDate.h"
#include "flowmere/model/ConnectorIndex.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/workflow/FCGPDReader.h"
#include "flowmere/workflow/FCProcessVarReader.h"
#include "flowmere/workflow/WorkflowFile.h"
#include "flowmere/workflow/WorkflowFileChain.h"
#include "flowmere/workflow/WorkflowValues.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>

using flowmere::AttributeRow;
using flowmere::AttributeTable;
using flowmere::equalsNoCase;
using flowmere::joinFolder;
using flowmere::WideText;
using XERCES_CPP_NAMESPACE::DOMElement;

namespace {

// Node kinds that the reader tells apart.
constexpr int kConnector = 68;
constexpr int kTask = 150;
constexpr int kDecision = 153;
constexpr int kStartState = 154;
constexpr int kEndState = 155;
constexpr int kFork = 156;
constexpr int kJoin = 157;
constexpr int kProcess = 160;
constexpr int kGroup = 161;
constexpr int kApplication = 167;
constexpr int kApplicationGroup = 168;
constexpr int kPlainBlock = 57; // what an unknown kind becomes

constexpr int kDefaultInport = 8;
constexpr int kDefaultOutport = 4;
constexpr int kFlags = 16; // handed on; no reader looks at them
constexpr int kMacroFolder = 1;

constexpr wchar_t const* kDefinitionFile = L"processdefinition.xml";
constexpr wchar_t const* kVariablesFile = L"process.var";
constexpr wchar_t const* kLayoutFile = L"gpd.xml";

// Bounds. A folder can hold links to itself by ever new names, and links double with each level.
constexpr std::size_t kMaxOpenFiles = 256;
constexpr std::size_t kMaxRepeats = 4096;
constexpr std::size_t kMaxLevels = 2000;

enum class Tag {
    Action,
    Application,
    Decision,
    Description,
    EndState,
    Event,
    ExceptionHandler,
    Fork,
    Function,
    Handler,
    Join,
    ModulePath,
    Other,
    Reminder,
    Script,
    StartState,
    SubProcess,
    SuperState,
    Task,
    TaskNode,
    Timer,
    Transition,
    Type,
};

struct TagRow {
    std::u16string_view name;
    Tag tag;
};

constexpr TagRow kTags[] = {
    {u"ClientApplication", Tag::Application},
    {u"action", Tag::Action},
    {u"decision", Tag::Decision},
    {u"description", Tag::Description},
    {u"end-state", Tag::EndState},
    {u"event", Tag::Event},
    {u"exception-handler", Tag::ExceptionHandler},
    {u"fork", Tag::Fork},
    {u"function", Tag::Function},
    {u"handler", Tag::Handler},
    {u"join", Tag::Join},
    {u"modulePath", Tag::ModulePath},
    {u"reminder", Tag::Reminder},
    {u"script", Tag::Script},
    {u"start-state", Tag::StartState},
    {u"sub-process", Tag::SubProcess},
    {u"super-state", Tag::SuperState},
    {u"task", Tag::Task},
    {u"task-node", Tag::TaskNode},
    {u"timer", Tag::Timer},
    {u"transition", Tag::Transition},
    {u"type", Tag::Type},
};
static_assert(std::is_sorted(std::begin(kTags), std::end(kTags),
                             [](TagRow const& left, TagRow const& right) { return left.name < right.name; }));

Tag tagFor(std::u16string_view name) {
    auto const row = std::lower_bound(std::begin(kTags), std::end(kTags), name,
                                      [](TagRow const& left, std::u16string_view right) { return left.name < right; });
    return row != std::end(kTags) && row->name == name ? row->tag : Tag::Other;
}

// The element around others, as far as they go by it: there, letter case plays no part.
enum class Around { Event, ExceptionHandler, ModulePath, Other, Task };

Around aroundFor(std::u16string_view name) {
    if (equalsNoCase(name, u"task"))
        return Around::Task;
    if (equalsNoCase(name, u"event"))
        return Around::Event;
    if (equalsNoCase(name, u"exception-handler"))
        return Around::ExceptionHandler;
    return equalsNoCase(name, u"modulepath") ? Around::ModulePath : Around::Other;
}

CFCBPMBlockData* workflowDataOf(IFCNode* node) {
    return node != nullptr ? node->GetBPMBlockData() : nullptr;
}

bool isApplicationKind(int kind) {
    return kind == kApplication || kind == kApplicationGroup;
}

// An absent attribute reads as the empty text.
WideText textOf(std::u16string_view value) {
    return WideText(value);
}

TuString ownTextOf(DOMElement* element) {
    TuString text;
    flowmere::ownText(element, text);
    return text;
}

template <std::size_t N>
std::size_t countOf(AttributeRow<N> const& row) {
    std::size_t count = 0;
    for (std::size_t number = 0; number < N; ++number)
        count += row.has(number) ? 1 : 0;
    return count;
}

// The canonical path of a file that is there; empty when there is none.
std::string canonicalPath(TuString const& path) {
    std::error_code failure;
    std::filesystem::path const found = std::filesystem::canonical(flowmere::filesystemPath(path.View()), failure);
    return failure ? std::string() : found.string();
}

bool isSeparator(wchar_t character) {
    return character == L'\\' || character == L'/';
}

// A folder without the separator behind it, which is all there is of the topmost one.
TuString withoutSeparator(TuString const& folder) {
    int const last = folder.GetLength() - 1;
    return last > 0 && isSeparator(folder.GetAt(last)) ? folder.Left(last) : folder;
}

// What a call needs for as long as it reads: the chain of open files, a new one in the outermost call.
class OpenChain {
public:
    explicit OpenChain(flowmere::WorkflowFileChain*& chain) : m_chain(chain), m_isOwner(chain == nullptr) {
        if (m_isOwner)
            m_chain = &m_own;
    }
    OpenChain(flowmere::WorkflowFileChain*& chain, TuString const& path) : OpenChain(chain) {
        std::string file = canonicalPath(path);
        m_chain->read.insert(file);
        m_chain->open.push_back(std::move(file));
        m_isFile = true;
    }
    ~OpenChain() {
        if (m_isFile)
            m_chain->open.pop_back();
        if (m_isOwner)
            m_chain = nullptr;
    }
    OpenChain(OpenChain const&) = delete;
    OpenChain& operator=(OpenChain const&) = delete;

private:
    flowmere::WorkflowFileChain*& m_chain;
    flowmere::WorkflowFileChain m_own;
    bool m_isOwner;
    bool m_isFile = false;
};

bool isInList(CFCConnector* connector, CFCConnectorList& list) {
    auto* const position = reinterpret_cast<__FCPOSITION*>(static_cast<IFCNode*>(connector));
    return connector->GetNext() != nullptr || connector->GetPrev() != nullptr || list.GetHeadPosition() == position ||
           list.GetTailPosition() == position;
}

} // namespace

// Where the children of an element go.
struct CFCProcessDefinitionReader::Inner {
    IFCNode* node = nullptr;
    IFCNode* stray = nullptr; // a tree of its own that `node` stands in, and that ends with the element
};

// An element whose children are being read.
struct CFCProcessDefinitionReader::Level {
    DOMElement* element = nullptr;
    DOMElement* next = nullptr; // child to be read next
    IFCNode* node = nullptr;
    CFCBPMBlockData* task = nullptr; // of the node; null without workflow data
    CFCProcessNode* process = nullptr;
    EProjectType projectType = EProjectType_BPT; // as it was when the level began, or as a "type" here made it
    Around around = Around::Other;
    IFCNode* stray = nullptr;
};

CFCProcessDefinitionReader::CFCProcessDefinitionReader() = default;
CFCProcessDefinitionReader::CFCProcessDefinitionReader(CFCProcessDefinitionReader const& other) = default;
CFCProcessDefinitionReader& CFCProcessDefinitionReader::operator=(CFCProcessDefinitionReader const& other) = default;
CFCProcessDefinitionReader::~CFCProcessDefinitionReader() = default;

void CFCProcessDefinitionReader::SetNodeFactory(CFCNodeFactory* factory) {
    m_pNodeFactory = factory;
}

void CFCProcessDefinitionReader::SetContainer(CFCBaseContainer* container) {
    m_pContainer = container;
}

IFCNode* CFCProcessDefinitionReader::Create(int kind) {
    return m_pNodeFactory != nullptr ? m_pNodeFactory->Create(kind) : nullptr;
}

void CFCProcessDefinitionReader::Attach(IFCNode* node) {
    if (m_pContainer == nullptr || node == nullptr)
        return;
    if (m_pChain != nullptr)
        m_pChain->isHandedOut = true;
    m_pContainer->Attach(node);
}

// --- Files -------------------------------------------------------------------------------------------------------

bool CFCProcessDefinitionReader::Parse(wchar_t const* path, IFCNode** node, int) {
    static constexpr AttributeTable kNames(u"name", u"version");
    m_findings.clear();
    TuString const file(path);
    m_strFilePath = file;
    if (file.IsEmpty())
        return false;
    int const at = file.Find(kDefinitionFile);
    if (at < 0)
        return false;
    TuString const folder = withoutSeparator(file.Left(at));
    // The folder of the top file serves at any depth, that of a plain name too.
    if (m_strBaseFolder.IsEmpty() && m_pChain == nullptr)
        m_strBaseFolder = folder;
    if (node == nullptr || m_pNodeFactory == nullptr || !Initialize(file))
        return false;
    IFCNode* const carrier = Create(kProcess);
    if (carrier == nullptr)
        return false;
    CFCEnumTranslator::SetArrays();
    OpenChain const chain(m_pChain, file);
    if (CFCProcessNode* const process = CFCPointerConverter::GetProcessNode(carrier))
        process->SetProjectType(EProjectType_TASK);
    DOMElement* const root = m_pDocument->getDocumentElement();
    {
        AttributeRow const row(root, kNames);
        WideText const name(row.view(0));
        carrier->SetNodeCaption(name);
        if (CFCBPMBlockData* const task = workflowDataOf(carrier))
            task->SetTaskName(name);
        int version = 0;
        row.integer(1, version);
        if (version > 0)
            m_dVersion = version;
    }
    IFCNode* const target = *node != nullptr ? *node : carrier;
    Load(root, target);
    TuString const variables = joinFolder(folder, kVariablesFile);
    if (!CFCEnvironment::IsFileExist(variables)) {
        find(CFCWorkflowFinding::VariablesMissing, target).file = variables;
        findRoot(root, target);
        *node = carrier;
        return false;
    }
    readVariables(variables, target);
    readLayout(joinFolder(folder, kLayoutFile), target);
    UpdateConnectors(target);
    findRoot(root, target);
    forgetIcons();
    if (target == carrier)
        *node = carrier;
    else
        CFCNodeHelper::DestroyTree(carrier);
    return true;
}

bool CFCProcessDefinitionReader::LoadFileNode(wchar_t const* path, IFCNode* node) {
    m_findings.clear();
    TuString file(path);
    if (node == nullptr || m_pNodeFactory == nullptr)
        return false;
    if (!m_pNodeFactory->IsFileExists(file)) {
        file = node->GetNodeLocationType() == kMacroFolder ? m_pNodeFactory->GetMacroPath(L"")
                                                           : CFCEnvironment::GetFullPath(file);
        if (!m_pNodeFactory->IsFileExists(file))
            return false;
    }
    CFCEnumTranslator::SetArrays();
    flowmere::XmlPlatform const platform;
    if (!InitXML(file, &m_pFileDocument))
        return false;
    flowmere::XmlDocumentPointer document(m_pFileDocument);
    OpenChain const chain(m_pChain, file);
    m_strFilePath = file;
    m_strBaseFolder = flowmere::folderOfFile(file);
    DOMElement* const root = document->getDocumentElement();
    Load(root, node);
    findRoot(root, node);
    TuString const variables = joinFolder(m_strBaseFolder, kVariablesFile);
    readVariables(variables, node);
    readLayout(joinFolder(m_strBaseFolder, kLayoutFile), node);
    m_pFileDocument = nullptr;
    document.reset();
    UpdateConnectors(node);
    forgetIcons();
    return true;
}

void CFCProcessDefinitionReader::readVariables(TuString const& path, IFCNode* node) {
    CFCProcessVarReader reader;
    if (!reader.Parse(path, node, kFlags))
        findBroken(CFCEnvironment::IsFileExist(path) ? CFCWorkflowFinding::VariablesBroken
                                                     : CFCWorkflowFinding::VariablesMissing,
                   node, path, reader);
}

void CFCProcessDefinitionReader::readLayout(TuString const& path, IFCNode* node) {
    CFCGPDReader reader;
    reader.SetContainer(m_pContainer);
    if (m_pContainer != nullptr)
        m_pChain->isHandedOut = true;
    if (!reader.Parse(path, node, kFlags))
        findBroken(CFCEnvironment::IsFileExist(path) ? CFCWorkflowFinding::LayoutBroken
                                                     : CFCWorkflowFinding::LayoutMissing,
                   node, path, reader);
    for (CFCLayoutFinding const& lost : reader.GetLayoutFindings())
        findLayout(path, lost);
}

// The folder of a sub-process lies below the base folder under the path of its block. `inner` holds the block, and
// then the node that the rest of its element goes to.
void CFCProcessDefinitionReader::readSubProcess(DOMElement* child, Inner& inner) {
    IFCNode* const block = inner.node;
    TuString place(block->GetNodePath());
    place.Replace(L'.', L'\\');
    TuString path = joinFolder(joinFolder(m_strBaseFolder, place), kDefinitionFile);
    path.Replace(L'/', L'\\');
    std::string const file = canonicalPath(path);
    flowmere::WorkflowFileChain& chain = *m_pChain;
    if (file.empty()) {
        find(CFCWorkflowFinding::NestedFolderMissing, block, child).file = path;
        return;
    }
    // A block without a path names the file that it stands in, and links can lead back to any file on the way.
    if (std::find(chain.open.begin(), chain.open.end(), file) != chain.open.end()) {
        find(CFCWorkflowFinding::FolderCycle, block, child).file = path;
        return;
    }
    if (chain.open.size() >= kMaxOpenFiles || (chain.read.contains(file) && ++chain.repeats > kMaxRepeats)) {
        find(CFCWorkflowFinding::NestingTooDeep, block, child).file = path;
        return;
    }
    CFCProcessDefinitionReader nested;
    nested.m_strBaseFolder = m_strBaseFolder;
    nested.m_pNodeFactory = m_pNodeFactory;
    nested.m_pContainer = m_pContainer;
    nested.m_pChain = m_pChain;
    bool const isRead = nested.Parse(path, &inner.node, kFlags);
    std::move(nested.m_findings.begin(), nested.m_findings.end(), std::back_inserter(m_findings));
    if (!isRead && *nested.GetErrorText() != L'\0')
        findBroken(CFCWorkflowFinding::NestedFileBroken, block, path, nested);
    if (inner.node == block)
        return;
    inner.stray = inner.node;
    find(CFCWorkflowFinding::ElementLost, block, child);
    chain.strays.push_back({inner.stray, TuString(block->GetNodePath()), m_findings.size(), chain.isHandedOut});
    chain.isHandedOut = false;
}

// --- Elements ----------------------------------------------------------------------------------------------------

// Levels of the document stand in a list, not on the stack: a caller's document may be of any depth.
bool CFCProcessDefinitionReader::Load(DOMElement* element, IFCNode* node) {
    if (element == nullptr || node == nullptr)
        return false;
    OpenChain const chain(m_pChain);
    CFCEnumTranslator::SetArrays();
    std::vector<Level> levels;
    if (!open(levels, element, {node, nullptr}))
        return false;
    while (!levels.empty()) {
        DOMElement* const child = levels.back().next;
        if (child == nullptr) {
            close(levels);
            continue;
        }
        levels.back().next = flowmere::nextElement(child);
        Inner inner;
        if (!loadChild(levels.back(), child, inner)) {
            bool const isOutermost = levels.size() == 1;
            close(levels);
            if (isOutermost)
                return false;
            continue;
        }
        if (inner.node != nullptr)
            open(levels, child, inner);
    }
    return true;
}

bool CFCProcessDefinitionReader::open(std::vector<Level>& levels, DOMElement* element, Inner const& inner) {
    Level level;
    level.element = element;
    level.next = flowmere::firstElement(element);
    level.node = inner.node;
    level.task = workflowDataOf(inner.node);
    level.process = CFCPointerConverter::GetProcessNode(inner.node->GetRootNode());
    level.around = aroundFor(flowmere::tagOf(element));
    level.stray = inner.stray;
    ++m_pChain->levels;
    levels.push_back(level);
    bool const isTooDeep = m_pChain->levels > kMaxLevels;
    if (isTooDeep && level.next != nullptr)
        find(CFCWorkflowFinding::NestingTooDeep, inner.node, element);
    if (isTooDeep || level.process == nullptr) {
        close(levels);
        return false;
    }
    levels.back().projectType = level.process->GetProjectType();
    return true;
}

void CFCProcessDefinitionReader::close(std::vector<Level>& levels) {
    IFCNode* const stray = levels.back().stray;
    levels.pop_back();
    --m_pChain->levels;
    if (stray == nullptr)
        return;
    flowmere::WorkflowFileChain::Stray const ended = std::move(m_pChain->strays.back());
    m_pChain->strays.pop_back();
    bool const isHandedOut = m_pChain->isHandedOut;
    m_pChain->isHandedOut = isHandedOut || ended.wasHandedOut;
    // What the container knows of is in its hands.
    if (isHandedOut)
        return;
    for (std::size_t number = ended.findings; number < m_findings.size(); ++number) {
        IFCNode*& node = m_findings[number].node;
        if (node != nullptr && node->GetRootNode() == stray)
            node = nullptr;
    }
    CFCNodeHelper::DestroyTree(stray);
}

bool CFCProcessDefinitionReader::loadChild(Level& level, DOMElement* child, Inner& inner) {
    switch (tagFor(flowmere::tagOf(child))) {
    case Tag::StartState:
        return loadState(level, child, kStartState, inner);
    case Tag::EndState:
        return loadState(level, child, kEndState, inner);
    case Tag::Fork:
        return loadState(level, child, kFork, inner);
    case Tag::Application:
        return loadState(level, child, kApplication, inner);
    case Tag::Join:
        return loadState(level, child, kJoin, inner);
    case Tag::SuperState:
        return loadGroup(level, child, inner);
    case Tag::TaskNode:
        return loadTaskNode(level, child, false, inner);
    case Tag::Decision:
        return loadTaskNode(level, child, true, inner);
    case Tag::Type:
        loadType(level, child);
        break;
    case Tag::Description:
        loadDescription(level, child);
        break;
    case Tag::SubProcess:
        loadSubProcess(level, child);
        break;
    case Tag::Task:
        loadTask(level, child, inner);
        break;
    case Tag::Event:
        loadEvent(level, child, inner);
        break;
    case Tag::Handler:
        loadHandler(level, child, inner);
        break;
    case Tag::Reminder:
        loadReminder(level, child);
        break;
    case Tag::ExceptionHandler:
        loadExceptionHandler(level, child, inner);
        break;
    case Tag::Timer:
        loadTimer(level, child, inner);
        break;
    case Tag::Transition:
        loadTransition(level, child);
        break;
    case Tag::Action:
        loadAction(level, child, inner);
        break;
    case Tag::ModulePath:
        loadModulePath(level, child, inner);
        break;
    case Tag::Function:
        loadFunction(level, child, inner);
        break;
    case Tag::Script:
        loadScript(level, child);
        break;
    case Tag::Other:
        findElement(level.node, child);
        break;
    }
    return true;
}

IFCNode* CFCProcessDefinitionReader::makeNode(Level& level, DOMElement* child, int kind) {
    IFCNode* const node = Create(kind);
    if (node == nullptr)
        findElement(level.node, child, CFCWorkflowFinding::NodeNotMade);
    return node;
}

namespace {

// Identity of a new node. The identifier of a block becomes the name of its task, too, which it has only by a "task".
void setIdentity(IFCNode* node, std::u16string_view name, std::u16string_view label) {
    WideText const caption(label.empty() ? name : label);
    CFCBPMBlockData* const task = workflowDataOf(node);
    node->SetNodeCaption(caption);
    node->SetNodeId(textOf(name));
    if (task != nullptr) {
        task->SetTaskName(L"");
        task->SetTaskCaption(caption);
    }
}

} // namespace

// "start-state", "end-state", "fork", "ClientApplication", "join"
bool CFCProcessDefinitionReader::loadState(Level& level, DOMElement* child, int kind, Inner& inner) {
    static constexpr AttributeTable kNames(u"name", u"label");
    IFCNode* const node = makeNode(level, child, kind);
    if (node == nullptr)
        return false;
    AttributeRow const row(child, kNames);
    setIdentity(node, row.view(0), row.view(1));
    level.node->AppendChild(node, false);
    Update(node);
    findNode(node, child, row.view(0));
    findAttributes(node, child, kNames.names(), countOf(row));
    inner.node = node;
    return true;
}

namespace {

// What applications have on their elements, and other nodes do not.
constexpr AttributeTable kApplicationNames(u"id", u"isNewVersion", u"useBindingScript", u"isUpdated", u"isDeleted",
                                           u"isDeletedAll", u"hierarchyPath");
constexpr std::span<std::u16string_view const> kNoNames;

} // namespace

bool CFCProcessDefinitionReader::loadGroup(Level& level, DOMElement* child, Inner& inner) {
    static constexpr AttributeTable kNames(u"name", u"label", u"icon", u"create-tasks", u"signal");
    bool const isApplication = level.projectType == EProjectType_APPLICATION;
    IFCNode* const node = makeNode(level, child, isApplication ? kApplicationGroup : kGroup);
    if (node == nullptr)
        return false;
    AttributeRow const row(child, kNames);
    setIdentity(node, row.view(0), row.view(1));
    if (CFCBPMBlockData* const task = workflowDataOf(node))
        task->SetIconFilePath(textOf(row.view(2)));
    level.node->AppendChild(node, false);
    LoadCommonAttributes(child, node);
    Update(node);
    findNode(node, child, row.view(0));
    findOther(node, child, u"create-tasks", row[3], u"false");
    findOther(node, child, u"signal", row[4], u"last-wait");
    findAttributes(node, child, kNames.names(), countOf(row), isApplication ? kApplicationNames.names() : kNoNames);
    inner.node = node;
    return true;
}

// "task-node", "decision"
bool CFCProcessDefinitionReader::loadTaskNode(Level& level, DOMElement* child, bool isDecision, Inner& inner) {
    static constexpr AttributeTable kNames(u"name", u"label", u"max-iterations", u"icon", u"nodeType", u"create-tasks",
                                           u"signal");
    bool const isApplication = level.projectType == EProjectType_APPLICATION;
    IFCNode* const node = makeNode(level, child, isApplication ? kApplication : kTask);
    if (node == nullptr)
        return false;
    AttributeRow const row(child, kNames);
    LoadCommonAttributes(child, node);
    setIdentity(node, row.view(0), row.view(1));
    if (CFCBPMBlockData* const task = workflowDataOf(node)) {
        int rounds = 0;
        row.integer(2, rounds);
        task->SetIconFilePath(textOf(row.view(3)));
        task->SetMaxIterations(rounds);
    }
    level.node->AppendChild(node, false);
    findNode(node, child, row.view(0));
    findNumber(node, child, u"max-iterations", row.view(2));
    findOther(node, child, u"create-tasks", row[5], u"false");
    findOther(node, child, u"signal", row[6], u"last-wait");
    findAttributes(node, child, kNames.names(), countOf(row), isApplication ? kApplicationNames.names() : kNoNames);
    inner.node = node;
    if (!row.view(4).empty()) {
        int const kind = GetNodeTypeFromName(textOf(row.view(4)));
        node->SetNodeType(kind);
        if (kind == kPlainBlock)
            findValue(CFCWorkflowFinding::NodeWithoutKind, node, child, u"nodeType", row.view(4));
        if (flowmere::isSubProcessKind(kind))
            readSubProcess(child, inner);
    }
    if (isDecision)
        inner.node->SetNodeType(kDecision);
    Update(inner.node);
    return true;
}

void CFCProcessDefinitionReader::LoadCommonAttributes(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"id", u"isNewVersion", u"useBindingScript", u"isUpdated", u"isDeleted",
                                           u"isDeletedAll", u"icon", u"hierarchyPath");
    CFCBPMBlockData* const task = workflowDataOf(node);
    if (task == nullptr || element == nullptr)
        return;
    AttributeRow const row(element, kNames);
    task->SetIconFilePath(textOf(row.view(6)));
    if (!isApplicationKind(node->GetNodeType()))
        return;
    // A kind of this range on another class has neither an identifier nor versions.
    auto* const application = dynamic_cast<CFCApplicationNode*>(node);
    if (application != nullptr) {
        int id = 0;
        row.integer(0, id);
        application->SetAppID(id);
        if (row.view(3) == u"true")
            application->SetUpdated(1);
    }
    if (row.view(4) == u"true")
        node->SetDeleted(true);
    if (application != nullptr) {
        if (row.view(2) == u"true")
            application->SetUseBindingScript(true);
        if (row.view(1) == u"true")
            application->SetNewVersion(1);
    }
    if (row.view(5) == u"true")
        node->SetDeleteAllVersions(true);
    if (auto* const block = dynamic_cast<CFCBPMTaskNode*>(node))
        block->SetHierarchyPath(textOf(row.view(7)));
}

int CFCProcessDefinitionReader::GetNodeTypeFromName(wchar_t const* name) {
    return flowmere::workflowNodeTypeFromName(name);
}

void CFCProcessDefinitionReader::loadType(Level& level, DOMElement* child) {
    TuString const text = ownTextOf(child);
    findAttributes(level.node, child, kNoNames, 0);
    findChildren(level.node, child);
    if (text.IsEmpty())
        return;
    if (!CFCEnumTranslator::StringToEnum(text, level.projectType))
        find(CFCWorkflowFinding::ValueNotRead, level.node, child).value = text;
    level.process->SetProjectType(level.projectType);
}

void CFCProcessDefinitionReader::loadDescription(Level& level, DOMElement* child) {
    TuString const text = ownTextOf(child);
    bool const isOfTask = level.around == Around::Task;
    if (level.task != nullptr && (isOfTask || !text.IsEmpty()))
        level.task->SetTaskDescription(text);
    if (!isOfTask)
        level.node->SetNodeDescription(text);
    findAttributes(level.node, child, kNoNames, 0);
    findChildren(level.node, child);
}

void CFCProcessDefinitionReader::loadSubProcess(Level& level, DOMElement* child) {
    static constexpr AttributeTable kNames(u"name", u"hierarchyPath");
    AttributeRow const row(child, kNames);
    if (level.task != nullptr && !row.view(0).empty())
        level.task->SetAssociatedSubProcess(textOf(row.view(0)));
    findAttributes(level.node, child, kNames.names(), countOf(row));
    findText(level.node, child);
    findChildren(level.node, child);
}

namespace {

// The attributes of "task" by their form; within a form, names and setters go in step. An absent text empties the
// member, an absent flag or number clears it.
constexpr AttributeTable kTaskNames(
    // texts
    u"name", u"swimlane", u"taskCategory", u"taskDescription", u"projectName", u"requirementDocument",
    u"workInstruction", u"application", u"priority", u"user", u"userRole", u"category",
    // flags
    u"lateIndicator", u"criticalPathIndicator", u"dataAvailability", u"notify", u"milestone", u"runOnServer",
    u"isDataOverrriden",
    // dates
    u"startDate", u"endDate", u"actualStartDate", u"actualEndDate", u"dueDate", u"estimatedReady", u"estimatedEndDate",
    // numbers
    u"projectLate", u"duration", u"cost", u"progress",
    // numbers of which each repeats the one before when it is absent
    u"effort", u"estimatedEffort", u"actualEffort",
    // of other forms, and of no use
    u"applicationVersion", u"form", u"form_size", u"hierarchyPath");

using SetText = void (CFCBPMBlockData::*)(wchar_t const*);
using SetFlag = void (CFCBPMBlockData::*)(bool);
using SetDate = void (CFCBPMBlockData::*)(TuDate);
using SetNumber = void (CFCBPMBlockData::*)(double);

constexpr SetText kTaskTexts[] = {
    &CFCBPMBlockData::SetTaskName,         &CFCBPMBlockData::SetSwimLane,
    &CFCBPMBlockData::SetCatagory,         &CFCBPMBlockData::SetTaskDescription,
    &CFCBPMBlockData::SetProjectName,      &CFCBPMBlockData::SetRequirementDoc,
    &CFCBPMBlockData::SetWorkInstructions, &CFCBPMBlockData::SetApplication,
    &CFCBPMBlockData::SetPriority,         &CFCBPMBlockData::SetUser,
    &CFCBPMBlockData::SetUserRole,         &CFCBPMBlockData::SetUserCategory,
};
constexpr SetFlag kTaskFlags[] = {
    &CFCBPMBlockData::SetLateIndicator,     &CFCBPMBlockData::SetCriticalPathIndicator,
    &CFCBPMBlockData::SetDataAvailability,  &CFCBPMBlockData::SetEmailNotification,
    &CFCBPMBlockData::SetMilestone,         &CFCBPMBlockData::SetRunOnServer,
    &CFCBPMBlockData::SetUserDataOverriden,
};
constexpr SetDate kTaskDates[] = {
    &CFCBPMBlockData::SetStartDate,        &CFCBPMBlockData::SetEndDate, &CFCBPMBlockData::SetActStartDate,
    &CFCBPMBlockData::SetActEndDate,       &CFCBPMBlockData::SetDueDate, &CFCBPMBlockData::SetEstimatedReadyDate,
    &CFCBPMBlockData::SetEstimatedEndDate,
};
constexpr SetNumber kTaskNumbers[] = {
    &CFCBPMBlockData::SetProjectLate,
    &CFCBPMBlockData::SetDuration,
    &CFCBPMBlockData::SetCost,
    &CFCBPMBlockData::SetProgress,
};
constexpr SetNumber kTaskEfforts[] = {
    &CFCBPMBlockData::SetEffort,
    &CFCBPMBlockData::SetEstimatedEffort,
    &CFCBPMBlockData::SetActEffort,
};

constexpr std::size_t kFirstFlag = std::size(kTaskTexts);
constexpr std::size_t kFirstDate = kFirstFlag + std::size(kTaskFlags);
constexpr std::size_t kFirstNumber = kFirstDate + std::size(kTaskDates);
constexpr std::size_t kFirstEffort = kFirstNumber + std::size(kTaskNumbers);
constexpr std::size_t kTaskVersion = kFirstEffort + std::size(kTaskEfforts);
constexpr std::size_t kTaskForm = kTaskVersion + 1;
constexpr std::size_t kTaskFormSize = kTaskForm + 1;
static_assert(std::is_same_v<decltype(kTaskNames), AttributeTable<kTaskFormSize + 2> const>);

// Name of an attribute of "task" by its number.
std::u16string_view taskName(std::size_t number) {
    std::size_t at = 0;
    while (kTaskNames.slots()[at] != number)
        ++at;
    return kTaskNames.names()[at];
}

// A form at its usual place is found there again, whatever folder its path once began with.
bool isOwnForm(std::u16string_view path, TuString const& name) {
    return WideText(path).view().ends_with((L"/" + name + L"/" + name + L".html").View());
}

} // namespace

void CFCProcessDefinitionReader::loadTask(Level& level, DOMElement* child, Inner& inner) {
    inner.node = level.node;
    CFCBPMBlockData* const task = level.task;
    if (task == nullptr)
        return;
    AttributeRow const row(child, kTaskNames);
    auto const passOver = [&](std::size_t number) {
        findValue(CFCWorkflowFinding::ValueNotRead, level.node, child, taskName(number), row.view(number));
    };
    auto const checkNumber = [&](std::size_t number) {
        if (!row.view(number).empty() && !flowmere::startsWithNumber(row.view(number)))
            passOver(number);
    };
    for (std::size_t i = 0; i < std::size(kTaskTexts); ++i)
        (task->*kTaskTexts[i])(textOf(row.view(i)));
    for (std::size_t i = 0; i < std::size(kTaskFlags); ++i) {
        bool value = false;
        if (!row.flag(kFirstFlag + i, value) && !row.view(kFirstFlag + i).empty())
            passOver(kFirstFlag + i);
        (task->*kTaskFlags[i])(value);
    }
    for (std::size_t i = 0; i < std::size(kTaskDates); ++i) {
        TuDate value;
        if (!flowmere::readWorkflowDate(row.view(kFirstDate + i), false, value))
            passOver(kFirstDate + i);
        (task->*kTaskDates[i])(value);
    }
    for (std::size_t i = 0; i < std::size(kTaskNumbers); ++i) {
        double value = 0.0;
        row.real(kFirstNumber + i, value);
        checkNumber(kFirstNumber + i);
        (task->*kTaskNumbers[i])(value);
    }
    double effort = 0.0;
    for (std::size_t i = 0; i < std::size(kTaskEfforts); ++i) {
        row.real(kFirstEffort + i, effort);
        checkNumber(kFirstEffort + i);
        (task->*kTaskEfforts[i])(effort);
    }
    int version = 0;
    row.integer(kTaskVersion, version);
    checkNumber(kTaskVersion);
    task->SetAppVersion(version);
    if (!row.view(kTaskForm).empty()) {
        task->SetGui(true);
        if (!isOwnForm(row.view(kTaskForm), level.node->GetNodeId()))
            findValue(CFCWorkflowFinding::AttributePassedOver, level.node, child, taskName(kTaskForm),
                      row.view(kTaskForm));
    }
    if (!row.view(kTaskFormSize).empty()) {
        TuRect size{};
        int width = 0;
        int height = 0;
        if (!flowmere::readFormSize(row.view(kTaskFormSize), width, height))
            passOver(kTaskFormSize);
        size.right = width;
        size.bottom = height;
        task->SetGUIRect(&size);
    }
    findNode(level.node, child, row.view(0));
    findAttributes(level.node, child, kTaskNames.names(), countOf(row));
}

void CFCProcessDefinitionReader::loadEvent(Level& level, DOMElement* child, Inner& inner) {
    static constexpr AttributeTable kNames(u"type");
    AttributeRow const row(child, kNames);
    if (level.task != nullptr)
        level.task->SetEventType(textOf(row.view(0)));
    findAttributes(level.node, child, kNames.names(), countOf(row));
    findText(level.node, child);
    inner.node = level.node;
}

namespace {

constexpr AttributeTable kRecordNames(u"name", u"class");

void setRecord(CFCActionData* record, AttributeRow<2> const& row) {
    record->SetActionName(textOf(row.view(0)));
    record->SetClassName(textOf(row.view(1)));
}

} // namespace

void CFCProcessDefinitionReader::loadHandler(Level& level, DOMElement* child, Inner& inner) {
    static constexpr AttributeTable kNames(u"class");
    AttributeRow const row(child, kNames);
    if (level.task != nullptr) {
        CFCEventActionData* const record = level.task->CreateNewEventAction();
        record->SetActionName(L"handler");
        record->SetClassName(textOf(row.view(0)));
    }
    findAttributes(level.node, child, kNames.names(), countOf(row));
    findText(level.node, child);
    inner.node = level.node;
}

void CFCProcessDefinitionReader::loadReminder(Level& level, DOMElement* child) {
    static constexpr AttributeTable kNames(u"duedate", u"repeat");
    AttributeRow const row(child, kNames);
    if (level.task != nullptr) {
        level.task->SetReminder(true);
        TuDate due;
        if (!flowmere::readWorkflowDate(row.view(0), false, due))
            findValue(CFCWorkflowFinding::ValueNotRead, level.node, child, u"duedate", row.view(0));
        level.task->SetReminderDate(due);
        int repeat = 0;
        row.integer(1, repeat);
        if (repeat > 0)
            level.task->SetReminderRepeat(repeat);
        findNumber(level.node, child, u"repeat", row.view(1));
    }
    findAttributes(level.node, child, kNames.names(), countOf(row));
    findText(level.node, child);
    findChildren(level.node, child);
}

void CFCProcessDefinitionReader::loadExceptionHandler(Level& level, DOMElement* child, Inner& inner) {
    static constexpr AttributeTable kNames(u"exception-class");
    AttributeRow const row(child, kNames);
    if (level.task != nullptr)
        level.task->SetExceptionClass(textOf(row.view(0)));
    findAttributes(level.node, child, kNames.names(), countOf(row));
    findText(level.node, child);
    inner.node = level.node;
}

// Without a date nothing else of the element is read; writers put none, so their timers come back bare.
void CFCProcessDefinitionReader::loadTimer(Level& level, DOMElement* child, Inner& inner) {
    static constexpr AttributeTable kNames(u"duedate", u"name", u"transition", u"repeat");
    AttributeRow const row(child, kNames);
    inner.node = level.node;
    bool const isDue = !row.view(0).empty();
    if (level.task != nullptr) {
        TuDate due;
        if (!flowmere::readWorkflowDate(row.view(0), true, due))
            findValue(CFCWorkflowFinding::ValueNotRead, level.node, child, u"duedate", row.view(0));
        level.task->SetTimerDueDate(due);
        if (isDue) {
            level.task->SetTimerName(textOf(row.view(1)));
            level.task->SetTimerTransition(textOf(row.view(2)));
            level.task->SetTimerRepeat(0);
        }
    }
    if (!isDue) {
        findOther(level.node, child, u"name", row[1], u"");
        findOther(level.node, child, u"transition", row[2], u"");
    }
    findOther(level.node, child, u"repeat", row[3], u"");
    findAttributes(level.node, child, kNames.names(), countOf(row));
    findText(level.node, child);
}

void CFCProcessDefinitionReader::loadTransition(Level& level, DOMElement* child) {
    static constexpr AttributeTable kNames(u"to", u"name", u"label", u"inport", u"outport", u"type");
    CFCTransitionData* const transition = level.task != nullptr ? level.task->CreateNewTransition() : nullptr;
    if (transition == nullptr) {
        findElement(level.node, child);
        return;
    }
    AttributeRow const row(child, kNames);
    int inport = kDefaultInport;
    int outport = kDefaultOutport;
    row.integer(3, inport);
    row.integer(4, outport);
    transition->SetTransitionTo(textOf(row.view(0)));
    transition->SetTransitionName(textOf(row.view(1)));
    transition->SetTransitionCaption(textOf(row.view(2)));
    transition->SetInport(inport);
    transition->SetOutport(outport);
    // The type follows the project, whatever the file says.
    transition->SetType(static_cast<int>(level.projectType));
    LoadPoints(child, transition);
    findNumber(level.node, child, u"inport", row.view(3));
    findNumber(level.node, child, u"outport", row.view(4));
    if (row.has(5) &&
        (!flowmere::startsWithNumber(row.view(5)) || flowmere::integerOf(row.view(5)) != level.projectType))
        findValue(CFCWorkflowFinding::AttributePassedOver, level.node, child, u"type", row.view(5));
    findAttributes(level.node, child, kNames.names(), countOf(row));
    findText(level.node, child);
    findChildren(level.node, child, u"POINT");
}

bool CFCProcessDefinitionReader::LoadPoints(DOMElement* element, CFCTransitionData* transition) {
    static constexpr AttributeTable kNames(u"Location_X", u"Location_Y");
    if (transition == nullptr)
        return true;
    IFCNode* const node = transition->GetParentNode();
    int count = 0;
    int length = -1; // of the route up to a point that ends it
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) != u"POINT")
            continue;
        AttributeRow const row(child, kNames);
        _TgPointLStr point{};
        row.integer(0, point.x);
        row.integer(1, point.y);
        findNumber(node, child, u"Location_X", row.view(0));
        findNumber(node, child, u"Location_Y", row.view(1));
        findAttributes(node, child, kNames.names(), countOf(row));
        findText(node, child);
        findChildren(node, child);
        transition->AddPoint(count, point); // beyond its room it takes none
        if (point.x == 0 && length < 0)
            length = count;
        ++count;
    }
    if (length >= 0 && length < CFCTransitionData::kPointCount)
        find(CFCWorkflowFinding::RouteCut, node, element).value.Format(L"%d", count - length);
    else if (count > CFCTransitionData::kPointCount)
        find(CFCWorkflowFinding::TooManyPoints, node, element)
            .value.Format(L"%d", count - CFCTransitionData::kPointCount);
    return true;
}

void CFCProcessDefinitionReader::loadAction(Level& level, DOMElement* child, Inner& inner) {
    if (level.task == nullptr || level.around == Around::Other || level.around == Around::Task) {
        findElement(level.node, child);
        return;
    }
    inner.node = level.node;
    if (level.around == Around::ModulePath) {
        level.task->SetModulePath(ownTextOf(child));
        findAttributes(level.node, child, kNoNames, 0);
        return;
    }
    AttributeRow const row(child, kRecordNames);
    if (level.around == Around::ExceptionHandler) {
        setRecord(level.task->CreateNewActionException(), row);
    } else {
        CFCEventActionData* const record = level.task->CreateNewEventAction();
        setRecord(record, row);
        record->SetActionType(WideText(flowmere::attributeOf(level.element, u"type")));
    }
    findAttributes(level.node, child, kRecordNames.names(), countOf(row));
    findText(level.node, child);
}

void CFCProcessDefinitionReader::loadModulePath(Level& level, DOMElement* child, Inner& inner) {
    if (level.task != nullptr)
        level.task->SetModulePath(ownTextOf(child));
    findAttributes(level.node, child, kNoNames, 0);
    inner.node = level.node;
}

void CFCProcessDefinitionReader::loadFunction(Level& level, DOMElement* child, Inner& inner) {
    inner.node = level.node;
    if (level.task == nullptr)
        return;
    __FCPOSITION* tail = level.task->GetEventList()->GetTailPosition();
    auto* const record = dynamic_cast<CFCActionData*>(level.task->GetEventList()->GetNextNode(tail));
    if (record != nullptr)
        record->SetActionFunction(ownTextOf(child));
    else
        findText(level.node, child);
    findAttributes(level.node, child, kNoNames, 0);
}

void CFCProcessDefinitionReader::loadScript(Level& level, DOMElement* child) {
    static constexpr AttributeTable kEventNames(u"name", u"class", u"type");
    bool const isEvent = level.around == Around::Event;
    if (level.task == nullptr || (!isEvent && level.around != Around::ExceptionHandler)) {
        findElement(level.node, child);
        return;
    }
    AttributeRow const row(child, kRecordNames);
    std::unique_ptr<CFCActionData> record;
    if (isEvent)
        record = std::make_unique<CFCEventActionData>();
    else
        record = std::make_unique<CFCExceptionActionData>();
    setRecord(record.get(), row);
    record->SetActionValue(ownTextOf(child));
    std::size_t known = countOf(row);
    if (isEvent) {
        XMLCh const* const type = flowmere::attributeOf(child, u"type");
        known += type != nullptr ? 1 : 0;
        record->SetActionType(WideText(type));
        level.task->GetScriptEventList()->AddTail(record.release());
    } else {
        level.task->GetScriptExceptionList()->AddTail(record.release());
    }
    findAttributes(level.node, child, isEvent ? kEventNames.names() : kRecordNames.names(), known);
    findChildren(level.node, child);
}

// --- Behind the elements -----------------------------------------------------------------------------------------

void CFCProcessDefinitionReader::Update(IFCNode* node) {
    CFCBPMBlockData* const task = workflowDataOf(node);
    if (task == nullptr || isApplicationKind(node->GetNodeType()) || m_strBaseFolder.IsEmpty())
        return;
    TuString path(node->GetNodePath());
    if (path.IsEmpty())
        return;
    TuString const name(node->GetNodeId());
    if (path.View().ends_with(name.View()))
        path = path.Left(path.GetLength() - name.GetLength());
    path.Replace(L'.', L'/');
    if (!path.IsEmpty() && isSeparator(path.GetAt(path.GetLength() - 1)))
        path = path.Left(path.GetLength() - 1);
    task->SetScriptFile(name, path.IsEmpty() ? m_strBaseFolder : m_strBaseFolder + L"\\" + path);
    if (CFCBlockData* const block = node->GetFCBlockData())
        block->ReSetFullScriptFileName(CFCEnvironment::GetFullPath(task->GetJythonScriptFileName()));
}

void CFCProcessDefinitionReader::UpdateConnector(IFCNode* node) {
    if (node == nullptr)
        return;
    CFCConnector* open = nullptr; // one without ends, in the list
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext()) {
        CFCBPMBlockData* const task = child->GetBPMBlockData();
        if (task == nullptr)
            continue;
        CFCTransitionList* const transitions = task->GetTransitionList();
        for (__FCPOSITION* position = transitions->GetHeadPosition(); position != nullptr;) {
            if (CFCTransitionData* const transition = transitions->GetNext(position))
                connect(node, child, transition, open);
        }
    }
}

void CFCProcessDefinitionReader::connect(IFCNode* parent, IFCNode* child, CFCTransitionData* transition,
                                         CFCConnector*& open) {
    IFCNode* const target = parent->FindNodeSimple(transition->GetTransitionTo());
    IFCNode* const made = Create(kConnector);
    CFCConnector* const connector = CFCPointerConverter::GetConnector(made);
    if (connector == nullptr) {
        delete made;
        findTransition(CFCWorkflowFinding::ConnectorNotMade, child, transition);
        return;
    }
    if (target != nullptr) {
        connector->SetStartNode(transition->GetInport(), CFCPointerConverter::GetBlockNode(child), nullptr);
        connector->SetEndNode(transition->GetOutport(), CFCPointerConverter::GetBlockNode(target), nullptr);
    } else {
        connector->SetStartNode(transition->GetInport(), nullptr);
        connector->SetEndNode(transition->GetOutport(), nullptr);
        findTransition(CFCWorkflowFinding::TransitionWithoutTarget, child, transition);
    }
    connector->SetConnectorType(transition->GetType());
    connector->SetCaption(transition->GetTransitionCaption());
    _TgPointLStr const* const points = transition->GetPoints();
    for (int index = 0; index < CFCTransitionData::kPointCount && points[index].x != 0; ++index)
        connector->AddPoint(points[index].x, points[index].y);

    CFCConnectorList* const list = parent->GetConnectorList();
    bool isNobodys = true;
    if (child->GetFCBlockData() != nullptr) {
        // All connectors without ends are the same to a list, which would be searched for the first one each time.
        bool const isRefused = target == nullptr && open != nullptr;
        if (!isRefused)
            parent->AddConnector(connector);
        bool const isListed = list != nullptr && !isRefused && isInList(connector, *list);
        if (isListed && target == nullptr)
            open = connector;
        // What is no block takes none; a host's own block may keep it in another place.
        bool const isTwin = list != nullptr && (isRefused || (!isListed && flowmere::holdsTwin(*list, *connector)));
        isNobodys = isTwin || (list == nullptr && parent->GetFCBlockData() == nullptr);
        if (isTwin && target != nullptr)
            findTransition(CFCWorkflowFinding::TransitionRepeated, child, transition);
    }
    Attach(connector);
    if (isNobodys && m_pContainer == nullptr)
        delete connector;
}

void CFCProcessDefinitionReader::UpdateConnectors(IFCNode* node) {
    if (node == nullptr)
        return;
    // The children still to be visited, of each node on the way down.
    std::vector<IFCNode*> ways;
    UpdateConnector(node);
    ways.push_back(node->GetChild());
    while (!ways.empty()) {
        IFCNode* const child = ways.back();
        if (child == nullptr) {
            ways.pop_back();
            continue;
        }
        ways.back() = child->GetNext();
        if (flowmere::isSubProcessKind(child->GetNodeType())) {
            // The inside of a sub-process got its connectors with its own file. Nothing behind it is visited.
            findUnconnected(child->GetNext());
            ways.pop_back();
        } else if (child->GetChild() != nullptr) {
            UpdateConnector(child);
            ways.push_back(child->GetChild());
        }
    }
}
