#pragma once
// Reading the delta store into the delta table's run lines, and writing it back in place with
// every delta's size/pointer pair in sprite info and the header's sprite_graphics_size.

#include <cstdint>

namespace torquil {

class BinaryFile;
struct DeltaTable;
struct FormatContext;
struct StyleFileState;

// The delta store starts where the sprite graphics section starts: a delta's ptr counts from the
// first byte of page 0.
[[nodiscard]] std::int64_t deltaStoreStart(const StyleFileState& style);

// Reads the runs of deltas 0 .. deltaCount - 1. True on success; false (with "Unexpected EOF
// during load of Delta Graphics") when the file is at its end after the last delta, or when a
// run-time error is pending.
[[nodiscard]] bool loadDeltas(DeltaTable& deltas, const StyleFileState& style, BinaryFile& file,
                              FormatContext& ctx);

// Writes every delta's runs one after another from deltaStart, rewrites each size/pointer pair
// and sprite_graphics_size, moves gSeekGraphicsEnd to the store's new end and clears
// gDeltasChanged. Returns 0 or the run-time error number.
[[nodiscard]] int saveDeltas(DeltaTable& deltas, StyleFileState& style, BinaryFile& file,
                             FormatContext& ctx);

} // namespace torquil
