#pragma once

// Starts the real program, in an environment that nobody has prepared, and keeps what it says.

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <poll.h>
#include <regex>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace flowmere::test {

struct ProgramRun {
    int exitCode = -1; // 128 and the signal for one that was killed
    std::string out;
    std::string err;
    double seconds = 0;
};

struct ProgramSetting {
    std::filesystem::path folder = {};   // where it runs; the tests' own when empty
    std::string interruptAt = {};        // sends SIGINT once standard output holds this
    int interrupts = 1;                  // how often, a little apart
    std::string inputFrom = "/dev/null"; // a file for standard input
    std::string outputTo = {};           // a file for standard output in place of the pipe
    unsigned long fileSizeLimit = 0;     // no file may become longer than so many bytes; 0 for any length
    double limitSeconds = 60;            // killed after that, which is a failure
    bool errorTerminal = false;          // standard error is a terminal
    std::vector<std::string> extra = {}; // further variables of the environment
};

// Collects two pipes until both are closed.
class PipeReader {
public:
    PipeReader(int out, int err) : m_files{{out, POLLIN, 0}, {err, POLLIN, 0}} {}

    // Waits a little for something to read. False when there is nothing left to come.
    bool read(std::string& out, std::string& err) {
        if (m_files[0].fd < 0 && m_files[1].fd < 0)
            return false;
        ::poll(m_files, 2, 20);
        take(m_files[0], out);
        take(m_files[1], err);
        return true;
    }

private:
    static void take(pollfd& file, std::string& text) {
        if (file.fd < 0 || (file.revents & (POLLIN | POLLHUP)) == 0)
            return;
        char buffer[65536];
        ssize_t const count = ::read(file.fd, buffer, sizeof buffer);
        if (count > 0) {
            text.append(buffer, static_cast<std::size_t>(count));
        } else {
            ::close(file.fd);
            file.fd = -1;
        }
    }

    pollfd m_files[2];
};

inline ProgramRun runProgram(std::vector<std::string> const& arguments, ProgramSetting const& setting = {}) {
    std::vector<std::string> words{FLOWMERE_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    char const* const home = std::getenv("HOME");
    std::vector<std::string> variables{std::string("HOME=") + (home != nullptr ? home : "/"), "PATH=/usr/bin:/bin"};
    for (char const* const name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "LLVM_PROFILE_FILE"})
        if (char const* const value = std::getenv(name))
            variables.push_back(std::string(name) + "=" + value);
    variables.insert(variables.end(), setting.extra.begin(), setting.extra.end());
    auto const pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (std::string& text : texts)
            result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    };
    std::vector<char*> const argv = pointers(words);
    std::vector<char*> const envp = pointers(variables);

    int out[2];
    int err[2];
    if (::pipe2(out, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    if (setting.errorTerminal) {
        err[0] = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (err[0] < 0 || ::grantpt(err[0]) != 0 || ::unlockpt(err[0]) != 0)
            throw std::runtime_error("no terminal");
        err[1] = ::open(::ptsname(err[0]), O_RDWR | O_NOCTTY | O_CLOEXEC);
    } else if (::pipe2(err, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    auto const start = std::chrono::steady_clock::now();
    pid_t const child = ::fork();
    if (child == 0) {
        int const input = ::open(setting.inputFrom.c_str(), O_RDONLY | O_CLOEXEC);
        ::dup2(input, 0);
        int const target =
            setting.outputTo.empty() ? out[1] : ::open(setting.outputTo.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        ::dup2(target, 1);
        ::dup2(err[1], 2);
        if (setting.fileSizeLimit > 0) {
            rlimit const limit{setting.fileSizeLimit, setting.fileSizeLimit};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        }
        if (!setting.folder.empty() && ::chdir(setting.folder.c_str()) != 0)
            ::_exit(126);
        ::execve(FLOWMERE_PROGRAM, argv.data(), envp.data());
        ::_exit(127);
    }
    ::close(out[1]);
    ::close(err[1]);

    ProgramRun run;
    PipeReader reader(out[0], err[0]);
    int sent = 0;
    auto const seconds = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    double nextInterrupt = 0;
    bool killed = false;
    while (reader.read(run.out, run.err)) {
        if (!setting.interruptAt.empty() && sent < setting.interrupts && seconds() >= nextInterrupt &&
            run.out.find(setting.interruptAt) != std::string::npos) {
            // What was printed last may run for a moment more.
            if (sent == 0)
                std::this_thread::sleep_for(std::chrono::milliseconds(200));
            ::kill(child, SIGINT);
            ++sent;
            nextInterrupt = seconds() + 0.5;
        }
        if (!killed && seconds() > setting.limitSeconds) {
            killed = true;
            ::kill(child, SIGKILL);
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    run.seconds = seconds();
    EXPECT_FALSE(killed) << "the program did not end";
    return run;
}

// The text with "#" for every time, and one blank before it.
inline std::string withoutTimes(std::string const& text) {
    static std::regex const time(R"( +[0-9]+\.[0-9] ms)");
    return std::regex_replace(text, time, "  # ms");
}

// The text with every occurrence of a path replaced by a short name.
inline std::string withName(std::string text, std::string const& path, std::string const& name) {
    for (std::size_t at = text.find(path); at != std::string::npos; at = text.find(path, at + name.size()))
        text.replace(at, path.size(), name);
    return text;
}

} // namespace flowmere::test
