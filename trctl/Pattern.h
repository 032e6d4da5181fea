#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trctl {

/// A shell pattern over addresses, whose levels end with points. `*`, `?` and `[...]` match no
/// point; `**` matches any text, points included, and `**.` where a level begins also matches
/// nothing. A backslash takes the next character for itself. A character is one of UTF-8; a `[`
/// without its end stands for itself. Time grows with the pattern's length and the square of
/// the address's at most.
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
    /// The next token and the end of the text before it. Of a star: its token, and the end of its
    /// text so far.
    struct Place {
        std::size_t token;
        std::size_t text;
    };
    using Star = std::optional<Place>;

    void addStars(std::string_view pattern, std::size_t& at);
    void addSet(std::string_view pattern, std::size_t& at);
    std::size_t behind(std::size_t token) const;
    /// One character or level more for a star; false when it can have no more.
    bool grow(Place& star, std::string_view address) const;
    static bool isStar(const Token& token);
    static bool takes(const Token& token, std::string_view character);

    std::vector<Token> tokens_;
};

}  // namespace trctl
