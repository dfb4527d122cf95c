#pragma once

// The words of a line of the shell.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host::shell {

// Words stand apart by blanks and tabs. Quotes keep blanks together, in a part of a word too: between single quotes all
// is taken as it stands, between double quotes \" and \\ stand for " and \. A word that begins with # ends the line.
struct Word {
    std::string text; // without its quotes
    std::size_t begin = 0;
    std::size_t end = 0; // in the line, with the quotes
    bool isQuoted = false;
};

// A line that is still being typed: the words before the cursor, and the one that it stands in, empty for none.
struct OpenLine {
    std::vector<Word> words;
    Word current;
    bool isComment = false;
};

// Throws Failure for a quote that is not closed and for a zero byte.
std::vector<Word> wordsOf(std::string_view line);

// The line up to the cursor.
OpenLine openLineOf(std::string_view line);

// The text as one word of a line.
std::string asWord(std::string const& text);

} // namespace flowmere::host::shell
