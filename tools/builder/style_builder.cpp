#include "style_builder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace torquil::testing {

namespace {

constexpr int kSpriteNumbersSize = SPRITE_TYPE_COUNT * 2;
constexpr int kTilesPerPage = 16;
constexpr int kClutsPerPage = 64;
constexpr int kDeltaEntrySize = 6;
constexpr int kDefaultFontEntries = 8;
constexpr int kPedRemaps = 64;
constexpr int kRemapsPerCar = 12;

std::size_t roundUp(std::size_t n, std::size_t unit) {
    return (n + unit - 1) / unit * unit;
}

int tileCount(const StyleSpec& s) {
    return s.sideTiles + s.lidTiles + s.auxTiles;
}

int highestSpriteClut(const StyleSpec& s) {
    int highest = -1;
    for (const auto& sp : s.sprites) highest = std::max(highest, sp.clut);
    return highest;
}

int physicalClutCount(const StyleSpec& s) {
    return s.cluts.empty() ? 1 : static_cast<int>(s.cluts.size());
}

int carRemapEntries(const StyleSpec& s) {
    return kRemapsPerCar * static_cast<int>(s.cars.size()) + kPedRemaps;
}

std::vector<int16_t> defaultPaletteIndex(const StyleSpec& s) {
    const int spriteEntries = highestSpriteClut(s) + 1;
    const int lastClut = physicalClutCount(s) - 1;
    std::vector<int16_t> index(4 * tileCount(s), 0);
    for (int k = 0; k < spriteEntries; ++k)
        index.push_back(static_cast<int16_t>(std::min(k, lastClut)));
    index.resize(index.size() + carRemapEntries(s) + kDefaultFontEntries, 0);
    return index;
}

std::size_t carRecordSize(const CarSpec& c) {
    return kCarRecordFixedSize + kDoorRecordSize * c.doors.size();
}

std::size_t spriteHeadSize(bool is24) {
    return is24 ? 12 : 10;
}

void checkByte(int v, const char* what) {
    if (v < 0 || v > 255)
        throw std::invalid_argument(std::string(what) + " does not fit in a byte");
}

class Writer {
public:
    Writer(std::vector<uint8_t>& out, std::size_t at) : out_(out), pos_(at) {}
    void u8(uint8_t v) { out_.at(pos_++) = v; }
    void i16(int16_t v) {
        putI16(out_, pos_, v);
        pos_ += 2;
    }
    void i32(int32_t v) {
        putI32(out_, pos_, v);
        pos_ += 4;
    }
    void bytes(const std::vector<uint8_t>& b) {
        if (pos_ + b.size() > out_.size()) throw std::out_of_range("write past the buffer");
        std::copy(b.begin(), b.end(), out_.begin() + static_cast<std::ptrdiff_t>(pos_));
        pos_ += b.size();
    }
    std::size_t pos() const { return pos_; }

private:
    std::vector<uint8_t>& out_;
    std::size_t pos_;
};

uint8_t defaultTilePixel(int tile, int x, int y) {
    const int check = ((x / 16) + (y / 16)) & 1;
    return static_cast<uint8_t>(1 + (tile * 16 + check * 8 + y / 8) % 255);
}

} // namespace

// ---------------------------------------------------------------- deltas

int32_t deltaDataSize(const DeltaSpec& d) {
    int32_t size = 0;
    for (const auto& r : d.runs) size += static_cast<int32_t>(r.data.size()) + 3;
    return size;
}

namespace {

// Chains runs of the pixels for which `take` holds, row by row, as the game's delta runs.
template <typename Take>
DeltaSpec chainRuns(int x, int y, int w, int h, const std::vector<uint8_t>& pixels, Take take) {
    if (w < 0 || h < 0 || pixels.size() != static_cast<std::size_t>(w) * h)
        throw std::invalid_argument("delta pixels must be w * h");
    if (x < 0 || y < 0 || w > 255) throw std::invalid_argument("bad delta rectangle");
    DeltaSpec d;
    long previousEnd = 0;
    for (int row = 0; row < h; ++row) {
        const std::size_t rowStart = static_cast<std::size_t>(row) * w;
        int col = 0;
        while (col < w) {
            if (!take(rowStart + col)) {
                ++col;
                continue;
            }
            const int first = col;
            while (col < w && take(rowStart + col)) ++col;
            const long start = static_cast<long>(y + row) * 256 + x + first;
            const long offset = start - previousEnd;
            if (offset == 0 && d.runs.empty())
                throw std::invalid_argument("a delta cannot start at offset 0");
            if (offset < 0 || offset > 0xFFFF)
                throw std::invalid_argument("delta run offset out of range");
            DeltaRun run;
            run.offset = static_cast<uint16_t>(offset);
            run.data.assign(pixels.begin() + static_cast<std::ptrdiff_t>(rowStart + first),
                            pixels.begin() + static_cast<std::ptrdiff_t>(rowStart + col));
            d.runs.push_back(std::move(run));
            previousEnd = start + (col - first);
        }
    }
    return d;
}

} // namespace

DeltaSpec deltaFromPixels(int x, int y, int w, int h, const std::vector<uint8_t>& pixels,
                          std::optional<uint8_t> skip) {
    return chainRuns(x, y, w, h, pixels,
                     [&](std::size_t i) { return !skip || pixels[i] != *skip; });
}

DeltaSpec deltaFromDiff(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after,
                        int w, int h) {
    if (before.size() != after.size()) throw std::invalid_argument("deltaFromDiff: sizes differ");
    return chainRuns(0, 0, w, h, after, [&](std::size_t i) { return before[i] != after[i]; });
}

// ---------------------------------------------------------------- car info

std::vector<uint8_t> encodeCarInfo(const CarSpec& c) {
    std::vector<uint8_t> out(carRecordSize(c), 0);
    Writer w(out, 0);
    for (int16_t v : {c.width, c.height, c.depth, c.spr_num, c.weight, c.max_speed, c.min_speed,
                      c.acceleration, c.braking, c.grip, c.handling})
        w.i16(v);
    for (const auto& r : c.remap24)
        for (int16_t v : r) w.i16(v);
    for (uint8_t v : c.remap8) w.u8(v);
    for (uint8_t v : {c.vtype, c.model, c.turning, c.damagable}) w.u8(v);
    for (int16_t v : c.value) w.i16(v);
    w.u8(c.cx);
    w.u8(c.cy);
    for (int32_t v : {c.moment, c.rbp_mass, c.g1_thrust, c.tyre_adhesion_x, c.tyre_adhesion_y,
                      c.handbrake_friction, c.footbrake_friction, c.front_brake_bias})
        w.i32(v);
    for (int16_t v : {c.turn_ratio, c.drive_wheel_offset, c.steering_wheel_offset}) w.i16(v);
    w.i32(c.back_end_slide_value);
    w.i32(c.handbrake_slide_value);
    for (uint8_t v :
         {c.convertible, c.engine, c.radio, c.horn, c.sound_function, c.fast_change_flag})
        w.u8(v);
    w.i16(c.doorsOverride.value_or(static_cast<int16_t>(c.doors.size())));
    for (const auto& d : c.doors)
        for (int16_t v : {d.rpx, d.rpy, d.object, d.delta}) w.i16(v);
    return out;
}

// ---------------------------------------------------------------- sprite numbers

int spriteTypeOfVtype(uint8_t vtype) {
    switch (vtype) {
    case 0:
        return SPR_BUS;
    case 1:
    case 2:
    case 4:
        return SPR_CAR;
    case 3:
        return SPR_BIKE;
    case 8:
        return SPR_TRAIN;
    case 9:
        return SPR_TRAM;
    case 13:
        return SPR_BOAT;
    case 14:
        return SPR_TANK;
    default:
        return -1;
    }
}

int firstSpriteOfType(const SpriteNumbers& numbers, int type) {
    int sum = 0;
    for (int k = 0; k < type && k < SPRITE_TYPE_COUNT; ++k) sum += numbers[k];
    return sum;
}

int absoluteSpriteNumber(const SpriteNumbers& numbers, uint8_t vtype, int16_t spr_num) {
    const int type = spriteTypeOfVtype(vtype);
    if (type < 0) return 0;
    return spr_num + 1 + firstSpriteOfType(numbers, type);
}

void sortAndCountSprites(StyleSpec& s) {
    std::stable_sort(s.sprites.begin(), s.sprites.end(),
                     [](const SpriteSpec& a, const SpriteSpec& b) { return a.type < b.type; });
    s.spriteNumbers.fill(0);
    for (const auto& sp : s.sprites) {
        if (sp.type < 0 || sp.type >= SPRITE_TYPE_COUNT)
            throw std::invalid_argument("sortAndCountSprites: bad sprite type");
        ++s.spriteNumbers[sp.type];
    }
}

// ---------------------------------------------------------------- layout

SectionOffsets sectionOffsets(const StyleSpec& s) {
    SectionOffsets o;
    o.is24 = s.is24;
    const int tiles = tileCount(s);
    if (s.sideTiles < 0 || s.lidTiles < 0 || s.auxTiles < 0 || s.animSize < 0 ||
        s.objectInfoSize < 0)
        throw std::invalid_argument("negative section size");

    std::size_t at = 0;
    auto place = [&](Section& sec, std::size_t size) {
        sec.offset = at;
        sec.size = size;
        at += size;
    };
    place(o.header, s.is24 ? header24::size : headerGry::size);
    o.tilesOnDisk = static_cast<int>(roundUp(tiles, 4));
    place(o.tiles, static_cast<std::size_t>(o.tilesOnDisk) * kTileBytes);
    place(o.anim, s.animSize);

    int32_t clutSize = 0, tileclut = 0, spriteclut = 0, newcarclut = 0, fontclut = 0;
    int32_t remapSize = 0, remapIndexSize = 0;
    if (s.is24) {
        const int physical = physicalClutCount(s);
        o.clutSlots = static_cast<int>(roundUp(physical, kClutsPerPage));
        clutSize = physical * kClutBytes;
        place(o.clut, static_cast<std::size_t>(o.clutSlots) * kClutBytes);
        const std::size_t entries =
            s.paletteIndex.empty() ? defaultPaletteIndex(s).size() : s.paletteIndex.size();
        place(o.paletteIndex, entries * 2);
        tileclut = s.tileclutSize.value_or(4 * tiles * kClutBytes);
        spriteclut = s.spriteclutSize.value_or((highestSpriteClut(s) + 1) * kClutBytes);
        fontclut = s.fontclutSize.value_or(kDefaultFontEntries * kClutBytes);
        newcarclut = s.newcarclutSize.value_or(std::max<int32_t>(
            0, static_cast<int32_t>(entries) * kClutBytes - tileclut - spriteclut - fontclut));
        o.paletteEntries = {tileclut / kClutBytes, spriteclut / kClutBytes, newcarclut / kClutBytes,
                            fontclut / kClutBytes};
    } else {
        place(o.palette, 768);
        remapSize = s.remapSize.value_or(256 * carRemapEntries(s));
        remapIndexSize = s.remapIndexSize.value_or(256);
        if (remapSize < 0 || remapIndexSize < 0) throw std::invalid_argument("negative remap size");
        place(o.remaps, remapSize);
        place(o.remapIndex, remapIndexSize);
    }
    place(o.objectInfo, s.objectInfoSize);

    const std::size_t carStart = at;
    for (const auto& c : s.cars) {
        o.carRecords.push_back(at);
        at += carRecordSize(c);
    }
    o.carInfo = {carStart, at - carStart};

    int highestPage = -1;
    for (const auto& sp : s.sprites) highestPage = std::max(highestPage, sp.page);
    o.pageCount = s.pageCount >= 0 ? s.pageCount : std::max(1, highestPage + 1);

    const std::size_t spriteInfoStart = at;
    const std::size_t graphicsStart = [&] {
        std::size_t size = 0;
        for (const auto& sp : s.sprites)
            size += spriteHeadSize(s.is24) + kDeltaEntrySize * sp.deltas.size();
        return spriteInfoStart + size;
    }();
    const std::size_t storeStart =
        graphicsStart + static_cast<std::size_t>(o.pageCount) * kPageBytes;
    std::size_t storeAt = storeStart;
    for (const auto& sp : s.sprites) {
        if (sp.deltas.size() > 255) throw std::invalid_argument("more than 255 deltas on a sprite");
        o.spriteRecords.push_back(at);
        at += spriteHeadSize(s.is24);
        for (const auto& d : sp.deltas) {
            const int32_t size = deltaDataSize(d);
            o.deltaEntries.push_back(at);
            o.deltaSizes.push_back(d.sizeOverride.value_or(static_cast<int16_t>(size)));
            o.deltaPtrs.push_back(
                d.ptrOverride.value_or(static_cast<int32_t>(storeAt - graphicsStart)));
            o.deltaData.push_back(storeAt);
            storeAt += size;
            at += kDeltaEntrySize;
        }
    }
    o.spriteInfo = {spriteInfoStart, at - spriteInfoStart};
    o.pages = {graphicsStart, storeStart - graphicsStart};
    o.deltaStore = {storeStart, storeAt - storeStart};
    o.spriteGraphics = {graphicsStart, storeAt - graphicsStart};
    at = storeAt;
    place(o.spriteNumbers, kSpriteNumbersSize);
    o.fileLength = at;

    const int32_t version = s.versionCode.value_or(s.is24 ? 336 : 325);
    auto i32 = [](std::size_t v) { return static_cast<int32_t>(v); };
    if (s.is24) {
        o.headerFields = {version,
                          s.sideTiles * kTileBytes,
                          s.lidTiles * kTileBytes,
                          s.auxTiles * kTileBytes,
                          s.animSize,
                          clutSize,
                          tileclut,
                          spriteclut,
                          newcarclut,
                          fontclut,
                          i32(o.paletteIndex.size),
                          s.objectInfoSize,
                          i32(o.carInfo.size),
                          i32(o.spriteInfo.size),
                          i32(o.spriteGraphics.size),
                          kSpriteNumbersSize};
    } else {
        o.headerFields = {version,
                          s.sideTiles * kTileBytes,
                          s.lidTiles * kTileBytes,
                          s.auxTiles * kTileBytes,
                          s.animSize,
                          768,
                          remapSize,
                          remapIndexSize,
                          s.objectInfoSize,
                          i32(o.carInfo.size),
                          i32(o.spriteInfo.size),
                          i32(o.spriteGraphics.size),
                          kSpriteNumbersSize};
    }
    return o;
}

// ---------------------------------------------------------------- the file

std::vector<uint8_t> buildStyle(const StyleSpec& s) {
    const SectionOffsets o = sectionOffsets(s);
    std::vector<uint8_t> out(o.fileLength, 0);

    Writer header(out, 0);
    for (int32_t v : o.headerFields) header.i32(v);

    const int tiles = tileCount(s);
    for (int t = 0; t < tiles; ++t) {
        const std::size_t base = o.tiles.offset +
                                 static_cast<std::size_t>(t / kTilesPerPage) * kPageBytes +
                                 static_cast<std::size_t>((t % kTilesPerPage) / 4) * 64 * 256 +
                                 static_cast<std::size_t>(t % 4) * 64;
        for (int y = 0; y < 64; ++y) {
            uint8_t* row = out.data() + base + static_cast<std::size_t>(y) * 256;
            if (!s.tileData.empty()) {
                const std::size_t from = static_cast<std::size_t>(t) * kTileBytes + y * 64;
                if (from + 64 > s.tileData.size())
                    throw std::invalid_argument("tileData holds fewer tiles than the header");
                std::copy_n(s.tileData.begin() + static_cast<std::ptrdiff_t>(from), 64, row);
                continue;
            }
            for (int x = 0; x < 64; ++x)
                row[x] = s.tilePixel ? s.tilePixel(t, x, y) : defaultTilePixel(t, x, y);
        }
    }

    for (std::size_t i = 0; i < o.anim.size; ++i)
        out[o.anim.offset + i] = static_cast<uint8_t>(0xA0 + i % 16);

    if (s.is24) {
        std::vector<Clut> grey;
        if (s.cluts.empty()) {
            grey.resize(1);
            for (int c = 0; c < 256; ++c) {
                const auto v = static_cast<uint8_t>(c);
                grey[0][c] = {v, v, v};
            }
        }
        const std::vector<Clut>& cluts = s.cluts.empty() ? grey : s.cluts;
        for (std::size_t k = 0; k < cluts.size(); ++k) {
            const std::size_t page = o.clut.offset + (k / kClutsPerPage) * kPageBytes;
            for (int c = 0; c < 256; ++c) {
                uint8_t* p =
                    out.data() + page + static_cast<std::size_t>(c) * 256 + (k % kClutsPerPage) * 4;
                p[0] = cluts[k][c].b;
                p[1] = cluts[k][c].g;
                p[2] = cluts[k][c].r;
                p[3] = 0;
            }
        }
        const std::vector<int16_t> index =
            s.paletteIndex.empty() ? defaultPaletteIndex(s) : s.paletteIndex;
        Writer w(out, o.paletteIndex.offset);
        for (int16_t v : index) w.i16(v);
    } else {
        const auto palette = s.palette8.value_or([] {
            std::array<Rgb, 256> grey{};
            for (int v = 0; v < 256; ++v) {
                const auto g = static_cast<uint8_t>(v / 4);
                grey[v] = {g, g, g};
            }
            return grey;
        }());
        Writer w(out, o.palette.offset);
        for (const auto& c : palette) {
            w.u8(c.r);
            w.u8(c.g);
            w.u8(c.b);
        }
        // Remap tables: each the identity mapping of the 256 colours.
        for (std::size_t i = 0; i < o.remaps.size; ++i)
            out[o.remaps.offset + i] = static_cast<uint8_t>(i % 256);
        for (std::size_t i = 0; i < o.remapIndex.size; ++i)
            out[o.remapIndex.offset + i] = static_cast<uint8_t>(i / 2);
    }

    for (std::size_t i = 0; i < o.objectInfo.size; ++i)
        out[o.objectInfo.offset + i] = static_cast<uint8_t>(i % 20 == 0 ? i / 20 : 0x50 + i % 20);

    for (std::size_t c = 0; c < s.cars.size(); ++c) {
        Writer w(out, o.carRecords[c]);
        w.bytes(encodeCarInfo(s.cars[c]));
    }

    std::size_t delta = 0;
    for (std::size_t i = 0; i < s.sprites.size(); ++i) {
        const SpriteSpec& sp = s.sprites[i];
        checkByte(sp.w, "sprite width");
        checkByte(sp.h, "sprite height");
        if (!sp.pixels.empty() && sp.pixels.size() != static_cast<std::size_t>(sp.w) * sp.h)
            throw std::invalid_argument("sprite pixels must be w * h");
        Writer w(out, o.spriteRecords[i]);
        w.u8(static_cast<uint8_t>(sp.w));
        w.u8(static_cast<uint8_t>(sp.h));
        w.u8(static_cast<uint8_t>(sp.deltas.size()));
        w.u8(sp.ws);
        w.i16(sp.sizeOverride.value_or(static_cast<int16_t>(sp.w * sp.h)));
        if (s.is24) {
            checkByte(sp.x, "sprite x");
            checkByte(sp.y, "sprite y");
            w.i16(static_cast<int16_t>(sp.clut));
            w.u8(static_cast<uint8_t>(sp.x));
            w.u8(static_cast<uint8_t>(sp.y));
            w.i16(static_cast<int16_t>(sp.page));
        } else {
            w.i32(sp.page * kPageBytes + sp.y * 256 + sp.x);
        }
        for (const auto& d : sp.deltas) {
            w.i16(o.deltaSizes[delta]);
            w.i32(o.deltaPtrs[delta]);
            Writer data(out, o.deltaData[delta]);
            for (const auto& run : d.runs) {
                if (run.data.size() > 255) throw std::invalid_argument("delta run too long");
                data.i16(static_cast<int16_t>(run.offset));
                data.u8(static_cast<uint8_t>(run.data.size()));
                data.bytes(run.data);
            }
            ++delta;
        }
        if (sp.pixels.empty() || sp.page < 0 || sp.page >= o.pageCount) continue;
        const std::size_t page = o.pages.offset + static_cast<std::size_t>(sp.page) * kPageBytes;
        for (int y = 0; y < sp.h; ++y) {
            const int py = sp.y + y;
            if (py < 0 || py > 255) continue;
            for (int x = 0; x < sp.w; ++x) {
                const int px = sp.x + x;
                if (px < 0 || px > 255) continue;
                out[page + static_cast<std::size_t>(py) * 256 + px] =
                    sp.pixels[static_cast<std::size_t>(y) * sp.w + x];
            }
        }
    }

    Writer numbers(out, o.spriteNumbers.offset);
    for (int16_t n : s.spriteNumbers) numbers.i16(n);
    return out;
}

// ---------------------------------------------------------------- bytes and files

void putI16(std::vector<uint8_t>& b, std::size_t offset, int16_t v) {
    if (offset + 2 > b.size()) throw std::out_of_range("putI16 past the end");
    const auto u = static_cast<uint16_t>(v);
    b[offset] = static_cast<uint8_t>(u);
    b[offset + 1] = static_cast<uint8_t>(u >> 8);
}

void putI32(std::vector<uint8_t>& b, std::size_t offset, int32_t v) {
    if (offset + 4 > b.size()) throw std::out_of_range("putI32 past the end");
    const auto u = static_cast<uint32_t>(v);
    for (int i = 0; i < 4; ++i) b[offset + i] = static_cast<uint8_t>(u >> (8 * i));
}

int16_t getI16(const std::vector<uint8_t>& b, std::size_t offset) {
    if (offset + 2 > b.size()) throw std::out_of_range("getI16 past the end");
    return static_cast<int16_t>(b[offset] | (b[offset + 1] << 8));
}

int32_t getI32(const std::vector<uint8_t>& b, std::size_t offset) {
    if (offset + 4 > b.size()) throw std::out_of_range("getI32 past the end");
    uint32_t u = 0;
    for (int i = 0; i < 4; ++i) u |= static_cast<uint32_t>(b[offset + i]) << (8 * i);
    return static_cast<int32_t>(u);
}

void setHeaderField(std::vector<uint8_t>& b, std::size_t offset, int32_t value) {
    putI32(b, offset, value);
}

void truncate(std::vector<uint8_t>& b, std::size_t newLength) {
    if (newLength < b.size()) b.resize(newLength);
}

void writeFile(const std::filesystem::path& path, const std::vector<uint8_t>& bytes) {
    if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path());
    std::ofstream f(path, std::ios::binary | std::ios::trunc);
    f.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
    if (!f) throw std::runtime_error("cannot write " + path.string());
}

std::vector<uint8_t> readFile(const std::filesystem::path& path) {
    std::ifstream f(path, std::ios::binary);
    if (!f) throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
}

// ---------------------------------------------------------------- sound bank

std::pair<std::vector<uint8_t>, std::vector<uint8_t>>
buildSoundBank(const std::vector<SoundSpec>& sounds) {
    std::vector<uint8_t> sdt(sounds.size() * 12);
    std::vector<uint8_t> raw;
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        putI32(sdt, i * 12, static_cast<int32_t>(raw.size()));
        putI32(sdt, i * 12 + 4, static_cast<int32_t>(sounds[i].samples.size()));
        putI32(sdt, i * 12 + 8, sounds[i].rate);
        raw.insert(raw.end(), sounds[i].samples.begin(), sounds[i].samples.end());
    }
    return {std::move(sdt), std::move(raw)};
}

} // namespace torquil::testing
