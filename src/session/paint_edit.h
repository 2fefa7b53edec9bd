#pragma once
// A sprite or a delta set handed to a paint program and watched: the picture's name in the work
// folder, and what a changed file on disk asks of the editor (nothing, a plain import, a resize or
// another number of deltas first).

#include "session/sprite_resize.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace torquil {

class Platform;
class StyleSession;
struct SpriteRec;

// The folder of the pictures being edited: "paint" in the work folder, so that whatever a paint
// program leaves beside a picture (backups, lock files) stays out of the work folder itself.
[[nodiscard]] std::filesystem::path paintFolder(const std::filesystem::path& workDir);

// The picture of a sprite (or of its delta set, clean or drawn over the sprite) to be edited: the
// export's name with ".png", or ".bmp" in a build without PNG; a delta set's name carries
// "_deltas" or "_deltas_clean". The file lives in paintFolder.
struct PaintTarget {
    int asn = 0;
    bool deltaSet = false;
    bool clean = false;
    std::filesystem::path file;
};
[[nodiscard]] PaintTarget paintTarget(const StyleSession& session, const SpriteRec& sprite,
                                      bool deltaSet, bool clean, bool png);

// What a picture file held the last time the editor wrote or read it: its length and checksum.
// A watcher reports touches and saves that change nothing: those are not offered again.
struct PaintedVersion {
    bool exists = false;
    std::int64_t length = -1;
    std::uint32_t crc = 0;
    bool operator==(const PaintedVersion&) const = default;
};
[[nodiscard]] PaintedVersion paintedVersion(const std::filesystem::path& file);

// What a version of the picture on disk asks for.
enum class PaintReturn {
    Unchanged,       // the same bytes as the version last written or offered
    Missing,         // not there or empty (a paint program in the middle of its save)
    SameSize,        // the sprite's (or delta set's) size: a plain import
    OtherSize,       // a sprite picture of another size: the resize question first
    OtherDeltaCount, // a delta set picture with another number of frames: that question first
    Unreadable,      // not a BMP or PNG of a size that fits: the import says why
};
// `now` is the file's version now, `last` the one written or offered last; `size` what the file
// says its size is (pictureSize).
[[nodiscard]] PaintReturn judgePaintedFile(const SpriteRec& sprite, bool deltaSet,
                                           const PaintedVersion& now, const PaintedVersion& last,
                                           const std::optional<PictureSize>& size);

// Writes the selected sprite (or its delta set) as the target's picture, creating the folder.
// True when written (a failure has said why through the platform).
[[nodiscard]] bool writePaintPicture(StyleSession& session, Platform& platform,
                                     const PaintTarget& target);

} // namespace torquil
