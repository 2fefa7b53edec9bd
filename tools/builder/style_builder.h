#pragma once
// Builds style files (.G24 and .GRY), sound banks and ENGLISH.FXT from a plain description, so that
// tests, benchmarks and the bundled sample level never need one of the game's own files.
//
// Making broken files
// -------------------
// Build a valid file first, then break it:
//   - truncated file:         truncate(bytes, n) keeps the first n bytes.
//   - header sizes that lie:  setHeaderField(bytes, header24::car_info_size, v) (or headerGry::...)
//                             rewrites one 32-bit header field; any other place with putI16/putI32.
//   - sprite size != W x H:   SpriteSpec::sizeOverride.
//   - page above 25:          SpriteSpec::page = 26 (the pages grow to hold it unless pageCount is
//                             set, in which case the pixels outside the pages are dropped).
//   - sprite past page edge:  x + w > 256 or y + h > 256; the head is written as given and only the
//                             pixels that fall inside the page are stored.
//   - wrong delta size/ptr:   DeltaSpec::sizeOverride / DeltaSpec::ptrOverride.
//   - wrong door count:       CarSpec::doorsOverride (the door records written are still `doors`).
// sectionOffsets() tells where every section, record and delta entry lies, to aim such edits.

#include "fxt_coder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace torquil::testing {

struct Rgb {
    uint8_t r = 0, g = 0, b = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};
using Clut = std::array<Rgb, 256>;

// One run record of a delta: offset (u16 LE), length (u8), data. In the game's files the offset of
// the first run counts from the sprite's top-left pixel and every later one from where the previous
// run ended, in rows of 256; no real run has offset 0.
struct DeltaRun {
    uint16_t offset = 0;
    std::vector<uint8_t> data; // at most 255 bytes
};
struct DeltaSpec {
    std::vector<DeltaRun> runs;
    std::optional<int16_t> sizeOverride; // size written in sprite info instead of sum(length + 3)
    std::optional<int32_t> ptrOverride;  // ptr written in sprite info instead of the real place
};

// Runs that paint `pixels` (w x h, row-major) at (x, y) of the sprite, one run per row, with the
// offsets chained the way the game's files have them. Pixels of value `skip` are left out of the
// runs (a row may then give several runs). Throws std::invalid_argument when the first run would
// start at the sprite's top-left pixel (offset 0 marks the end of a delta).
DeltaSpec deltaFromPixels(int x, int y, int w, int h, const std::vector<uint8_t>& pixels,
                          std::optional<uint8_t> skip = std::nullopt);
// Runs that turn `before` into `after` (both w x h, row-major): one run per stretch of changed
// pixels in a row, offsets chained as above. Throws like deltaFromPixels.
DeltaSpec deltaFromDiff(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after,
                        int w, int h);
int32_t deltaDataSize(const DeltaSpec&); // sum of (length + 3)

// The 21 sprite types, in the order of the sprite numbers record.
enum SpriteType : int {
    SPR_ARROW,
    SPR_DIGITS,
    SPR_BOAT,
    SPR_BOX,
    SPR_BUS,
    SPR_CAR,
    SPR_OBJECT,
    SPR_PED,
    SPR_SPEEDO,
    SPR_TANK,
    SPR_TRAFFIC_LIGHTS,
    SPR_TRAIN,
    SPR_TRDOORS,
    SPR_BIKE,
    SPR_TRAM,
    SPR_WBUS,
    SPR_WCAR,
    SPR_EX,
    SPR_TUMCAR,
    SPR_TUMTRUCK,
    SPR_FERRY,
    SPRITE_TYPE_COUNT
};
using SpriteNumbers = std::array<int16_t, SPRITE_TYPE_COUNT>;

struct SpriteSpec {
    SpriteType type = SPR_CAR; // used only by sortAndCountSprites()
    int page = 0;
    int x = 0, y = 0, w = 1, h = 1; // rectangle in its 256 x 256 page; w, h 0..255
    // .G24: the clut field, relative to the sprite CLUTs (palette index entry
    // tileclut_size / 1024 + clut). Ignored in .GRY files.
    int clut = 0;
    std::vector<uint8_t> pixels; // w * h, row-major; empty leaves the rectangle as it is
    std::vector<DeltaSpec> deltas;
    uint8_t ws = 0;
    std::optional<int16_t> sizeOverride; // size written instead of w * h
};

struct DoorSpec {
    int16_t rpx = 0, rpy = 0, object = 0, delta = 0;
};

// One car info record: 174 bytes + 8 per door, little-endian, packed. 16.16 fields hold the real
// value times 65536.
struct CarSpec {
    int16_t width = 22, height = 44, depth = 20, spr_num = 0, weight = 1200, max_speed = 36,
            min_speed = -8, acceleration = 8, braking = 12, grip = 9, handling = 7;
    std::array<std::array<int16_t, 3>, 12> remap24{}; // (H, L, S)
    std::array<uint8_t, 12> remap8{};
    uint8_t vtype = 4, model = 0, turning = 12, damagable = 1;
    std::array<int16_t, 4> value{10, 15, 20, 25};
    uint8_t cx = 11, cy = 22;
    int32_t moment = 229376, rbp_mass = 78643, g1_thrust = 16384, tyre_adhesion_x = 58982,
            tyre_adhesion_y = 45875, handbrake_friction = 26214, footbrake_friction = 39322,
            front_brake_bias = 39322;
    int16_t turn_ratio = 300, drive_wheel_offset = 10, steering_wheel_offset = -10;
    int32_t back_end_slide_value = 16384, handbrake_slide_value = 49152;
    uint8_t convertible = 0, engine = 1, radio = 1, horn = 2, sound_function = 0,
            fast_change_flag = 0;
    std::vector<DoorSpec> doors;
    std::optional<int16_t> doorsOverride; // doors field written instead of doors.size()
};
inline constexpr std::size_t kCarRecordFixedSize = 174;
inline constexpr std::size_t kDoorRecordSize = 8;
std::vector<uint8_t> encodeCarInfo(const CarSpec&);

// Sprite type whose counts precede a vehicle type's sprites, or -1 for a vehicle type without one.
int spriteTypeOfVtype(uint8_t vtype);
// 0-based index in the sprite info section of the first sprite of a type.
int firstSpriteOfType(const SpriteNumbers&, int type);
// Absolute (1-based) sprite number of a car record; 0 for a vtype without sprites.
int absoluteSpriteNumber(const SpriteNumbers&, uint8_t vtype, int16_t spr_num);

inline constexpr int kTileBytes = 64 * 64;
inline constexpr int kPageBytes = 256 * 256;
inline constexpr int kClutBytes = 1024;

struct StyleSpec {
    bool is24 = true;
    std::optional<int32_t> versionCode; // default 336 (.G24) or 325 (.GRY)

    // 64 x 64 tiles, 16 to a 256 x 256 page (4 x 4, row by row). On disk the tile area is padded
    // with blank tiles to a multiple of 4 tiles; the header counts the tiles themselves.
    int sideTiles = 4, lidTiles = 4, auxTiles = 0;
    // Tile pixels: tileData when it is not empty (4096 bytes per tile, rows of 64, tile after
    // tile), else tilePixel (tile is 0-based), else a checker pattern per tile.
    std::vector<uint8_t> tileData;
    std::function<uint8_t(int tile, int x, int y)> tilePixel;
    int32_t animSize = 41;

    // .G24 colour tables. Physical CLUTs, written 64 to a 64 KB page, interleaved, as (B, G, R, 0);
    // the section is padded with zero CLUTs to whole pages. An empty list writes one grey ramp.
    std::vector<Clut> cluts;
    // Palette index (virtual -> physical CLUT). Empty: 4 entries per tile, then one per sprite
    // clut value 0 .. highest, 12 per car plus 64, then 8 font entries; sprite entry k points at
    // physical CLUT min(k, cluts - 1), every other entry at CLUT 0.
    std::vector<int16_t> paletteIndex;
    // Header sizes of the four parts of the palette index, in bytes. Defaults: tiles 4 per tile,
    // sprites highest sprite clut + 1, font 8, car remaps whatever is left of the index.
    std::optional<int32_t> tileclutSize, spriteclutSize, newcarclutSize, fontclutSize;

    // .GRY colours: 256 entries, 0..63 per channel, stored r, g, b. Default: a grey ramp.
    std::optional<std::array<Rgb, 256>> palette8;
    std::optional<int32_t> remapSize;      // default 256 per remap table, 12 per car plus 64
    std::optional<int32_t> remapIndexSize; // default 256

    int32_t objectInfoSize = 102 * 20; // filler bytes
    std::vector<CarSpec> cars;

    // In file order; the sprite numbers say which runs of them are which type.
    std::vector<SpriteSpec> sprites;
    SpriteNumbers spriteNumbers{};
    // Pages in the sprite graphics section; -1: highest sprite page + 1 (at least 1).
    int pageCount = -1;
    // The delta store follows the pages: every delta's data one after another in sprite order. A
    // delta's ptr counts from the first byte of the sprite graphics section, so every real ptr is
    // at least pageCount * 65536.
};

// Stable-sorts the sprites by type and sets spriteNumbers to the count of each type.
void sortAndCountSprites(StyleSpec&);

struct Section {
    std::size_t offset = 0; // 0-based
    std::size_t size = 0;   // bytes on disk (padding included)
    std::size_t end() const { return offset + size; }
};

struct SectionOffsets {
    bool is24 = true;
    std::vector<int32_t> headerFields; // as written, in header order
    Section header, tiles, anim;
    Section clut, paletteIndex;                // .G24
    Section palette, remaps, remapIndex;       // .GRY
    Section objectInfo, carInfo, spriteInfo;   //
    Section spriteGraphics, pages, deltaStore; // pages + delta store = sprite graphics
    Section spriteNumbers;
    std::size_t fileLength = 0;
    int pageCount = 0;
    int tilesOnDisk = 0; // tiles including the blank padding tiles
    int clutSlots = 0;   // physical CLUTs the padded CLUT section holds
    std::array<int, 4>
        paletteEntries{}; // palette index entries of the tile, sprite, car remap and font parts
    std::vector<std::size_t> carRecords;    // start of each car record
    std::vector<std::size_t> spriteRecords; // start of each sprite info head
    std::vector<std::size_t> deltaEntries;  // each 6-byte delta entry, in file order
    std::vector<int16_t> deltaSizes;        // as written in the entries
    std::vector<int32_t> deltaPtrs;         // as written (from the sprite graphics section start)
    std::vector<std::size_t> deltaData;     // where each delta's data really lies
};

SectionOffsets sectionOffsets(const StyleSpec&);
std::vector<uint8_t> buildStyle(const StyleSpec&);

// Header field offsets.
namespace header24 {
inline constexpr std::size_t version_code = 0, side_size = 4, lid_size = 8, aux_size = 12,
                             anim_size = 16, clut_size = 20, tileclut_size = 24,
                             spriteclut_size = 28, newcarclut_size = 32, fontclut_size = 36,
                             palette_index_size = 40, object_info_size = 44, car_info_size = 48,
                             sprite_info_size = 52, sprite_graphics_size = 56,
                             sprite_numbers_size = 60, size = 64;
}
namespace headerGry {
inline constexpr std::size_t version_code = 0, side_size = 4, lid_size = 8, aux_size = 12,
                             anim_size = 16, palette_size = 20, remap_size = 24,
                             remap_index_size = 28, object_info_size = 32, car_info_size = 36,
                             sprite_info_size = 40, sprite_graphics_size = 44,
                             sprite_numbers_size = 48, size = 52;
}

// Little-endian access into a byte buffer (bounds-checked: std::out_of_range).
void putI16(std::vector<uint8_t>&, std::size_t offset, int16_t);
void putI32(std::vector<uint8_t>&, std::size_t offset, int32_t);
int16_t getI16(const std::vector<uint8_t>&, std::size_t offset);
int32_t getI32(const std::vector<uint8_t>&, std::size_t offset);
void setHeaderField(std::vector<uint8_t>&, std::size_t offset, int32_t value);
void truncate(std::vector<uint8_t>&, std::size_t newLength);

void writeFile(const std::filesystem::path&, const std::vector<uint8_t>&);
std::vector<uint8_t> readFile(const std::filesystem::path&);

// Sound bank: the .SDT holds 12-byte records (offset i32, length i32, rate i32), the .RAW the
// unsigned 8-bit samples back to back from offset 0, ending exactly at the file's end.
struct SoundSpec {
    std::vector<uint8_t> samples;
    int32_t rate = 11025;
};
std::pair<std::vector<uint8_t>, std::vector<uint8_t>> buildSoundBank(const std::vector<SoundSpec>&);

} // namespace torquil::testing
