#pragma once

// Starts the real program on a terminal, types, and looks at what it shows.

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <regex>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace flowmere::test {

struct TerminalSetting {
    std::filesystem::path folder = {};       // where it runs
    std::vector<std::string> variables = {}; // its environment, besides PATH and those of sanitizers
    unsigned short columns = 100;
};

// The program with a terminal for standard input, output and error.
class Terminal {
public:
    Terminal(std::vector<std::string> const& arguments, TerminalSetting const& setting) {
        m_file = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (m_file < 0 || ::grantpt(m_file) != 0 || ::unlockpt(m_file) != 0)
            throw std::runtime_error("no terminal");
        std::string const name = ::ptsname(m_file);
        winsize size{};
        size.ws_row = 40;
        size.ws_col = setting.columns;
        ::ioctl(m_file, TIOCSWINSZ, &size);

        std::vector<std::string> words{FLOWMERE_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<std::string> variables{"PATH=/usr/bin:/bin"};
        for (char const* const sanitizer : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "LLVM_PROFILE_FILE"})
            if (char const* const value = std::getenv(sanitizer))
                variables.push_back(std::string(sanitizer) + "=" + value);
        variables.insert(variables.end(), setting.variables.begin(), setting.variables.end());
        auto const pointers = [](std::vector<std::string>& texts) {
            std::vector<char*> result;
            for (std::string& text : texts)
                result.push_back(text.data());
            result.push_back(nullptr);
            return result;
        };
        std::vector<char*> const argv = pointers(words);
        std::vector<char*> const envp = pointers(variables);
        m_child = ::fork();
        if (m_child == 0) {
            ::setsid();
            int const terminal = ::open(name.c_str(), O_RDWR);
            ::ioctl(terminal, TIOCSCTTY, 0);
            for (int file = 0; file < 3; ++file)
                ::dup2(terminal, file);
            if (terminal > 2)
                ::close(terminal);
            if (!setting.folder.empty() && ::chdir(setting.folder.c_str()) != 0)
                ::_exit(126);
            ::execve(FLOWMERE_PROGRAM, argv.data(), envp.data());
            ::_exit(127);
        }
    }
    ~Terminal() {
        if (m_child > 0) {
            ::kill(m_child, SIGKILL);
            ::waitpid(m_child, nullptr, 0);
        }
        ::close(m_file);
    }
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;

    void type(std::string const& text) {
        m_seen = m_shown.size();
        std::size_t at = 0;
        while (at < text.size()) {
            ssize_t const count = ::write(m_file, text.data() + at, text.size() - at);
            if (count < 0 && errno != EINTR)
                throw std::runtime_error("nobody reads the terminal");
            at += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }

    // Waits until the text is shown behind what was typed last. False when it does not come.
    bool shows(std::string const& text, double seconds = 20) {
        auto const end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (m_shown.find(text, std::min(m_seen, m_shown.size())) == std::string::npos)
            if (std::chrono::steady_clock::now() > end || !read())
                return false;
        m_seen = m_shown.find(text, m_seen) + text.size();
        return true;
    }

    // Types a line, and waits for what is to come behind it.
    bool answers(std::string const& line, std::string const& text) {
        type(line + "\r");
        return shows(text);
    }

    // Its exit code; 128 and the signal for one that was killed, -1 for one that does not end.
    int end(double seconds = 20) {
        auto const limit = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        int status = 0;
        while (::waitpid(m_child, &status, WNOHANG) == 0) {
            if (std::chrono::steady_clock::now() > limit)
                return -1;
            read();
        }
        while (read())
            continue;
        m_child = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    // All that came, with the line ends of a terminal.
    std::string const& shown() const { return m_shown; }

private:
    // What has come in, or comes within a moment. False when nothing can come any more.
    bool read() {
        pollfd file{m_file, POLLIN, 0};
        ::poll(&file, 1, 50);
        if ((file.revents & (POLLIN | POLLHUP)) == 0)
            return m_child > 0;
        char buffer[4096];
        ssize_t const count = ::read(m_file, buffer, sizeof buffer);
        if (count <= 0)
            return false;
        m_shown.append(buffer, static_cast<std::size_t>(count));
        return true;
    }

    int m_file = -1;
    pid_t m_child = -1;
    std::string m_shown;
    std::size_t m_seen = 0;
};

} // namespace flowmere::test
