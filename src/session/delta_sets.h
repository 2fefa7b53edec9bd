#pragma once
// A sprite's delta set: all its deltas side by side in one picture, frame i at x = i * width.
// Export, the view's frames and the command line's listing; the import is importDeltaSet
// (session/edits.h).

#include "exchange/delta_frames.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

class Platform;
class StyleSession;
struct SpriteRec;

// The sprite's deltas in its order, from the delta table; nullptr where an index lies outside it.
[[nodiscard]] std::vector<const DeltaRec*> spriteDeltas(const StyleSession& session,
                                                        const SpriteRec& sprite);

// The suggested file name: the sprite's BMP name with "_deltas" (dirty) or "_deltas_clean"
// before the extension, e.g. "CAR1_5_deltas_clean.bmp".
[[nodiscard]] std::string deltaSetFileName(const StyleSession& session, const SpriteRec& sprite,
                                           bool clean, const std::string& extension = ".bmp");

// Writes the selected sprite's delta set (dirty: the sprite under each delta; clean: colour 0
// under it) as BMP, or PNG when the name ends in .png. False with a message when the sprite has
// no deltas; false when the file could not be written.
[[nodiscard]] bool exportDeltaSet(StyleSession& session, Platform& platform,
                                  const std::filesystem::path& file, bool clean);

// The frames the delta view shows, as 0x00RRGGBB pixels through the sprite's colours: each delta
// over the sprite (withCar) or alone on colour 0.
struct DeltaViewFrames {
    int width = 0, height = 0;
    std::vector<std::vector<std::uint32_t>> frames;
};
[[nodiscard]] DeltaViewFrames deltaViewFrames(const StyleSession& session, const SpriteRec& sprite,
                                              bool withCar);

// One line per delta for the command line.
struct DeltaListing {
    int tableIndex = -1; // index in the delta table; -1 when outside it
    int size = 0;
    std::int32_t ptr = 0;
    DeltaExtent extent;
};
[[nodiscard]] std::vector<DeltaListing> listDeltas(const StyleSession& session,
                                                   const SpriteRec& sprite);

} // namespace torquil
