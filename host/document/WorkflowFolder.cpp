#include "host/document/WorkflowFolder.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/FolderVariables.h"
#include "host/files/InputFile.h"
#include "host/files/XmlFault.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kDefinition = "processdefinition.xml";
constexpr std::string_view kLayout = "gpd.xml";
constexpr std::string_view kExecutionFolder = "BrindleExec";

// A path of the library as the system has it.
fs::path nativePath(wchar_t const* path) {
    std::string text = utf8(path);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

std::vector<IFCNode*> nodesBelow(IFCNode& root) {
    std::vector<IFCNode*> nodes{&root};
    for (std::size_t place = 0; place < nodes.size(); ++place)
        for (IFCNode* child = nodes[place]->GetChild(); child != nullptr; child = child->GetNext())
            nodes.push_back(child);
    return nodes;
}

bool hasTransitions(IFCNode& container) {
    for (IFCNode* child = container.GetChild(); child != nullptr; child = child->GetNext())
        if (CFCBPMBlockData* const task = child->GetBPMBlockData())
            if (task->GetTransitionList()->GetHeadPosition() != nullptr)
                return true;
    return false;
}

// The library's reader leaves levels without variables unconnected, and groups that come behind a sub-process.
void connectRest(CFCProcessDefinitionReader& reader, IFCNode& root) {
    for (IFCNode* const container : nodesBelow(root)) {
        CFCConnectorList* const list = container->GetConnectorList();
        if (list != nullptr && list->GetHeadPosition() == nullptr && hasTransitions(*container))
            reader.UpdateConnector(container);
    }
}

// It reads no layout of a level without variables, either.
void readLayout(CFCWorkflowFinding const& noVariables, IFCNode& level, std::vector<CFCWorkflowFinding>& findings) {
    CFCWorkflowFinding finding = noVariables;
    fs::path const file = nativePath(noVariables.file).parent_path() / kLayout;
    finding.file = libraryPath(file);
    CFCGPDReader reader;
    std::error_code error;
    if (!fs::exists(file, error)) {
        finding.kind = CFCWorkflowFinding::LayoutMissing;
    } else if (!reader.Parse(finding.file, &level, 0)) {
        finding.kind = CFCWorkflowFinding::LayoutBroken;
        finding.error = reader.GetErrorText();
        finding.line = reader.GetErrorLine();
        finding.column = reader.GetErrorColumn();
    } else {
        for (CFCLayoutFinding const& lost : reader.GetLayoutFindings()) {
            bool const isNode = lost.kind == CFCLayoutFinding::NodeUnknown;
            finding.kind = isNode ? CFCWorkflowFinding::LayoutNodeUnknown : CFCWorkflowFinding::LayoutElementPassedOver;
            finding.node = lost.node;
            finding.place = lost.node->GetNodePath();
            finding.element = lost.element;
            finding.name = isNode ? lost.name : TuString();
            findings.push_back(finding);
        }
        return;
    }
    findings.push_back(finding);
}

// The script of a block in the folder that is named after it.
fs::path scriptOf(IFCNode& node, fs::path const& folder) {
    std::string const id = utf8(node.GetNodeId());
    std::string above = utf8(node.GetNodePath());
    above.resize(above.size() - std::min(above.size(), id.size()));
    std::replace(above.begin(), above.end(), '.', '/');
    return (folder / above / id / "scripts" / (id + ".py")).lexically_normal();
}

// The reader looks for scripts below the folders of the environment alone, where a path that begins at the top of the
// system has no place.
void placeScripts(IFCNode& root, WorkflowFolder const& folder) {
    for (IFCNode* const node : nodesBelow(root)) {
        CFCBlockData* const block = node->GetFCBlockData();
        CFCBPMBlockData* const task = node->GetBPMBlockData();
        if (block == nullptr || task == nullptr || *task->GetJythonScriptFileName() == L'\0')
            continue;
        std::error_code error;
        fs::path file = folder.scriptRoot / nativePath(task->GetJythonScriptFileName());
        if (!fs::is_regular_file(file, error))
            file = scriptOf(*node, folder.definition.parent_path());
        block->ReSetFullScriptFileName(libraryPath(file));
    }
}

bool isBroken(CFCWorkflowFinding::Kind kind) {
    switch (kind) {
    case CFCWorkflowFinding::NestedFileBroken:
    case CFCWorkflowFinding::FolderCycle:
    case CFCWorkflowFinding::NestingTooDeep:
    case CFCWorkflowFinding::VariablesBroken:
    case CFCWorkflowFinding::LayoutBroken:
    case CFCWorkflowFinding::NodeNotMade:
        return true;
    default:
        return false;
    }
}

std::string placeOf(CFCWorkflowFinding const& finding) {
    if (finding.line > 0)
        return fmt::format("line {}, column {}", finding.line, finding.column);
    return utf8(finding.place);
}

// "the attribute "async" of <join>"
std::string attributeOf(CFCWorkflowFinding const& finding) {
    std::string const element = utf8(finding.element);
    return fmt::format("the attribute \"{}\"{}", utf8(finding.name),
                       element.empty() ? std::string() : fmt::format(" of <{}>", element));
}

} // namespace

std::optional<fs::path> workflowDefinition(fs::path const& path) {
    std::error_code error;
    fs::path definition;
    if (fs::is_directory(path, error))
        definition = path / kDefinition;
    else if (path.filename() == kDefinition)
        definition = path;
    if (definition.empty() || !fs::is_regular_file(definition, error))
        return std::nullopt;
    return fs::absolute(definition).lexically_normal();
}

std::string noWorkflowFault() {
    return fmt::format("is a folder without a workflow: there is no {} in it", kDefinition);
}

fs::path executionRoot(fs::path const& folder) {
    std::string const text = folder.string();
    std::size_t const at = text.find(kExecutionFolder);
    if (at == std::string::npos)
        return folder;
    std::size_t const end = at + kExecutionFolder.size();
    return end < text.size() && text[end] != '/' ? folder : fs::path(text.substr(0, end));
}

WorkflowFolder readWorkflowFolder(std::string const& name) {
    std::optional<fs::path> const definition = workflowDefinition(name);
    if (!definition) {
        std::error_code error;
        throw Failure(name, "", fs::is_directory(name, error) ? noWorkflowFault() : "is no workflow folder");
    }
    fs::path const file = fs::is_directory(name) ? fs::path(name) / kDefinition : fs::path(name);
    if (std::string const fault = inputFault(*definition); !fault.empty())
        throw Failure(file.string(), "", fault);

    WorkflowFolder folder;
    folder.definition = *definition;
    folder.scriptRoot = executionRoot(definition->parent_path());
    HostFactory factory;
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* root = nullptr;
    bool const isWhole = reader.Parse(libraryPath(*definition), &root, 0);
    folder.process.reset(root);
    if (root == nullptr)
        throw xmlFailure(file.string(), reader);
    if (std::string const element = rootElement(*definition);
        !element.empty() && localName(element) != "process-definition")
        throw Failure(file.string(), "", fmt::format("is no process definition: it holds a \"{}\"", element));
    connectRest(reader, *root);
    folder.version = reader.GetVersion();
    bool lacksVariables = false;
    for (CFCWorkflowFinding const& finding : reader.GetFindings()) {
        if (finding.kind == CFCWorkflowFinding::TransitionsUnconnected)
            continue;
        folder.findings.push_back(finding);
        if (finding.kind == CFCWorkflowFinding::VariablesMissing && finding.node != nullptr) {
            lacksVariables = lacksVariables || finding.node == root;
            readLayout(finding, *finding.node, folder.findings);
        }
    }
    for (CFCWorkflowFinding const& finding : folder.findings)
        if (isBroken(finding.kind))
            throw Failure(fileOf(finding, name), placeOf(finding), describe(finding));
    if (!isWhole && !lacksVariables)
        throw Failure(file.string(), "", "it cannot be read");
    completeVariables(folder.definition.parent_path(), *root);
    placeScripts(*root, folder);
    return folder;
}

std::string fileOf(CFCWorkflowFinding const& finding, std::string const& name) {
    fs::path const file = nativePath(finding.file);
    std::optional<fs::path> const definition = workflowDefinition(name);
    if (finding.file.IsEmpty() || !definition)
        return file.string();
    fs::path const folder = definition->parent_path();
    fs::path const relative = file.lexically_normal().lexically_relative(folder);
    if (relative.empty() || *relative.begin() == "..")
        return file.string();
    std::error_code error;
    fs::path const shown = fs::is_directory(name, error) ? fs::path(name) : fs::path(name).parent_path();
    return (shown / relative).string();
}

namespace {

// What the writer of such folders adds and its reader knows without it: the path of a form, which follows from its
// block, and the label of the process.
bool isSaidTwice(CFCWorkflowFinding const& finding) {
    return finding.kind == CFCWorkflowFinding::AttributePassedOver &&
           ((finding.element == L"task" && finding.name == L"form") ||
            (finding.element == L"process-definition" && finding.name == L"label" && finding.node != nullptr &&
             finding.value == finding.node->GetNodeCaption()));
}

} // namespace

std::vector<WorkflowNote> notesOf(std::vector<CFCWorkflowFinding> const& findings, std::string const& name) {
    std::vector<WorkflowNote> notes;
    std::size_t passedOver = 0;
    UnreadNodes const unread(findings);
    for (CFCWorkflowFinding const& finding : findings) {
        bool const isKnown = finding.kind == CFCWorkflowFinding::TransitionWithoutTarget && finding.node != nullptr &&
                             unread.has(finding.node->GetParentNode(), utf8(finding.value));
        if (isKnown || isSaidTwice(finding))
            continue;
        switch (finding.kind) {
        case CFCWorkflowFinding::AttributePassedOver:
        case CFCWorkflowFinding::TextPassedOver:
        case CFCWorkflowFinding::ValueNotRead:
        case CFCWorkflowFinding::TooManyPoints:
        case CFCWorkflowFinding::RouteCut:
        case CFCWorkflowFinding::LayoutNodeUnknown:
        case CFCWorkflowFinding::LayoutElementPassedOver:
            ++passedOver;
            continue;
        case CFCWorkflowFinding::ElementPassedOver:
            if (!isUnreadNode(finding)) {
                ++passedOver;
                continue;
            }
            break;
        default:
            break;
        }
        bool const isTold = finding.kind == CFCWorkflowFinding::TransitionWithoutTarget ||
                            finding.kind == CFCWorkflowFinding::NestedFolderMissing;
        notes.push_back({fileOf(finding, name), utf8(finding.place), describe(finding), isTold});
    }
    if (passedOver > 0)
        notes.push_back(
            {name, "",
             counted(passedOver, "thing") + " besides that are passed over: \"flowmere import\" tells of each"});
    return notes;
}

bool isUnreadNode(CFCWorkflowFinding const& finding) {
    constexpr std::wstring_view kNodes[] = {L"node",  L"state",          L"process-state",    L"mail-node",
                                            L"merge", L"milestone-node", L"interleave-start", L"interleave-end"};
    return finding.kind == CFCWorkflowFinding::ElementPassedOver &&
           std::find(std::begin(kNodes), std::end(kNodes),
                     std::wstring_view(static_cast<wchar_t const*>(finding.element))) != std::end(kNodes);
}

UnreadNodes::UnreadNodes(std::vector<CFCWorkflowFinding> const& findings) {
    for (CFCWorkflowFinding const& finding : findings)
        if (isUnreadNode(finding))
            m_names[finding.node].insert(utf8(finding.name));
}

bool UnreadNodes::has(IFCNode* container, std::string const& name) const {
    auto const names = m_names.find(container);
    return names != m_names.end() && names->second.count(name) > 0;
}

bool isMissingFile(CFCWorkflowFinding const& finding) {
    return finding.kind == CFCWorkflowFinding::NestedFolderMissing ||
           finding.kind == CFCWorkflowFinding::VariablesMissing || finding.kind == CFCWorkflowFinding::LayoutMissing;
}

std::string describe(CFCWorkflowFinding const& finding) {
    std::string const element = utf8(finding.element);
    std::string const name = utf8(finding.name);
    std::string const value = utf8(finding.value);
    auto const orBroken = [&](std::string_view otherwise) {
        return finding.error.IsEmpty() ? std::string(otherwise) : utf8(finding.error);
    };
    switch (finding.kind) {
    case CFCWorkflowFinding::ElementPassedOver:
        return fmt::format("the element <{}>{} is passed over, with all that it holds", element,
                           name.empty() ? std::string() : fmt::format(" \"{}\"", name));
    case CFCWorkflowFinding::AttributePassedOver:
        return fmt::format("{} is passed over: \"{}\"", attributeOf(finding), value);
    case CFCWorkflowFinding::TextPassedOver:
        return fmt::format("the text of <{}> is passed over: \"{}\"", element, value);
    case CFCWorkflowFinding::ValueNotRead:
        return fmt::format("{} is \"{}\", which cannot be read and counts as none", attributeOf(finding), value);
    case CFCWorkflowFinding::NodeNotMade:
        return fmt::format("no node can be made for the element <{}>", element);
    case CFCWorkflowFinding::NodeWithoutName:
        return fmt::format("the element <{}> has no name", element);
    case CFCWorkflowFinding::NodeWithoutKind:
        return fmt::format("the kind \"{}\" is not known: it is read as a block", value);
    case CFCWorkflowFinding::TooManyPoints:
        return fmt::format("points at the end of a route are passed over: {}", value);
    case CFCWorkflowFinding::RouteCut:
        return fmt::format("a route ends at a point at X 0, and points from there on are passed over: {}", value);
    case CFCWorkflowFinding::TransitionWithoutTarget:
        return fmt::format("a transition goes to \"{}\", and there is no such node beside it", value);
    case CFCWorkflowFinding::TransitionRepeated:
        return fmt::format("a further transition to \"{}\" has no connector: there is one already", value);
    case CFCWorkflowFinding::TransitionsUnconnected:
        return "the transitions in it have no connectors: it comes behind a sub-process";
    case CFCWorkflowFinding::NestedFolderMissing:
        return "the workflow folder of the sub-process is missing";
    case CFCWorkflowFinding::NestedFileBroken:
    case CFCWorkflowFinding::VariablesBroken:
    case CFCWorkflowFinding::LayoutBroken:
        return orBroken("it cannot be read");
    case CFCWorkflowFinding::FolderCycle:
        return "the sub-process contains itself: this definition is being read already";
    case CFCWorkflowFinding::NestingTooDeep:
        return "what is nested here is too deep to be read";
    case CFCWorkflowFinding::VariablesMissing:
        return "there is no such file: the variables are unknown";
    case CFCWorkflowFinding::LayoutMissing:
        return "there is no such file: nothing tells where the nodes stand";
    case CFCWorkflowFinding::ElementLost:
        return "what the element of the sub-process holds is lost, its transitions too: there is no file of its "
               "variables";
    case CFCWorkflowFinding::ConnectorNotMade:
        return fmt::format("no connector can be made to \"{}\"", value);
    case CFCWorkflowFinding::LayoutNodeUnknown:
        return fmt::format("the layout has a node \"{}\" that is not there: it is passed over", name);
    case CFCWorkflowFinding::LayoutElementPassedOver:
        return fmt::format("the element <{}> of the layout is passed over, with all that it holds", element);
    }
    return {};
}

} // namespace flowmere::host
