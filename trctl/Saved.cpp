#include "trctl/Saved.h"

#include "client/Json.h"
#include "trctl/Layout.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace trctl {

namespace {

constexpr std::size_t kLargestFile = std::size_t{256} << 20U;

}  // namespace

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
        if (content.size() <= kLargestFile) continue;
        error = "it is too large";
        return std::nullopt;
    }
    if (std::ferror(file) == 0) return content;
    error = std::generic_category().message(errno);
    return std::nullopt;
}

std::optional<Saved> readSaved(const Context& context) {
    std::string error;
    std::optional<Saved> saved;
    if (const auto content = contentOf(context.options.file, error))
        saved = client::parseSaved(*content, error);
    if (!saved) complain(context.options.file + ": " + error);
    return saved;
}

Addresses keysOf(const Saved& saved) {
    Addresses keys;
    for (const auto& [address, value] : saved) keys.push_back(address);
    return keys;
}

void printDifference(Context& context, const Difference& difference) {
    const auto line = [&](const char* ahead, const std::string& value) {
        return fittedLine(context, ahead, difference.address, value);
    };
    if (difference.file) context.out.line(context.terminal.bad(line("- ", *difference.file)));
    if (difference.daemon) context.out.line(context.terminal.good(line("+ ", *difference.daemon)));
}

}  // namespace trctl
