#pragma once

// Where a script of the shell's lines comes from.

#include <cstddef>
#include <optional>
#include <string>

namespace flowmere::host::shell {

struct SourceLine {
    std::string text;       // without its end
    bool isTooLong = false; // the text is its beginning
};

// The lines of standard input. While this lives the scripts of blocks find an empty standard input: what stands there
// are lines of the shell.
class InputLines {
public:
    // A line may be so long; the rest of a longer one is passed over.
    static constexpr std::size_t kLongest = 1024 * 1024;

    InputLines();
    ~InputLines();
    InputLines(InputLines const&) = delete;
    InputLines& operator=(InputLines const&) = delete;

    // None at the end. Throws Failure when it cannot be read.
    std::optional<SourceLine> next();

private:
    bool fill();

    int m_file = -1;
    std::string m_buffer;
    std::size_t m_at = 0;
};

} // namespace flowmere::host::shell
