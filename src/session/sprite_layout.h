#pragma once
// The sprite info section as the sprite tables describe it, for edits that change a sprite's
// place, size or delta count. Such an edit sets gLayoutChanged; the save then writes the whole
// section again (its length may change, moving the sprite graphics and the sprite numbers behind
// it) before the pages and the delta store are written at their new places.

#include <cstdint>
#include <optional>
#include <vector>

namespace torquil {

class BinaryFile;
class StyleSession;
struct SpriteRec;
struct SpriteTables;
struct StyleFileState;

// Every sprite of the tables in file order (by absolute sprite number).
[[nodiscard]] std::vector<const SpriteRec*> spritesInFileOrder(const SpriteTables& sprites);

// The sprite info section: every sprite's head (12 bytes in a .G24 file, 10 in a .GRY one) and
// its delta entries (size, ptr). `entryOffsets`, when given, receives for delta i the 0-based
// offset of its entry within the section.
[[nodiscard]] std::vector<std::uint8_t>
buildSpriteInfoSection(const StyleSession& session,
                       std::vector<std::int64_t>* entryOffsets = nullptr);

// Sets every delta's entry position (entryPos) to where the section at gSeekSpriteInfo holds it.
void placeDeltaEntries(StyleSession& session);

// The mouse-over map of one page again from its sprite list (later sprites win, as on load).
void rebuildMouseOver(SpriteTables& sprites, int page);

// Puts a page's sprite list in file order; the SIBs follow.
void sortPageSprites(SpriteTables& sprites, int page);

// The save's step for a changed layout: writes the sprite info section into the content in
// memory (header's sprite_info_size with it) and moves the positions of the sections behind it.
// restore() puts the session's positions back when a later step of the save fails.
class SpriteInfoRewrite {
public:
    // 0 or the run-time error number.
    [[nodiscard]] int apply(StyleSession& session, BinaryFile& file);
    void restore(StyleSession& session) const;

private:
    std::optional<std::vector<std::int64_t>> entryPos_;
    std::int64_t spriteInfoEnd_ = 0, graphicsStart_ = 0, graphicsEnd_ = 0, numbers_ = 0,
                 deltaStart_ = 0;
    std::int32_t spriteInfoSize_ = 0, graphicsSize_ = 0;
    bool applied_ = false;
};

} // namespace torquil
