#include "host/Text.h"

#include "host/Command.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <numeric>
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

// Number of insertions, deletions, replacements and swaps of neighbours between two texts; `limit` + 1 for more than
// `limit`.
std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit) {
    std::size_t const difference = left.size() > right.size() ? left.size() - right.size() : right.size() - left.size();
    if (difference > limit)
        return limit + 1;
    std::vector<std::size_t> before(right.size() + 1);
    std::vector<std::size_t> above(right.size() + 1);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(above.begin(), above.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            std::size_t const replaced = above[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        std::swap(before, above);
        std::swap(above, row);
    }
    return std::min(above[right.size()], limit + 1);
}

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
    constexpr std::size_t kMost = 3;
    std::string const wanted = lowered(typed);
    std::string const wantedPart(lastPart(wanted));
    // A third of the letters may be wrong; of a name of one or two letters none, since everything would be near.
    auto const limitFor = [](std::string const& text) {
        return text.size() < 3 ? std::size_t{0} : std::max<std::size_t>(1, text.size() / 3);
    };
    std::size_t const limit = limitFor(wanted);
    std::size_t const partLimit = limitFor(wantedPart);

    std::vector<std::pair<std::size_t, std::string>> found;
    for (std::string const& name : known) {
        std::string const candidate = lowered(name);
        std::size_t distance = editDistance(wanted, candidate, limit);
        bool fits = distance <= limit;
        if (!wantedPart.empty()) {
            std::size_t const ofPart = editDistance(wantedPart, lastPart(candidate), partLimit);
            if (ofPart <= partLimit && (!fits || ofPart < distance)) {
                distance = ofPart + (fits ? 0 : 1);
                fits = true;
            }
        }
        if (fits && std::find_if(found.begin(), found.end(), [&](auto const& entry) { return entry.second == name; }) ==
                        found.end())
            found.emplace_back(distance, name);
    }
    std::stable_sort(found.begin(), found.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    if (found.size() > kMost)
        found.resize(kMost);

    std::vector<std::string> names;
    for (auto& entry : found)
        names.push_back(std::move(entry.second));
    return names;
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

void setOutputFiles(int output, int error) {
    outputFile = output;
    errorFile = error;
}

} // namespace flowmere::host
