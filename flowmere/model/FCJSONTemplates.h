#pragma once

#include "flowmere/Export.h"

// The templates behind the JSON texts of variables, arguments and patterns. In them a single quote,
// a double quote and a single quote in a row stand for one double quote, and names after a dollar
// sign are replaced by the values of the object. A host may point these at templates of its own,
// which must then live as long as they are in use; null counts as the empty text.
extern FLOWMERE_API wchar_t const* FCVariableJSONTemplate;
extern FLOWMERE_API wchar_t const* FCArgumentJSONTemplate;
extern FLOWMERE_API wchar_t const* FCPatternJSONTemplate;
