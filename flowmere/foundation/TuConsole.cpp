#include "flowmere/foundation/TuConsole.h"

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Numbers.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

TuConsoleSink s_sink = nullptr;
TuTranslator s_translator = nullptr;
bool s_unloadWarning = true;

// Narrow output only: the first wide write would turn the stream wide and make every narrow one after it fail.
void writeLine(std::wstring const& text) {
    std::string bytes = flowmere::toUtf8(text);
    if (bytes.empty() || bytes.back() != '\n') {
        bytes.push_back('\n');
    }
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

} // namespace

void TuWriteConsoleMessage(_TuMessageType kind, wchar_t const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    try {
        std::wstring const text = flowmere::formatWide(format, arguments);
        if (s_sink != nullptr) {
            s_sink(kind, text.c_str());
        } else {
            writeLine(text);
        }
    } catch (...) {
        // A message that cannot be made is lost; it never stops the caller.
    }
    va_end(arguments);
}

void TuSetConsoleSink(TuConsoleSink sink) noexcept {
    s_sink = sink;
}

bool TuIsDLLUnloadWarningEnabled() noexcept {
    return s_unloadWarning;
}

void TuEnableDLLUnloadWarning(bool enabled) noexcept {
    s_unloadWarning = enabled;
}

wchar_t const* TuLocalizeStringExW(wchar_t const* text, int flags) {
    if (text == nullptr) {
        return L"";
    }
    wchar_t const* const translated = s_translator == nullptr ? nullptr : s_translator(text, flags);
    return translated == nullptr ? text : translated;
}

void TuSetTranslator(TuTranslator translator) noexcept {
    s_translator = translator;
}
