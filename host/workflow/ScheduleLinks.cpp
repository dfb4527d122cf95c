#include "host/workflow/ScheduleLinks.h"

#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/document/HostFactory.h"
#include "host/workflow/FromWorkflow.h"

#include <fmt/format.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace flowmere::host {

namespace {

// Stands in no file, so that tasks are found by their UID alone: one without a WBS would answer to the empty text.
constexpr wchar_t kNoCode[] = L"\x01";

struct NoCase {
    bool operator()(TuString const& left, TuString const& right) const { return left.CompareNoCase(right) < 0; }
};
using NodesByUID = std::map<TuString, IFCNode*, NoCase>;

struct Link {
    IFCNode* from;
    IFCNode* to;
    IFCNode* task; // that names the predecessor
    bool isDropped = false;
};

CFCBPMBlockData* taskOf(IFCNode& node) {
    return node.GetBPMBlockData();
}

class Joining {
public:
    Joining(IFCNode& process, std::vector<CFCScheduleFinding> const& findings) : m_process(process) {
        for (CFCScheduleFinding const& finding : findings)
            if (finding.IsTaskLeftOut() && !finding.uid.IsEmpty())
                m_leftOut.try_emplace(finding.uid, &finding);
        collect();
    }

    ScheduleLinks join() {
        for (IFCNode* const task : m_tasks)
            if (TuString const uid(taskOf(*task)->GetPredecessorID()); !uid.IsEmpty())
                link(*task, uid);
        dropCircles();
        for (Link const& link : m_links)
            if (!link.isDropped)
                connect(link);
        return std::move(m_result);
    }

private:
    void lost(IFCNode& task, std::string const& text) {
        m_result.notes.push_back({Note::Kind::Lost, pathOf(task), text});
    }

    // All tasks in the order of the file, and the first of each UID in the chains, which begin with the newest.
    void collect() {
        std::vector<IFCNode*> open{&m_process};
        while (!open.empty()) {
            IFCNode* const container = open.back();
            open.pop_back();
            if (container != &m_process)
                m_tasks.push_back(container);
            for (IFCNode* child = container->GetChild(); child != nullptr; child = child->GetNext()) {
                CFCBPMBlockData* const task = taskOf(*child);
                if (task == nullptr || dynamic_cast<CFCBlockNode*>(child) == nullptr)
                    continue;
                open.push_back(child);
                TuString const uid(task->GetUID());
                m_levels[container].try_emplace(uid, child);
                m_all.try_emplace(uid, child);
            }
        }
    }

    // The search goes on from the task that the index has, which answers at once.
    static IFCNode* find(NodesByUID const& nodes, TuString const& uid) {
        auto const place = nodes.find(uid);
        return place != nodes.end() ? CFCNodeHelper::FindNodeWBS(kNoCode, uid, place->second) : nullptr;
    }

    void link(IFCNode& task, TuString const& uid) {
        IFCNode* predecessor = find(m_levels[task.GetParentNode()], uid);
        if (predecessor == nullptr)
            predecessor = find(m_all, uid);
        if (predecessor == nullptr)
            missing(task, uid);
        else if (predecessor == &task)
            lost(task, "its predecessor: it names itself, and no block is joined with itself");
        else if (predecessor->GetParentNode() == task.GetParentNode())
            add(*predecessor, task, task);
        else
            linkAbove(*predecessor, task);
    }

    void missing(IFCNode& task, TuString const& uid) {
        std::string const number = oneLine(utf8(uid));
        auto const place = m_leftOut.find(uid);
        if (place == m_leftOut.end())
            lost(task, fmt::format("its predecessor, UID {}: there is no such task in the file", number));
        else if (place->second->kind == CFCScheduleFinding::ProjectSummary)
            lost(task, fmt::format("its predecessor, UID {}: that is the whole project", number));
        else
            lost(task, fmt::format("its predecessor \"{}\", UID {}: that task is left out",
                                   oneLine(utf8(place->second->name)), number));
    }

    // The two meet where their ways part.
    void linkAbove(IFCNode& predecessor, IFCNode& task) {
        std::map<IFCNode*, IFCNode*> ways; // containers of the predecessor, and what of it stands in them
        for (IFCNode* at = &predecessor; at != &m_process; at = at->GetParentNode())
            ways.emplace(at->GetParentNode(), at);
        IFCNode* to = &task;
        while (ways.count(to->GetParentNode()) == 0)
            to = to->GetParentNode();
        IFCNode* const from = ways.at(to->GetParentNode());
        std::string const name = pathOf(predecessor);
        if (from == to) {
            lost(task, to == &task ? fmt::format("its predecessor {}: that stands in it", name)
                                   : fmt::format("its predecessor {}: it stands in that", name));
            return;
        }
        m_result.notes.push_back({Note::Kind::Changed, pathOf(task),
                                  fmt::format("its predecessor {} stands elsewhere: in its place {} leads to {}, as a "
                                              "connector joins what stands side by side",
                                              name, pathOf(*from), pathOf(*to))});
        add(*from, *to, task);
    }

    void add(IFCNode& from, IFCNode& to, IFCNode& task) {
        if (m_pairs.emplace(&from, &to).second)
            m_links.push_back({&from, &to, &task});
    }

    // A walk along the links that drops those which lead back to where it comes from.
    void dropCircles() {
        enum class State { New, Open, Done };
        struct Visit {
            IFCNode* node;
            std::size_t next;
        };
        std::unordered_map<IFCNode*, std::vector<std::size_t>> leaving;
        for (std::size_t index = 0; index < m_links.size(); ++index)
            leaving[m_links[index].from].push_back(index);
        std::unordered_map<IFCNode*, State> states;
        std::vector<Visit> way;
        auto const enter = [&](IFCNode* node) {
            states[node] = State::Open;
            way.push_back({node, 0});
        };
        for (IFCNode* const first : m_tasks) {
            if (states[first] != State::New)
                continue;
            enter(first);
            while (!way.empty()) {
                auto& [node, next] = way.back();
                std::vector<std::size_t> const& links = leaving[node];
                if (next == links.size()) {
                    states[node] = State::Done;
                    way.pop_back();
                    continue;
                }
                Link& link = m_links[links[next++]];
                State const state = states[link.to];
                if (state == State::Open)
                    drop(link);
                else if (state == State::New)
                    enter(link.to);
            }
        }
    }

    void drop(Link& link) {
        link.isDropped = true;
        lost(*link.task,
             fmt::format("the connector from {} to {}: the predecessors go in a circle, which it would close",
                         pathOf(*link.from), pathOf(*link.to)));
    }

    void connect(Link const& link) {
        std::size_t const number = m_leaving[link.from]++;
        m_result.branchings += number == 1 ? 1 : 0;
        auto connector = std::make_unique<RoutedConnector>();
        connector->SetNodeType(eShapeType_Connector);
        connector->SetConnectorType(EConnectorType_Workflow);
        connector->SetStartNode(wayOut(number), dynamic_cast<CFCBlockNode*>(link.from), L"");
        connector->SetEndNode(EPortHandle_TopMiddle, dynamic_cast<CFCBlockNode*>(link.to), L"");
        connector->SetStarPortName(connector->GetStartHandleName());
        connector->SetEndPortName(connector->GetEndHandleName());
        link.to->GetParentNode()->AddConnector(connector.release());
        ++m_result.connectors;
    }

    IFCNode& m_process;
    std::map<TuString, CFCScheduleFinding const*, NoCase> m_leftOut; // by UID
    std::vector<IFCNode*> m_tasks;
    std::unordered_map<IFCNode*, NodesByUID> m_levels;
    NodesByUID m_all;
    std::vector<Link> m_links;
    std::set<std::pair<IFCNode*, IFCNode*>> m_pairs;
    std::unordered_map<IFCNode*, std::size_t> m_leaving; // how many connectors leave it
    ScheduleLinks m_result;
};

} // namespace

ScheduleLinks connectTasks(IFCNode& process, std::vector<CFCScheduleFinding> const& findings) {
    return Joining(process, findings).join();
}

} // namespace flowmere::host
