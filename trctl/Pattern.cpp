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
    // Only the last star of each kind is tried again: what is before it matches as early as it can,
    // which leaves the most for what follows.
    Star level, levels;
    Place place{0, 0};
    while (place.token < tokens_.size() || place.text < address.size()) {
        if (place.token < tokens_.size() && isStar(tokens_[place.token])) {
            const bool isLevel = tokens_[place.token].kind == Kind::Level;
            (isLevel ? level : levels) = place;
            if (!isLevel) level.reset();
            place.token = behind(place.token);
        } else if (place.token < tokens_.size() && place.text < address.size() &&
                   takes(tokens_[place.token], firstCharacter(address.substr(place.text)))) {
            place.text += firstCharacter(address.substr(place.text)).size();
            ++place.token;
        } else if (level && grow(*level, address)) {
            place = {behind(level->token), level->text};
        } else if (levels && grow(*levels, address)) {
            level.reset();
            place = {behind(levels->token), levels->text};
        } else {
            return false;
        }
    }
    return true;
}

bool Pattern::isStar(const Token& token) {
    return token.kind == Kind::Level || token.kind == Kind::Levels ||
           token.kind == Kind::SomeLevels;
}

// The point that follows SomeLevels is a part of what that matches.
std::size_t Pattern::behind(std::size_t token) const {
    return token + (tokens_[token].kind == Kind::SomeLevels ? 2 : 1);
}

bool Pattern::grow(Place& star, std::string_view address) const {
    const std::string_view rest = address.substr(star.text);
    if (rest.empty()) return false;
    const Kind kind = tokens_[star.token].kind;
    if (kind == Kind::SomeLevels) {
        const std::size_t point = rest.find('.');
        star.text += point + 1;
        return point != std::string_view::npos;
    }
    star.text += firstCharacter(rest).size();
    return kind == Kind::Levels || rest.front() != '.';
}

bool Pattern::isPattern(std::string_view text) {
    return text.find_first_of("*?[") != std::string_view::npos;
}

}  // namespace trctl
