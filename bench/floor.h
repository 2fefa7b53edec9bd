#pragma once
// The floor both benchmarks are measured against: the file's bytes read in one call and mapped
// through one colour table into a page image (at most 26 x 65,536 pixels).

#include "base/binary_file.h"
#include "style/pages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace torquil::bench {

class FloorPainter {
public:
    FloorPainter() {
        for (std::uint32_t v = 0; v < 256; ++v) table_[v] = v * 0x010101u;
    }
    // Reads the file and paints its first bytes (at most 26 pages); false when it cannot be read.
    // The image is as large as what is painted and is not cleared first: every pixel is written.
    bool readAndPaint(const std::filesystem::path& file, std::vector<std::uint8_t>& bytes) {
        auto read = readWholeFile(file);
        bytes = read.valueOr({});
        if (!read) return false;
        const std::size_t pixels =
            std::min(bytes.size(), static_cast<std::size_t>(kMaxPages) * kPageBytes);
        if (pixels > size_) {
            image_ = std::make_unique_for_overwrite<std::uint32_t[]>(pixels);
            size_ = pixels;
        }
        for (std::size_t i = 0; i < pixels; ++i) image_[i] = table_[bytes[i]];
        painted_ = pixels;
        return true;
    }
    const std::uint32_t* image() const { return image_.get(); }
    // How many pixels the last readAndPaint painted.
    std::size_t painted() const { return painted_; }

private:
    std::array<std::uint32_t, 256> table_{};
    std::unique_ptr<std::uint32_t[]> image_;
    std::size_t size_ = 0, painted_ = 0;
};

} // namespace torquil::bench
