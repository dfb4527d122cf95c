// Texts of generated block scripts, with $$class$$, $$varname$$, $$default$$ and $$datatype$$ in them.
#pragma once

namespace flowmere {

// The user's main file, before the user's code.
extern wchar_t const* const kMainTemplate;
// IsValidState of a block that needs a pre-processing model.
extern wchar_t const* const kPreModelState;
// IsValidState of a block that needs a result model.
extern wchar_t const* const kResultModelState;
// The generated companion, before the variables.
extern wchar_t const* const kSubTemplate;
// Accessors of a number.
extern wchar_t const* const kNumberAccessors;
// Accessors of a text, file or directory.
extern wchar_t const* const kStringAccessors;
// Accessors of an array of plain values.
extern wchar_t const* const kArrayAccessors;
// Accessors of an object.
extern wchar_t const* const kObjectAccessors;
// Accessors of an object list; the setter's tempValue is part of the text.
extern wchar_t const* const kObjectListAccessors;

} // namespace flowmere
