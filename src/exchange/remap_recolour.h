#pragma once
// After a car sprite's CLUT was overwritten by an imported palette: recolour the car's 24-bit
// remap CLUTs from the new CLUT, so the car's other colourings follow the new picture.

namespace torquil {

struct CarTable;
struct ColourTables;
struct G24Header;
struct SpriteRec;
struct StyleFileState;

// Palette index position of remap `slot` (0..11) of the car record that comes `carOrder`-th
// (0-based) in the car info section: the car remaps follow the tile and sprite entries, 12 to a
// car in record order.
[[nodiscard]] int remapPaletteIndexPosition(const G24Header& header, int carOrder, int slot);

// Recolours the 12 remap CLUTs of the car drawn by `sprite` from the sprite's CLUT. A remap slot
// is left alone when its CLUT cannot be told apart: outside the tables, the sprite's own CLUT, or
// a CLUT that some sprite or tile draws with (identical CLUTs are stored once and shared).
// Returns the number of CLUTs recoloured; 0 when the sprite is not a loaded car.
[[nodiscard]] int autoCorrectRemaps(ColourTables& colours, const CarTable& cars,
                                    const StyleFileState& style, const SpriteRec& sprite);

} // namespace torquil
