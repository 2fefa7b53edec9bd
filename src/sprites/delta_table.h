#pragma once
// The delta table myDeltas: one entry per delta entry of the sprite info section, in file order.
// The sprite info loader fills size, ptr and the entry's file position; the delta loader fills
// the run lines from the delta store.

#include <cstdint>
#include <vector>

namespace torquil {

struct RunLine {
    std::uint16_t offset = 0; // row * 256 + column from the sprite's top-left pixel
    std::uint8_t length = 0;
    std::vector<std::uint8_t> data;
};

struct DeltaRec {
    std::int16_t size = 0;
    std::int32_t ptr = 0;         // from the start of the sprite graphics section
    std::int32_t entryPos = 0;    // 1-based position of the size/ptr pair in sprite info
    std::vector<RunLine> runLine; // starts as a single empty element
};

struct DeltaTable {
    std::vector<DeltaRec> myDeltas{DeltaRec{}}; // "deltaRefs": a single element 0 when empty
    std::int32_t deltaCount = 0;                // entries really read (myDeltaRef + 1)
    std::int64_t deltaStart = 0;                // 1-based position of delta 0's data
    std::int64_t storeEnd = 0;                  // after a save: position just past the store
};

} // namespace torquil
