#pragma once
// Which sprite a BMP file is for, from the names the export gives them: "KRBSPR" + level + "_" +
// sprite number, "KRBTIL" + level + "_" + tile number, "CAR" (or "C_CAR") + level + "_" + car
// model, each with ".bmp" (any case).

#include <optional>
#include <string>

namespace torquil {

struct BitmapTarget {
    enum Kind { Sprite, Tile, Car } kind = Sprite;
    int number = 0; // sprite number, tile number or car model
};

// Nothing when the name is not one of those, or is for another level.
[[nodiscard]] std::optional<BitmapTarget> bitmapTarget(const std::string& fileName, int level);

} // namespace torquil
