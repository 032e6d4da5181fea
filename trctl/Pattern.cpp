#include "trctl/Pattern.h"

#include <algorithm>

#include <fnmatch.h>

namespace trctl {

namespace {

// At least one byte, which need not be the first of a character.
std::string_view firstCharacter(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xc0U) == 0x80U)
        ++length;
    return text.substr(0, length);
}

// Where the set that begins here ends, behind its bracket; 0 when it does not end. A point ends the
// level, and the set with it, as a slash does in a shell.
std::size_t endOfSet(std::string_view pattern, std::size_t at) {
    std::size_t next = at + 1;
    if (next < pattern.size() && (pattern[next] == '!' || pattern[next] == '^')) ++next;
    if (next < pattern.size() && pattern[next] == ']') ++next;
    for (; next < pattern.size() && pattern[next] != '.'; ++next) {
        if (pattern[next] == ']') return next + 1;
        if (pattern[next] == '\\') ++next;
        if (pattern.substr(next, 2) == "[:") {
            const std::size_t end = pattern.find(":]", next + 2);
            if (end != std::string_view::npos) next = end + 1;
        }
    }
    return 0;
}

}  // namespace

Pattern::Pattern(std::string_view pattern, bool beneath) {
    for (std::size_t at = 0; at < pattern.size();) {
        if (pattern[at] == '*') {
            addStars(pattern, at);
        } else if (pattern[at] == '?') {
            tokens_.push_back({Kind::One, ""});
            ++at;
        } else if (pattern[at] == '[' && endOfSet(pattern, at) != 0) {
            addSet(pattern, at);
        } else {
            if (pattern[at] == '\\' && at + 1 < pattern.size()) ++at;
            tokens_.push_back({Kind::Text, std::string(firstCharacter(pattern.substr(at)))});
            at += tokens_.back().text.size();
        }
    }
    if (!beneath) return;
    tokens_.push_back({Kind::Any, ""});
    tokens_.push_back({Kind::Levels, ""});
}

void Pattern::addStars(std::string_view pattern, std::size_t& at) {
    const std::size_t first = at;
    at = std::min(pattern.find_first_not_of('*', at), pattern.size());
    const bool startsLevel = first == 0 || (!tokens_.empty() && tokens_.back().text == ".");
    const bool endsLevel = at < pattern.size() && pattern[at] == '.';
    const Kind levels = startsLevel && endsLevel ? Kind::SomeLevels : Kind::Levels;
    tokens_.push_back({at - first == 1 ? Kind::Level : levels, ""});
}

void Pattern::addSet(std::string_view pattern, std::size_t& at) {
    const std::size_t end = endOfSet(pattern, at);
    tokens_.push_back({Kind::Set, std::string(pattern.substr(at, end - at))});
    at = end;
}

// What may match nothing is passed at once; the places in the range are in order.
void Pattern::reach(Places& places, std::size_t place) const {
    places[place] = true;
    for (; place < tokens_.size(); ++place) {
        const Kind kind = tokens_[place].kind;
        if (kind != Kind::Level && kind != Kind::Levels && kind != Kind::SomeLevels) return;
        if (kind == Kind::SomeLevels) reach(places, place + 2);  // a point follows it
        places[place + 1] = true;
    }
}

bool Pattern::takes(const Token& token, std::string_view character) {
    switch (token.kind) {
        case Kind::Text:
            return character == token.text;
        case Kind::One:
        case Kind::Level:
            return character != ".";
        case Kind::Set:
            return character != "." &&
                   fnmatch(token.text.c_str(), std::string(character).c_str(), 0) == 0;
        default:
            return true;
    }
}

bool Pattern::matches(std::string_view address) const {
    Places places(tokens_.size() + 1), next;
    reach(places, 0);
    bool isAlive = true;
    while (!address.empty() && isAlive) {
        const std::string_view character = firstCharacter(address);
        address.remove_prefix(character.size());
        next.assign(tokens_.size() + 1, false);
        isAlive = false;
        for (std::size_t place = 0; place < tokens_.size(); ++place) {
            if (!places[place] || !takes(tokens_[place], character)) continue;
            const Kind kind = tokens_[place].kind;
            const bool stays =
                kind == Kind::Level || kind == Kind::Levels || kind == Kind::SomeLevels;
            // With text taken, its point follows: it cannot match nothing any more.
            if (stays) next[place] = true;
            reach(next, place + 1);
            isAlive = true;
        }
        places.swap(next);
    }
    return isAlive && places.back();
}

bool Pattern::isPattern(std::string_view text) {
    return text.find_first_of("*?[") != std::string_view::npos;
}

}  // namespace trctl
