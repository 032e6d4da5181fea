#pragma once

#include "providers/NetworkDataProvider.h"
#include "providers/NetworkLinks.h"

namespace TR {

/// Carries the statistics on by what the kernel has counted since the link \p before, beyond the 32
/// bits of its counters, which television fills in half an hour. A refresh must come at least once
/// per 4 GiB, so that a lower figure than the last one means exactly one wrap. Without a link
/// before (null), or with another index, the interface is a new one and counts from the kernel's
/// figures.
void countTraffic(NetworkDataProvider::Interface::Stats& stats, const NetworkLink* before,
                  const NetworkLink& now);

}  // namespace TR
