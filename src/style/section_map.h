#pragma once
// The sections of a style file in file order, from its header and its length: the early ones
// (header, tiles, tile animations) from the front, the late ones found backward from the end as
// the loaders find them, and what lies between (the 24-bit colour tables) in the middle.

#include "style/style_header.h"

#include <cstdint>
#include <vector>

namespace torquil {

struct StyleSection {
    const char* name = "";
    std::int64_t first = 0;  // 1-based position of the first byte
    std::int64_t length = 0; // never negative
    std::int64_t end() const { return first + length; }
};

// The sections of a file of `fileLength` bytes with this header. Sections that a damaged header
// would make overlap are clipped to lie after the one before them and inside the file.
[[nodiscard]] std::vector<StyleSection> styleSectionMap(const StyleHeader& header,
                                                        std::int64_t fileLength);

// The index of the section holding 1-based `position`; -1 when none does.
[[nodiscard]] int styleSectionAt(const std::vector<StyleSection>& sections, std::int64_t position);

} // namespace torquil
