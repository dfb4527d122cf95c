#include "host/drawing/Diagram.h"

#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/document/Tree.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace flowmere::host::drawing {

namespace {

// What a document's block looks like when nobody has said otherwise; the model's own value for that.
constexpr unsigned int kUntouchedFill = 0xFFDFC6;

// Larger than this no text in a diagram is meant to be.
constexpr double kLargestFont = 96;
constexpr double kUsualFont = 10;
constexpr double kThickest = 20;

struct Look {
    Shape shape;
    Sign sign;
    Color fill; // for blocks that nobody has given a look
};

constexpr Color kBlue{0.87, 0.93, 0.99};
constexpr Color kGreen{0.86, 0.95, 0.86};
constexpr Color kRed{0.98, 0.88, 0.87};
constexpr Color kYellow{1.0, 0.95, 0.80};
constexpr Color kViolet{0.93, 0.90, 0.98};
constexpr Color kGrey{0.91, 0.92, 0.94};
constexpr Color kDark{0.27, 0.32, 0.38};

Look lookOf(int kind) {
    switch (kind) {
    case eShapeType_Terminator:
        return {Shape::Oval, Sign::None, kGreen};
    case eShapeType_Decision:
        return {Shape::Diamond, Sign::None, kYellow};
    case eShapeType_RoundBlock:
        return {Shape::RoundRectangle, Sign::None, kBlue};
    case eShapeType_SubProcessAlternate:
    case eShapeType_SubProcess:
    case eShapeType_Process:
    case eShapeType_WorkflowProcess:
    case eShapeType_BasicSubProcess:
        return {Shape::Sides, Sign::Inner, kViolet};
    case eShapeType_SuperState:
        return {Shape::RoundRectangle, Sign::Inner, kViolet};
    case eShapeType_SubProcessLoop:
        return {Shape::Sides, Sign::Loop, kViolet};
    case eShapeType_DecisionLoop:
        return {Shape::Sides, Sign::Branch, kViolet};
    case eShapeType_SpawningLoop:
        return {Shape::Sides, Sign::Parallel, kViolet};
    case eShapeType_Task:
        return {Shape::RoundRectangle, Sign::Script, kBlue};
    case eShapeType_UserTask:
        return {Shape::RoundRectangle, Sign::User, kBlue};
    case eShapeType_AutomationTask:
        return {Shape::RoundRectangle, Sign::Gear, kBlue};
    case eShapeType_DecisionTask:
        return {Shape::DoubleDiamond, Sign::None, kYellow};
    case eShapeType_StartState:
        return {Shape::Stadium, Sign::Start, kGreen};
    case eShapeType_EndState:
        return {Shape::Stadium, Sign::End, kRed};
    case eShapeType_Fork:
    case eShapeType_Join:
        return {Shape::Bar, Sign::None, kDark};
    case eShapeType_Mail:
        return {Shape::RoundRectangle, Sign::Mail, kYellow};
    case eShapeType_ESB:
        return {Shape::Hexagon, Sign::Service, kGrey};
    case eShapeType_Application:
    case eShapeType_ApplicationGroup:
        return {Shape::RoundRectangle, Sign::Window, kGrey};
    case eShapeType_FileNode:
    case eShapeType_Code:
        return {Shape::Page, Sign::None, kGrey};
    default:
        return {Shape::Rectangle, Sign::None, kBlue};
    }
}

// The pens that the model numbers.
LineStyle styleOf(int pen) {
    constexpr std::array kStyles{LineStyle::Solid,   LineStyle::Dash,       LineStyle::Dot,
                                 LineStyle::DashDot, LineStyle::DashDotDot, LineStyle::None};
    return pen >= 0 && pen < static_cast<int>(kStyles.size()) ? kStyles[static_cast<std::size_t>(pen)]
                                                              : LineStyle::Solid;
}

// The bits of a text's format in the model.
constexpr unsigned int kCentred = 1;
constexpr unsigned int kAtRight = 2;
constexpr unsigned int kInMiddle = 4;
constexpr unsigned int kAtBottom = 8;

Font fontOf(CFCBlockNode& block) {
    Font font;
    font.family = utf8(block.GetFontName());
    if (font.family.empty())
        font.family = "Arial";
    font.size = block.GetFontSize() > 0 ? std::min(static_cast<double>(block.GetFontSize()), kLargestFont) : kUsualFont;
    font.isBold = block.GetBold();
    font.isItalic = block.GetItalics();
    font.isUnderlined = block.GetUnderline();
    font.isStruckOut = block.GetStrikeOut();
    font.color = colorOf(block.GetFontColor());
    unsigned int const format = block.GetFormat();
    font.across = (format & kCentred) != 0 ? Align::Middle : (format & kAtRight) != 0 ? Align::End : Align::Begin;
    font.down = (format & kInMiddle) != 0 ? Align::Middle : (format & kAtBottom) != 0 ? Align::End : Align::Begin;
    return font;
}

Rect placeOf(CFCBlockNode& block) {
    TuRect const& rect = *block.GetTuRect();
    return Rect::of({static_cast<double>(rect.left), static_cast<double>(rect.top)},
                    {static_cast<double>(rect.right), static_cast<double>(rect.bottom)});
}

// Files of workflows write the look of every block, whether anybody has given it one or not.
void takeLook(Block& block, CFCBlockNode& node, bool isOfWorkflow) {
    Look const look = lookOf(node.GetNodeType());
    block.shape = look.shape;
    block.sign = look.sign;
    block.font = fontOf(node);
    block.border = colorOf(node.GetColorLine());
    block.thickness = std::clamp(static_cast<double>(node.GetLineThickness()), 0.5, kThickest);
    block.style = styleOf(node.GetLinePenType());
    block.fill = colorOf(node.GetColorFill());
    block.isFilled = node.GetFillColor();
    block.hasBorder = node.GetDrawBorder();
    bool const isUntouched = (isOfWorkflow || !node.GetBorderSet()) && !node.GetDrawBorder() &&
                             node.GetColorFill() == kUntouchedFill && node.GetColorLine() == 0;
    if (isUntouched) {
        block.fill = look.fill;
        block.border = blended(look.fill, kBlack, 0.55);
        block.hasBorder = true;
        // Those of other makers write no colour of the text, either.
        bool const isDark = contrastOf(kWhite, look.fill) > contrastOf(kBlack, look.fill);
        if (isOfWorkflow && isDark && block.font.color == kBlack)
            block.font.color = kWhite;
    }
}

std::vector<Point> routeOf(CFCConnector& connector) {
    std::vector<Point> route;
    auto const add = [&](_TgPointLStr const* point) {
        if (point != nullptr)
            route.push_back({static_cast<double>(point->x), static_cast<double>(point->y)});
    };
    add(connector.GetStartPoint());
    for (int at = 0; at < connector.GetPointCount(); ++at)
        add(connector.GetPointAt(at));
    add(connector.GetEndPoint());
    return route;
}

std::string captionOf(CFCConnector& connector) {
    std::string text = utf8(connector.GetCaption());
    return text.empty() ? utf8(connector.GetNodeCaption()) : text;
}

// What the transitions of a workflow node are called by their targets, where somebody has given them a name: the engine
// chooses by it. The name that is made of the two blocks says nothing.
std::unordered_map<std::string, std::string> namedWays(IFCNode& node) {
    std::unordered_map<std::string, std::string> names;
    CFCBPMBlockData* const task = node.GetBPMBlockData();
    if (task == nullptr)
        return names;
    CFCTransitionList& list = *task->GetTransitionList();
    for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;) {
        CFCTransitionData* const transition = list.GetNext(place);
        std::string const name = transition == nullptr ? std::string() : utf8(transition->GetTransitionName());
        if (name.empty())
            continue;
        std::string to = utf8(transition->GetTransitionTo());
        if (name != utf8(node.GetNodeId()) + "." + to)
            names.emplace(std::move(to), name);
    }
    return names;
}

// The state of each block, the states of what is inside told on: a failure deep down shows on the closed container.
std::vector<int> statesOf(Tree const& tree) {
    std::vector<TreeNode> const& nodes = tree.nodes();
    std::vector<int> states(nodes.size(), EExecutionStateType_ESNone);
    std::vector<unsigned int> inside(nodes.size());
    auto const bit = [](int state) {
        return state > 0 && state < kStates ? 1U << static_cast<unsigned int>(state) : 0U;
    };
    for (std::size_t index = nodes.size(); index-- > 1;) {
        TreeNode const& node = nodes[index];
        if (node.block != nullptr) {
            int const code = node.node->GetNodeType();
            bool const isComposite = code == eShapeType_BasicSubProcess || code == eShapeType_WorkflowProcess;
            // Such a container always has a state, before any run, too.
            bool const isAtRest = isComposite && inside[index] == 0;
            int state = isAtRest ? EExecutionStateType_ESNone : node.block->GetExecutionStateType();
            bool const isDone = state == EExecutionStateType_ESNone || state == EExecutionStateType_Executed;
            for (int const worse :
                 {EExecutionStateType_WaitForResource, EExecutionStateType_Executing, EExecutionStateType_Failed})
                if (isDone && (inside[index] & bit(worse)) != 0)
                    state = worse;
            if (state == EExecutionStateType_ESNone && (inside[index] & bit(EExecutionStateType_Executed)) != 0)
                state = EExecutionStateType_Executed;
            states[index] = state;
        }
        inside[node.parent] |= inside[index] | bit(states[index]);
    }
    return states;
}

} // namespace

Color colorOf(unsigned int value) {
    auto const part = [&](unsigned int shift) {
        return static_cast<double>((value >> shift) & 0xFFU) / 255.0;
    };
    return {part(0), part(8), part(16)};
}

Color blended(Color const& color, Color const& other, double shareOfOther) {
    auto const mix = [&](double one, double two) {
        return one + (two - one) * shareOfOther;
    };
    return {mix(color.red, other.red), mix(color.green, other.green), mix(color.blue, other.blue)};
}

double contrastOf(Color const& one, Color const& other) {
    auto const linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    auto const light = [&](Color const& color) {
        return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
    };
    double const a = light(one);
    double const b = light(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

std::string stateName(int state) {
    if (state == EExecutionStateType_ESNone)
        return "not run";
    return utf8(CFCEnumTranslator::EnumToString(static_cast<EExecutionStateType>(state)));
}

Color stateColor(int state) {
    switch (state) {
    case EExecutionStateType_Pending:
        return {1.0, 0.95, 0.70};
    case EExecutionStateType_Start:
        return {0.78, 0.90, 0.97};
    case EExecutionStateType_Executing:
        return {0.55, 0.77, 0.96};
    case EExecutionStateType_Executed:
        return {0.67, 0.87, 0.67};
    case EExecutionStateType_Skipped:
        return {0.82, 0.82, 0.84};
    case EExecutionStateType_Failed:
        return {0.96, 0.58, 0.55};
    case EExecutionStateType_Cancelled:
        return {0.84, 0.71, 0.90};
    case EExecutionStateType_WaitForResource:
        return {1.0, 0.80, 0.50};
    case EExecutionStateType_Stop:
        return {0.96, 0.68, 0.78};
    default:
        return kWhite;
    }
}

Diagram diagramOf(Document const& document, int depth) {
    Tree const tree(document.process());
    std::vector<TreeNode> const& nodes = tree.nodes();
    std::vector<int> const states = statesOf(tree);
    constexpr std::size_t kNone = Tree::kNone;

    // The container that each block is drawn in: what lies between, as a folder, is not drawn.
    std::vector<std::size_t> above(nodes.size(), kNone);
    std::vector<bool> hasInside(nodes.size());
    for (std::size_t index = 1; index < nodes.size(); ++index) {
        std::size_t parent = nodes[index].parent;
        if (parent != 0 && nodes[parent].block == nullptr)
            parent = above[parent];
        above[index] = parent;
        if (nodes[index].block != nullptr)
            hasInside[parent] = true;
    }

    Diagram diagram;
    diagram.title = utf8(document.process().GetNodeCaption());
    std::vector<std::size_t> numbers(nodes.size(), kNone);
    std::vector<int> levels(nodes.size());
    diagram.blocks.emplace_back();
    diagram.blocks.front().isOpen = true;
    numbers[0] = 0;
    for (std::size_t index = 1; index < nodes.size(); ++index) {
        TreeNode const& node = nodes[index];
        levels[index] = levels[above[index]] + (node.block != nullptr ? 1 : 0);
        std::size_t const parent = numbers[above[index]];
        if (node.block == nullptr || parent == kNone || !diagram.blocks[parent].isOpen)
            continue;
        Block block;
        block.path = node.path;
        block.caption = utf8(node.node->GetNodeCaption());
        if (block.caption.empty())
            block.caption = node.id;
        block.kind = kindName(node.node->GetNodeType());
        block.description = utf8(node.block->GetDescription());
        block.place = placeOf(*node.block);
        takeLook(block, *node.block, node.isOfWorkflow);
        block.state = states[index];
        block.isBreak = node.block->GetStopFlag();
        block.parent = parent;
        block.isOpen = hasInside[index] && levels[index] <= depth;
        numbers[index] = diagram.blocks.size();
        diagram.blocks[parent].children.push_back(numbers[index]);
        diagram.blocks.push_back(std::move(block));
    }
    // Folders of other makers know no grips: those that the reader puts in their place say nothing.
    std::vector<CFCWorkflowFinding> const& findings = document.workflowFindings();
    bool const hasGrips = std::none_of(findings.begin(), findings.end(), [&](CFCWorkflowFinding const& finding) {
        return finding.kind == CFCWorkflowFinding::VariablesMissing && finding.node == nodes.front().node;
    });
    std::set<std::pair<std::size_t, std::size_t>> ways;
    for (std::size_t index = 1; index < nodes.size(); ++index) {
        std::size_t const start = numbers[index];
        if (start == kNone)
            continue;
        std::unordered_map<std::string, std::string> names;
        if (nodes[index].isOfWorkflow)
            names = namedWays(*nodes[index].node);
        for (CFCConnector* const way : nodes[index].ways) {
            std::size_t const place = tree.indexOf(static_cast<IFCNode*>(way->GetEndObject()));
            std::size_t const end = place == kNone ? kNone : numbers[place];
            if (end == kNone || diagram.blocks[end].parent != diagram.blocks[start].parent)
                continue;
            Connector connector;
            connector.container = diagram.blocks[start].parent;
            connector.start = start;
            connector.end = end;
            if (!hasGrips) {
                ways.emplace(start, end);
            } else {
                connector.startGrip = way->GetStartHandle();
                connector.endGrip = way->GetEndHandle();
            }
            connector.caption = captionOf(*way);
            if (auto const name = names.find(nodes[place].id); connector.caption.empty() && name != names.end())
                connector.caption = name->second;
            connector.route = routeOf(*way);
            diagram.connectors.push_back(std::move(connector));
        }
    }
    // Of two that go there and back, the shortest way is that of the first alone.
    for (Connector& connector : diagram.connectors) {
        if (connector.start <= connector.end || ways.count({connector.end, connector.start}) == 0)
            continue;
        Rect const& one = diagram.blocks[connector.start].place;
        Rect const& two = diagram.blocks[connector.end].place;
        bool const isBeside = one.left > two.right || two.left > one.right;
        bool const isBehind = isBeside ? one.left > two.left : one.top > two.top;
        int const near = isBeside ? EPortHandle_BottomLeft : EPortHandle_TopRight;
        connector.startGrip = isBehind ? near : EPortHandle_BottomRight;
        connector.endGrip = isBehind ? EPortHandle_BottomRight : near;
    }
    return diagram;
}

} // namespace flowmere::host::drawing
