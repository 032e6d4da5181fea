#pragma once

#include "providers/NetworkStats.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace TR {

/// Carries the kernel's counters of one interface on beyond their 32 bits, which television fills
/// in half an hour. A refresh must come at least once per 4 GiB, so that a lower figure than the
/// last one means exactly one wrap. An interface that was made anew counts from its own figures. A
/// plain value without a lock of its own.
class NetworkCounters {
  public:
    /// Places in a reading.
    enum Counter : std::size_t {
        PacketsReceived,
        PacketsSent,
        BytesReceived,
        BytesSent,
        ErrorsReceived,
        ErrorsSent,
        DroppedReceived,
        DroppedSent,
        MulticastReceived,
        kCounterCount,
    };
    using Reading = std::array<std::uint32_t, kCounterCount>;

    /// Takes a reading of the interface that has this index; the kernel gives a new interface a new
    /// one.
    void update(unsigned interfaceIndex, const Reading& reading);

    /// The interface is gone: its figures stay, and the next reading starts anew.
    void vanished() { interfaceIndex_ = kNoInterface; }

    NetworkStats stats() const;

  private:
    static constexpr unsigned kNoInterface = 0;  // the kernel counts from 1

    unsigned interfaceIndex_ = kNoInterface;
    Reading last_{};
    std::array<std::uint64_t, kCounterCount> totals_{};
};

}  // namespace TR
