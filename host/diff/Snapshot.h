#pragma once

// What a process document says, as plain values: all that a comparison looks at. A snapshot stays when its document is
// closed, so that two documents can be compared although one is open at a time.

#include "flowmere/Flowmere.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

// How a value is written, and what an empty one stands for.
enum class Form : std::uint8_t {
    Text,
    Number, // empty for 0
    Flag,   // "yes", or empty for no
    List,   // texts with kListMark between them
    Grip,   // a number that stands for a place on a block
    Phrase, // a text of the program's own
};
inline constexpr char kListMark = '\x1f';

struct AttributeInfo {
    std::string_view name; // stands in outputs that programs read: never change one
    Form form;
    bool isCommon = false; // known of processes and of all other nodes alike
};

// One value of a node or a variable that is not empty.
struct Attribute {
    std::uint8_t number; // place in the table of nodeAttributes or variableAttributes
    std::string value;
};

struct VariableFacts {
    std::string key;  // tells it from the others of its list
    std::string name; // the key as it is shown
    std::string type;
    std::vector<Attribute> attributes; // in the order of the table
};

struct ConnectorFacts {
    std::string start; // identifiers of the two blocks
    std::string end;
    int startGrip = 0;
    int endGrip = 0;
    std::string route; // "X,Y X,Y", in inches from the lower left corner of the page
};

struct NodeFacts {
    std::size_t parent = 0; // index; that of the root is of no use
    int code = 0;
    bool isProcess = false; // has the attributes of a process in place of those of a block
    std::string key;        // tells it from its siblings
    std::string id;         // empty for nodes that have none
    std::string name;       // the last part of the path
    std::string path;       // empty for the root
    std::vector<Attribute> attributes;
    std::vector<VariableFacts> variables;
    std::vector<ConnectorFacts> connectors;
    std::vector<std::size_t> children; // in the order of the file
};

// The root first, each container before what is in it.
//
// Of several children with one identifier the second and the following have "#2", "#3" behind it in their paths. A node
// without an identifier has its caption, in quotes, in its place.
struct Snapshot {
    std::vector<NodeFacts> nodes;
};

// What is known of a node besides its identifier, of which only part is in each snapshot; and the same of a variable.
std::span<AttributeInfo const> nodeAttributes();
std::span<AttributeInfo const> variableAttributes();

// Of the tree below the root, with everything that a document keeps of it. Where the reading and writing of a document
// does not keep the form of a value, the snapshot has the form that is written.
Snapshot snapshotOf(IFCNode& root);

} // namespace flowmere::host
