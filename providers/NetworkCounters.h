#pragma once

#include "providers/NetworkDataProvider.h"
#include "providers/NetworkLinks.h"

namespace TR {

/// Adds to the statistics what the kernel has counted since \p before. The kernel's counters are 32
/// bits wide; television fills one in half an hour. A lower figure than the last one counts as
/// exactly one wrap, so a refresh must come at least once per 4 GiB. When \p before is null or has
/// another index, the interface is new and starts from the kernel's figures.
void countTraffic(NetworkDataProvider::Interface::Stats& stats, const NetworkLink* before,
                  const NetworkLink& now);

}  // namespace TR
