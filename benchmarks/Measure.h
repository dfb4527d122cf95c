#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <map>
#include <string>
#include <utility>
#include <vector>

// Times of a side of ours and a bare one that are run in turn, at sizes that grow tenfold.

constexpr int kTiny = 1000;
constexpr int kSmall = 10000;
constexpr int kLarge = 100000;

// Time that the processor has spent on this program, which a busy machine does not stretch.
inline double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Runs the body and gives its time.
template <typename Body>
double secondsOf(Body const& body) {
    double const begin = processorSeconds();
    body();
    return processorSeconds() - begin;
}

inline double medianOf(std::vector<double> values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

class Sides {
public:
    void add(double ours, double bare) {
        m_ours.push_back(ours);
        m_bare.push_back(bare);
        m_ratios.push_back(ours / bare);
    }
    double ours() const { return medianOf(m_ours); }
    double bare() const { return medianOf(m_bare); }
    // Of the two that ran side by side: whatever slows the machine for a while slows both.
    double ratio() const { return medianOf(m_ratios); }

private:
    std::vector<double> m_ours;
    std::vector<double> m_bare;
    std::vector<double> m_ratios;
};

// The counters of a benchmark, with the growth since the same was measured at a tenth of the size.
inline void report(benchmark::State& state, std::string const& what, int count, Sides const& sides,
                   char const* target) {
    static std::map<std::pair<std::string, int>, std::pair<double, double>> measured;
    measured[{what, count}] = {sides.ours(), sides.bare()};
    state.counters["ours_ms"] = sides.ours() * 1000.0;
    state.counters["bare_ms"] = sides.bare() * 1000.0;
    state.counters["ratio"] = sides.ratio();
    if (auto const tenth = measured.find({what, count / 10}); tenth != measured.end()) {
        auto const [ours, bare] = tenth->second;
        state.counters["growth"] = sides.ours() / ours;
        state.counters["bare_growth"] = sides.bare() / bare; // what this machine makes of ten times the memory
    }
    state.SetLabel(target);
}

// Times of one side alone.
class Times {
public:
    // Runs the body, whose time becomes that of the round.
    template <typename Body>
    void add(benchmark::State& state, Body const& body) {
        m_seconds.push_back(secondsOf(body));
        state.SetIterationTime(m_seconds.back());
    }
    double median() const { return medianOf(m_seconds); }

private:
    std::vector<double> m_seconds;
};

// The time for each entry, and how often longer than for a tenth of the entries it took.
inline void report(benchmark::State& state, std::string const& what, int count, Times const& times) {
    static std::map<std::pair<std::string, int>, double> measured;
    double const seconds = times.median();
    measured[{what, count}] = seconds;
    state.counters["us_per_entry"] = seconds * 1e6 / count;
    if (auto const tenth = measured.find({what, count / 10}); tenth != measured.end())
        state.counters["growth"] = seconds / tenth->second;
    state.SetLabel("growth from a tenth: at most 15");
}
