#pragma once

// Texts on a page for a browser, which is also well-formed XML.

#include <cstddef>
#include <string>
#include <string_view>

namespace flowmere::host {

// The text as content of an element or of an attribute in double quotes. Line ends and tabs stay; other control
// characters, those that turn the direction of writing, what XML does not take, and bytes that are no UTF-8 become
// visible. With `isMarked` they stand in an element of class "odd", which an attribute cannot hold.
std::string markup(std::string_view text, bool isMarked = true);

// Number of lines of a text; a last one without an end counts.
std::size_t lineCount(std::string_view text);

// The text up to so many bytes, cut between two characters, and "..." where something is missing.
std::string beginningOf(std::string_view text, std::size_t bytes);

} // namespace flowmere::host
