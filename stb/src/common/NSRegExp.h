#pragma once

#include <string>
#include <vector>

#include <regex.h>

/// A compiled POSIX extended regular expression. A pattern that does not compile is reported on
/// stderr and leaves an object whose matches fail. match() is const and may run on several threads.
class NSRegExp {
  public:
    explicit NSRegExp(std::string pattern);
    ~NSRegExp();
    NSRegExp(const NSRegExp&) = delete;
    NSRegExp& operator=(const NSRegExp&) = delete;

    /// Fills `groups` with the whole match and the captured groups in order; a group that took no
    /// part is an empty text. Without a match `groups` is emptied. The text ends at its first NUL
    /// byte.
    bool match(const std::string& text, std::vector<std::string>& groups) const;
    bool match(const std::string& text) const;

  private:
    void compile();
    void free();

    const std::string pattern_;
    regex_t expression_{};
    bool compiled_ = false;
};
