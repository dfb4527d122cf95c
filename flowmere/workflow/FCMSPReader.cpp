#include "flowmere/workflow/FCMSPReader.h"

#include "flowmere/foundation/Fold.h"
#include "flowmere/foundation/Prefetch.h"
#include "flowmere/foundation/TuDate.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/workflow/ScheduleColumns.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

using flowmere::WideText;
using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace {

constexpr int kTask = 150;
constexpr int kProcess = 160;
constexpr int kSummary = 161;

constexpr int kLineThickness = 2;
constexpr int kPenType = 0;
constexpr unsigned int kLineColor = 0;
constexpr unsigned int kFillColor = 0xF6B381;

constexpr std::size_t kElementSize = 512; // what an element and its text take in the document

enum class Tag { Finish, Milestone, Name, Other, PredecessorLink, PredecessorUID, Start, Task, Tasks, Type, UID, WBS };

bool isTag(XMLCh const* tag, char16_t const* name) {
    for (; *tag == *name; ++tag, ++name) {
        if (*name == u'\0')
            return true;
    }
    return false;
}

// Most elements of a schedule have no use here, "Duration" among them, and go by their first letter.
Tag tagFor(DOMElement const* element) {
    XMLCh const* const tag = element->getTagName();
    switch (*tag) {
    case u'F':
        return isTag(tag, u"Finish") ? Tag::Finish : Tag::Other;
    case u'M':
        return isTag(tag, u"Milestone") ? Tag::Milestone : Tag::Other;
    case u'N':
        return isTag(tag, u"Name") ? Tag::Name : Tag::Other;
    case u'P':
        if (isTag(tag, u"PredecessorLink"))
            return Tag::PredecessorLink;
        return isTag(tag, u"PredecessorUID") ? Tag::PredecessorUID : Tag::Other;
    case u'S':
        return isTag(tag, u"Start") ? Tag::Start : Tag::Other;
    case u'T':
        if (isTag(tag, u"Task"))
            return Tag::Task;
        if (isTag(tag, u"Tasks"))
            return Tag::Tasks;
        return isTag(tag, u"Type") ? Tag::Type : Tag::Other;
    case u'U':
        return isTag(tag, u"UID") ? Tag::UID : Tag::Other;
    case u'W':
        return isTag(tag, u"WBS") ? Tag::WBS : Tag::Other;
    default:
        return Tag::Other;
    }
}

// An element's own text: where the document has it, when it stands there in one piece.
class OwnText {
public:
    explicit OwnText(DOMElement const* element) {
        bool isFirst = true;
        for (DOMNode const* child = element->getFirstChild(); child != nullptr; child = child->getNextSibling()) {
            if (child->getNodeType() != DOMNode::TEXT_NODE && child->getNodeType() != DOMNode::CDATA_SECTION_NODE)
                continue;
            std::u16string_view const piece = flowmere::xmlView(child->getNodeValue());
            if (isFirst) {
                m_view = piece;
                isFirst = false;
                continue;
            }
            if (m_joined.empty())
                m_joined = m_view;
            m_joined += piece;
            m_view = m_joined;
        }
    }
    OwnText(OwnText const&) = delete;
    OwnText& operator=(OwnText const&) = delete;

    std::u16string_view view() const { return m_view; }

private:
    std::u16string_view m_view;
    std::u16string m_joined;
};

TuString textOf(DOMElement const* element) {
    TuString text;
    flowmere::assignText(text, OwnText(element).view());
    return text;
}

bool isSpace(char16_t character) {
    return character == u' ' || (character >= u'\t' && character <= u'\r');
}

bool isBlank(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), isSpace);
}

// Takes a decimal number from the front of the text, white space and a sign before it included. False, with the text
// where the fault is, for anything else and for a number that a date has no room for.
bool takeNumber(std::u16string_view& text, short& number) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    bool const isNegative = !text.empty() && text.front() == u'-';
    if (isNegative || (!text.empty() && text.front() == u'+'))
        text.remove_prefix(1);
    constexpr int kMost = std::numeric_limits<short>::max();
    int value = 0;
    bool hasDigits = false;
    for (; !text.empty() && text.front() >= u'0' && text.front() <= u'9'; text.remove_prefix(1)) {
        value = std::min(value * 10 + (text.front() - u'0'), kMost + 1);
        hasDigits = true;
    }
    if (!hasDigits || value > kMost)
        return false;
    number = static_cast<short>(isNegative ? -value : value);
    return true;
}

// A date of the form 2024-03-05T08:00:00. Fields from the first fault on are 0; what follows the last plays no part.
// True when none is missing.
bool readDate(std::u16string_view text, TuDate& date) {
    static constexpr std::u16string_view kSeparators = u"--T::";
    std::array<short, kSeparators.size() + 1> fields{};
    std::size_t count = 0;
    while (takeNumber(text, fields[count]) && ++count < fields.size()) {
        if (text.empty() || text.front() != kSeparators[count - 1])
            break;
        text.remove_prefix(1);
    }
    date.setDate(fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]);
    return count == fields.size();
}

// The code of the task above: "1.2" for "1.2.3", nothing for "3".
std::u16string_view codeAbove(std::u16string_view code) {
    std::size_t const point = code.rfind(u'.');
    return point == std::u16string_view::npos ? std::u16string_view() : code.substr(0, point);
}

void style(CFCBlockData* block) {
    if (block == nullptr)
        return;
    block->SetDrawBorder(true);
    block->SetFillColor(true);
    block->SetVisible(false);
    block->SetBorderSet(true);
    block->SetLineThickness(kLineThickness);
    block->SetLinePenType(kPenType);
    block->SetColorLine(kLineColor);
    block->SetColorFill(kFillColor);
}

} // namespace

// Where the children of an element go.
struct CFCMSPReader::Inner {
    IFCNode* node = nullptr;
    int number = 0;
};

// An element whose children are being read.
struct CFCMSPReader::Level {
    DOMElement* next; // child to be read next
    IFCNode* node;
    CFCBlockData* block;   // of the node; null without such data
    CFCBPMBlockData* task; // likewise
    int number;            // of the task that the node was made of; 0 for the process
};

CFCMSPReader::CFCMSPReader() = default;
CFCMSPReader::CFCMSPReader(CFCMSPReader const& other) = default;
CFCMSPReader& CFCMSPReader::operator=(CFCMSPReader const& other) = default;
CFCMSPReader::~CFCMSPReader() = default;

void CFCMSPReader::SetNodeFactory(CFCNodeFactory* factory) {
    m_pNodeFactory = factory;
}

void CFCMSPReader::SetContainer(CFCBaseContainer* container) {
    m_pContainer = container;
}

IFCNode* CFCMSPReader::Create(int kind) {
    return m_pNodeFactory != nullptr ? m_pNodeFactory->Create(kind) : nullptr;
}

void CFCMSPReader::Attach(IFCNode* node) {
    if (m_pContainer != nullptr && node != nullptr)
        m_pContainer->Attach(node);
}

void CFCMSPReader::CheckDataFile(wchar_t const* path) {
    TuString const file(path);
    if (file.GetLength() >= 4 && file.View().ends_with(L"fmr"))
        m_bDataFile = true;
}

bool CFCMSPReader::Parse(wchar_t const* path, IFCNode** node, int flags) {
    TuString const file(path);
    m_findings.clear();
    m_nTasks = 0;
    if (file.IsEmpty() || node == nullptr || m_pNodeFactory == nullptr)
        return false;
    m_nMode = 1;
    m_nFlags = flags;
    if (!Initialize(file))
        return false;
    CheckDataFile(file);
    DOMElement* const root = m_pDocument->getDocumentElement();
    IFCNode* const process = root != nullptr ? Create(kProcess) : nullptr;
    if (process == nullptr)
        return false;
    if (CFCProcessNode* const typed = CFCPointerConverter::GetProcessNode(process))
        typed->SetProjectType(EProjectType_MSP);
    process->SetNodeCaption(L"Block Library");
    Load(root, process, 0);
    *node = process;
    return true;
}

// Levels of the document stand in a list, not on the stack: a caller's document may be of any depth.
bool CFCMSPReader::Load(DOMElement* element, IFCNode* node, int) {
    if (element == nullptr || node == nullptr)
        return false;
    std::vector<Level> levels;
    auto const open = [&levels](DOMElement* opened, Inner const& inner) {
        levels.push_back({flowmere::firstElement(opened), inner.node, inner.node->GetFCBlockData(),
                          inner.node->GetBPMBlockData(), inner.number});
    };
    open(element, {node, 0});
    while (!levels.empty()) {
        DOMElement* const child = levels.back().next;
        if (child == nullptr) {
            IFCNode* const done = levels.back().node;
            levels.pop_back();
            done->TransferToDraw();
            Attach(done);
            continue;
        }
        flowmere::prefetch(child->getNextSibling(), kElementSize);
        Inner inner;
        loadChild(levels.back(), child, inner);
        levels.back().next = flowmere::nextElement(child);
        if (inner.node != nullptr)
            open(child, inner);
    }
    return true;
}

void CFCMSPReader::loadChild(Level const& level, DOMElement* child, Inner& inner) {
    switch (tagFor(child)) {
    case Tag::Tasks:
    case Tag::PredecessorLink:
        inner = {level.node, level.number};
        break;
    case Tag::Task:
        inner.number = ++m_nTasks;
        inner.node = placeTask(level.node, child);
        if (inner.node == nullptr)
            leaveOutInside(child);
        break;
    case Tag::Name: {
        OwnText const text(child);
        WideText const name(text.view());
        level.node->SetNodeCaption(name);
        level.node->SetNodeId(name);
        break;
    }
    case Tag::Type:
        if (OwnText(child).view() == u"0")
            level.node->SetNodeType(kTask);
        break;
    case Tag::WBS:
        if (level.task != nullptr) {
            OwnText const text(child);
            level.task->SetWBS(WideText(text.view()));
        }
        break;
    case Tag::Milestone:
        if (level.task != nullptr)
            level.task->SetMilestone(OwnText(child).view() == u"1");
        break;
    case Tag::Start:
        loadDate(level, child, true);
        break;
    case Tag::Finish:
        loadDate(level, child, false);
        break;
    case Tag::UID:
        loadUID(level, child);
        break;
    case Tag::PredecessorUID:
        loadPredecessor(level, child);
        break;
    case Tag::Other:
        break;
    }
}

// --- Tasks -------------------------------------------------------------------------------------------------------

// What stands behind the deciding "WBS" has no say in where the task goes.
IFCNode* CFCMSPReader::placeTask(IFCNode* parent, DOMElement* element) {
    bool isProject = false;
    bool isSummary = false;
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        switch (tagFor(child)) {
        case Tag::UID:
            isProject = OwnText(child).view() == u"0";
            break;
        case Tag::Type:
            isSummary = OwnText(child).view() == u"1";
            break;
        case Tag::WBS:
            if (!isProject)
                return attachTask(parent, element, child, isSummary);
            break;
        default:
            break;
        }
    }
    leaveOut(isProject ? CFCScheduleFinding::ProjectSummary : CFCScheduleFinding::TaskWithoutWBS, element);
    return nullptr;
}

IFCNode* CFCMSPReader::attachTask(IFCNode* parent, DOMElement* element, DOMElement* wbs, bool isSummary) {
    OwnText const code(wbs);
    WideText const above(codeAbove(code.view()));
    IFCNode* const node = Create(kTask);
    if (node == nullptr) {
        leaveOut(CFCScheduleFinding::NodeNotMade, element).parent = above;
        return nullptr;
    }
    if (isSummary || above.view() == L"1") {
        node->SetNodeType(kSummary);
        parent->AppendChild(node, false);
        return node;
    }
    // New children come first, so this is the newest. A process begins with folders, which are no tasks.
    IFCNode* const newest = parent->GetChild();
    CFCBPMBlockData* const task = newest != nullptr ? newest->GetBPMBlockData() : nullptr;
    if (task == nullptr) {
        CFCScheduleFinding& finding = leaveOut(CFCScheduleFinding::ParentMissing, element);
        finding.parent = above;
        finding.node = node;
        return nullptr;
    }
    wchar_t const* const newestCode = task->GetWBS();
    if (!flowmere::equalNoCase(newestCode, above.view())) {
        CFCScheduleFinding& finding = leaveOut(CFCScheduleFinding::ParentNotNewest, element);
        finding.parent = above;
        finding.element = L"WBS";
        finding.value = newestCode;
        finding.node = node;
        return nullptr;
    }
    newest->AppendChild(node, false);
    return node;
}

void CFCMSPReader::loadUID(Level const& level, DOMElement* child) {
    style(level.block);
    flowmere::scheduleColumns().place(*level.node);
    if (level.task != nullptr) {
        OwnText const text(child);
        level.task->SetUID(WideText(text.view()));
    }
}

void CFCMSPReader::loadDate(Level const& level, DOMElement* child, bool isStart) {
    if (level.task == nullptr)
        return;
    OwnText const text(child);
    TuDate date;
    if (!readDate(text.view(), date) && !isBlank(text.view()))
        findValue(CFCScheduleFinding::DateNotRead, level, child, textOf(child));
    if (isStart)
        level.task->SetStartDate(date);
    else
        level.task->SetEndDate(date);
}

void CFCMSPReader::loadPredecessor(Level const& level, DOMElement* child) {
    if (level.task == nullptr)
        return;
    OwnText const text(child);
    WideText const predecessor(text.view());
    std::wstring_view const earlier(level.task->GetPredecessorID());
    if (!earlier.empty() && earlier != predecessor.view())
        findValue(CFCScheduleFinding::PredecessorReplaced, level, child, TuString(earlier));
    level.task->SetPredecessorID(predecessor);
}

// --- Findings ----------------------------------------------------------------------------------------------------

CFCScheduleFinding& CFCMSPReader::leaveOut(CFCScheduleFinding::Kind kind, DOMElement* element) {
    CFCScheduleFinding& finding = m_findings.emplace_back();
    finding.kind = kind;
    finding.number = m_nTasks;
    bool hasCode = false;
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        switch (tagFor(child)) {
        case Tag::UID:
            finding.uid = textOf(child);
            break;
        case Tag::Name:
            finding.name = textOf(child);
            break;
        case Tag::WBS:
            finding.wbs = textOf(child);
            hasCode = true;
            break;
        case Tag::Type:
            (hasCode ? finding.lateType : finding.type) = textOf(child);
            break;
        default:
            break;
        }
    }
    return finding;
}

void CFCMSPReader::leaveOutInside(DOMElement* element) {
    std::vector<DOMElement*> next{flowmere::firstElement(element)};
    while (!next.empty()) {
        DOMElement* const child = next.back();
        if (child == nullptr) {
            next.pop_back();
            continue;
        }
        next.back() = flowmere::nextElement(child);
        Tag const tag = tagFor(child);
        if (tag == Tag::Task) {
            ++m_nTasks;
            leaveOut(CFCScheduleFinding::InsideLeftOutTask, child);
        }
        if (tag == Tag::Task || tag == Tag::Tasks || tag == Tag::PredecessorLink)
            next.push_back(flowmere::firstElement(child));
    }
}

void CFCMSPReader::findValue(CFCScheduleFinding::Kind kind, Level const& level, DOMElement* element,
                             TuString const& value) {
    CFCScheduleFinding& finding = m_findings.emplace_back();
    finding.kind = kind;
    finding.number = level.number;
    finding.uid = level.task->GetUID();
    finding.name = level.node->GetNodeCaption();
    finding.wbs = level.task->GetWBS();
    flowmere::assignText(finding.element, flowmere::tagOf(element));
    finding.value = value;
    finding.node = level.node;
}
