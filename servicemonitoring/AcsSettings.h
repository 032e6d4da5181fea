#pragma once

#include "model/Value.h"

#include <cstdint>
#include <optional>

namespace TR {

class Storage;

/// The settings of service monitoring as the store held them at the start of a cycle, whoever wrote
/// them; `Undefined` where there was none. `FetchSamples` is not among them: nothing depends on it.
struct AcsSettings {
    Value reportSamples;
    Value sampleEnable;
    Value sampleInterval;
    Value timeReference;
    Value totalReset;
    Value mainStreamEnable;

    /// Takes the store mutex while it copies.
    static AcsSettings copiedFrom(Storage& storage);

    /// The number of an integer setting; nothing when the setting is of another type.
    static std::optional<std::int64_t> number(const Value& setting);
};

}  // namespace TR
