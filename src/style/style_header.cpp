#include "style/style_header.h"

#include "base/binary_file.h"

namespace torquil {

StyleHeader parseStyleHeader(const std::uint8_t* b, bool is24) {
    StyleHeader h;
    h.is24 = is24;
    auto field = [b](int index) { return getI32(b + 4 * index); };
    if (is24) {
        G24Header& g = h.g24;
        g.version_code = field(0);
        g.side_size = field(1);
        g.lid_size = field(2);
        g.aux_size = field(3);
        g.anim_size = field(4);
        g.clut_size = field(5);
        g.tileclut_size = field(6);
        g.spriteclut_size = field(7);
        g.newcarclut_size = field(8);
        g.fontclut_size = field(9);
        g.palette_index_size = field(10);
        g.object_info_size = field(11);
        g.car_info_size = field(12);
        g.sprite_info_size = field(13);
        g.sprite_graphics_size = field(14);
        g.sprite_numbers_size = field(15);
    } else {
        GRYHeader& g = h.gry;
        g.version_code = field(0);
        g.side_size = field(1);
        g.lid_size = field(2);
        g.aux_size = field(3);
        g.anim_size = field(4);
        g.palette_size = field(5);
        g.remap_size = field(6);
        g.remap_index_size = field(7);
        g.object_info_size = field(8);
        g.car_info_size = field(9);
        g.sprite_info_size = field(10);
        g.sprite_graphics_size = field(11);
        g.sprite_numbers_size = field(12);
    }
    return h;
}

StyleHeader readStyleHeader(BinaryFile& file, bool is24) {
    std::array<std::uint8_t, G24Header::kSize> bytes{};
    file.seek(1);
    file.read(std::span<std::uint8_t>(bytes.data(), is24 ? G24Header::kSize : GRYHeader::kSize));
    return parseStyleHeader(bytes.data(), is24);
}

std::vector<std::pair<std::string, std::int32_t>> StyleHeader::sizeFields() const {
    if (is24) {
        const G24Header& g = g24;
        return {{"side_size:", g.side_size},
                {"lid_size:", g.lid_size},
                {"aux_size:", g.aux_size},
                {"anim_size:", g.anim_size},
                {"clut_size:", g.clut_size},
                {"tileclut_size:", g.tileclut_size},
                {"spriteclut_size:", g.spriteclut_size},
                {"newcarclut_size:", g.newcarclut_size},
                {"fontclut_size:", g.fontclut_size},
                {"palette_index_size:", g.palette_index_size},
                {"object_info_size:", g.object_info_size},
                {"car_info_size:", g.car_info_size},
                {"sprite_info_size:", g.sprite_info_size},
                {"sprite_graphics_size:", g.sprite_graphics_size},
                {"sprite_numbers_size:", g.sprite_numbers_size}};
    }
    const GRYHeader& g = gry;
    return {{"side_size:", g.side_size},
            {"lid_size:", g.lid_size},
            {"aux_size:", g.aux_size},
            {"anim_size:", g.anim_size},
            {"palette_size:", g.palette_size},
            {"remap_size:", g.remap_size},
            {"remap_index_size:", g.remap_index_size},
            {"object_info_size:", g.object_info_size},
            {"car_info_size:", g.car_info_size},
            {"sprite_info_size:", g.sprite_info_size},
            {"sprite_graphics_size:", g.sprite_graphics_size},
            {"sprite_numbers_size:", g.sprite_numbers_size}};
}

bool headerFitsFile(const StyleHeader& h, std::int64_t fileLength) {
    for (const auto& [label, value] : h.sizeFields())
        if (value < 0) return false;
    // 64-bit sums: the fields are each below 2^31.
    const std::int64_t onDisk =
        std::int64_t{h.headSize()} + h.side_size() + h.lid_size() + h.aux_size() + h.anim_size() +
        h.object_info_size() + h.car_info_size() + h.sprite_info_size() + h.sprite_graphics_size() +
        h.sprite_numbers_size() +
        (h.is24 ? std::int64_t{h.g24.clut_size} + h.g24.palette_index_size
                : std::int64_t{h.gry.palette_size} + h.gry.remap_size + h.gry.remap_index_size);
    return h.version_code() >= 0 && onDisk <= fileLength;
}

} // namespace torquil
