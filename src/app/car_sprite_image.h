#pragma once
// The car's sprite as a picture for the editor: the page bytes of its rectangle drawn through a
// CLUT, colour 0 left transparent.

#include "cars/remap_colours.h"

#include <QImage>
#include <QRect>

namespace torquil {

class StyleSession;
struct SpriteRec;

// The sprite (not a tile) with absolute sprite number `asn`, or nullptr when none is loaded.
[[nodiscard]] const SpriteRec* findSpriteByAsn(const StyleSession& session, int asn);

// The sprite's rectangle through `colours`; pixels outside the page are left transparent.
[[nodiscard]] QImage spriteImage(const StyleSession& session, const SpriteRec& sprite,
                                 const ClutColours& colours);

// Where an image of `size` goes when enlarged by a whole factor (at most maxScale) and centred
// in `area`; the factor is at least 1.
[[nodiscard]] QRect enlargedRect(QSize size, const QRect& area, int maxScale);

// A neutral checker board under transparent pixels, so that colour 0 reads as "nothing".
void paintChecker(class QPainter& painter, const QRect& area);

} // namespace torquil
