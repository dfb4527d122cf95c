#pragma once

// The time that a block may take.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <pthread.h>
#include <string>
#include <thread>

namespace flowmere::host {

// Watches the main thread while a block runs there. Once the time is over the script gets a TimeoutError, also when it
// sleeps or waits inside a system call. A script that has not let go after the time of grace is left to `onStuck`.
//
// One at a time, made on the main thread after the interpreter has started.
class Watchdog {
public:
    using Duration = std::chrono::duration<double>;

    // `onStuck` is called on a thread of the watchdog, while the script may still be running; it ends the program.
    Watchdog(Duration limit, Duration grace, std::function<void()> onStuck);
    ~Watchdog();
    Watchdog(Watchdog const&) = delete;
    Watchdog& operator=(Watchdog const&) = delete;

    // Around the run of a block; `end` is true when its time was over.
    void begin();
    bool end();

    // "timed out after 2 s"
    std::string const& text() const { return m_text; }

private:
    void watch();
    void onSignal();

    Duration const m_limit;
    Duration const m_grace;
    std::function<void()> const m_onStuck;
    std::string const m_text;
    pthread_t const m_watched;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isLeaving = false;
    bool m_isWatching = false;
    bool m_isOver = false;
    bool m_isRaised = false;
    std::chrono::steady_clock::time_point m_start;
    std::thread m_thread; // last: it uses all the others
};

} // namespace flowmere::host
