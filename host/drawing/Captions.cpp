#include "host/drawing/Captions.h"

#include "host/basics/Text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace flowmere::host::drawing {

namespace {

constexpr std::string_view kBreak = "\xE2\x80\x8B"; // a blank without width

// Smaller than this nobody reads.
constexpr double kSmallest = 6;
// No caption in a picture says more than this; the rest is left to its title.
constexpr std::size_t kLongest = 2000;

// Whether one size is tried before words are broken.
constexpr std::array kWholeWords{1.0, 0.92, 0.84, 0.76, 0.68};
constexpr std::array kBrokenWords{0.84, 0.76, 0.68, 0.6, 0.5, 0.4, 0.3};

bool isUpper(char character) {
    return character >= 'A' && character <= 'Z';
}

bool isLower(char character) {
    return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
}

bool isJoint(char character) {
    return std::string_view("._/\\:-+=,;").find(character) != std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n\v\f";
    std::size_t const first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

} // namespace

TextMeasure::~TextMeasure() = default;

std::string breakable(std::string const& text) {
    std::string_view rest = trimmed(text);
    std::string cut;
    if (rest.size() > kLongest) {
        std::size_t end = kLongest;
        while (end > 0 && (static_cast<unsigned char>(rest[end]) & 0xC0U) == 0x80U)
            --end;
        cut = std::string(rest.substr(0, end)) + "\xE2\x80\xA6";
        rest = cut;
    }
    std::string result;
    while (!rest.empty()) {
        std::size_t const end = std::min(rest.find('\n'), rest.size());
        std::string line(rest.substr(0, end));
        std::replace(line.begin(), line.end(), '\t', ' ');
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        line = oneLine(line);
        for (std::size_t at = 0; at < line.size(); ++at) {
            char const character = line[at];
            bool const isInside = at > 0 && at + 1 < line.size();
            if (isInside && isUpper(character) && isLower(line[at - 1]))
                result += kBreak;
            result += character;
            // "12.5" and "3-phase" stay whole.
            if (isInside && isJoint(character) && line[at + 1] != ' ' && line[at - 1] != ' ' &&
                !(line[at - 1] >= '0' && line[at - 1] <= '9'))
                result += kBreak;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (!rest.empty())
            result += '\n';
    }
    return result;
}

Caption fitCaption(TextMeasure& measure, std::string const& text, Font const& font, std::span<Rect const> rooms) {
    Caption caption;
    caption.text = breakable(text);
    caption.size = font.size;
    if (rooms.empty() || caption.text.empty()) {
        caption.text.clear();
        return caption;
    }
    caption.area = rooms.front();
    double const smallest = std::min(font.size, kSmallest);
    auto const fits = [&](double size, Wrap wrap) {
        for (Rect const& room : rooms) {
            if (room.isEmpty())
                continue;
            Size const taken = measure.measure(caption.text, font, size, room.width(), wrap);
            if (taken.width > room.width() + 0.01 || taken.height > room.height() + 0.01)
                continue;
            caption.area = room;
            caption.size = size;
            caption.wrap = wrap;
            return true;
        }
        return false;
    };
    for (double const share : kWholeWords)
        if (font.size * share >= smallest && fits(font.size * share, Wrap::Words))
            return caption;
    for (double const share : kBrokenWords)
        if (font.size * share >= smallest && fits(font.size * share, Wrap::Anywhere))
            return caption;
    if (fits(smallest, Wrap::Anywhere))
        return caption;

    caption.area = *std::max_element(rooms.begin(), rooms.end(), [](Rect const& one, Rect const& other) {
        return one.width() * one.height() < other.width() * other.height();
    });
    caption.size = smallest;
    caption.wrap = Wrap::Anywhere;
    caption.isCut = true;
    double const line = measure.measure("X", font, smallest, 0, Wrap::Words).height;
    if (caption.area.isEmpty() || caption.area.height() < line * 0.7 || caption.area.width() < line)
        caption.text.clear();
    return caption;
}

} // namespace flowmere::host::drawing
