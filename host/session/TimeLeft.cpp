#include "host/session/TimeLeft.h"

#include "host/document/Document.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace flowmere::host {

namespace {

constexpr std::chrono::milliseconds kFresh(250);

} // namespace

TimeLeft::TimeLeft(std::vector<std::pair<std::string, double>> earlier)
    : m_earlier(std::move(earlier)), m_earlierRest(m_earlier.size() + 1) {
    for (std::size_t index = m_earlier.size(); index-- > 0;) {
        auto const& [path, time] = m_earlier[index];
        m_earlierRest[index] = m_earlierRest[index + 1] + time;
        add(m_earlierTimes[path], time);
        add(m_allEarlier, time);
    }
}

void TimeLeft::add(Times& times, double milliseconds) {
    times.sum += milliseconds;
    ++times.count;
}

void TimeLeft::blockDone(std::string const& path, double milliseconds) {
    add(m_times[path], milliseconds);
    add(m_all, milliseconds);
    m_isTheSame = m_isTheSame && m_place < m_earlier.size() && m_earlier[m_place].first == path;
    ++m_place;
}

std::optional<double> TimeLeft::before(CFCBlockNode& block, std::string const& path) {
    if (m_isTheSame && m_until == nullptr && m_place < m_earlier.size() && m_earlier[m_place].first == path)
        return m_earlierRest[m_place];
    if (m_all.count + m_allEarlier.count == 0)
        return std::nullopt;
    Clock::time_point const now = Clock::now();
    if (m_last && now - m_lastTime < kFresh)
        return std::max(0.0, *m_last - std::chrono::duration<double, std::milli>(now - m_lastTime).count());
    m_last = alongFlow(block);
    m_lastTime = now;
    return m_last;
}

double TimeLeft::expected(std::string const& path) const {
    for (auto const* const times : {&m_times, &m_earlierTimes})
        if (auto const entry = times->find(path); entry != times->end())
            return entry->second.sum / static_cast<double>(entry->second.count);
    Times const& all = m_all.count > 0 ? m_all : m_allEarlier;
    return all.sum / static_cast<double>(all.count);
}

double TimeLeft::alongFlow(CFCBlockNode& block) const {
    auto const isInside = [this](CFCBlockNode* node) {
        for (IFCNode* above = node; above != nullptr; above = above->GetParentNode())
            if (above == m_until)
                return true;
        return false;
    };
    double sum = 0;
    std::unordered_set<CFCBlockNode*> passed;
    for (CFCBlockNode* next = &block; next != nullptr && passed.insert(next).second;) {
        sum += expected(pathOf(*next));
        CFCBlockNode* const behind = next->GetNextConnectedBlock();
        if (m_until != nullptr && isInside(next) && !isInside(behind))
            break;
        next = behind;
    }
    return sum;
}

std::string TimeLeft::text(double milliseconds) {
    double const seconds = milliseconds / 1000;
    if (seconds < 1)
        return "under 1 s left";
    if (seconds < 90)
        return fmt::format("about {:.0f} s left", seconds);
    if (seconds < 90 * 60)
        return fmt::format("about {:.0f} min left", seconds / 60);
    return fmt::format("about {:.0f} h left", seconds / 3600);
}

} // namespace flowmere::host
