#pragma once
// The sample level's colours. Every sprite and tile is drawn in "codes": 0 is transparent, 1..15
// are fixed materials that look the same everywhere, 16..255 are a dark-to-light ramp of the
// owner's own colour. In the .G24 file a code is the pixel itself and the owner's CLUT gives the
// ramp its colour; in the .GRY file the ramp is squeezed into one of eight 30-level bands of the
// single palette.

#include "style_builder.h"

#include <array>
#include <cstdint>

namespace torquil::testing::sample {

constexpr uint8_t CLEAR = 0, OUTLINE = 1, TYRE = 2, GLASS_DARK = 3, GLASS = 4, HEADLIGHT = 5,
                  TAILLIGHT = 6, CHROME = 7, INTERIOR = 8, WHITE = 9, BLUE_LIGHT = 10,
                  RED_LIGHT = 11, AMBER = 12, RUST = 13, SKIN = 14, LEAF = 15;
constexpr int kRampFirst = 16;
constexpr int kRampSteps = 240;

constexpr Rgb kMaterialColours[16] = {
    {0, 0, 0},       {22, 22, 26},    {58, 58, 62},    {34, 52, 72},
    {120, 160, 190}, {255, 248, 200}, {210, 24, 24},   {175, 178, 182},
    {64, 54, 48},    {242, 242, 240}, {40, 90, 255},   {255, 50, 40},
    {250, 190, 30},  {96, 60, 36},    {228, 178, 140}, {46, 140, 56}};

enum Band { RED, BLUE, YELLOW, GREEN, SILVER, CHARCOAL, ORANGE, PURPLE, BAND_COUNT };
constexpr Rgb kBandColours[BAND_COUNT] = {{196, 32, 30},  {36, 78, 196},   {236, 196, 40},
                                          {52, 146, 58},  {196, 200, 206}, {74, 76, 82},
                                          {226, 118, 34}, {128, 48, 156}};
constexpr int kBandLevels = 30;

uint8_t clampByte(double v);
// The ramp code of brightness t (0 dark .. 1 light).
uint8_t ramp(double t);
Rgb scaled(Rgb c, double k);
// A CLUT giving the materials their colours and the ramp the shades of `base`.
Clut makeClut(Rgb base, double brightness = 1.0);
// The .GRY file's single palette: the materials, then the eight bands of 30 levels.
std::array<Rgb, 256> gryPalette();
// A code as the .GRY file stores it for an owner of colour `band`.
uint8_t toGry(uint8_t code, int band);
// The game's car remaps: hue turned by h degrees, saturation scaled by 1 + s / 100, value kept;
// colour 0 stays as it is.
Rgb hsvRemap(Rgb c, int h, int s);
Clut remapClut(const Clut& base, int h, int s);
// A variant of a band's colour: a little lighter or darker and turned a few degrees.
Rgb tint(int band, int variant);

} // namespace torquil::testing::sample
