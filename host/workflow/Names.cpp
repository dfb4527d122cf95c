#include "host/workflow/Names.h"

#include "host/basics/Text.h"

namespace flowmere::host {

namespace {

// In bytes: files beside a script have its name and an ending, and a number may follow.
constexpr std::size_t kLongest = 200;
constexpr int kAlwaysFits = kLongest / 4;

wchar_t letterFor(wchar_t letter) {
    if (letter == L'/' || letter == L'\\' || letter == L'.')
        return L'_';
    return letter < L' ' || letter == L'\x7f' ? L' ' : letter;
}

} // namespace

TuString safeName(TuString const& text) {
    TuString name;
    for (wchar_t const letter : text.View())
        name += letterFor(letter);
    while (name.GetLength() > kAlwaysFits && utf8(name).size() > kLongest)
        name = name.Left(name.GetLength() - 1);
    return name;
}

bool LevelNames::take(TuString const& name) {
    return m_names.insert(name).second;
}

TuString LevelNames::takeUnique(TuString const& wanted) {
    if (take(wanted))
        return wanted;
    int& number = m_numbers.try_emplace(wanted, 2).first->second;
    TuString name;
    do {
        name.Format(L"%s_%d", static_cast<wchar_t const*>(wanted), number++);
    } while (!take(name));
    return name;
}

} // namespace flowmere::host
