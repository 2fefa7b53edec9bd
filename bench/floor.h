#pragma once
// The floor both benchmarks are measured against: the file's bytes read in one call and mapped
// through one colour table into a page image of 26 x 65,536 pixels.

#include "base/binary_file.h"
#include "style/pages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace torquil::bench {

class FloorPainter {
public:
    FloorPainter() : image_(static_cast<std::size_t>(kMaxPages) * kPageBytes) {
        for (std::uint32_t v = 0; v < 256; ++v) table_[v] = v * 0x010101u;
    }
    // Reads the file and paints its first bytes; false when it cannot be read.
    bool readAndPaint(const std::filesystem::path& file, std::vector<std::uint8_t>& bytes) {
        auto read = readWholeFile(file);
        bytes = read.valueOr({});
        if (!read) return false;
        const std::size_t pixels = std::min(bytes.size(), image_.size());
        for (std::size_t i = 0; i < pixels; ++i) image_[i] = table_[bytes[i]];
        return true;
    }
    const std::uint32_t* image() const { return image_.data(); }

private:
    std::array<std::uint32_t, 256> table_{};
    std::vector<std::uint32_t> image_;
};

} // namespace torquil::bench
