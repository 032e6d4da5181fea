#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trctl {

/// A shell pattern over addresses, whose levels end with points. `*`, `?` and `[...]` match no
/// point; `**` matches any text, points included, and `**.` where a level begins also matches
/// nothing. A backslash takes the next character for itself. A character is one of UTF-8; a `[`
/// without its end stands for itself. Time and room grow with the product of both lengths at most.
class Pattern {
  public:
    /// With \p beneath it matches what has more after the match, which then ends with a point.
    explicit Pattern(std::string_view pattern, bool beneath = false);

    bool matches(std::string_view address) const;

    /// The text holds something that a pattern is made of.
    static bool isPattern(std::string_view text);

  private:
    enum class Kind { Text, One, Set, Level, Levels, SomeLevels, Any };
    struct Token {
        Kind kind;
        std::string text;  ///< of Text and Set
    };
    using Places = std::vector<bool>;  ///< of the tokens that come next; one more is the end

    void addStars(std::string_view pattern, std::size_t& at);
    void addSet(std::string_view pattern, std::size_t& at);
    void reach(Places& places, std::size_t place) const;
    static bool takes(const Token& token, std::string_view character);

    std::vector<Token> tokens_;
};

}  // namespace trctl
