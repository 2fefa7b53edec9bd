#pragma once
// 8-bit palette PNG pictures in memory, through libpng: what a sprite or a delta set looks like on
// its way to a paint program and back. Plain bytes and tables in, plain bytes and tables out.

#include "base/result.h"
#include "exchange/palette_compare.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace torquil {

// An 8-bit palette picture: width x height indexes, top row first, and the colours the file
// carries (entries past colourCount are left black).
struct IndexedPicture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> pixels;
    BmpColourTable colours{};
    int colourCount = 0;
};

enum class PngStatus {
    Ok,
    NotPng,      // no PNG signature or no header chunk
    NotIndexed8, // not a palette image with 8 bits per pixel
    WrongSize,   // width or height differs from what the caller expects
    Damaged      // libpng refused the data (truncated, bad checksum, bad compression...)
};

struct PngDecoded {
    PngStatus status = PngStatus::NotPng;
    std::string detail; // libpng's own words for Damaged
    IndexedPicture picture;
    int fileWidth = 0, fileHeight = 0; // from the header, once it was read
};

// The largest picture the reader decodes when the caller does not fix the size.
inline constexpr std::int64_t kPngMaxPixels = std::int64_t{1} << 24;

// Decodes an 8-bit palette PNG. With a nonzero expected width the header must give exactly
// expectedWidth x expectedHeight; that is checked before any pixel is decoded. tRNS and every other
// ancillary chunk are ignored: the indexes come through as the file holds them.
[[nodiscard]] PngDecoded decodeIndexedPng(std::span<const std::uint8_t> bytes,
                                          int expectedWidth = 0, int expectedHeight = 0);

// Encodes width x height indexes as an 8-bit palette PNG with all 256 colours. A failure's cause
// is libpng's reason (or kPngUnsupported).
[[nodiscard]] Result<std::vector<std::uint8_t>>
encodeIndexedPng(std::span<const std::uint8_t> pixels, int width, int height,
                 const BmpColourTable& colours);
inline constexpr const char* kPngEncodeFailed = "Cannot encode the picture as PNG";

// False in a build without libpng (TORQUIL_PNG=OFF): then decoding gives Damaged and encoding
// fails, both with kPngUnsupported as the reason.
[[nodiscard]] bool pngSupported();
inline constexpr const char* kPngUnsupported = "PNG pictures are not supported in this build";

// True when the file name ends in ".png" (any case).
[[nodiscard]] bool hasPngExtension(const std::string& fileName);

} // namespace torquil
