#pragma once

// How long a run may still take, from the times that blocks have taken.

#include "flowmere/Flowmere.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace flowmere::host {

class TimeLeft {
public:
    // The blocks of an earlier run, by path, in the order in which they ran, with their times in milliseconds.
    explicit TimeLeft(std::vector<std::pair<std::string, double>> earlier = {});

    // The run ends behind this block, and not at the end of the flow.
    void endAt(CFCBlockNode& block) { m_until = &block; }
    void blockDone(std::string const& path, double milliseconds);
    // From the start of this block to the end of the run, in milliseconds; none as long as no time is known. As long as
    // the run goes the way of the earlier one, that tells; after that the way that the flow takes as its grips are now,
    // each block counted once.
    std::optional<double> before(CFCBlockNode& block, std::string const& path);

    // "under 1 s left", "about 12 s left", "about 3 min left"
    static std::string text(double milliseconds);

private:
    struct Times {
        double sum = 0;
        std::size_t count = 0;
    };
    using Clock = std::chrono::steady_clock;

    static void add(Times& times, double milliseconds);
    double expected(std::string const& path) const;
    double alongFlow(CFCBlockNode& block) const;

    std::vector<std::pair<std::string, double>> m_earlier;
    std::vector<double> m_earlierRest; // the sum of all times from each place on
    std::unordered_map<std::string, Times> m_earlierTimes;
    std::unordered_map<std::string, Times> m_times;
    Times m_all;
    Times m_allEarlier;
    std::size_t m_place = 0;
    bool m_isTheSame = true;
    CFCBlockNode* m_until = nullptr;
    // Following the flow takes a while in a long one.
    std::optional<double> m_last;
    Clock::time_point m_lastTime;
};

} // namespace flowmere::host
