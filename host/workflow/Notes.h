#pragma once

// What a conversion between documents and workflow folders tells of itself.

#include "flowmere/Flowmere.h"

#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

struct Note {
    enum class Kind {
        Changed, // it is carried in another form
        Lost,    // it is not carried
    };
    Kind kind = Kind::Lost;
    std::string place; // path of the node or variable; empty for the process
    std::string text;  // what, and why
};

// What stands in the description of a state that an export adds, so that an import knows it again and leaves it out.
inline constexpr wchar_t kAddedStart[] = L"Added by flowmere export: the flow of this level starts here";
inline constexpr wchar_t kAddedEnd[] = L"Added by flowmere export: the flow of this level ends here";

// Whether this is the action by which a folder hands over the script of a block, of which the module path is all.
bool isScriptEvent(CFCActionData& action);

} // namespace flowmere::host
