#include "host/document/Values.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

namespace flowmere::host {

namespace {

bool isNumber(std::string_view text, bool isInteger) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    char const* const end = text.data() + text.size();
    if (isInteger) {
        int value = 0;
        auto const result = std::from_chars(text.data(), end, value);
        return result.ec == std::errc() && result.ptr == end;
    }
    double value = 0;
    auto const result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(value);
}

bool fits(CFCVariableData& variable, std::string const& value) {
    bool isInteger = false;
    switch (variable.GetDataType()) {
    case EDataType_Int:
    case EDataType_IntArray:
        isInteger = true;
        break;
    case EDataType_Float:
    case EDataType_Double:
    case EDataType_FloatArray:
    case EDataType_DoubleArray:
        break;
    default:
        return true;
    }
    if (!variable.IsArray())
        return isNumber(value, isInteger);
    std::string_view list = value;
    if (list.starts_with('[') && list.ends_with(']'))
        list = list.substr(1, list.size() - 2);
    if (list.find_first_not_of(" \t") == std::string_view::npos)
        return true;
    for (;;) {
        auto const comma = list.find(',');
        if (!isNumber(list.substr(0, comma), isInteger))
            return false;
        if (comma == std::string_view::npos)
            return true;
        list.remove_prefix(comma + 1);
    }
}

} // namespace

void checkValue(Document const& document, std::string const& path, CFCVariableData& variable,
                std::string const& value) {
    CFCVariableData& actual = *variable.GetActualVariableData();
    if (fits(actual, value))
        return;
    bool const isMarkedArray = actual.IsArray() && actual.GetDataType() < EDataType_IntArray;
    throw Failure(document.file(), path,
                  fmt::format("\"{}\" is no value of type {}{}", value, utf8(actual.GetDataTypeS()),
                              isMarkedArray ? " (array)" : ""));
}

void setValue(CFCVariableData& variable, std::string const& value) {
    CFCVariableData& actual = *variable.GetActualVariableData();
    actual.SetValue(wide(value));
    actual.UpdateValue();
}

} // namespace flowmere::host
