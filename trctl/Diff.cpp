#include "client/Json.h"
#include "trctl/Commands.h"

#include <cerrno>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace trctl {

namespace {

using Saved = std::map<std::string, std::string>;

constexpr std::size_t kLargestFile = std::size_t{256} << 20U;

// Nothing, and the reason, when it cannot be read to its end.
std::optional<std::string> contentOf(const std::string& path, std::string& error) {
    const auto close = [](std::FILE* file) { std::fclose(file); };
    const std::unique_ptr<std::FILE, decltype(close)> opened(
        path == "-" ? nullptr : std::fopen(path.c_str(), "re"), close);
    std::FILE* file = path == "-" ? stdin : opened.get();
    if (file == nullptr) {
        error = std::generic_category().message(errno);
        return std::nullopt;
    }
    std::string content;
    char piece[16 * 1024];
    while (const std::size_t count = std::fread(piece, 1, sizeof piece, file)) {
        content.append(piece, count);
        if (content.size() > kLargestFile) break;
    }
    if (std::ferror(file) != 0) {
        error = std::generic_category().message(errno);
        return std::nullopt;
    }
    return content;
}

std::optional<Saved> readSaved(const std::string& path, std::string& error) {
    const auto content = contentOf(path, error);
    if (!content) return std::nullopt;
    if (content->size() > kLargestFile) {
        error = "it is too large";
        return std::nullopt;
    }
    return client::parseSaved(*content, error);
}

Addresses keysOf(const Saved& saved) {
    Addresses keys;
    for (const auto& [address, value] : saved) keys.push_back(address);
    return keys;
}

/// Prints the two sides in the order of addresses.
class Comparison {
  public:
    explicit Comparison(Context& context) : context_(context) {}

    void compare(const std::string& address, const std::string* saved, const std::string* now) {
        if (saved != nullptr && now != nullptr && *saved == *now) return;
        isDifferent_ = true;
        if (saved != nullptr)
            context_.out.line(context_.terminal.bad("- " + valueLine(address, *saved)));
        if (now != nullptr)
            context_.out.line(context_.terminal.good("+ " + valueLine(address, *now)));
    }
    bool isDifferent() const { return isDifferent_; }

  private:
    Context& context_;
    bool isDifferent_ = false;
};

// The paths that neither the daemon nor the file has.
Addresses unmatchedInBoth(const Selection& now, const Saved& saved) {
    return now.unmatched.empty() ? Addresses{} : select(keysOf(saved), now.unmatched).unmatched;
}

}  // namespace

int diff(Context& context) {
    std::string error;
    const auto saved = readSaved(context.options.file, error);
    if (!saved) {
        complain(context.options.file + ": " + error);
        return kUsage;
    }
    const Selection now = select(context.daemon.parameters(), context.options.paths);
    // What both have or only one: first all addresses, then side by side.
    std::map<std::string, const std::string*> sides;
    for (const std::string& address : select(keysOf(*saved), context.options.paths).found)
        sides[address] = &saved->at(address);
    std::map<std::string, std::string> values;
    for (const std::string& address : now.found) {
        values[address] = context.daemon.value(address);
        sides.try_emplace(address, nullptr);
    }
    Comparison comparison(context);
    for (const auto& [address, side] : sides) {
        const auto value = values.find(address);
        comparison.compare(address, side, value == values.end() ? nullptr : &value->second);
    }
    // As of diff(1): a wrong call outweighs a difference.
    if (complainOfUnmatched(context, unmatchedInBoth(now, *saved)) != kDone) return kUsage;
    return comparison.isDifferent() ? kRefused : kDone;
}

}  // namespace trctl
