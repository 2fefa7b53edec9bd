#include "session/paint_edit.h"

#include "base/crc32.h"
#include "session/delta_sets.h"
#include "session/picture_file.h"
#include "session/session_io.h"
#include "session/style_session.h"
#include "sprites/sprite_info.h"

#include <fstream>
#include <iterator>
#include <vector>

namespace torquil {

namespace fs = std::filesystem;

fs::path paintFolder(const fs::path& workDir) {
    return workDir / "paint";
}

PaintTarget paintTarget(const StyleSession& session, const SpriteRec& sprite, bool deltaSet,
                        bool clean, bool png) {
    const std::string extension = png ? ".png" : ".bmp";
    std::string name;
    if (deltaSet) {
        name = deltaSetFileName(session, sprite, clean, extension);
    } else {
        name = fs::path(bmpFileName(session, sprite)).replace_extension(extension).string();
    }
    return {sprite.ASN, deltaSet, deltaSet && clean, paintFolder(session.options.workDir) / name};
}

PaintedVersion paintedVersion(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return {};
    const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                          std::istreambuf_iterator<char>());
    if (in.bad()) return {};
    return {true, static_cast<std::int64_t>(bytes.size()), crc32(bytes)};
}

PaintReturn judgePaintedFile(const SpriteRec& sprite, bool deltaSet, const PaintedVersion& now,
                             const PaintedVersion& last, const std::optional<PictureSize>& size) {
    if (!now.exists || now.length <= 0) return PaintReturn::Missing;
    if (now == last) return PaintReturn::Unchanged;
    if (!size || size->width <= 0 || size->height <= 0) return PaintReturn::Unreadable;
    if (!deltaSet) {
        if (size->width == sprite.W && size->height == sprite.H) return PaintReturn::SameSize;
        // Tiles and other fixed-size kinds are never resized: the import refuses with its message.
        return sprite.kind.empty() ? PaintReturn::OtherSize : PaintReturn::Unreadable;
    }
    // A delta set is its frames side by side, each the sprite's size.
    if (sprite.W <= 0 || size->height != sprite.H || size->width % sprite.W != 0)
        return PaintReturn::Unreadable;
    return size->width / sprite.W == sprite.delta_count ? PaintReturn::SameSize
                                                        : PaintReturn::OtherDeltaCount;
}

bool writePaintPicture(StyleSession& session, Platform& platform, const PaintTarget& target) {
    std::error_code ec;
    fs::create_directories(target.file.parent_path(), ec);
    if (target.deltaSet) return exportDeltaSet(session, platform, target.file, target.clean);
    return exportSpriteTo(session, platform, target.file);
}

} // namespace torquil
