#include "host/diff/Compare.h"

#include "host/document/Tree.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

namespace flowmere::host {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// What stands on either side: for each thing the number of the other one, or kNone.
struct Pairing {
    std::vector<std::size_t> ofFirst;
    std::vector<std::size_t> ofSecond;

    Pairing(std::size_t first, std::size_t second) : ofFirst(first, kNone), ofSecond(second, kNone) {}
    void add(std::size_t first, std::size_t second) {
        ofFirst[first] = second;
        ofSecond[second] = first;
    }
};

// Pairs what has the same key, of which there is one on each side at most, as far as it has no partner yet.
template <typename First, typename Second>
void pairByKey(Pairing& pairing, First const& first, Second const& second) {
    std::size_t const common = std::min(pairing.ofFirst.size(), pairing.ofSecond.size());
    std::size_t same = 0;
    while (same < common && first(same) == second(same) && pairing.ofFirst[same] == kNone &&
           pairing.ofSecond[same] == kNone) {
        pairing.add(same, same);
        ++same;
    }
    std::unordered_map<std::string_view, std::size_t> places;
    for (std::size_t place = same; place < pairing.ofSecond.size(); ++place)
        if (pairing.ofSecond[place] == kNone)
            places.emplace(second(place), place);
    for (std::size_t place = same; place < pairing.ofFirst.size() && !places.empty(); ++place)
        if (pairing.ofFirst[place] == kNone)
            if (auto const found = places.find(first(place)); found != places.end()) {
                pairing.add(place, found->second);
                places.erase(found);
            }
}

// Pairs what has the same key, in order, as far as it has no partner yet.
template <typename First, typename Second>
void pairInOrder(Pairing& pairing, First const& first, Second const& second) {
    std::unordered_map<std::string, std::vector<std::size_t>> places;
    for (std::size_t place = pairing.ofSecond.size(); place-- > 0;)
        if (pairing.ofSecond[place] == kNone)
            if (std::string key = second(place); !key.empty())
                places[std::move(key)].push_back(place);
    if (places.empty())
        return;
    for (std::size_t place = 0; place < pairing.ofFirst.size(); ++place) {
        if (pairing.ofFirst[place] != kNone)
            continue;
        if (auto const found = places.find(first(place)); found != places.end() && !found->second.empty()) {
            pairing.add(place, found->second.back());
            found->second.pop_back();
        }
    }
}

// Which of the first side stand elsewhere among their partners: as few as can be.
std::vector<bool> outOfOrder(Pairing const& pairing) {
    std::vector<bool> isOut(pairing.ofFirst.size(), false);
    std::vector<std::size_t> paired;
    for (std::size_t place = 0; place < pairing.ofFirst.size(); ++place)
        if (pairing.ofFirst[place] != kNone)
            paired.push_back(place);
    auto const partner = [&](std::size_t place) {
        return pairing.ofFirst[place];
    };
    if (std::is_sorted(paired.begin(), paired.end(),
                       [&](std::size_t left, std::size_t right) { return partner(left) < partner(right); }))
        return isOut;
    // The longest run of partners in order stays. `ends` has the best last element of a run of each length.
    std::vector<std::size_t> ends;
    std::vector<std::size_t> before(pairing.ofFirst.size(), kNone);
    for (std::size_t const place : paired) {
        auto const end = std::lower_bound(ends.begin(), ends.end(), partner(place),
                                          [&](std::size_t left, std::size_t right) { return partner(left) < right; });
        before[place] = end == ends.begin() ? kNone : *(end - 1);
        if (end == ends.end())
            ends.push_back(place);
        else
            *end = place;
        isOut[place] = true;
    }
    for (std::size_t place = ends.back(); place != kNone; place = before[place])
        isOut[place] = false;
    return isOut;
}

template <typename Name>
std::string placeText(std::size_t place, Name const& name) {
    return place == 0 ? "first" : "behind " + name(place - 1);
}

class Comparison {
public:
    Comparison(Snapshot const& first, Snapshot const& second)
        : m_first(first.nodes), m_second(second.nodes), m_nodes(first.nodes.size(), second.nodes.size()),
          m_isMoved(first.nodes.size(), false), m_places(first.nodes.size()) {}

    std::vector<Difference> run() {
        if (m_first.empty() || m_second.empty())
            return {};
        m_nodes.add(0, 0);
        for (std::size_t index = 0; index < m_first.size(); ++index)
            if (m_nodes.ofFirst[index] != kNone)
                pairChildren(index);
        pairMoved();
        tellAll();
        return std::move(m_differences);
    }

private:
    using Change = Difference::Change;
    using Subject = Difference::Subject;

    void pairChildren(std::size_t index) {
        std::vector<std::size_t> const& mine = m_first[index].children;
        std::vector<std::size_t> const& others = m_second[m_nodes.ofFirst[index]].children;
        if (mine.empty() || others.empty())
            return;
        Pairing pairing(mine.size(), others.size());
        for (std::size_t place = 0; place < mine.size(); ++place)
            if (std::size_t const partner = m_nodes.ofFirst[mine[place]]; partner != kNone)
                pairing.ofFirst[place] = partner; // moved in or out, and met before
        for (std::size_t place = 0; place < others.size(); ++place)
            pairing.ofSecond[place] = m_nodes.ofSecond[others[place]];
        auto const keyOf = [](std::vector<NodeFacts> const& nodes, std::vector<std::size_t> const& children) {
            return [&](std::size_t place) {
                return std::string_view(nodes[children[place]].key);
            };
        };
        pairByKey(pairing, keyOf(m_first, mine), keyOf(m_second, others));
        // A node without an identifier may have got another caption.
        auto const kindOf = [](std::vector<NodeFacts> const& nodes, std::vector<std::size_t> const& children) {
            return [&](std::size_t place) {
                NodeFacts const& node = nodes[children[place]];
                return node.id.empty() ? std::to_string(node.code) : std::string();
            };
        };
        pairInOrder(pairing, kindOf(m_first, mine), kindOf(m_second, others));
        for (std::size_t place = 0; place < mine.size(); ++place)
            if (pairing.ofFirst[place] != kNone && m_nodes.ofFirst[mine[place]] == kNone)
                m_nodes.add(mine[place], others[pairing.ofFirst[place]]);
        notePlaces(mine, others);
    }

    // Which children of a node have another place among their siblings.
    void notePlaces(std::vector<std::size_t> const& mine, std::vector<std::size_t> const& others) {
        std::unordered_map<std::size_t, std::size_t> placeOf;
        bool isSame = mine.size() == others.size();
        for (std::size_t place = 0; isSame && place < mine.size(); ++place)
            isSame = m_nodes.ofFirst[mine[place]] == others[place];
        if (isSame)
            return;
        for (std::size_t place = 0; place < others.size(); ++place)
            placeOf.emplace(others[place], place);
        Pairing pairing(mine.size(), others.size());
        for (std::size_t place = 0; place < mine.size(); ++place)
            if (auto const found = placeOf.find(m_nodes.ofFirst[mine[place]]); found != placeOf.end())
                pairing.add(place, found->second);
        std::vector<bool> const isOut = outOfOrder(pairing);
        for (std::size_t place = 0; place < mine.size(); ++place)
            if (isOut[place])
                m_places[mine[place]] = {
                    placeText(place, [&](std::size_t before) { return m_first[mine[before]].name; }),
                    placeText(pairing.ofFirst[place],
                              [&](std::size_t before) { return m_second[others[before]].name; })};
    }

    void pairMoved() {
        struct Found {
            std::size_t first = kNone;
            std::size_t second = kNone;
            bool isSingle = true;
        };
        auto const keyOf = [](NodeFacts const& node) {
            return std::to_string(node.code) + '\x1f' + node.id;
        };
        std::unordered_map<std::string, Found> gone;
        std::vector<std::string> order;
        for (std::size_t index = 0; index < m_first.size(); ++index) {
            if (m_nodes.ofFirst[index] != kNone || m_first[index].id.empty())
                continue;
            std::string key = keyOf(m_first[index]);
            auto const [entry, isNew] = gone.try_emplace(key);
            if (isNew) {
                entry->second.first = index;
                order.push_back(std::move(key));
            } else {
                entry->second.isSingle = false;
            }
        }
        if (gone.empty())
            return;
        for (std::size_t index = 0; index < m_second.size(); ++index) {
            if (m_nodes.ofSecond[index] != kNone)
                continue;
            auto const entry = gone.find(keyOf(m_second[index]));
            if (entry == gone.end())
                continue;
            entry->second.isSingle = entry->second.isSingle && entry->second.second == kNone;
            entry->second.second = index;
        }
        for (std::string const& key : order) {
            Found const& found = gone.find(key)->second;
            // It may have come along with what it stands in.
            if (!found.isSingle || found.second == kNone || m_nodes.ofFirst[found.first] != kNone ||
                m_nodes.ofSecond[found.second] != kNone)
                continue;
            m_nodes.add(found.first, found.second);
            m_isMoved[found.first] = true;
            pairBelow(found.first);
        }
    }

    void pairBelow(std::size_t index) {
        std::vector<std::size_t> open{index};
        while (!open.empty()) {
            std::size_t const at = open.back();
            open.pop_back();
            pairChildren(at);
            for (std::size_t const child : m_first[at].children)
                if (std::size_t const partner = m_nodes.ofFirst[child];
                    partner != kNone && m_second[partner].parent == m_nodes.ofFirst[at])
                    open.push_back(child);
        }
    }

    // Each node of the first snapshot, and behind all that is in it what came to it.
    void tellAll() {
        std::vector<std::size_t> open;
        for (std::size_t index = 0; index < m_first.size(); ++index) {
            while (!open.empty() && open.back() != m_first[index].parent)
                leave(open);
            tell(index);
            open.push_back(index);
        }
        while (!open.empty())
            leave(open);
    }

    void leave(std::vector<std::size_t>& open) {
        std::size_t const index = open.back();
        open.pop_back();
        if (std::size_t const partner = m_nodes.ofFirst[index]; partner != kNone)
            for (std::size_t const child : m_second[partner].children)
                if (m_nodes.ofSecond[child] == kNone)
                    tellAdded(child);
    }

    void tell(std::size_t index) {
        NodeFacts const& node = m_first[index];
        if (m_nodes.ofFirst[index] == kNone) {
            tellWhole(node, Change::Removed);
            return;
        }
        NodeFacts const& other = m_second[m_nodes.ofFirst[index]];
        Difference found;
        found.path = node.path;
        found.node = &node;
        if (m_isMoved[index]) {
            Difference moved = found;
            moved.change = Change::Moved;
            moved.before = node.path;
            moved.after = other.path;
            m_differences.push_back(std::move(moved));
        }
        if (node.code != other.code)
            tellChange(found, "kind", Form::Phrase, kindText(node.code, other.code), kindText(other.code, node.code));
        auto const [before, after] = m_places[index];
        if (!before.empty())
            tellChange(found, "place", Form::Phrase, before, after);
        compareValues(found, nodeAttributes(), node.attributes, other.attributes, node.isProcess != other.isProcess);
        compareVariables(node, other);
        compareConnectors(node, other);
    }

    // Two codes may have one name.
    static std::string kindText(int code, int other) {
        std::string const name = kindName(code);
        return name == kindName(other) ? fmt::format("{} ({})", name, code) : name;
    }

    void tellChange(Difference const& about, std::string_view attribute, Form form, std::string before,
                    std::string after) {
        Difference found = about;
        found.attribute = attribute;
        found.form = form;
        found.before = std::move(before);
        found.after = std::move(after);
        m_differences.push_back(std::move(found));
    }

    void compareValues(Difference const& about, std::span<AttributeInfo const> infos,
                       std::vector<Attribute> const& first, std::vector<Attribute> const& second, bool commonOnly) {
        auto left = first.begin();
        auto right = second.begin();
        while (left != first.end() || right != second.end()) {
            bool const takesLeft = right == second.end() || (left != first.end() && left->number <= right->number);
            bool const takesRight = left == first.end() || (right != second.end() && right->number <= left->number);
            AttributeInfo const& info = infos[takesLeft ? left->number : right->number];
            std::string const& before = takesLeft ? left->value : kEmpty;
            std::string const& after = takesRight ? right->value : kEmpty;
            if (before != after && (info.isCommon || !commonOnly))
                tellChange(about, info.name, info.form, before, after);
            left += takesLeft ? 1 : 0;
            right += takesRight ? 1 : 0;
        }
    }

    void compareVariables(NodeFacts const& node, NodeFacts const& other) {
        std::vector<VariableFacts> const& mine = node.variables;
        std::vector<VariableFacts> const& others = other.variables;
        Pairing pairing(mine.size(), others.size());
        pairByKey(
            pairing, [&](std::size_t place) { return std::string_view(mine[place].key); },
            [&](std::size_t place) { return std::string_view(others[place].key); });
        std::vector<bool> const isOut = outOfOrder(pairing);
        for (std::size_t place = 0; place < mine.size(); ++place) {
            VariableFacts const& variable = mine[place];
            std::size_t const partner = pairing.ofFirst[place];
            if (partner == kNone) {
                tellVariable(node, variable, Change::Removed);
                continue;
            }
            Difference const about = aboutVariable(node, variable);
            if (isOut[place])
                tellChange(about, "place", Form::Phrase,
                           placeText(place, [&](std::size_t before) { return mine[before].name; }),
                           placeText(partner, [&](std::size_t before) { return others[before].name; }));
            compareValues(about, variableAttributes(), variable.attributes, others[partner].attributes, false);
        }
        for (std::size_t place = 0; place < others.size(); ++place)
            if (pairing.ofSecond[place] == kNone)
                tellVariable(other, others[place], Change::Added);
    }

    static Difference aboutVariable(NodeFacts const& node, VariableFacts const& variable) {
        Difference about;
        about.subject = Subject::Variable;
        about.path = node.path + "." + variable.name;
        about.node = &node;
        about.variable = &variable;
        return about;
    }

    void tellVariable(NodeFacts const& node, VariableFacts const& variable, Change change) {
        Difference found = aboutVariable(node, variable);
        found.change = change;
        m_differences.push_back(std::move(found));
    }

    void compareConnectors(NodeFacts const& node, NodeFacts const& other) {
        std::vector<ConnectorFacts> const& mine = node.connectors;
        std::vector<ConnectorFacts> const& others = other.connectors;
        Pairing pairing(mine.size(), others.size());
        auto const with = [](std::vector<ConnectorFacts> const& connectors, auto key) {
            return [&connectors, key](std::size_t place) {
                return key(connectors[place]);
            };
        };
        auto const blocks = [](ConnectorFacts const& connector) {
            return connector.start + '\x1f' + connector.end;
        };
        auto const all = [&](ConnectorFacts const& connector) {
            return fmt::format("{}\x1f{}\x1f{}", blocks(connector), connector.startGrip, connector.endGrip);
        };
        pairInOrder(pairing, with(mine, all), with(others, all));
        pairInOrder(pairing, with(mine, blocks), with(others, blocks));
        std::vector<bool> const isOut = outOfOrder(pairing);
        auto const nameOf = [](std::vector<ConnectorFacts> const& connectors) {
            return [&](std::size_t place) {
                return connectors[place].start + " -> " + connectors[place].end;
            };
        };
        for (std::size_t place = 0; place < mine.size(); ++place) {
            ConnectorFacts const& connector = mine[place];
            std::size_t const partner = pairing.ofFirst[place];
            if (partner == kNone) {
                tellConnector(node, connector, Change::Removed);
                continue;
            }
            ConnectorFacts const& found = others[partner];
            Difference const about = aboutConnector(node, connector);
            if (isOut[place])
                tellChange(about, "place", Form::Phrase, placeText(place, nameOf(mine)),
                           placeText(partner, nameOf(others)));
            if (connector.startGrip != found.startGrip)
                tellChange(about, "start", Form::Grip, std::to_string(connector.startGrip),
                           std::to_string(found.startGrip));
            if (connector.endGrip != found.endGrip)
                tellChange(about, "end", Form::Grip, std::to_string(connector.endGrip), std::to_string(found.endGrip));
            if (connector.route != found.route)
                tellChange(about, "route", Form::Text, connector.route, found.route);
        }
        for (std::size_t place = 0; place < others.size(); ++place)
            if (pairing.ofSecond[place] == kNone)
                tellConnector(other, others[place], Change::Added);
    }

    static Difference aboutConnector(NodeFacts const& node, ConnectorFacts const& connector) {
        Difference about;
        about.subject = Subject::Connector;
        std::string const above = node.path.empty() ? std::string() : node.path + ".";
        about.path = above + connector.start + " -> " + above + connector.end;
        about.node = &node;
        about.connector = &connector;
        return about;
    }

    void tellConnector(NodeFacts const& node, ConnectorFacts const& connector, Change change) {
        Difference found = aboutConnector(node, connector);
        found.change = change;
        m_differences.push_back(std::move(found));
    }

    // The node with its variables and connectors, without its children.
    void tellWhole(NodeFacts const& node, Change change) {
        Difference found;
        found.change = change;
        found.path = node.path;
        found.node = &node;
        m_differences.push_back(std::move(found));
        for (VariableFacts const& variable : node.variables)
            tellVariable(node, variable, change);
        for (ConnectorFacts const& connector : node.connectors)
            tellConnector(node, connector, change);
    }

    void tellAdded(std::size_t index) {
        std::vector<std::size_t> open{index};
        while (!open.empty()) {
            std::size_t const at = open.back();
            open.pop_back();
            tellWhole(m_second[at], Change::Added);
            std::vector<std::size_t> const& children = m_second[at].children;
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                if (m_nodes.ofSecond[*child] == kNone)
                    open.push_back(*child);
        }
    }

    inline static std::string const kEmpty;

    std::vector<NodeFacts> const& m_first;
    std::vector<NodeFacts> const& m_second;
    Pairing m_nodes;
    std::vector<bool> m_isMoved;
    std::vector<std::pair<std::string, std::string>> m_places; // before and after; empty for the same
    std::vector<Difference> m_differences;
};

} // namespace

std::vector<Difference> compare(Snapshot const& first, Snapshot const& second) {
    return Comparison(first, second).run();
}

} // namespace flowmere::host
