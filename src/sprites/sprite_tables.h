#pragma once
// Sprite tables: every sprite's place on its page (pageSprites), the dense mouse-over map, and
// the 21 sprite counts that turn a relative sprite number into an absolute one.

#include "base/zeroed_buffer.h"
#include "style/pages.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace torquil {

struct SpriteRec {
    std::uint8_t W = 0, H = 0, delta_count = 0, ws = 0;
    std::int16_t size = 0;
    std::int32_t ptr = 0;             // the head's 4 bytes at offset 6
    std::vector<std::int16_t> deltas; // per delta entry, its index in the delta table
    std::uint8_t xo = 0, yo = 0;
    std::int16_t ASN = 0;     // absolute sprite number (tiles: the tile number)
    std::int32_t gryPtr = 0;  // .GRY only
    std::int16_t clut = 0;    // physical CLUT (.G24)
    std::int16_t palPos = 0;  // palette index position (tiles only)
    std::string kind;         // "sideTile", "lidTile", "auxTile"; empty for sprites
    std::int16_t page = 0;    // the page it lies on (kept for convenience)
    std::int16_t rawClut = 0; // the head's clut field before the palette index (.G24)
    bool operator==(const SpriteRec&) const = default;
};

inline constexpr int kSpriteTypes = 21;
extern const std::array<const char*, kSpriteTypes> kSpriteTypeNames; // "SPR_ARROW", ...

struct SpriteTables {
    // pageSprites[page][SIB], SIB 1..count; element 0 exists and holds nothing.
    std::array<std::vector<SpriteRec>, kMaxPages> pageSprites;
    // mouseOver(page, x, y): SIB of the sprite covering the pixel, 0 where none does. Kept row
    // by row (page, y, x) so that a page row is contiguous for painting; use over().
    ZeroedBuffer<std::int16_t> mouseOver{kMaxPages * kPageBytes};
    std::int16_t spriteCount = 0;
    std::int32_t highestRawClut = 0;
    std::array<std::int16_t, kSpriteTypes> spriteNumbers{}; // the 42-byte record's 21 counts

    [[nodiscard]] int pageCount(int page) const {
        return static_cast<int>(pageSprites[static_cast<std::size_t>(page)].size()) - 1;
    }
    // Pages whose part of the mouse-over map may have been written since it was last cleared
    // (bit n = page n), so that clearing touches only those.
    std::uint32_t pagesMarked = 0;
    static constexpr int kMarkedPageBits = 32;
    static_assert(kMaxPages <= kMarkedPageBits, "every page needs its bit in pagesMarked");

    std::int16_t& over(int page, int x, int y) {
        if (page >= 0 && page < kMarkedPageBits) pagesMarked |= 1u << page;
        return mouseOver[(static_cast<std::size_t>(page) * 256 + y) * 256 + x];
    }
    [[nodiscard]] std::int16_t over(int page, int x, int y) const {
        return mouseOver[(static_cast<std::size_t>(page) * 256 + y) * 256 + x];
    }
    // Sum of the counts of sprite types 0 .. k-1.
    [[nodiscard]] int countBefore(int k) const;
    // First and last absolute number of the car sprites (SPR_CAR).
    [[nodiscard]] int firstCarSprite() const { return countBefore(5) + 1; }
    [[nodiscard]] int lastCarSprite() const { return countBefore(6); }
};

} // namespace torquil
