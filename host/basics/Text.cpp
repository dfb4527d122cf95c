#include "host/basics/Text.h"

#include "host/basics/Command.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace flowmere::host {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// Length of the UTF-8 sequence at the start of the text; 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
    auto const byteAt = [&](std::size_t index) {
        return static_cast<unsigned char>(text[index]);
    };
    unsigned const lead = byteAt(0);
    std::size_t const length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length == 0 || length > text.size())
        return 0;
    for (std::size_t index = 1; index < length; ++index)
        if ((byteAt(index) & 0xC0U) != 0x80U)
            return 0;
    if (length >= 3) {
        unsigned const second = byteAt(1);
        bool const tooLong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
        bool const noCharacter = (lead == 0xED && second >= 0xA0) || (lead == 0xF4 && second >= 0x90);
        if (tooLong || noCharacter)
            return 0;
    }
    return length;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& character : result)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    return result;
}

std::string_view lastPart(std::string_view path) {
    auto const dot = path.rfind('.');
    return dot == std::string_view::npos ? path : path.substr(dot + 1);
}

// Measures how far texts are from each other, without asking for memory each time.
class EditDistance {
public:
    // Number of insertions, deletions, replacements and swaps of neighbours between the texts; `limit` + 1 for more
    // than `limit`. Takes time in proportion to the length times the limit.
    std::size_t operator()(std::string_view left, std::string_view right, std::size_t limit) {
        // Most names of a document begin alike.
        while (!left.empty() && !right.empty() && left.front() == right.front()) {
            left.remove_prefix(1);
            right.remove_prefix(1);
        }
        while (!left.empty() && !right.empty() && left.back() == right.back()) {
            left.remove_suffix(1);
            right.remove_suffix(1);
        }
        std::size_t const longer = std::max(left.size(), right.size());
        if (longer - std::min(left.size(), right.size()) > limit)
            return limit + 1;
        if (limit == 0)
            return left == right ? 0 : 1;
        std::size_t const tooMany = limit + 1;
        for (std::vector<std::size_t>* const row : {&m_before, &m_above, &m_row})
            row->assign(right.size() + 1, tooMany);
        for (std::size_t j = 0; j <= std::min(right.size(), limit); ++j)
            m_above[j] = j;
        std::size_t leastAbove = 0;
        for (std::size_t i = 1; i <= left.size(); ++i) {
            // What lies further from the diagonal takes more steps than there may be.
            std::size_t const first = i > limit ? i - limit : 1;
            std::size_t const last = std::min(right.size(), i + limit);
            m_row[first - 1] = first == 1 ? std::min(i, tooMany) : tooMany;
            std::size_t least = m_row[first - 1];
            for (std::size_t j = first; j <= last; ++j) {
                std::size_t steps = m_above[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
                steps = std::min({steps, m_above[j] + 1, m_row[j - 1] + 1, tooMany});
                if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
                    steps = std::min(steps, m_before[j - 2] + 1);
                m_row[j] = steps;
                least = std::min(least, steps);
            }
            if (last < right.size())
                m_row[last + 1] = tooMany;
            // A swap reaches over one row.
            if (least > limit && leastAbove > limit)
                return tooMany;
            leastAbove = least;
            std::swap(m_before, m_above);
            std::swap(m_above, m_row);
        }
        return m_above[right.size()];
    }

private:
    std::vector<std::size_t> m_before;
    std::vector<std::size_t> m_above;
    std::vector<std::size_t> m_row;
};

// The nearest names so far, the nearest first; of those at one distance the one that came first.
class Nearest {
public:
    // How far the fitting part of a name is away, and of names that agree in that, how far the whole is.
    using Distance = std::pair<std::size_t, std::size_t>;

    void add(Distance const& distance, std::string const& name) {
        constexpr std::size_t kMost = 3;
        auto const isSame = [&](auto const& entry) {
            return *entry.second == name;
        };
        bool const isFull = m_entries.size() == kMost;
        if ((isFull && distance >= m_entries.back().first) || std::any_of(m_entries.begin(), m_entries.end(), isSame))
            return;
        auto const place =
            std::find_if(m_entries.begin(), m_entries.end(), [&](auto const& entry) { return distance < entry.first; });
        m_entries.insert(place, {distance, &name});
        if (isFull)
            m_entries.pop_back();
    }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (auto const& [distance, name] : m_entries)
            names.push_back(*name);
        return names;
    }

private:
    std::vector<std::pair<Distance, std::string const*>> m_entries;
};

// Goes on where a signal has come in between, which the streams of the C library take for an error.
bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        ssize_t const written = ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

int outputFile = STDOUT_FILENO;
int errorFile = STDERR_FILENO;

} // namespace

std::string utf8(wchar_t const* text) {
    return TuString(text).GetAnsiBuffer();
}

TuString wide(std::string const& text) {
    return TuString(text.c_str());
}

TuString libraryPath(std::filesystem::path const& path) {
    TuString result = wide(std::filesystem::absolute(path).lexically_normal().string());
    result.Replace(L'/', L'\\');
    return result;
}

std::string oneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        std::size_t const length = sequenceLength(text);
        auto const first = static_cast<unsigned char>(text.front());
        if (length == 0)
            line += kReplacement;
        else if (text.front() == '\n')
            line += "\\n";
        else if (text.front() == '\r')
            line += "\\r";
        else if (text.front() == '\t')
            line += "\\t";
        else if (first < 0x20 || first == 0x7F)
            line += fmt::format("\\x{:02x}", first);
        else if (first == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0)
            line += fmt::format("\\x{:02x}", static_cast<unsigned char>(text[1]));
        else
            line += text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return line;
}

std::vector<std::string> nearNames(std::string_view typed, std::vector<std::string> const& known) {
    std::string const wanted = lowered(typed);
    std::string_view const wantedPart = lastPart(wanted);
    // A third of the letters may be wrong; of a name of one or two letters none, since everything would be near.
    auto const limitFor = [](std::string_view text) {
        return text.size() < 3 ? std::size_t{0} : std::max<std::size_t>(1, text.size() / 3);
    };
    std::size_t const limit = limitFor(wanted);
    std::size_t const partLimit = limitFor(wantedPart);

    EditDistance editDistance;
    Nearest nearest;
    for (std::string const& name : known) {
        std::string const candidate = lowered(name);
        std::size_t const ofWhole = editDistance(wanted, candidate, limit);
        std::size_t distance = ofWhole;
        bool fits = distance <= limit;
        if (!wantedPart.empty()) {
            std::size_t const ofPart = editDistance(wantedPart, lastPart(candidate), partLimit);
            if (ofPart <= partLimit && (!fits || ofPart < distance)) {
                distance = ofPart + (fits ? 0 : 1);
                fits = true;
            }
        }
        if (fits)
            nearest.add({distance, ofWhole}, name);
    }
    return nearest.names();
}

std::string suggestion(std::string_view typed, std::vector<std::string> const& known) {
    std::vector<std::string> const names = nearNames(typed, known);
    if (names.empty())
        return {};
    std::string text = "; did you mean " + names.front();
    for (std::size_t index = 1; index < names.size(); ++index)
        text += (index + 1 == names.size() ? " or " : ", ") + names[index];
    return text + "?";
}

std::string counted(std::size_t count, std::string_view singular) {
    return fmt::format("{} {}{}", count, singular, count == 1 ? "" : "s");
}

std::string jsonText(Json const& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void printOut(std::string_view text) {
    errno = 0;
    if (std::fflush(stdout) != 0 || !writeAll(outputFile, text))
        throw Failure("standard output", "", std::string("cannot be written: ") + std::strerror(errno));
}

void printError(std::string_view text) {
    writeAll(errorFile, text);
}

std::size_t errorColumns() {
    winsize size{};
    return ::isatty(errorFile) != 0 && ::ioctl(errorFile, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void setOutputFiles(int output, int error) {
    outputFile = output;
    errorFile = error;
}

} // namespace flowmere::host
