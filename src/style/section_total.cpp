#include "style/section_total.h"

#include "style/rounding.h"

namespace torquil {

std::int64_t sectionTotal(const StyleHeader& h) {
    // 64-bit sums: a hostile header cannot overflow them.
    std::int64_t total = h.headSize() +
                         roundUp16384(std::int64_t{h.side_size()} + h.lid_size() + h.aux_size()) +
                         h.anim_size();
    if (h.is24) {
        const G24Header& g = h.g24;
        total += roundUp65536(g.clut_size) + std::int64_t{g.palette_index_size};
    } else {
        const GRYHeader& g = h.gry;
        total += std::int64_t{g.palette_size} + g.remap_size + g.remap_index_size;
    }
    return total + h.object_info_size() + h.car_info_size() + h.sprite_info_size() +
           h.sprite_graphics_size() + h.sprite_numbers_size();
}

std::string sectionMismatch(const std::filesystem::path& path, const StyleHeader& header,
                            std::int64_t fileLength) {
    const std::int64_t total = sectionTotal(header);
    if (total == fileLength) return {};
    return "The file " + path.string() + " was not saved: its header's sections add up to " +
           std::to_string(total) + " bytes, but the file is " + std::to_string(fileLength) +
           " bytes long." + "\r" +
           "The file is damaged, and saving would spread the damage. Nothing was written." + "\r" +
           "Restore the file (from its .bak or the KRB CD) and open it again.";
}

} // namespace torquil
