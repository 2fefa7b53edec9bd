#pragma once
// The colour tables of BMP files beside the style's colours, for the sprite import.

#include <array>
#include <cstdint>

namespace torquil {

class ErrorState;
class Platform;
struct ColourTables;

// One colour of a BMP colour table, in the file's order: blue, green, red, and a fourth byte.
struct BmpColour {
    std::uint8_t b = 0, g = 0, r = 0, reserved = 0;
};
using BmpColourTable = std::array<BmpColour, 256>;

// The colour table of a physical CLUT (fourth bytes 0). A CLUT outside the table raises
// "Subscript out of range" and gives black entries.
[[nodiscard]] BmpColourTable clutColourTable(const ColourTables& colours, ErrorState& errors,
                                             int clut);
// The 8-bit palette of a .GRY style as a colour table.
[[nodiscard]] BmpColourTable palette8ColourTable(const ColourTables& colours);
// Physical CLUT `clut` is inside pal24.
[[nodiscard]] bool clutInTable(const ColourTables& colours, int clut);
// The same red, green and blue in all 256 entries (the fourth bytes are not compared).
[[nodiscard]] bool sameColours(const BmpColourTable& a, const BmpColourTable& b);
// The colour table of a BMP imported into a .GRY style: the fixed palette stays; a table that
// differs from it asks whether to go on. False when the user cancelled.
[[nodiscard]] bool acceptGryPalette(const ColourTables& colours, Platform& platform,
                                    const BmpColourTable& imported);

} // namespace torquil
