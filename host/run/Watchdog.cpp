#include <pybind11/embed.h>

#include "host/run/Watchdog.h"

#include "host/basics/Command.h"

#include <fmt/format.h>

#include <csignal>
#include <utility>

namespace py = pybind11;

namespace flowmere::host {

namespace {

// A signal that neither Python nor the C library uses, and that scripts are not likely to.
int timeSignal() {
    return SIGRTMAX - 3;
}

// A signal that comes just before a system call does not end that call: so it is sent again and again.
constexpr std::chrono::milliseconds kNudge(50);

// The one in use.
Watchdog* active = nullptr;

} // namespace

Watchdog::Watchdog(Duration limit, Duration grace, std::function<void()> onStuck)
    : m_limit(limit), m_grace(grace), m_onStuck(std::move(onStuck)),
      m_text(fmt::format("timed out after {} s", limit.count())), m_watched(::pthread_self()) {
    py::gil_scoped_acquire const lock;
    try {
        // Python's own handler of a signal lets system calls return, and calls this on the main thread.
        py::module_::import("signal").attr("signal")(timeSignal(),
                                                     py::cpp_function([](py::object const&, py::object const&) {
                                                         if (active != nullptr)
                                                             active->onSignal();
                                                     }));
    } catch (py::error_already_set const& problem) {
        throw Failure("Python", "", problem.what());
    }
    active = this;
    m_thread = std::thread([this] { watch(); });
}

Watchdog::~Watchdog() {
    {
        std::lock_guard const lock(m_mutex);
        m_isLeaving = true;
    }
    m_changed.notify_one();
    m_thread.join();
    active = nullptr;
}

void Watchdog::begin() {
    {
        std::lock_guard const lock(m_mutex);
        m_start = std::chrono::steady_clock::now();
        m_isWatching = true;
        m_isOver = false;
        m_isRaised = false;
    }
    m_changed.notify_one();
}

bool Watchdog::end() {
    std::lock_guard const lock(m_mutex);
    m_isWatching = false;
    return m_isOver;
}

// On the main thread, with Python's lock: what it throws is raised in the script. Once, so that the script can clean up
// after itself.
void Watchdog::onSignal() {
    {
        std::lock_guard const lock(m_mutex);
        if (!m_isWatching || !m_isOver || std::exchange(m_isRaised, true))
            return;
    }
    ::PyErr_SetString(PyExc_TimeoutError, m_text.c_str());
    throw py::error_already_set();
}

void Watchdog::watch() {
    // Signals are for the main thread.
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);

    auto const cast = [](Duration duration) {
        return std::chrono::duration_cast<std::chrono::steady_clock::duration>(duration);
    };
    std::unique_lock lock(m_mutex);
    while (!m_isLeaving) {
        if (!m_isWatching) {
            m_changed.wait(lock);
            continue;
        }
        auto const now = std::chrono::steady_clock::now();
        auto const deadline = m_start + cast(m_limit);
        if (now < deadline) {
            m_changed.wait_until(lock, deadline);
            continue;
        }
        m_isOver = true;
        if (now >= deadline + cast(m_grace)) {
            lock.unlock();
            m_onStuck();
            lock.lock();
            m_isWatching = false;
            continue;
        }
        ::pthread_kill(m_watched, timeSignal());
        m_changed.wait_for(lock, kNudge);
    }
}

} // namespace flowmere::host
