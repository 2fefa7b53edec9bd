#pragma once
// Empties the sprite tables before a load: every page list back to its single empty element 0,
// the mouse-over map all zeros, the counters 0.

#include "sprites/sprite_tables.h"

#include <cstring>

namespace torquil {

inline void resetSpriteTables(SpriteTables& t) {
    for (auto& list : t.pageSprites) list.assign(1, SpriteRec{});
    t.mouseOver.resize(26 * 256 * 256);
    std::memset(t.mouseOver.data(), 0, t.mouseOver.size() * sizeof(t.mouseOver[0]));
    t.spriteCount = 0;
    t.highestRawClut = 0;
}

} // namespace torquil
