#pragma once
// The header of a style file: signed 32-bit little-endian section sizes, read field by field.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace torquil {

class BinaryFile;

// 64 bytes at the start of a .G24 file.
struct G24Header {
    std::int32_t version_code = 0, side_size = 0, lid_size = 0, aux_size = 0, anim_size = 0,
                 clut_size = 0, tileclut_size = 0, spriteclut_size = 0, newcarclut_size = 0,
                 fontclut_size = 0, palette_index_size = 0, object_info_size = 0, car_info_size = 0,
                 sprite_info_size = 0, sprite_graphics_size = 0, sprite_numbers_size = 0;
    static constexpr int kSize = 64;
    static constexpr int kSpriteGraphicsSizeOffset = 56;
};

// 52 bytes at the start of a .GRY file.
struct GRYHeader {
    std::int32_t version_code = 0, side_size = 0, lid_size = 0, aux_size = 0, anim_size = 0,
                 palette_size = 0, remap_size = 0, remap_index_size = 0, object_info_size = 0,
                 car_info_size = 0, sprite_info_size = 0, sprite_graphics_size = 0,
                 sprite_numbers_size = 0;
    static constexpr int kSize = 52;
    static constexpr int kSpriteGraphicsSizeOffset = 44;
};

// Either header, with the fields both kinds share.
struct StyleHeader {
    bool is24 = true;
    G24Header g24;
    GRYHeader gry;

    [[nodiscard]] int headSize() const { return is24 ? G24Header::kSize : GRYHeader::kSize; }
    [[nodiscard]] int spriteGraphicsSizeOffset() const {
        return is24 ? G24Header::kSpriteGraphicsSizeOffset : GRYHeader::kSpriteGraphicsSizeOffset;
    }
    [[nodiscard]] std::int32_t version_code() const {
        return is24 ? g24.version_code : gry.version_code;
    }
    [[nodiscard]] std::int32_t side_size() const { return is24 ? g24.side_size : gry.side_size; }
    [[nodiscard]] std::int32_t lid_size() const { return is24 ? g24.lid_size : gry.lid_size; }
    [[nodiscard]] std::int32_t aux_size() const { return is24 ? g24.aux_size : gry.aux_size; }
    [[nodiscard]] std::int32_t anim_size() const { return is24 ? g24.anim_size : gry.anim_size; }
    [[nodiscard]] std::int32_t object_info_size() const {
        return is24 ? g24.object_info_size : gry.object_info_size;
    }
    [[nodiscard]] std::int32_t car_info_size() const {
        return is24 ? g24.car_info_size : gry.car_info_size;
    }
    [[nodiscard]] std::int32_t sprite_info_size() const {
        return is24 ? g24.sprite_info_size : gry.sprite_info_size;
    }
    [[nodiscard]] std::int32_t sprite_graphics_size() const {
        return is24 ? g24.sprite_graphics_size : gry.sprite_graphics_size;
    }
    void set_sprite_graphics_size(std::int32_t v) {
        (is24 ? g24.sprite_graphics_size : gry.sprite_graphics_size) = v;
    }
    [[nodiscard]] std::int32_t sprite_numbers_size() const {
        return is24 ? g24.sprite_numbers_size : gry.sprite_numbers_size;
    }

    // (label, value) for every field in file order, labels as the details window shows them.
    [[nodiscard]] std::vector<std::pair<std::string, std::int32_t>> sizeFields() const;
};

// Whether the header can describe a file of this length: no negative size, and the sections
// stored on disk (tiles, anims, colour tables or palette and remaps, object, car and sprite info,
// sprite pages, sprite numbers) fit after the header. Any other file fails this, whatever its name.
[[nodiscard]] bool headerFitsFile(const StyleHeader& header, std::int64_t fileLength);

// Reads the header at the start of the open file (64 or 52 bytes, one read).
[[nodiscard]] StyleHeader readStyleHeader(BinaryFile& file, bool is24);
[[nodiscard]] StyleHeader parseStyleHeader(const std::uint8_t* bytes, bool is24);

} // namespace torquil
