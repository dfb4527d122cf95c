#include "host/document/Findings.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

namespace flowmere::host {

std::string linkFault(CFCReadFinding const& finding) {
    std::string const cause = utf8(finding.second);
    return cause.empty() ? "is missing" : "cannot be read: " + cause;
}

std::string describe(CFCReadFinding const& finding) {
    if (finding.kind == CFCReadFinding::FileNotRead)
        return fmt::format("the linked file {} {}", utf8(finding.first), linkFault(finding));
    return fmt::format("a connector from {} to {} lacks a block", utf8(finding.first), utf8(finding.second));
}

} // namespace flowmere::host
