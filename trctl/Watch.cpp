#include "trctl/Commands.h"
#include "trctl/Plot.h"
#include "trctl/Text.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <map>
#include <optional>
#include <string>

namespace trctl {

namespace {

using Round = std::map<std::string, std::string>;

constexpr std::size_t kLongestValue = 200;

std::chrono::milliseconds intervalOf(const Context& context) {
    return std::chrono::milliseconds(
        static_cast<long long>(context.options.intervalSeconds * 1000));
}

Round read(client::Daemon& daemon, const Addresses& addresses) {
    Round round;
    for (const std::string& address : addresses) round[address] = valueOrReason(daemon, address);
    return round;
}

std::string timeOfDay() {
    char text[16] = "";
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    std::strftime(text, sizeof text, "%H:%M:%S", localtime_r(&now, &local));
    return text;
}

std::string shown(const std::string& value) {
    return shortened(escaped(value), kLongestValue, "~");
}

/// Prints what differs between two rounds, each line with the same time.
class Changes {
  public:
    explicit Changes(Context& context) : context_(context), time_(timeOfDay()) {}

    void print(const Round& before, const Round& after) {
        for (const auto& [address, value] : after) {
            const auto old = before.find(address);
            if (old == before.end())
                print(address, "(none)", shown(value));
            else if (old->second != value)
                print(address, shown(old->second), shown(value));
        }
        for (const auto& [address, value] : before)
            if (after.count(address) == 0) print(address, shown(value), "(gone)");
        context_.out.flush();
    }

  private:
    void print(const std::string& address, const std::string& before, const std::string& after) {
        const Terminal& terminal = context_.terminal;
        context_.out.line(terminal.faint(time_) + ' ' + escaped(address) + ": " + before + " -> " +
                          terminal.good(after));
    }

    Context& context_;
    std::string time_;
};

int watchChanges(Context& context) {
    const Options& options = context.options;
    Selection selection = select(context.daemon.parameters(), options.paths);
    if (const int status = complainOfUnmatched(context, selection.unmatched)) return status;
    Round before = read(context.daemon, selection.found);
    while (waitFor(intervalOf(context)) != Waited::ReaderGone) {
        selection = select(context.daemon.parameters(), options.paths);
        Round after = read(context.daemon, selection.found);
        Changes(context).print(before, after);
        before = std::move(after);
    }
    return kDone;
}

std::string headline(const std::string& address, const std::string& value, double interval) {
    return escaped(address) + " = " + escaped(value) + "   every " + numberText(interval) +
           " s, until Ctrl-C";
}

// Every line is drawn again, so that nothing of another size is left.
void drawFrame(Context& context, const Plot& plot, const std::string& head) {
    const Terminal::Size size = context.terminal.size();
    const auto style = context.terminal.isUtf8() && !context.options.ascii ? Plot::Style::Braille
                                                                           : Plot::Style::Ascii;
    context.out.print("\x1b[H" + shortened(head, size.columns, "~") + "\x1b[K");
    for (const std::string& line : plot.draw(size.columns, size.rows - 1, style))
        context.out.print("\r\n" + line + "\x1b[K");
    context.out.print("\x1b[J");
    context.out.flush();
}

void runPlot(Context& context, const std::string& address) {
    Plot plot;
    const SecondScreen screen;
    std::string value;
    Waited waited = Waited::Elapsed;
    while (waited != Waited::ReaderGone) {
        if (waited == Waited::Elapsed) {
            value = valueOrReason(context.daemon, address);
            plot.add(numberOf(value));
        }
        drawFrame(context, plot, headline(address, value, context.options.intervalSeconds));
        waited = waitFor(intervalOf(context));
    }
}

int watchPlot(Context& context) {
    if (!context.terminal.isTerminal()) {
        complain("--plot draws on a terminal only; without it the changes are printed");
        return kUsage;
    }
    const Selection selection = select(context.daemon.parameters(), context.options.paths);
    if (const int status = complainOfUnmatched(context, selection.unmatched)) return status;
    if (context.options.paths.empty() || selection.found.size() != 1) {
        complain("--plot draws one parameter");
        return kUsage;
    }
    const std::string& address = selection.found.front();
    const std::string value = context.daemon.value(address);
    if (!numberOf(value)) {
        complain(valueLine(address, shown(value)) + " is not a number");
        return kRefused;
    }
    runPlot(context, address);
    return kDone;
}

}  // namespace

int watch(Context& context) {
    endOnInterrupt();
    return context.options.plot ? watchPlot(context) : watchChanges(context);
}

}  // namespace trctl
