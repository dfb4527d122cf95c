#pragma once

// How commands tell what a conversion has changed and lost.

#include "host/basics/Text.h"
#include "host/workflow/Notes.h"

#include <string>
#include <vector>

namespace flowmere::host {

// A line for each note: ~ for what is carried in another form, - for what is not carried.
std::string textOf(std::vector<Note> const& notes);
// "2 changed, 1 lost"; "nothing changed or lost".
std::string summaryOf(std::vector<Note> const& notes);
// Adds the lists "changed" and "lost".
void addNotes(Json& out, std::vector<Note> const& notes);
bool hasLosses(std::vector<Note> const& notes);

} // namespace flowmere::host
