#include "trctl/Reader.h"
#include "trctl/Saved.h"
#include "trctl/SavedPart.h"

#include <algorithm>
#include <map>
#include <optional>

namespace trctl {

namespace {

using Sides = std::map<std::string, Difference>;

// With paths the caller names the part, else the file's is derived.
Addresses comparable(const Context& context, const Addresses& found, const Saved& saved) {
    if (!context.options.paths.empty()) return found;
    SavedPart part(keysOf(saved), found);
    Addresses kept;
    for (const std::string& address : found)
        if (saved.count(address) != 0 || part.covers(address)) kept.push_back(address);
    return kept;
}

// A value that the daemon refuses is not compared.
Sides sidesOf(Context& context, Reader& reader, const Saved& saved, const Addresses& found) {
    Sides sides;
    for (const std::string& address : select(keysOf(saved), context.options.paths).found)
        sides[address] = {address, saved.at(address), std::nullopt};
    for (const std::string& address : comparable(context, found, saved)) {
        Difference& side = sides.try_emplace(address, Difference{address, {}, {}}).first->second;
        side.daemon = reader.value(address);
        if (!side.daemon) sides.erase(address);
    }
    return sides;
}

// The paths that neither the daemon nor the file has.
Addresses unmatchedInBoth(const Selection& now, const Saved& saved) {
    return now.unmatched.empty() ? Addresses{} : select(keysOf(saved), now.unmatched).unmatched;
}

}  // namespace

int diff(Context& context) {
    const auto saved = readSaved(context);
    if (!saved) return kUsage;
    const Selection now = select(context.daemon.parameters(), context.options.paths);
    Reader reader(context.daemon);
    std::vector<Difference> differences;
    for (const auto& [address, side] : sidesOf(context, reader, *saved, now.found))
        if (side.file != side.daemon) differences.push_back(side);
    if (context.options.json)
        context.out.line(diffJson(differences));
    else
        for (const Difference& difference : differences) printDifference(context, difference);
    // As of diff(1): a wrong call outweighs a difference.
    if (complainOfUnmatched(context, unmatchedInBoth(now, *saved)) != kDone) return kUsage;
    return differences.empty() ? reader.status() : kRefused;
}

}  // namespace trctl
