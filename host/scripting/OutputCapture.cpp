#include "host/scripting/OutputCapture.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace flowmere::host {

namespace {

// What the program asks of its keeper by one byte. The answer is a row of pieces, each of one byte for its kind, eight
// for its size, and its text; the piece that ends it has neither.
constexpr char kSettle = 's';
constexpr char kOrder = 'r'; // the same, and a line that is open stays so
constexpr char kTake = 't';
constexpr char kLabel = 'l'; // with the size of the label and the label behind it
constexpr char kOut = 'o';
constexpr char kError = 'e';
constexpr char kFault = 'f';
constexpr char kEnd = '.';

// Far from the numbers that scripts may take for granted.
constexpr int kFirstFile = 10;

void closeFile(int& file) {
    if (file >= 0)
        ::close(file);
    file = -1;
}

// 0, or the error that kept it from being written.
int writeWhole(int file, std::string_view text) {
    while (!text.empty()) {
        ssize_t const count = ::write(file, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            pollfd wait{file, POLLOUT, 0};
            ::poll(&wait, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

bool readWhole(int file, char* bytes, std::size_t size) {
    while (size > 0) {
        ssize_t const count = ::read(file, bytes, size);
        if (count == 0 || (count < 0 && errno != EINTR))
            return false;
        if (count > 0) {
            bytes += count;
            size -= static_cast<std::size_t>(count);
        }
    }
    return true;
}

void append(std::vector<PrintedText>& printed, bool isError, std::string_view text) {
    if (printed.empty() || printed.back().isError != isError)
        printed.push_back({isError, {}});
    printed.back().text += text;
}

// The process that reads the pipes.
class Keeper {
public:
    Keeper(int out, int error, int control, int const (&targets)[2])
        : m_streams{{out, targets[0], false, 0}, {error, targets[1], true, 0}}, m_control(control) {}

    void work() {
        while (m_control >= 0 || m_streams[0].source >= 0 || m_streams[1].source >= 0) {
            pollfd files[3] = {
                {m_streams[0].source, POLLIN, 0}, {m_streams[1].source, POLLIN, 0}, {m_control, POLLIN, 0}};
            if (::poll(files, 3, -1) < 0)
                continue;
            for (int index = 0; index < 2; ++index)
                if (files[index].revents != 0)
                    readSome(m_streams[index]);
            if (files[2].revents != 0)
                answer();
        }
    }

private:
    struct Stream {
        int source;
        int target;
        bool isError;
        int fault;
    };

    // The number of bytes; 0 when nothing more comes.
    std::size_t readSome(Stream& stream) {
        char buffer[65536];
        ssize_t const count = ::read(stream.source, buffer, sizeof buffer);
        if (count <= 0) {
            closeFile(stream.source);
            return 0;
        }
        std::string_view const text(buffer, static_cast<std::size_t>(count));
        // With the program gone nobody asks any more.
        if (m_control >= 0)
            append(m_kept, stream.isError, text);
        if (stream.target >= 0 && stream.fault == 0)
            pass(stream, text);
        return text.size();
    }

    void pass(Stream& stream, std::string_view text) {
        if (m_label.empty()) {
            write(stream, text);
            return;
        }
        if (m_openLine != &stream)
            finishLine();
        std::string lines;
        while (!text.empty()) {
            if (m_openLine == nullptr)
                lines += "  " + m_label + (stream.isError ? " ! " : " | ");
            std::size_t const size = std::min(text.find('\n'), text.size() - 1) + 1;
            lines += text.substr(0, size);
            m_openLine = lines.back() == '\n' ? nullptr : &stream;
            text.remove_prefix(size);
        }
        write(stream, lines);
    }

    void finishLine() {
        if (Stream* const stream = std::exchange(m_openLine, nullptr))
            write(*stream, "\n");
    }

    void write(Stream& stream, std::string_view text) {
        if (int const fault = stream.fault == 0 ? writeWhole(stream.target, text) : 0; fault != 0) {
            stream.fault = fault;
            m_faults += (m_faults.empty() ? "standard " : ", standard ") +
                        std::string(stream.isError ? "error" : "output") +
                        " cannot be written: " + std::strerror(fault);
        }
    }

    // As much as is in the pipe by now: who writes without end does not keep the program waiting.
    void readAll(Stream& stream) {
        int waiting = 0;
        if (stream.source < 0 || ::ioctl(stream.source, FIONREAD, &waiting) != 0)
            return;
        for (auto left = static_cast<std::size_t>(waiting); left > 0;) {
            std::size_t const count = readSome(stream);
            if (count == 0)
                return;
            left -= std::min(left, count);
        }
    }

    void answer() {
        char request = 0;
        if (!readWhole(m_control, &request, 1)) {
            closeFile(m_control);
            return;
        }
        readAll(m_streams[0]);
        readAll(m_streams[1]);
        if (request != kOrder)
            finishLine();
        if (request == kLabel)
            readLabel();
        if (request == kTake) {
            for (PrintedText const& piece : m_kept)
                send(piece.isError ? kError : kOut, piece.text);
            m_kept.clear();
            m_kept.shrink_to_fit();
        }
        if (!m_faults.empty())
            send(kFault, std::exchange(m_faults, {}));
        writeControl(std::string_view(&kEnd, 1));
    }

    void readLabel() {
        std::uint64_t size = 0;
        m_label.clear();
        if (!readWhole(m_control, reinterpret_cast<char*>(&size), sizeof size))
            return;
        m_label.resize(size);
        if (!readWhole(m_control, m_label.data(), m_label.size()))
            m_label.clear();
    }

    void send(char kind, std::string_view text) {
        std::uint64_t const size = text.size();
        char head[1 + sizeof size];
        head[0] = kind;
        std::memcpy(head + 1, &size, sizeof size);
        writeControl(std::string_view(head, sizeof head));
        writeControl(text);
    }

    void writeControl(std::string_view text) {
        if (m_control >= 0 && writeWhole(m_control, text) != 0)
            closeFile(m_control);
    }

    Stream m_streams[2];
    int m_control;
    std::vector<PrintedText> m_kept;
    std::string m_faults;
    std::string m_label;
    Stream* m_openLine = nullptr; // has been given a label, and no end yet
};

// The end of the program's signals is not the end of what was printed.
void blockSignals() {
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
}

// All files of the process but these, which must be in rising order: a file that stays open here would stay locked.
void closeOthers(std::vector<int> kept) {
    std::sort(kept.begin(), kept.end());
    unsigned int first = 0;
    for (int const file : kept) {
        if (file < 0)
            continue;
        if (static_cast<unsigned int>(file) > first)
            ::close_range(first, static_cast<unsigned int>(file) - 1, 0);
        first = static_cast<unsigned int>(file) + 1;
    }
    ::close_range(first, ~0U, 0);
}

} // namespace

OutputCapture::OutputCapture(bool allToError) : m_owner(::getpid()) {
    int out[2] = {-1, -1};
    int error[2] = {-1, -1};
    int control[2] = {-1, -1};
    int fault = 0;
    auto const keep = [&](int& kept, int file) {
        kept = ::fcntl(file, F_DUPFD_CLOEXEC, kFirstFile);
        // A file that is closed stays so: there is nowhere to write on to.
        if (kept < 0 && errno != EBADF)
            fault = errno;
    };
    // Before the pipes, which take the number of a file that is closed.
    keep(m_originals[0], STDOUT_FILENO);
    keep(m_originals[1], STDERR_FILENO);
    m_targets[0] = m_originals[allToError ? 1 : 0];
    m_targets[1] = m_originals[1];
    if (fault == 0 && (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(error, O_CLOEXEC) != 0 ||
                       ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, control) != 0))
        fault = errno;
    if (fault == 0) {
        keep(m_control, control[1]);
        keep(m_pipes[0], out[1]);
        keep(m_pipes[1], error[1]);
    }
    for (int* const file : {&out[1], &error[1], &control[1]})
        closeFile(*file);
    if (fault == 0)
        fault = start(out[0], error[0], control[0]);
    for (int* const file : {&out[0], &error[0], &control[0]})
        closeFile(*file);
    if (fault != 0) {
        for (int* const file : {&m_pipes[0], &m_pipes[1], &m_originals[0], &m_originals[1], &m_control})
            closeFile(*file);
        throw Failure("", "", std::string("the output of scripts cannot be kept: ") + std::strerror(fault));
    }
    // What C code prints comes in the order of all the rest.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    ::dup2(m_pipes[0], STDOUT_FILENO);
    ::dup2(m_pipes[1], STDERR_FILENO);
    setOutputFiles(m_originals[0], m_originals[1]);
}

// Gives 0 when the keeper runs, or else why it does not. It is no child of this process: a script that waits for all of
// its children would wait for it.
int OutputCapture::start(int out, int error, int control) const {
    std::fflush(stdout);
    pid_t const child = ::fork();
    if (child < 0)
        return errno;
    if (child == 0) {
        pid_t const keeper = ::fork();
        if (keeper != 0)
            ::_exit(keeper < 0 ? errno : 0);
        blockSignals();
        closeOthers({out, error, control, m_targets[0], m_targets[1]});
        Keeper(out, error, control, m_targets).work();
        ::_exit(0);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : EAGAIN;
}

OutputCapture::~OutputCapture() {
    if (::getpid() == m_owner)
        settle();
    giveBack();
}

void OutputCapture::giveBack() {
    if (m_pipes[0] >= 0 && m_pipes[1] >= 0) {
        std::fflush(stdout);
        for (int index = 0; index < 2; ++index) {
            if (m_originals[index] >= 0)
                ::dup2(m_originals[index], index == 0 ? STDOUT_FILENO : STDERR_FILENO);
            else
                ::close(index == 0 ? STDOUT_FILENO : STDERR_FILENO);
        }
        setOutputFiles(STDOUT_FILENO, STDERR_FILENO);
    }
    for (int* const file : {&m_pipes[0], &m_pipes[1], &m_originals[0], &m_originals[1], &m_control})
        closeFile(*file);
    m_targets[0] = -1;
    m_targets[1] = -1;
}

void OutputCapture::ask(std::string_view request, std::vector<PrintedText>* printed) {
    // Before the lock, which nobody would ever release in a process that was forked off while a thread held it.
    if (::getpid() != m_owner)
        return;
    std::lock_guard const lock(m_mutex);
    if (m_control < 0)
        return;
    std::fflush(stdout);
    if (sendRequest(request) && readReply(printed))
        return;
    m_fault = "the process that keeps the output has gone";
    giveBack();
}

bool OutputCapture::sendRequest(std::string_view request) const {
    while (!request.empty()) {
        ssize_t const count = ::send(m_control, request.data(), request.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        request.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool OutputCapture::readReply(std::vector<PrintedText>* printed) {
    for (;;) {
        char kind = 0;
        if (!readWhole(m_control, &kind, 1))
            return false;
        if (kind == kEnd)
            return true;
        std::uint64_t size = 0;
        if (!readWhole(m_control, reinterpret_cast<char*>(&size), sizeof size))
            return false;
        std::string text(size, '\0');
        if (!readWhole(m_control, text.data(), text.size()))
            return false;
        if (kind == kFault)
            m_fault += (m_fault.empty() ? "" : ", ") + text;
        else if (printed != nullptr)
            append(*printed, kind == kError, text);
    }
}

void OutputCapture::settle() {
    ask(std::string_view(&kSettle, 1), nullptr);
}

void OutputCapture::order() {
    ask(std::string_view(&kOrder, 1), nullptr);
}

void OutputCapture::label(std::string const& label) {
    std::uint64_t const size = label.size();
    std::string request(1, kLabel);
    request.append(reinterpret_cast<char const*>(&size), sizeof size);
    ask(request + label, nullptr);
}

std::vector<PrintedText> OutputCapture::take() {
    std::vector<PrintedText> printed;
    ask(std::string_view(&kTake, 1), &printed);
    return printed;
}

std::string OutputCapture::takeFault() {
    std::lock_guard const lock(m_mutex);
    return std::exchange(m_fault, {});
}

void OutputCapture::pause() {
    settle();
    std::lock_guard const lock(m_mutex);
    for (int index = 0; index < 2; ++index)
        if (m_targets[index] >= 0)
            ::dup2(m_targets[index], index == 0 ? STDOUT_FILENO : STDERR_FILENO);
}

void OutputCapture::resume() {
    std::lock_guard const lock(m_mutex);
    std::fflush(stdout);
    for (int index = 0; index < 2; ++index)
        if (m_pipes[index] >= 0)
            ::dup2(m_pipes[index], index == 0 ? STDOUT_FILENO : STDERR_FILENO);
}

} // namespace flowmere::host
