#pragma once
// An edited delta set frame read back into one delta: what the modder changed, and nothing else.
//
// A clean sheet shows a delta's pixels of colour 0 like the background, and a dirty sheet shows a
// delta pixel that equals the car's own pixel like the car: a frame cannot tell those pixels from
// "no pixel". So the delta's stored pixels are the starting point, and only where the frame
// differs from what the export showed is a pixel added, changed or removed.

#include "exchange/delta_frames.h"

#include <cstdint>
#include <span>

namespace torquil {

// The run lines of `delta` after its frame was edited. `base` is what the sheet shows where the
// delta has no pixel (the sprite for a dirty set, colour 0 everywhere for a clean one); `frame`
// is the imported frame (width x height). For every pixel inside the sprite:
//   - the frame shows what the export showed: the pixel stays as it is (stored or not);
//   - the frame shows `base`: the delta's pixel there is removed;
//   - otherwise the delta's pixel there is the frame's value (added or changed).
// Stored pixels that fall outside the sprite are kept. Runs are rebuilt from the kept pixels in
// file order, touching pixels merged (at most 255 a run). Refused as runsFromFrame refuses (a
// first pixel at the sprite's top-left, more than 32767 bytes), and when two pixels lie further
// apart than a run's 16-bit offset can reach.
[[nodiscard]] FrameRuns runsFromEditedFrame(const DeltaRec& delta,
                                            std::span<const std::uint8_t> base,
                                            std::span<const std::uint8_t> frame, int width,
                                            int height);

} // namespace torquil
