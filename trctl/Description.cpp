#include "trctl/Description.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace trctl {

namespace {

constexpr std::string_view kInstance = "{i}";

// Removes what comes before the separator, and the separator, and returns the first.
std::string_view take(std::string_view& text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view piece = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return piece;
}

bool matches(std::string_view address, std::string_view pattern) {
    while (true) {
        const std::size_t at = pattern.find(kInstance);
        if (at == std::string_view::npos) return address == pattern;
        if (address.substr(0, at) != pattern.substr(0, at)) return false;
        address.remove_prefix(at);
        pattern.remove_prefix(at + kInstance.size());
        const std::size_t digits =
            std::min(address.find_first_not_of("0123456789"), address.size());
        if (digits == 0) return false;
        address.remove_prefix(digits);
    }
}

// Whether one of the prefixes, separated by blanks, and the name make the address.
bool isNamed(std::string_view address, std::string_view prefixes, std::string_view name) {
    do {
        std::string pattern(take(prefixes, ' '));
        if (name != ".") pattern += name;
        if (matches(address, pattern)) return true;
    } while (!prefixes.empty());
    return false;
}

}  // namespace

std::optional<Description> descriptionOf(const std::string& address) {
    std::string_view rows = kParameterTable;
    std::string_view prefixes;
    while (!rows.empty()) {
        std::string_view row = take(rows, '\n');
        if (!row.empty() && row.front() == '@') {
            prefixes = row.substr(std::min<std::size_t>(2, row.size()));
        } else if (!row.empty() && isNamed(address, prefixes, take(row, '|'))) {
            std::string unit(take(row, '|'));
            std::string source(take(row, '|'));
            if (source.empty() && address.back() != '.') source = "constant";
            return Description{std::move(unit), std::move(source), std::string(row)};
        }
    }
    return std::nullopt;
}

}  // namespace trctl
