#pragma once

// The line of a terminal, with editing, history and completion.

#include "host/shell/Completion.h"
#include "host/shell/History.h"

#include <csignal>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace flowmere::host::shell {

// Standard input and output are a terminal. While this lives, Ctrl-C ends nothing that does not ask for it. One that
// cannot move its cursor takes lines all the same, without editing.
class LineEditor {
public:
    using Completer = std::function<Completion(std::string_view line)>;

    LineEditor(History& history, Completer completer);
    ~LineEditor();
    LineEditor(LineEditor const&) = delete;
    LineEditor& operator=(LineEditor const&) = delete;

    // The next line, without its end; none at the end of the input. A line that Ctrl-C took away is asked for again.
    std::optional<std::string> read(std::string const& prompt);

private:
    class Editor;

    std::optional<std::string> readPlain(std::string const& prompt);

    History& m_history;
    std::unique_ptr<Editor> m_editor; // null for a terminal without editing
    std::string m_rest;
    struct sigaction m_before {};
};

} // namespace flowmere::host::shell
