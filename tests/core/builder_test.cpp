// What the other tests take on trust from the file builder: every level it ships is laid out the
// way the game's files are, the sample level has the cars and names they look up, and the helpers
// that break a file break it the way they say.

#include "fxt_coder.h"
#include "sample_level.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <numeric>
#include <set>

namespace torquil::testing {
namespace {

std::size_t roundUp(std::size_t n, std::size_t unit) {
    return (n + unit - 1) / unit * unit;
}

std::vector<int32_t> headerOf(const std::vector<uint8_t>& f, bool is24) {
    std::vector<int32_t> h;
    for (std::size_t i = 0; i < (is24 ? 16u : 13u); ++i) h.push_back(getI32(f, i * 4));
    return h;
}

// Sections located the way the editor locates them: tiles and CLUTs forward from the header, the
// rest backward from the file's end.
struct Located {
    std::size_t clut = 0, paletteIndex = 0, palette8 = 0, carInfo = 0, spriteInfo = 0, graphics = 0,
                numbers = 0;
};

Located locate(const std::vector<uint8_t>& f, bool is24) {
    const auto h = headerOf(f, is24);
    const std::size_t L = f.size();
    Located at;
    if (is24) {
        at.clut = 64 + roundUp(h[1] + h[2] + h[3], 16384) + h[4];
        at.paletteIndex = L - (h[10] + h[11] + h[12] + h[13] + h[14] + h[15]);
        at.carInfo = L - (h[12] + h[13] + h[14] + h[15]);
        at.spriteInfo = L - (h[13] + h[14] + h[15]);
        at.graphics = L - (h[14] + h[15]);
        at.numbers = L - h[15];
    } else {
        at.palette8 = L - (h[5] + h[6] + h[7] + h[8] + h[9] + h[10] + h[11] + h[12]);
        at.carInfo = L - (h[9] + h[10] + h[11] + h[12]);
        at.spriteInfo = L - (h[10] + h[11] + h[12]);
        at.graphics = L - (h[11] + h[12]);
        at.numbers = L - h[12];
    }
    return at;
}

struct ReadSprite {
    int w, h, deltaCount, size, clut, x, y, page;
    std::vector<std::pair<int16_t, int32_t>> deltas;
};

std::vector<ReadSprite> readSprites(const std::vector<uint8_t>& f, bool is24) {
    const auto h = headerOf(f, is24);
    const Located at = locate(f, is24);
    const std::size_t end = at.spriteInfo + h[is24 ? 13 : 10];
    std::vector<ReadSprite> out;
    for (std::size_t p = at.spriteInfo; p < end;) {
        ReadSprite s{f[p], f[p + 1], f[p + 2], getI16(f, p + 4), 0, 0, 0, 0, {}};
        if (is24) {
            s.clut = getI16(f, p + 6);
            s.x = f[p + 8];
            s.y = f[p + 9];
            s.page = getI16(f, p + 10);
            p += 12;
        } else {
            const int32_t ptr = getI32(f, p + 6);
            s.page = ptr / 65536;
            s.y = ptr % 65536 / 256;
            s.x = ptr % 256;
            p += 10;
        }
        for (int d = 0; d < s.deltaCount; ++d, p += 6)
            s.deltas.emplace_back(getI16(f, p), getI32(f, p + 2));
        out.push_back(std::move(s));
    }
    return out;
}

StyleSpec smallStyle(bool is24) {
    StyleSpec s;
    s.is24 = is24;
    s.sideTiles = 2;
    s.lidTiles = 1;
    s.auxTiles = 0;
    s.cluts.resize(3);
    for (int k = 0; k < 3; ++k)
        for (int c = 0; c < 256; ++c)
            s.cluts[k][c] = {static_cast<uint8_t>(c), static_cast<uint8_t>(k),
                             static_cast<uint8_t>(255 - c)};
    SpriteSpec a;
    a.type = SPR_CAR;
    a.page = 0, a.x = 10, a.y = 20, a.w = 3, a.h = 2;
    a.clut = 1;
    a.pixels = {1, 2, 3, 4, 5, 6};
    a.deltas.push_back(deltaFromPixels(1, 1, 2, 1, {7, 8}));
    a.deltas.push_back({});
    SpriteSpec b;
    b.type = SPR_ARROW;
    b.page = 2, b.x = 5, b.y = 17, b.w = 2, b.h = 2;
    b.pixels = {9, 9, 9, 9};
    b.deltas.push_back(deltaFromPixels(0, 1, 1, 1, {4}));
    s.sprites = {a, b};
    CarSpec car;
    car.doors = {{1, 2, 3, 0}};
    s.cars = {car, CarSpec{}};
    sortAndCountSprites(s);
    return s;
}

// ------------------------------------------------------------------ FXT

// The exact coded bytes are checked against the editor's own coder in fxt_test.cpp.
TEST(FxtCoder, RoundTripsEntriesIncludingShortFirstEntryAndHighBytes) {
    const std::vector<std::string> entries{"[1]", "", "[car12]Caf\xE9", std::string(1, '\xC4'),
                                           "[]"};
    EXPECT_EQ(decodeFxt(encodeFxt(entries)), entries);
    // A terminator inside the keyed bytes is keyed like any other byte.
    EXPECT_EQ(encodeFxt({"[1]"})[3], static_cast<uint8_t>(0 - kFxtKey[3]));
}

// ------------------------------------------------------------------ broken files

TEST(StyleBuilder, BrokenFileHelpers) {
    StyleSpec s = smallStyle(true);
    s.sprites[0].sizeOverride = 7;
    s.sprites[1].x = 254; // 3 wide: one column inside the page
    s.sprites[1].page = 26;
    s.sprites[0].deltas[0].ptrOverride = -1;
    auto f = buildStyle(s);
    const auto o = sectionOffsets(s);
    EXPECT_EQ(o.pageCount, 27);
    const auto sprites = readSprites(f, true);
    EXPECT_EQ(sprites[0].size, 7);
    EXPECT_EQ(sprites[0].deltas[0].second, -1);
    EXPECT_EQ(f[o.pages.offset + 26 * 65536 + 20 * 256 + 254], 1);
    EXPECT_EQ(f[o.pages.offset + 26 * 65536 + 21 * 256], 0); // not wrapped into the next row

    s.pageCount = 4; // the page-26 sprite's pixels are dropped, its head stays
    EXPECT_EQ(readSprites(buildStyle(s), true)[1].page, 26);

    setHeaderField(f, header24::sprite_graphics_size, 12345);
    EXPECT_EQ(getI32(f, 56), 12345);
    const std::size_t len = f.size();
    truncate(f, len - 10);
    EXPECT_EQ(f.size(), len - 10);
    truncate(f, len); // never grows
    EXPECT_EQ(f.size(), len - 10);
    EXPECT_THROW(putI32(f, f.size() - 3, 1), std::out_of_range);
}

// ------------------------------------------------------------------ levels

// Checks that holds for every level the builder ships.
void checkLevel(const StyleSpec& desc, int wantCars) {
    const auto f = buildStyle(desc);
    const auto o = sectionOffsets(desc);
    ASSERT_EQ(f.size(), o.fileLength);
    const auto sprites = readSprites(f, desc.is24);
    ASSERT_EQ(sprites.size(), desc.sprites.size());
    EXPECT_EQ(std::accumulate(desc.spriteNumbers.begin(), desc.spriteNumbers.end(), 0),
              static_cast<int>(sprites.size()));
    ASSERT_LE(o.pageCount, 26);

    // The header's sizes, with the padding of the tiles and of the CLUT pages, give the length.
    const auto h = headerOf(f, desc.is24);
    std::size_t sum = (desc.is24 ? 64 : 52) + roundUp(h[1] + h[2] + h[3], 16384) + h[4];
    if (desc.is24) sum += roundUp(h[5], 65536);
    for (std::size_t i = desc.is24 ? 10 : 5; i < h.size(); ++i) sum += h[i];
    ASSERT_EQ(sum, f.size());

    // Sprites lie inside their pages and never overlap.
    std::vector<std::vector<bool>> used(o.pageCount, std::vector<bool>(65536));
    for (std::size_t i = 0; i < sprites.size(); ++i) {
        const auto& s = sprites[i];
        ASSERT_EQ(s.w * s.h, s.size);
        ASSERT_LT(s.page, o.pageCount);
        ASSERT_LE(s.x + s.w, 256);
        ASSERT_LE(s.y + s.h, 256);
        for (int y = s.y; y < s.y + s.h; ++y)
            for (int x = s.x; x < s.x + s.w; ++x) {
                ASSERT_FALSE(used[s.page][y * 256 + x]) << "sprite " << i + 1 << " overlaps";
                used[s.page][y * 256 + x] = true;
            }
    }

    // Deltas: back to back after the pages, runs chained inside the sprite's rectangle, no run
    // at offset 0.
    const Located at = locate(f, desc.is24);
    std::size_t expectPtr = static_cast<std::size_t>(o.pageCount) * 65536;
    for (const auto& s : sprites)
        for (const auto& [size, ptr] : s.deltas) {
            ASSERT_EQ(static_cast<std::size_t>(ptr), expectPtr);
            expectPtr += size;
            long pos = 0;
            for (std::size_t p = at.graphics + ptr; p < at.graphics + ptr + size;) {
                const uint16_t offset = static_cast<uint16_t>(getI16(f, p));
                const int length = f[p + 2];
                ASSERT_NE(offset, 0);
                pos += offset;
                ASSERT_LT(pos % 256 + length, s.w + 1);
                ASSERT_LT(pos / 256, s.h);
                pos += length;
                p += 3 + length;
                ASSERT_LE(p, at.graphics + ptr + size);
            }
        }
    EXPECT_EQ(at.graphics + expectPtr, at.numbers);

    // Car records: every one names a distinct sprite of its own kind; doors name its deltas.
    const std::size_t carEnd = at.carInfo + getI32(f, desc.is24 ? 48 : 36);
    std::set<int> absolute;
    int cars = 0;
    for (std::size_t p = at.carInfo; p < carEnd; ++cars) {
        const int abs = absoluteSpriteNumber(desc.spriteNumbers, f[p + 106], getI16(f, p + 6));
        ASSERT_GT(abs, 0);
        ASSERT_LE(abs, static_cast<int>(sprites.size()));
        EXPECT_EQ(desc.sprites[abs - 1].type, spriteTypeOfVtype(f[p + 106]));
        absolute.insert(abs);
        const int doors = getI16(f, p + 172);
        for (int d = 0; d < doors; ++d)
            EXPECT_LT(getI16(f, p + 174 + 8 * d + 6),
                      static_cast<int>(sprites[abs - 1].deltas.size()));
        p += 174 + 8 * doors;
    }
    EXPECT_EQ(cars, wantCars);
    EXPECT_EQ(absolute.size(), static_cast<std::size_t>(wantCars));

    if (!desc.is24) return;
    // Palette index: the sprite part starts at tileclut_size / 1024; every entry names a stored
    // CLUT; the game's limit is 3001 entries.
    const int entries = getI32(f, 40) / 2;
    ASSERT_LE(entries, 3001);
    const int tileEntries = getI32(f, 24) / 1024;
    EXPECT_EQ(tileEntries, 4 * (getI32(f, 4) + getI32(f, 8) + getI32(f, 12)) / 4096);
    EXPECT_EQ((getI32(f, 24) + getI32(f, 28) + getI32(f, 32) + getI32(f, 36)) / 1024, entries);
    const int cluts = getI32(f, 20) / 1024;
    for (int e = 0; e < entries; ++e) {
        const int physical = getI16(f, at.paletteIndex + 2 * e);
        ASSERT_GE(physical, 0);
        ASSERT_LT(physical, cluts);
    }
    for (const auto& s : sprites) ASSERT_LT(tileEntries + s.clut, entries);
    for (std::size_t c = 0; c < 64; ++c) // the fourth byte of every colour is 0
        EXPECT_EQ(f[at.clut + c * 256 + 4 * (c % 64) + 3], 0);
}

TEST(SampleLevel, TwentyFourBitStyleIsConsistent) {
    const StyleSpec s = sampleSpec24();
    checkLevel(s, 38);
    const auto o = sectionOffsets(s);
    EXPECT_GE(o.pageCount, 4);
    EXPECT_LE(o.pageCount, 6);
    EXPECT_GT(o.deltaSizes.size(), 100u);
    std::set<int> vtypes;
    int doors = 0;
    for (const auto& c : s.cars) vtypes.insert(c.vtype), doors += static_cast<int>(c.doors.size());
    EXPECT_EQ(vtypes, (std::set<int>{0, 1, 2, 3, 4, 8, 9, 13, 14}));
    EXPECT_GT(doors, 30);
}

TEST(SampleLevel, EightBitStyleMatchesTheTwentyFourBitOne) {
    const StyleSpec g = sampleSpec8();
    const StyleSpec c = sampleSpec24();
    checkLevel(g, 38);
    EXPECT_EQ(g.spriteNumbers, c.spriteNumbers);
    ASSERT_EQ(g.sprites.size(), c.sprites.size());
    for (std::size_t i = 0; i < g.sprites.size(); ++i) {
        EXPECT_EQ(g.sprites[i].deltas.size(), c.sprites[i].deltas.size());
        EXPECT_EQ(std::tie(g.sprites[i].page, g.sprites[i].x, g.sprites[i].y),
                  std::tie(c.sprites[i].page, c.sprites[i].x, c.sprites[i].y));
    }
    for (const Rgb& p : *g.palette8) EXPECT_LE(std::max({p.r, p.g, p.b}), 63);
}

TEST(SampleLevel, WritesAllFilesWithNamesForEveryCar) {
    const TempDir temp;
    const auto& dir = temp.path();
    writeSampleLevel(dir);
    const auto g24 = readFile(dir / "STYLE001.G24");
    EXPECT_EQ(g24.size(), sectionOffsets(sampleSpec24()).fileLength);
    EXPECT_EQ(readFile(dir / "STYLE002.GRY").size(), sectionOffsets(sampleSpec8()).fileLength);

    const auto fxt = readFile(dir / "ENGLISH.FXT");
    ASSERT_GE(fxt.size(), 11u);
    EXPECT_EQ((std::vector<uint8_t>(fxt.end() - 3, fxt.end())),
              (std::vector<uint8_t>{0x5C, 0x5E, 0x01}));
    const auto entries = decodeFxt(fxt);
    EXPECT_EQ(entries.front().substr(0, 8), "[1001]An");
    EXPECT_GT(entries.size(), 200u);
    std::map<int, std::string> names;
    for (const auto& e : entries)
        if (e.rfind("[car", 0) == 0) names[std::stoi(e.substr(4))] = e.substr(e.find(']') + 1);
    for (const auto& car : sampleSpec24().cars) EXPECT_TRUE(names.count(car.model)) << +car.model;
    EXPECT_EQ(names[0], "Beast GTS");
    EXPECT_EQ(names[17], "Itali");
    EXPECT_EQ(names[43], "City Bus");
    EXPECT_EQ(names[88], "Helicopter");

    for (const char* level : {"LEVEL001", "LEVEL002"}) {
        const auto sdt = readFile(dir / "audio" / (std::string(level) + ".SDT"));
        const auto raw = readFile(dir / "audio" / (std::string(level) + ".RAW"));
        ASSERT_EQ(sdt.size() % 12, 0u);
        std::size_t end = 0;
        std::set<int> rates;
        for (std::size_t r = 0; r < sdt.size(); r += 12) {
            EXPECT_EQ(static_cast<std::size_t>(getI32(sdt, r)), end);
            end += getI32(sdt, r + 4);
            rates.insert(getI32(sdt, r + 8));
        }
        EXPECT_EQ(end, raw.size());
        EXPECT_EQ(rates, (std::set<int>{11025, 22050}));
    }
}

TEST(FullSizeLevel, HasTheGameProportions) {
    const StyleSpec s = fullSizeSpec24();
    const auto f = buildStyle(s);
    checkLevel(s, 38);
    const auto o = sectionOffsets(s);
    EXPECT_EQ(o.pageCount, 26);
    EXPECT_GE(s.sprites.size(), 2800u);
    EXPECT_LE(s.sprites.size(), 3200u);
    EXPECT_GE(s.cluts.size(), 850u);
    EXPECT_LE(s.cluts.size(), 1150u);
    EXPECT_GE(o.deltaSizes.size(), 300u);
    EXPECT_GT(f.size(), 3'000'000u);
}

} // namespace
} // namespace torquil::testing
