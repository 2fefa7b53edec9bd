#pragma once
// A delta as a picture and back: drawing a delta's runs over a sprite-sized frame the way the
// game draws them, and turning a changed frame into run lines again.
//
// In the game's files a run's offset counts from where the previous run of the same delta ended
// (the first run from the sprite's top-left pixel), in rows of 256; drawing adds them up that way.

#include "exchange/deltas.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace torquil {

inline constexpr int kDeltaRowPitch = 256;
inline constexpr std::int64_t kDeltaMaxBytes = 32767; // a delta's size field is 16-bit signed

// The runs a save writes: those before the first run with offset 0 (which ends a delta).
[[nodiscard]] std::span<const RunLine> usedRuns(const DeltaRec& delta);

// Draws the delta's runs into `frame` (width x height, row-major). Pixels that would fall outside
// the sprite are not drawn; returns how many were left out, for the callers that report them (a
// count, not a failure: most draw and go on).
int drawDelta(const DeltaRec& delta, int width, int height, std::span<std::uint8_t> frame);

// The delta set picture: frame i (0-based) at x = i * width of a (width * count) x height picture.
// A dirty frame is the sprite with delta i drawn over it, a clean one colour 0 with delta i's
// pixels.
[[nodiscard]] std::vector<std::uint8_t> deltaSetPicture(std::span<const std::uint8_t> sprite,
                                                        int width, int height,
                                                        const std::vector<const DeltaRec*>& deltas,
                                                        bool clean);

// Frame i of a delta set picture.
[[nodiscard]] std::vector<std::uint8_t> deltaSetFrame(std::span<const std::uint8_t> picture,
                                                      int width, int height, int index);

struct FrameRuns {
    bool ok = false;
    std::string reason; // why the frame cannot be a delta
    std::vector<RunLine> runs;
    std::int64_t bytes = 0; // sum of (length + 3)
};

// The run lines of a changed frame: every pixel that differs from `base` (the sprite for a dirty
// set, colour 0 everywhere for a clean one), in runs within one sprite row, runs that touch merged
// (a row of at most 255 pixels is one run at most). Refused when the first run would start at the
// sprite's top-left pixel (an offset of 0 ends a delta) or the delta would pass 32767 bytes.
[[nodiscard]] FrameRuns runsFromFrame(std::span<const std::uint8_t> base,
                                      std::span<const std::uint8_t> frame, int width, int height);

// The last step of every frame encoder: refused past 32767 bytes, else ok, an empty delta given
// the single empty run line a delta of size 0 loads with.
[[nodiscard]] FrameRuns finishFrameRuns(FrameRuns out);

// What the command line tells about one delta.
struct DeltaExtent {
    int runs = 0;
    int pixels = 0;
    bool empty = true;     // no pixel inside the sprite
    int left = 0, top = 0; // bounding box of the drawn pixels, inclusive
    int right = -1, bottom = -1;
    int outside = 0; // pixels that fall outside the sprite
};
[[nodiscard]] DeltaExtent deltaExtent(const DeltaRec& delta, int width, int height);

} // namespace torquil
