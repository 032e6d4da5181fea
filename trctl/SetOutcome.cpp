#include "trctl/SetOutcome.h"

#include "stb/src/common/Text.h"

namespace trctl {

SetOutcome judgeSet(const std::string& given, const std::string& before, const std::string& after) {
    if (after == given) return {true, ""};
    std::size_t end = 0;
    const auto wanted = TR::Utils::leadingNumber(given, &end);
    if (wanted && after == std::to_string(*wanted)) {
        if (end == given.size()) return {true, "the same number, written in another way"};
        if (after != before) return {false, "only the number at its beginning was taken"};
    }
    if (after == before) return {false, "it did not take: the parameter reads as before"};
    if (TR::Utils::trimRight(after) == TR::Utils::trimRight(given))
        return {true, "the white space at its end is not kept"};
    return {false, "it reads back as something else"};
}

std::string reasonOfRefusal(const std::string& given, const std::string& refusal) {
    if (refusal.rfind("Logic error", 0) != 0 || TR::Utils::leadingNumber(given)) return refusal;
    const std::size_t digit = given.find_first_of("0123456789");
    const bool isNumber =
        digit != std::string::npos && given.find_first_not_of(" \t\n\v\f\r+-") == digit;
    return isNumber ? "the number does not fit into 64 bits" : "it is not a number";
}

}  // namespace trctl
