#pragma once

// Names that workflow folders take: each becomes a folder and a part of paths.

#include "flowmere/Flowmere.h"

#include <map>
#include <set>

namespace flowmere::host {

// The text with "_" for points and separators, which divide paths, and blanks for control characters, cut off where it
// is too long for a file's name.
TuString safeName(TuString const& text);

// The names of one level, which are one and the same for the readers whatever their case.
class LevelNames {
public:
    // Takes the name as it is; false when there is such a one already.
    bool take(TuString const& name);
    // Takes the name, with a number behind it where there is such a one already: "Weld", "Weld_2".
    TuString takeUnique(TuString const& wanted);

private:
    struct Less {
        bool operator()(TuString const& left, TuString const& right) const { return left.CompareNoCase(right) < 0; }
    };
    std::set<TuString, Less> m_names;
    std::map<TuString, int, Less> m_numbers; // the number to be tried next behind each name that was wanted again
};

} // namespace flowmere::host
