#include "style/section_map.h"

#include "style/rounding.h"

#include <algorithm>

namespace torquil {

std::vector<StyleSection> styleSectionMap(const StyleHeader& h, std::int64_t fileLength) {
    // Sums in 64 bits: a hostile header cannot overflow them.
    const std::int64_t tiles =
        roundUp16384(std::int64_t{h.side_size()} + h.lid_size() + h.aux_size());
    std::int64_t lateSizes[9] = {};
    const char* lateNames[9] = {};
    int late = 0;
    auto addLate = [&](const char* name, std::int64_t size) {
        lateNames[late] = name;
        lateSizes[late++] = std::max<std::int64_t>(0, size);
    };
    if (h.is24) {
        addLate("palette index", h.g24.palette_index_size);
    } else {
        addLate("8-bit palette", h.gry.palette_size);
        addLate("remaps", h.gry.remap_size);
        addLate("remap index", h.gry.remap_index_size);
    }
    addLate("object info", h.object_info_size());
    addLate("car info", h.car_info_size());
    addLate("sprite info", h.sprite_info_size());
    addLate("sprite graphics", h.sprite_graphics_size());
    addLate("sprite numbers", h.sprite_numbers_size());
    std::int64_t lateTotal = 0;
    for (int i = 0; i < late; ++i) lateTotal += lateSizes[i];

    std::vector<StyleSection> out;
    std::int64_t at = 1;
    auto add = [&](const char* name, std::int64_t first, std::int64_t length) {
        first = std::clamp<std::int64_t>(first, at, fileLength + 1);
        length = std::clamp<std::int64_t>(length, 0, fileLength + 1 - first);
        out.push_back({name, first, length});
        at = first + length;
    };
    add("header", 1, h.headSize());
    add("tiles", at, tiles);
    add("tile animations", at, std::max<std::int64_t>(0, h.anim_size()));
    const std::int64_t lateFirst = fileLength + 1 - lateTotal;
    add(h.is24 ? "CLUT" : "space before the palette", at, lateFirst - at);
    std::int64_t next = lateFirst;
    for (int i = 0; i < late; ++i) {
        add(lateNames[i], next, lateSizes[i]);
        next += lateSizes[i];
    }
    return out;
}

int styleSectionAt(const std::vector<StyleSection>& sections, std::int64_t position) {
    for (std::size_t i = sections.size(); i-- > 0;)
        if (position >= sections[i].first && position < sections[i].end())
            return static_cast<int>(i);
    return -1;
}

} // namespace torquil
