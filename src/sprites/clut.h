#pragma once
// The colour tables of a style file: the CLUT section and palette index of a .G24 file, the fixed
// 8-bit palette of a .GRY file, and how a sprite's pixel byte becomes a colour.

#include <array>
#include <cstdint>

namespace torquil {

class BinaryFile;
struct FormatContext;
struct G24Header;
struct SpriteRec;
struct StyleFileState;
struct ColourTables;

inline constexpr int kClutBytes = 1024;  // one CLUT: 256 colours of 4 bytes
inline constexpr int kClutsPerPage = 64; // CLUTs interleaved in one 64 KB page of the section

// 1-based position of the CLUT section: right after the tiles (padded to 16384) and the anim data.
[[nodiscard]] std::int64_t clutSectionStart(const StyleFileState& style);
// 1-based position of the palette index, counted back from the end of the file.
[[nodiscard]] std::int64_t paletteIndexPosition(const StyleFileState& style);
// 1-based position of the 8-bit palette of a .GRY file, counted back from the end of the file.
[[nodiscard]] std::int64_t palette8Position(const StyleFileState& style);
// Physical CLUTs the section holds: clut_size rounded up to 64 KB pages, 1024 bytes each.
[[nodiscard]] std::int64_t clutsAvailFor(std::int32_t clut_size);
// Palette index entries that belong to the tiles: tileclut_size / 1024, rounded to nearest.
[[nodiscard]] std::int32_t tileClutCount(const G24Header& header);

// "Load 24bit Palette": the palette index, the CLUTs (pal24) and zeroed use counts.
[[nodiscard]] bool loadCLUT(ColourTables& colours, const StyleFileState& style, BinaryFile& file,
                            FormatContext& ctx);
// "Load 8bit Palette": 256 entries of red, green and blue, each byte times 4 in 8 bits.
[[nodiscard]] bool load8bitPal(ColourTables& colours, const StyleFileState& style, BinaryFile& file,
                               FormatContext& ctx);
// Writes pal24 back into the CLUT section; 0, the run-time error number, or -1 for a .GRY file.
[[nodiscard]] int saveCLUT(const ColourTables& colours, StyleFileState& style, BinaryFile& file,
                           FormatContext& ctx);

// The colour (0x00RRGGBB) of pixel byte v of a sprite or tile: through its physical CLUT in a
// .G24 file, through the 8-bit palette in a .GRY file. A CLUT outside pal24 gives black.
[[nodiscard]] std::uint32_t spriteColour(const ColourTables& colours, bool is24Bit,
                                         const SpriteRec& sprite, std::uint8_t v);
// All 256 colours of one physical CLUT (black when it is outside pal24).
[[nodiscard]] std::array<std::uint32_t, 256> clutColours(const ColourTables& colours,
                                                         int physicalClut);
// All 256 colours of the 8-bit palette.
[[nodiscard]] std::array<std::uint32_t, 256> palette8Colours(const ColourTables& colours);
// The colours a sprite is drawn with, whatever the kind of file.
[[nodiscard]] std::array<std::uint32_t, 256> spriteColours(const ColourTables& colours,
                                                           bool is24Bit, const SpriteRec& sprite);

} // namespace torquil
