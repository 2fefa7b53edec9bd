#pragma once
// The sprites a car pack repaints, as small pictures before and after it: each sprite's rectangle
// of the page bytes of one style file, drawn through the CLUT that file holds.

#include "session/car_pack_preview.h"

#include <cstdint>
#include <vector>

namespace torquil {

class StyleSession;
struct SpriteRec;

// The sprite's rectangle in `style` (a style file of the session's level whose sections up to
// the sprite graphics lie where the session's do), through its CLUT in the same bytes in a .G24
// file and through the session's palette in a .GRY file. Bytes past the file's end are drawn
// as colour 0.
[[nodiscard]] CarPackPreview::Picture spritePicture(const StyleSession& session,
                                                    const SpriteRec& sprite,
                                                    const std::vector<std::uint8_t>& style);

// Gives every sprite of the preview that has an ASN its picture before and after the pack.
void addSpritePictures(CarPackPreview& preview, const StyleSession& session,
                       const std::vector<std::uint8_t>& styleBefore,
                       const std::vector<std::uint8_t>& styleAfter);

} // namespace torquil
