#include "host/files/XmlFault.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <fstream>
#include <string_view>

namespace flowmere::host {

Failure xmlFailure(std::string const& file, CTXMLBaseReader const& reader) {
    std::string place;
    if (reader.GetErrorLine() > 0)
        place = fmt::format("line {}, column {}", reader.GetErrorLine(), reader.GetErrorColumn());
    std::string const cause = utf8(reader.GetErrorText());
    return {file, place, cause.empty() ? "it cannot be read" : cause};
}

void checkIsXml(std::filesystem::path const& path, std::string const& file) {
    CTXMLBaseReader reader;
    if (!reader.Initialize(libraryPath(path)))
        throw xmlFailure(file, reader);
}

std::string rootElement(std::filesystem::path const& file) {
    constexpr std::size_t kLookedAt = 65536;
    std::ifstream in(file, std::ios::binary);
    std::string text(kLookedAt, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    // No encoding of single bytes has those in XML.
    if (text.find('\0') != std::string::npos)
        return {};
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at)) {
        std::string_view const rest = std::string_view(text).substr(at);
        if (rest.starts_with("<!DOCTYPE"))
            return {};
        if (!rest.starts_with("<?") && !rest.starts_with("<!--"))
            return std::string(rest.substr(1, rest.find_first_of("/> \t\r\n") - 1));
        std::size_t const end = text.find(rest.starts_with("<?") ? "?>" : "-->", at);
        if (end == std::string::npos)
            return {};
        at = end;
    }
    return {};
}

std::string localName(std::string const& name) {
    return name.substr(name.find(':') + 1);
}

} // namespace flowmere::host
