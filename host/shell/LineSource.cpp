#include "host/shell/LineSource.h"

#include "host/basics/Command.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace flowmere::host::shell {

InputLines::InputLines() {
    m_file = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    int const none = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (none >= 0 && m_file >= 0)
        ::dup2(none, STDIN_FILENO);
    if (none > STDIN_FILENO)
        ::close(none);
}

InputLines::~InputLines() {
    if (m_file < 0)
        return;
    ::dup2(m_file, STDIN_FILENO);
    ::close(m_file);
}

// False at the end.
bool InputLines::fill() {
    constexpr std::size_t kPiece = 65536;
    m_buffer.resize(kPiece);
    m_at = 0;
    for (;;) {
        ssize_t const count = ::read(m_file, m_buffer.data(), m_buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        m_buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        if (count < 0 && errno != EBADF)
            throw Failure("standard input", "", std::string("cannot be read: ") + std::strerror(errno));
        return count > 0;
    }
}

std::optional<SourceLine> InputLines::next() {
    SourceLine line;
    bool isAny = false;
    for (;;) {
        if (m_at == m_buffer.size() && !fill()) {
            if (!isAny)
                return std::nullopt;
            break;
        }
        isAny = true;
        std::size_t const end = m_buffer.find('\n', m_at);
        bool const isWhole = end != std::string::npos;
        std::string_view const piece =
            std::string_view(m_buffer).substr(m_at, isWhole ? end - m_at : std::string::npos);
        std::size_t const room = kLongest - line.text.size();
        line.isTooLong = line.isTooLong || piece.size() > room;
        line.text += piece.substr(0, room);
        m_at += piece.size() + (isWhole ? 1 : 0);
        if (isWhole)
            break;
    }
    if (!line.isTooLong && line.text.ends_with('\r'))
        line.text.pop_back();
    return line;
}

} // namespace flowmere::host::shell
