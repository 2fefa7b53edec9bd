#pragma once
// Deltas written by hand in tests: runs of pixels and a delta made of them.

#include "sprites/delta_table.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace torquil::testing {

inline RunLine run(std::uint16_t offset, std::vector<std::uint8_t> data) {
    RunLine r;
    r.offset = offset;
    r.length = static_cast<std::uint8_t>(data.size());
    r.data = std::move(data);
    return r;
}

inline DeltaRec deltaOf(std::vector<RunLine> runs) {
    DeltaRec d;
    d.runLine = std::move(runs);
    return d;
}

} // namespace torquil::testing
