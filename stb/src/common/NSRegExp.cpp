#include "stb/src/common/NSRegExp.h"

#include "stb/src/common/STBLogSink.h"

#include <cstddef>
#include <utility>

namespace {

std::string groupText(const std::string& text, const regmatch_t& group) {
    if (group.rm_so < 0) return {};
    return text.substr(static_cast<std::size_t>(group.rm_so),
                       static_cast<std::size_t>(group.rm_eo - group.rm_so));
}

}  // namespace

NSRegExp::NSRegExp(std::string pattern) : pattern_(std::move(pattern)) {
    compile();
}

NSRegExp::~NSRegExp() {
    free();
}

void NSRegExp::compile() {
    compiled_ = regcomp(&expression_, pattern_.c_str(), REG_EXTENDED) == 0;
    if (!compiled_)
        stb_log_sink::printLine("NSRegExp: Error while compiling regexp: %s", pattern_.c_str());
}

void NSRegExp::free() {
    // After a failed regcomp() the content of the expression is undefined.
    if (compiled_) regfree(&expression_);
    compiled_ = false;
}

bool NSRegExp::match(const std::string& text, std::vector<std::string>& groups) const {
    groups.clear();
    if (!compiled_) {
        stb_log_sink::printLine("NSRegExp: Error while matching (invalid regexp: %s)",
                                pattern_.c_str());
        return false;
    }
    std::vector<regmatch_t> found(expression_.re_nsub + 1);
    if (regexec(&expression_, text.c_str(), found.size(), found.data(), 0) != 0) return false;
    for (const regmatch_t& group : found) groups.push_back(groupText(text, group));
    return true;
}

bool NSRegExp::match(const std::string& text) const {
    std::vector<std::string> groups;
    return match(text, groups);
}
