#include "stb/src/common/Trim.h"

#include <algorithm>
#include <cctype>

namespace TR::Utils {

namespace {

bool isBlack(unsigned char byte) {
    return std::isspace(byte) == 0;
}

}  // namespace

std::string trimRight(std::string text) {
    text.erase(std::find_if(text.rbegin(), text.rend(), isBlack).base(), text.end());
    return text;
}

std::string trim(std::string text) {
    text = trimRight(std::move(text));
    text.erase(text.begin(), std::find_if(text.begin(), text.end(), isBlack));
    return text;
}

}  // namespace TR::Utils
