#include "host/session/Settings.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/Values.h"

namespace flowmere::host {

std::vector<Setting> settingsOf(Document const& document, std::vector<std::string> const& texts) {
    std::vector<Setting> settings;
    for (std::string const& text : texts) {
        auto const equals = text.find('=');
        if (equals == std::string::npos || equals == 0)
            throw Failure("", "--set " + text, "is not of the form PATH=VALUE");
        std::string const path = text.substr(0, equals);
        std::string const value = text.substr(equals + 1);
        CFCVariableData& variable = document.variable(path);
        checkValue(document, path, variable, value);
        settings.emplace_back(variable.GetActualVariableData(), wide(value));
    }
    return settings;
}

} // namespace flowmere::host
