#pragma once
// Reconciling a sprite's imported palette with its CLUT in a .G24 style.

#include <array>
#include <cstdint>

namespace torquil {

class Platform;
class StyleSession;

// One colour of a BMP colour table, in the file's order: blue, green, red, and a fourth byte.
struct BmpColour {
    std::uint8_t b = 0, g = 0, r = 0, reserved = 0;
};
using BmpColourTable = std::array<BmpColour, 256>;

// The colour table of a physical CLUT (fourth bytes 0). A CLUT outside the table raises
// "Subscript out of range" and gives black entries.
BmpColourTable clutColourTable(StyleSession& session, int clut);
// The 8-bit palette of a .GRY style as a colour table.
BmpColourTable palette8ColourTable(const StyleSession& session);

// Compares an imported colour table with CLUT `clut` and, when they differ, asks whether to
// overwrite the CLUT. Returns false when the user cancelled (nothing changed). The selected
// sprite decides the delta question and which car's remaps the auto-correction recolours.
bool comparePalette(StyleSession& session, Platform& platform, int clut,
                    const BmpColourTable& imported);

} // namespace torquil
