#pragma once
// Pictures of the car record's positions for the manual: the car's sprite enlarged on the board's
// dark background with marks where the centre of mass (cx, cy) and each door (rpx, rpy) sit.
// Both count in sprite pixels from the sprite's centre; a door's label names the delta it uses.

#include <QImage>
#include <QPoint>

namespace torquil {

class StyleSession;

// Each sprite pixel is drawn as a square of this many screen pixels.
inline constexpr int kFieldPictureScale = 4;

struct FieldPicture {
    QImage image;  // null when the car or its sprite is not loaded
    QPoint centre; // where the sprite's centre lies in the image
    // Where a position (dx, dy) sprite pixels from the sprite's centre lies in the image.
    [[nodiscard]] QPoint pointOf(int dx, int dy) const {
        return centre + QPoint(dx, dy) * kFieldPictureScale;
    }
};

// The centre of mass of the car with absolute sprite number `asn`.
[[nodiscard]] FieldPicture centreOfMassPicture(StyleSession& session, int asn);
// The doors of the car, numbered as the car editor numbers them.
[[nodiscard]] FieldPicture doorPositionsPicture(StyleSession& session, int asn);

// The mark colours, for tests and the manual's words.
inline constexpr QRgb kCentreMarkColour = 0xFFE04040;   // centre of mass
inline constexpr QRgb kDoorMarkColour = 0xFF40A0FF;     // doors
inline constexpr QRgb kSpriteCentreColour = 0xFFB0B0B0; // the sprite's centre lines

} // namespace torquil
