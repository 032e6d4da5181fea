#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace trctl {

enum class ColorMode { Auto, Always, Never };

/// What standard output is, and how things may look there.
class Terminal {
  public:
    explicit Terminal(ColorMode mode);

    bool isTerminal() const { return isTerminal_; }
    /// The locale writes UTF-8.
    bool isUtf8() const { return isUtf8_; }

    struct Size {
        std::size_t columns;
        std::size_t rows;
    };
    /// At this moment; 80 by 24 when it is not known.
    Size size() const;

    /// In that colour, where colours are wanted.
    std::string name(const std::string& text) const { return colored("34", text); }
    std::string good(const std::string& text) const { return colored("32", text); }
    std::string bad(const std::string& text) const { return colored("31", text); }
    std::string faint(const std::string& text) const { return colored("2", text); }

  private:
    std::string colored(const char* color, const std::string& text) const;

    bool isTerminal_;
    bool isUtf8_;
    bool isColored_;
};

enum class Waited { Elapsed, Resized, ReaderGone };
/// Returns early when the terminal has changed its size or nobody reads standard output any more.
Waited waitFor(std::chrono::milliseconds time);

/// From here on SIGINT ends the program at once with status 0, in the middle of a call too, unless
/// it was started with SIGINT ignored.
void endOnInterrupt();

/// The terminal's second screen, without a cursor, for as long as the object lives. The first
/// screen is back when the program ends, also on SIGINT, SIGTERM or SIGHUP, and while it is
/// stopped.
class SecondScreen {
  public:
    SecondScreen();
    ~SecondScreen();
    SecondScreen(const SecondScreen&) = delete;
    SecondScreen& operator=(const SecondScreen&) = delete;
};

}  // namespace trctl
