#pragma once
// Room on the graphics pages for a sprite of a new size: its old place when it still fits there,
// else the first free rectangle that no other sprite uses (pages in order, then rows, then
// columns), else a new page behind the last one. The page count is capped at kMaxPages (26): the
// page tables and the page image hold pages 0 to 25, and a page number above 25 fails the load.

#include <cstdint>
#include <string>
#include <vector>

namespace torquil {

struct Pages;
struct SpriteRec;
struct SpriteTables;

enum class PlaceKind {
    OldPlace,  // the sprite's own top-left corner
    FreeSpace, // unused space on a page already there
    NewPage,   // a page added behind the last one
    None       // no room: `why` says so
};

struct SpritePlace {
    PlaceKind kind = PlaceKind::None;
    int page = -1, x = 0, y = 0;
    std::string why;
};

// The place for `sprite` at width x height; the sprite's own pixels count as free.
[[nodiscard]] SpritePlace placeForSprite(const SpriteTables& sprites, const Pages& pages,
                                         const SpriteRec& sprite, int width, int height);

// 256 x 256 marks (row by row) of the pixels of `page` that a sprite other than `exceptAsn` uses.
[[nodiscard]] std::vector<std::uint8_t> pixelsUsedByOthers(const SpriteTables& sprites, int page,
                                                           int exceptAsn);

} // namespace torquil
