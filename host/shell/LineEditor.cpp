#include "host/shell/LineEditor.h"

#include "host/basics/Text.h"

#include <histedit.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace flowmere::host::shell {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

void onInterrupt(int) {
    isInterrupted = 1;
}

// From now on Ctrl-C interrupts what reads from the terminal, and nothing else.
void setInterrupt(struct sigaction* before) {
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGINT, &action, before);
}

// Until there is something to read. False when Ctrl-C came first, be it in the moment before: a mere read would wait
// for what nobody types.
bool waitForInput() {
    sigset_t interrupt;
    sigset_t before;
    ::sigemptyset(&interrupt);
    ::sigaddset(&interrupt, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &interrupt, &before);
    pollfd file{STDIN_FILENO, POLLIN, 0};
    while (isInterrupted == 0 && ::ppoll(&file, 1, nullptr, &before) < 0 && errno == EINTR)
        continue;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return isInterrupted == 0;
}

// One byte of what is typed: 1, 0 at the end, and -1 after Ctrl-C, from which the editor itself would read on.
int readByte(unsigned char& byte) {
    while (waitForInput()) {
        ssize_t const count = ::read(STDIN_FILENO, &byte, 1);
        if (count >= 0)
            return static_cast<int>(count);
        if (errno != EINTR)
            return -1;
    }
    return -1;
}

// One character, of as many bytes as UTF-8 gives it.
int readCharacter(EditLine*, wchar_t* character) {
    constexpr wchar_t kReplacement = L'\xFFFD';
    unsigned char byte = 0;
    if (int const result = readByte(byte); result != 1)
        return result;
    int const more = byte < 0xC2 ? 0 : byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : byte < 0xF5 ? 3 : 0;
    *character = byte < 0x80 ? static_cast<wchar_t>(byte) : kReplacement;
    if (more == 0)
        return 1;
    unsigned code = byte & (0x3FU >> more);
    for (int count = 0; count < more; ++count) {
        if (int const result = readByte(byte); result != 1)
            return result;
        if ((byte & 0xC0U) != 0x80U)
            return 1;
        code = (code << 6U) | (byte & 0x3FU);
    }
    *character = static_cast<wchar_t>(code);
    return 1;
}

// Letters beyond ASCII can be typed in any locale.
void useUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") != 0)
        std::setlocale(LC_CTYPE, "C.UTF-8");
}

bool canMoveCursor() {
    char const* const terminal = std::getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::strcmp(terminal, "dumb") != 0;
}

std::size_t terminalWidth() {
    winsize size{};
    constexpr std::size_t kUsual = 80;
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

// The candidates in columns, as the shells of the system show them.
std::string columns(std::vector<Completion::Candidate> const& candidates) {
    constexpr std::size_t kMost = 200;
    std::size_t const count = std::min(candidates.size(), kMost);
    std::size_t width = 0;
    for (std::size_t index = 0; index < count; ++index)
        width = std::max(width, candidates[index].text.size() + 2);
    std::size_t const perRow = std::max<std::size_t>(1, terminalWidth() / std::max<std::size_t>(width, 1));
    std::size_t const rows = (count + perRow - 1) / perRow;
    std::string text;
    for (std::size_t row = 0; row < rows; ++row) {
        std::string line;
        for (std::size_t index = row; index < count; index += rows) {
            std::string const cell = oneLine(candidates[index].text);
            line += cell + std::string(cell.size() < width ? width - cell.size() : 1, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    if (candidates.size() > count)
        text += "and " + std::to_string(candidates.size() - count) + " more\n";
    return text;
}

} // namespace

class LineEditor::Editor {
public:
    Editor(History const& history, Completer completer)
        : m_completer(std::move(completer)), m_messages(std::fopen("/dev/null", "w")), m_lines(::history_init()) {
        useUtf8();
        // What it has to say of a terminal that it does not know is nothing to the user.
        m_editor = ::el_init("flowmere", stdin, stdout, m_messages != nullptr ? m_messages : stderr);
        if (m_editor == nullptr || m_lines == nullptr)
            return;
        HistEvent event{};
        ::history(m_lines, &event, H_SETSIZE, static_cast<int>(2 * History::kKept));
        ::history(m_lines, &event, H_SETUNIQUE, 1);
        for (std::string const& line : history.lines())
            ::history(m_lines, &event, H_ENTER, line.c_str());
        ::el_set(m_editor, EL_CLIENTDATA, this);
        ::el_set(m_editor, EL_PROMPT, promptOf);
        ::el_set(m_editor, EL_SIGNAL, 0);
        ::el_set(m_editor, EL_GETCFN, readCharacter);
        ::el_set(m_editor, EL_EDITOR, "emacs");
        ::el_set(m_editor, EL_HIST, ::history, m_lines);
        // Of narrow texts the library would keep copies for good.
        ::el_wset(m_editor, EL_ADDFN, L"flowmere-complete", L"Complete what stands before the cursor", onComplete);
        ::el_set(m_editor, EL_BIND, "^I", "flowmere-complete", nullptr);
        ::el_set(m_editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
        ::el_source(m_editor, nullptr);
    }
    ~Editor() {
        if (m_editor != nullptr)
            ::el_end(m_editor);
        if (m_lines != nullptr)
            ::history_end(m_lines);
        if (m_messages != nullptr)
            std::fclose(m_messages);
    }
    Editor(Editor const&) = delete;
    Editor& operator=(Editor const&) = delete;

    bool isThere() const { return m_editor != nullptr && m_lines != nullptr; }

    std::optional<std::string> read(std::string const& prompt) {
        m_prompt = prompt;
        for (;;) {
            isInterrupted = 0;
            std::fflush(stdout);
            ::el_resize(m_editor);
            // Before the prompt shows: who sees it may type keys that the terminal would take for itself.
            ::el_set(m_editor, EL_PREP_TERM, 1);
            int count = 0;
            char const* const line = ::el_gets(m_editor, &count);
            if (isInterrupted != 0) {
                ::el_reset(m_editor);
                printOut("^C\n");
                continue;
            }
            if (line == nullptr || count <= 0) {
                printOut("\n");
                return std::nullopt;
            }
            std::string text(line, static_cast<std::size_t>(count));
            while (text.ends_with('\n') || text.ends_with('\r'))
                text.pop_back();
            return text;
        }
    }

    void add(std::string const& line) {
        HistEvent event{};
        ::history(m_lines, &event, H_ENTER, line.c_str());
    }

private:
    static Editor& of(EditLine* editor) {
        void* self = nullptr;
        ::el_get(editor, EL_CLIENTDATA, &self);
        return *static_cast<Editor*>(self);
    }

    static char* promptOf(EditLine* editor) { return of(editor).m_prompt.data(); }

    static unsigned char onComplete(EditLine* editor, wint_t) { return of(editor).complete(); }

    unsigned char complete() {
        LineInfo const* const info = ::el_line(m_editor);
        std::string const line(info->buffer, info->cursor);
        Completion const completion = m_completer(line);
        if (completion.candidates.empty())
            return CC_ERROR;
        std::string const typed = line.substr(completion.begin);
        std::string start = commonStart(completion);
        bool const isOnly = completion.candidates.size() == 1;
        if (isOnly && !completion.candidates.front().isOpen)
            start += ' ';
        // A common start that is no more than what is typed, with or without quotes, tells nothing.
        if (start.size() > typed.size()) {
            ::el_deletestr(m_editor, charactersOf(typed));
            return ::el_insertstr(m_editor, start.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
        }
        if (isOnly)
            return CC_ERROR;
        printOut("\n" + columns(completion.candidates));
        return CC_REDISPLAY;
    }

    // The editor counts characters, not bytes.
    static int charactersOf(std::string const& text) {
        return static_cast<int>(std::count_if(text.begin(), text.end(), [](char character) {
            return (static_cast<unsigned char>(character) & 0xC0U) != 0x80U;
        }));
    }

    Completer m_completer;
    std::FILE* m_messages;
    ::History* m_lines;
    EditLine* m_editor = nullptr;
    std::string m_prompt;
};

LineEditor::LineEditor(History& history, Completer completer) : m_history(history) {
    setInterrupt(&m_before);
    if (!canMoveCursor())
        return;
    m_editor = std::make_unique<Editor>(history, std::move(completer));
    if (!m_editor->isThere())
        m_editor.reset();
}

LineEditor::~LineEditor() {
    ::sigaction(SIGINT, &m_before, nullptr);
}

std::optional<std::string> LineEditor::read(std::string const& prompt) {
    std::optional<std::string> line = m_editor != nullptr ? m_editor->read(prompt) : readPlain(prompt);
    if (line && line->find_first_not_of(" \t") != std::string::npos) {
        m_history.add(*line);
        if (m_editor != nullptr)
            m_editor->add(*line);
    }
    return line;
}

std::optional<std::string> LineEditor::readPlain(std::string const& prompt) {
    isInterrupted = 0;
    printOut(prompt);
    for (;;) {
        if (auto const end = m_rest.find('\n'); end != std::string::npos) {
            std::string line = m_rest.substr(0, end);
            m_rest.erase(0, end + 1);
            return line;
        }
        if (!waitForInput()) {
            isInterrupted = 0;
            m_rest.clear();
            printOut("\n" + prompt);
            continue;
        }
        char buffer[4096];
        ssize_t const count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count > 0) {
            m_rest.append(buffer, static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            printOut("\n");
            return m_rest.empty() ? std::nullopt : std::optional<std::string>(std::exchange(m_rest, {}));
        }
    }
}

} // namespace flowmere::host::shell
