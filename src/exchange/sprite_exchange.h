#pragma once
// A sprite's (or tile's) pixels out of its graphics page and back into it.

#include <cstdint>
#include <vector>

namespace torquil {

class ProgressSink;
struct PageArea;
struct Pages;
struct SpriteRec;

// The sprite's width x height pixels, top row first, copied out of its page. Pixels outside the
// 256 x 256 page (a sprite reaching past the edge) read as 0.
[[nodiscard]] std::vector<std::uint8_t> spritePixels(const Pages& pages, const SpriteRec& sprite);
// Copies width x height pixels (top row first) into the sprite's rectangle of its page, clipped
// to the page, advancing the progress form once per row. Returns the rectangle written.
[[nodiscard]] PageArea putSpritePixels(Pages& pages, const SpriteRec& sprite,
                                       const std::vector<std::uint8_t>& pixels,
                                       ProgressSink& progress);

} // namespace torquil
