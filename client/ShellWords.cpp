#include "client/ShellWords.h"

#include <cstring>
#include <utility>

namespace client {

namespace {

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\n';
}

bool isQuote(char character) {
    return character == '"' || character == '\'';
}

// A backslash ahead of it, inside this quote.
bool isEscape(char quote, char next) {
    if (next == '\0' || quote == '\'') return false;
    return quote == '\0' || std::strchr("\"\\$`", next) != nullptr;
}

}  // namespace

ShellWords shellWords(const std::string& line) {
    ShellWords split;
    std::string word;
    char quote = '\0';
    bool isInWord = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char character = line[at];
        const bool isEnd = quote == '\0' && isBlank(character);
        if (isEnd && isInWord) split.words.push_back(std::exchange(word, ""));
        isInWord = !isEnd;
        if (isEnd) continue;
        const char next = at + 1 < line.size() ? line[at + 1] : '\0';
        if (character == '\\' && isEscape(quote, next))
            word += line[++at];
        else if (quote == '\0' ? isQuote(character) : character == quote)
            quote = quote == '\0' ? character : '\0';
        else
            word += character;
    }
    split.words.push_back(word);
    split.isQuoted = quote != '\0';
    return split;
}

}  // namespace client
