#pragma once
// Empties the sprite tables before a load: every page list back to its single empty element 0,
// the mouse-over map all zeros, the counters 0.

#include "sprites/sprite_tables.h"

#include <algorithm>

namespace torquil {

inline void resetSpriteTables(SpriteTables& t) {
    for (auto& list : t.pageSprites) list.assign(1, SpriteRec{});
    // Only the pages written since the last clear: a new session's map is still untouched.
    constexpr std::size_t kPageCells = kPageBytes;
    for (std::size_t page = 0; page * kPageCells < t.mouseOver.size(); ++page)
        if (page >= SpriteTables::kMarkedPageBits || (t.pagesMarked >> page & 1u) != 0)
            std::fill_n(t.mouseOver.data() + page * kPageCells,
                        std::min(kPageCells, t.mouseOver.size() - page * kPageCells), 0);
    t.pagesMarked = 0;
    t.spriteCount = 0;
    t.highestRawClut = 0;
}

} // namespace torquil
