#include "host/workflow/Report.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace flowmere::host {

namespace {

std::size_t countOf(std::vector<Note> const& notes, Note::Kind kind) {
    return static_cast<std::size_t>(
        std::count_if(notes.begin(), notes.end(), [&](Note const& note) { return note.kind == kind; }));
}

} // namespace

std::string textOf(std::vector<Note> const& notes) {
    std::string out;
    for (Note const& note : notes)
        out += fmt::format("{} {}{}\n", note.kind == Note::Kind::Changed ? '~' : '-',
                           note.place.empty() ? "" : oneLine(note.place) + ": ", oneLine(note.text));
    return out;
}

std::string summaryOf(std::vector<Note> const& notes) {
    std::size_t const changed = countOf(notes, Note::Kind::Changed);
    std::size_t const lost = countOf(notes, Note::Kind::Lost);
    if (changed == 0 && lost == 0)
        return "nothing changed or lost";
    return fmt::format("{} changed, {} lost", changed, lost);
}

void addNotes(Json& out, std::vector<Note> const& notes) {
    out["changed"] = Json::array();
    out["lost"] = Json::array();
    for (Note const& note : notes)
        out[note.kind == Note::Kind::Changed ? "changed" : "lost"].push_back(
            {{"place", note.place}, {"text", note.text}});
}

bool hasLosses(std::vector<Note> const& notes) {
    return countOf(notes, Note::Kind::Lost) > 0;
}

} // namespace flowmere::host
