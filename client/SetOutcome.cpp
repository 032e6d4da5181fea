#include "client/SetOutcome.h"

#include <cerrno>
#include <cstdlib>
#include <optional>

namespace client {

namespace {

struct Number {
    long long value;
    bool isWholeText;
};

// As the daemon reads one: white space, a sign, digits; what follows is ignored there.
std::optional<Number> leadingNumber(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str() || errno == ERANGE) return std::nullopt;
    return Number{value, *end == '\0'};
}

std::string withoutTrailingBlanks(const std::string& text) {
    const std::size_t last = text.find_last_not_of(" \t\r\n\v\f");
    return text.substr(0, last == std::string::npos ? 0 : last + 1);
}

}  // namespace

SetOutcome judgeSet(const std::string& given, const std::string& before, const std::string& after) {
    if (after == given) return {true, ""};
    const auto wanted = leadingNumber(given);
    if (wanted && after == std::to_string(wanted->value)) {
        if (wanted->isWholeText) return {true, "the same number, written in another way"};
        if (after != before) return {false, "only the number at its beginning was taken"};
    }
    if (after == before) return {false, "it did not take: the parameter reads as before"};
    if (withoutTrailingBlanks(after) == withoutTrailingBlanks(given)) {
        return {true, "the white space at its end is not kept"};
    }
    return {false, "it reads back as something else"};
}

}  // namespace client
