#pragma once
// Car colour remaps. A 24-bit remap (H, L, S) recolours the car sprite's base CLUT: every colour
// but colour 0 goes to HSV, the hue turns by H/360 of a circle (wrapping), the saturation is
// scaled by 1 + S/100 (clamped to 0..1) and the value stays. That reproduces the game's own remap
// CLUTs to within one step per channel; L is hardly ever used and is left out, as the game does.
// An 8-bit remap is a palette index.

#include "cars/car_info.h"

#include <array>
#include <cstdint>
#include <string>

namespace torquil {

inline constexpr int kRemapCount = 12;

// One CLUT as 0x00RRGGBB colours.
using ClutColours = std::array<std::uint32_t, 256>;

struct Hsv {
    double h = 0; // 0 <= h < 1, a fraction of the colour circle
    double s = 0; // 0..1
    double v = 0; // 0..1
};

[[nodiscard]] Hsv rgbToHsv(std::uint32_t rgb);
[[nodiscard]] std::uint32_t hsvToRgb(const Hsv& hsv);

// One colour through a remap's hue turn (degrees) and saturation change (percent).
[[nodiscard]] std::uint32_t remappedColour(std::uint32_t rgb, int hue, int saturation);

// The whole CLUT through remap (H, L, S); colour 0 (transparent) is kept as it is. A remap of
// (0, 0, 0) gives the base CLUT back unchanged.
[[nodiscard]] ClutColours remapClut(const ClutColours& base,
                                    const std::array<std::int16_t, 3>& hls);

// Whether another remap of the car has the same values as remap `index` (the 24-bit triple, or
// the 8-bit palette index). Out-of-range indexes are never in use.
[[nodiscard]] bool remapInUse(const CarInfo& info, int index, bool is24);

// How many different colourings remaps first..last give (equal remaps count once).
[[nodiscard]] int distinctRemaps(const CarInfo& info, int first, int last, bool is24);

// The coloration lines the editor shows for a car: which of its remaps the game picks from for
// random traffic, a respray and a random car leaving its parking place. The game's exact use of
// the remap numbers is not known; these ranges are the modders' working assumption.
struct ColorationLine {
    const char* caption; // "Random Car Coloration:", ...
    int first, last;     // remap indexes that apply
};
inline constexpr std::array<ColorationLine, 3> kColorationLines{{
    {"Random Car Coloration:", 0, 11},
    {"Resprayed Car Coloration:", 1, 11},
    {"Unparked Random Car Coloration:", 0, 0},
}};

// The text after a coloration caption, e.g. "remaps 1 to 11 (4 different)" or "remap 0".
[[nodiscard]] std::string describeColoration(const CarInfo& info, const ColorationLine& line,
                                             bool is24);

} // namespace torquil
