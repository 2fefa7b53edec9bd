#pragma once
// The 8-bit BMP files through which a sprite or tile goes to a paint program and back: a 14-byte
// file header, the 40-byte information header, 256 colours (blue, green, red, 0) and bottom-up
// rows of palette indexes padded to 4 bytes.

#include "exchange/palette_compare.h"

#include <functional>

#include <functional>

#include <functional>

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace torquil {

struct CarTable;
struct ColourTables;
struct FormatContext;
struct SpriteRec;
struct SpriteTables;
struct StyleFileState;

inline constexpr int kBmpFileHeaderSize = 14;
inline constexpr int kBmpInfoHeaderSize = 40;
inline constexpr int kBmpPixelDataOffset = 1078; // 14 + 40 + 256 * 4
inline constexpr std::int64_t kBmpMinimumFileSize = 255;

// The name of a sprite's BMP: "KRBTIL" + level + "_" + tile number for tiles, "CAR" + level +
// "_" + the car record's model for a car sprite with a loaded record, else "KRBSPR" + level +
// "_" + sprite number; always with ".bmp".
[[nodiscard]] std::string bmpFileName(const StyleFileState& style, const CarTable& cars,
                                      const SpriteTables& sprites, const SpriteRec& sprite);

// Row length in the file: the width rounded up to a multiple of 4.
[[nodiscard]] inline std::int64_t bmpRowLength(std::int64_t width) {
    return (width + 3) / 4 * 4;
}

// Writes width x height palette indexes (row-major, top row first) as a BMP with the style's
// colours: the 8-bit palette of a .GRY style, CLUT `clut` of a .G24 style. Advances the progress
// form once per row. Returns false when a run-time error stopped it.
[[nodiscard]] bool writeBmp(const ColourTables& colours, const StyleFileState& style,
                            const std::filesystem::path& file, std::span<const std::uint8_t> pixels,
                            int clut, int width, int height, FormatContext& ctx);

// Decides whether a BMP's colour table may be imported (and may ask the user, or change a CLUT).
using AcceptPalette = std::function<bool(const BmpColourTable& imported)>;

// Reads and checks a BMP for a width x height sprite; its colour table goes through
// `acceptPalette`. On success `pixels` holds width x height indexes, top row first. A width of 0
// takes the file's own size. Every failing check shows its message and returns false with
// `pixels` untouched.
[[nodiscard]] bool readBmp(const std::filesystem::path& file, int width, int height,
                           std::vector<std::uint8_t>& pixels, FormatContext& ctx,
                           const AcceptPalette& acceptPalette);

} // namespace torquil
