#include "cwmp/Conversion.h"

#include "cwmp/DateTime.h"
#include "cwmp/Log.h"
#include "cwmp/Text.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace cwmp {

namespace {

constexpr char kLogName[] = "Device.DeviceInfo.DeviceLog";

/// A whole number beyond both signs' 64 bits saturates.
struct Number {
    bool isNegative = false;
    std::uint64_t magnitude = 0;
    bool isTooLarge = false;
};

struct Range {
    std::uint64_t lowest;  ///< the magnitude of the most negative number
    std::uint64_t highest;
};

constexpr Range rangeOf(Xsd type) {
    constexpr std::uint64_t kInt = std::numeric_limits<std::int32_t>::max();
    if (type == Xsd::Int) return {kInt + 1, kInt};
    if (type == Xsd::UnsignedInt) return {0, std::numeric_limits<std::uint32_t>::max()};
    return {0, std::numeric_limits<std::uint64_t>::max()};
}

// A sign and digits, and nothing else.
std::optional<Number> parseNumber(const std::string& text) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    const bool isSigned = !text.empty() && (text.front() == '-' || text.front() == '+');
    if (text.size() == (isSigned ? 1U : 0U)) return std::nullopt;
    Number number;
    for (std::size_t i = isSigned ? 1 : 0; i < text.size(); ++i) {
        if (text[i] < '0' || text[i] > '9') return std::nullopt;
        const auto digit = static_cast<std::uint64_t>(text[i] - '0');
        number.isTooLarge = number.isTooLarge || number.magnitude > (kMost - digit) / 10;
        number.magnitude = number.isTooLarge ? kMost : number.magnitude * 10 + digit;
    }
    number.isNegative = text.front() == '-' && number.magnitude != 0;
    return number;
}

bool isWithin(const Number& number, const Range& range) {
    const std::uint64_t limit = number.isNegative ? range.lowest : range.highest;
    return !number.isTooLarge && number.magnitude <= limit;
}

std::string textOf(const Number& number) {
    return (number.isNegative ? "-" : "") + std::to_string(number.magnitude);
}

// What the box counts further than the type reaches shows as the type's limit.
std::optional<std::string> saturated(Xsd type, const std::string& text) {
    auto number = parseNumber(text);
    if (!number) return std::nullopt;
    const Range range = rangeOf(type);
    number->magnitude =
        std::min(number->magnitude, number->isNegative ? range.lowest : range.highest);
    number->isNegative = number->isNegative && number->magnitude != 0;
    return textOf(*number);
}

std::optional<std::string> numberFromAcs(Xsd type, const std::string& text) {
    const auto number = parseNumber(text);
    if (!number || !isWithin(*number, rangeOf(type))) return std::nullopt;
    return textOf(*number);
}

std::optional<std::string> flag(const std::string& text) {
    if (text == "1" || text == "true") return "1";
    if (text == "0" || text == "false") return "0";
    return std::nullopt;
}

// Nothing when the daemon's text does not fit the type.
std::optional<std::string> typed(Xsd type, const std::string& text) {
    switch (type) {
        case Xsd::String:
            return std::nullopt;
        case Xsd::Boolean:
            return flag(text);
        case Xsd::DateTime:
            return text.empty() ? std::string(kUnknownTime) : dateTimeToAcs(text);
        default:
            return saturated(type, text);
    }
}

std::string logged(const std::string& text) {
    const std::string clean = xmlClean(unescapeLog(text));
    return std::string(tailOf(clean, kLongestLog));
}

std::string shortened(const std::string& parameter, const std::string& text) {
    std::string clean = xmlClean(text);
    if (clean.size() <= kLongestValue) return clean;
    warn("The value of " + parameter + " is cut from " + std::to_string(clean.size()) +
         " bytes to " + std::to_string(kLongestValue));
    return std::string(headOf(clean, kLongestValue));
}

}  // namespace

Seen toAcs(const std::string& parameter, const std::string& text) {
    const Xsd type = typeOf(parameter);
    if (isSecret(parameter)) return {{}, type};
    if (parameter == kLogName) return {logged(text), type};
    if (auto value = typed(type, text)) return {*std::move(value), type};
    return {shortened(parameter, text), Xsd::String};
}

std::optional<std::string> fromAcs(Xsd type, const std::string& text) {
    switch (type) {
        case Xsd::String:
            return isXmlClean(text) ? std::optional(text) : std::nullopt;
        case Xsd::Boolean:
            return flag(text);
        case Xsd::DateTime:
            return dateTimeFromAcs(text);
        default:
            return numberFromAcs(type, text);
    }
}

bool isSameValue(Xsd type, const std::string& one, const std::string& other) {
    if (one == other) return true;
    const auto value = typed(type, one);
    return value && value == typed(type, other);
}

}  // namespace cwmp
