#include "host/basics/Command.h"

#include "host/basics/Text.h"

namespace flowmere::host {

std::string errorLine(std::string const& file, std::string const& place, std::string const& cause) {
    std::string line = "flowmere: ";
    for (std::string const& part : {file, place})
        if (!part.empty())
            line += oneLine(part) + ": ";
    return line + oneLine(cause);
}

Failure::Failure(std::string const& file, std::string const& place, std::string const& cause, int exitCode)
    : std::runtime_error(errorLine(file, place, cause)), m_exitCode(exitCode) {}

} // namespace flowmere::host
