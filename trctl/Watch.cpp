#include "trctl/ChangeWriter.h"
#include "trctl/Commands.h"
#include "trctl/Plot.h"
#include "trctl/Text.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iterator>
#include <string>
#include <string_view>

namespace trctl {

namespace {

constexpr std::size_t kLongestValue = 200;
// What only counts time, whichever object it is in.
constexpr std::string_view kClocks[] = {"UpTime", "LastChange", "ResetTime"};

std::chrono::milliseconds intervalOf(const Context& context) {
    return std::chrono::milliseconds(
        static_cast<long long>(context.options.intervalSeconds * 1000));
}

Round read(client::Daemon& daemon, const Addresses& addresses) {
    Round round;
    for (const std::string& address : addresses)
        round.values[address] = valueOrReason(daemon, address);
    round.time = std::time(nullptr);
    round.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    return round;
}

bool isClock(const std::string& address) {
    const std::string_view name = std::string_view(address).substr(address.rfind('.') + 1);
    return std::find(std::begin(kClocks), std::end(kClocks), name) != std::end(kClocks);
}

// Without what the options leave out.
Addresses kept(const Addresses& found, const Options& options) {
    Addresses left = without(found, options.except);
    if (options.noClocks) left.erase(std::remove_if(left.begin(), left.end(), isClock), left.end());
    return left;
}

// Why there is nothing to wait for; empty when there is, or when the daemon has nothing yet.
std::string faultOfChoice(const Addresses& found, const Addresses& watched,
                          const Options& options) {
    if (found.empty()) return "";
    if (watched.empty()) return "--except and --no-clocks leave nothing to watch";
    if (options.rate && std::none_of(watched.begin(), watched.end(), Rates::isCounter))
        return "--rate needs a counter: a parameter of an object whose name ends with Stats";
    return "";
}

std::string shown(const std::string& value) {
    return shortened(escaped(value), kLongestValue, "~");
}

int watchChanges(Context& context) {
    const Options& options = context.options;
    const auto find = [&] { return select(context.daemon.parameters(), options.paths); };
    const Selection selection = find();
    if (const int status = complainOfUnmatched(context, selection.unmatched)) return status;
    const Addresses watched = kept(selection.found, options);
    if (const std::string fault = faultOfChoice(selection.found, watched, options);
        !fault.empty()) {
        complain(fault);
        return kRefused;
    }
    ChangeWriter writer(options, context.terminal, context.out);
    Round before = read(context.daemon, watched);
    while (waitFor(intervalOf(context)) != Waited::ReaderGone) {
        Round after = read(context.daemon, kept(find().found, options));
        if (writer.print(before, after)) break;
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
