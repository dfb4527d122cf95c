#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuTypes.h"

// Receives each console message; `text` is valid during the call only.
using TuConsoleSink = void (*)(_TuMessageType kind, wchar_t const* text);
// Gives the translation of an English message, or null where there is none. The result has to outlive the call.
using TuTranslator = wchar_t const* (*)(wchar_t const* text, int flags);

// Writes one message, formatted as by TuString::Format, to the host's console.
FLOWMERE_API void TuWriteConsoleMessage(_TuMessageType kind, wchar_t const* format, ...);
// Sets where console messages go. Null, the start value, is standard output: UTF-8, one line for each message.
FLOWMERE_API void TuSetConsoleSink(TuConsoleSink sink) noexcept;

// Tells whether unloading the module under a running application is to be warned of; on until switched off.
FLOWMERE_API bool TuIsDLLUnloadWarningEnabled() noexcept;
FLOWMERE_API void TuEnableDLLUnloadWarning(bool enabled) noexcept;

// The translation of an English message, or `text` itself where there is none; the empty text for null. Callers copy
// the result at once.
FLOWMERE_API wchar_t const* TuLocalizeStringExW(wchar_t const* text, int flags);
// Sets the source of translations; null, the start value, is none.
FLOWMERE_API void TuSetTranslator(TuTranslator translator) noexcept;
