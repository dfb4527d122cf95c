#include "host/shell/Words.h"

#include "host/basics/Command.h"

#include <utility>

namespace flowmere::host::shell {

namespace {

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r';
}

struct Scan {
    std::vector<Word> words;
    char openQuote = '\0';
    bool isComment = false;
};

Scan scan(std::string_view line) {
    Scan result;
    std::size_t at = 0;
    while (at < line.size()) {
        if (isBlank(line[at])) {
            ++at;
            continue;
        }
        if (line[at] == '#') {
            result.isComment = true;
            break;
        }
        Word word;
        word.begin = at;
        char quote = '\0';
        for (; at < line.size() && (quote != '\0' || !isBlank(line[at])); ++at) {
            char const character = line[at];
            if (quote != '\0' && character == quote) {
                quote = '\0';
            } else if (quote == '\0' && (character == '"' || character == '\'')) {
                quote = character;
                word.isQuoted = true;
            } else if (quote == '"' && character == '\\' && at + 1 < line.size() &&
                       (line[at + 1] == '"' || line[at + 1] == '\\')) {
                word.text += line[++at];
            } else {
                word.text += character;
            }
        }
        word.end = at;
        result.openQuote = quote;
        result.words.push_back(std::move(word));
    }
    return result;
}

} // namespace

std::vector<Word> wordsOf(std::string_view line) {
    if (line.find('\0') != std::string_view::npos)
        throw Failure("", "", "the line holds a zero byte");
    Scan result = scan(line);
    if (result.openQuote != '\0')
        throw Failure("", "", std::string("a quote ") + result.openQuote + " is not closed");
    return std::move(result.words);
}

OpenLine openLineOf(std::string_view line) {
    Scan result = scan(line);
    OpenLine open;
    open.isComment = result.isComment;
    bool const isInWord = !result.words.empty() && result.words.back().end == line.size() && !result.isComment;
    if (isInWord) {
        open.current = std::move(result.words.back());
        result.words.pop_back();
    } else {
        open.current.begin = line.size();
        open.current.end = line.size();
    }
    open.words = std::move(result.words);
    return open;
}

std::string asWord(std::string const& text) {
    bool const isPlain = !text.empty() && text.front() != '#' && text.find_first_of(" \t\r\"'") == std::string::npos;
    if (isPlain)
        return text;
    std::string word = "\"";
    for (char const character : text) {
        if (character == '"' || character == '\\')
            word += '\\';
        word += character;
    }
    return word + "\"";
}

} // namespace flowmere::host::shell
