#pragma once
// The graphics pages ("blocks"): up to kMaxPages (26) pages of 256 x 256 one-byte pixels, and the
// page image (6656 x 256, 32-bit RGB) that the board shows.

#include "base/zeroed_buffer.h"

#include <array>
#include <cstdint>
#include <vector>

namespace torquil {

inline constexpr int kPageSize = 256;
inline constexpr int kPageBytes = kPageSize * kPageSize;
inline constexpr int kMaxPages = 26;
inline constexpr int kImageWidth = kMaxPages * kPageSize; // 6656

// gPixels: raw bytes of every page, stored as the file stores them (rows of 256 bytes), so that
// a page is one contiguous 65536-byte block.
struct Pages {
    ZeroedBuffer<std::uint8_t> gPixels{kMaxPages * kPageBytes};
    std::int32_t gNumLinesLoaded = 0;
    std::int16_t gNumBlockLoaded = -1; // index of the last page loaded
    std::int32_t highestPage = 0;      // set by the sprite info loader or the tile regions
    std::int16_t gBoardOffset = 0;     // left edge, in image columns, of the page the board shows

    std::uint8_t& pixel(int page, int x, int y) {
        return gPixels[static_cast<std::size_t>(page) * kPageBytes + y * kPageSize + x];
    }
    [[nodiscard]] std::uint8_t pixel(int page, int x, int y) const {
        return gPixels[static_cast<std::size_t>(page) * kPageBytes + y * kPageSize + x];
    }
    [[nodiscard]] const std::uint8_t* row(int page, int y) const {
        return gPixels.data() + static_cast<std::size_t>(page) * kPageBytes + y * kPageSize;
    }
    [[nodiscard]] std::uint8_t* row(int page, int y) {
        return gPixels.data() + static_cast<std::size_t>(page) * kPageBytes + y * kPageSize;
    }
};

// A rectangle of one page, to repaint after its pixels changed; page -1 (or no area) is none.
struct PageArea {
    int page = -1, x = 0, y = 0, w = 0, h = 0;
    [[nodiscard]] bool empty() const { return page < 0 || w <= 0 || h <= 0; }
    bool operator==(const PageArea&) const = default;
};

// 0x00RRGGBB pixels, kImageWidth x 256, row-major; owned by the core, wrapped by the window.
struct PageImage {
    ZeroedBuffer<std::uint32_t> rgb{kImageWidth * kPageSize};
    [[nodiscard]] std::uint32_t* row(int y) {
        return rgb.data() + static_cast<std::size_t>(y) * kImageWidth;
    }
    [[nodiscard]] const std::uint32_t* row(int y) const {
        return rgb.data() + static_cast<std::size_t>(y) * kImageWidth;
    }
    std::uint32_t& at(int x, int y) { return rgb[static_cast<std::size_t>(y) * kImageWidth + x]; }
};

inline constexpr std::uint32_t kDarkGrey = 0x1F1F1F; // unowned pixel of a 24-bit file
inline constexpr std::uint32_t kBlack = 0x000000;    // unowned pixel of an 8-bit file

// Colours whole rows of a page: which sprite owns each pixel and what colour its byte has.
// The sprite and colour tables implement it; without them no pixel is owned.
class PagePainter {
public:
    virtual ~PagePainter() = default;
    // Paints the 256 pixels of row y of page `page` from their bytes into out[0..255].
    virtual void paintRow(int page, int y, const std::uint8_t* bytes, std::uint32_t* out) const = 0;
};

// Paints nothing as owned: every pixel takes the background colour.
class BackgroundPainter : public PagePainter {
public:
    explicit BackgroundPainter(std::uint32_t background) : background_(background) {}
    void paintRow(int, int, const std::uint8_t*, std::uint32_t* out) const override;

private:
    std::uint32_t background_;
};

} // namespace torquil
