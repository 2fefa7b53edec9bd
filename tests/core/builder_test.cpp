// Tests of the file builder itself: the files it writes must be laid out the way the game's files
// are, since every other test trusts them.

#include "fxt_coder.h"
#include "sample_level.h"
#include "style_builder.h"

#include <gtest/gtest.h>

#include <chrono>
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

// ------------------------------------------------------------------ deltas

TEST(DeltaRuns, ChainOffsetsFromThePreviousRunEnd) {
    // Two rows of 3 at row 2, column 5: first run 2 * 256 + 5, next one row on less the run.
    const auto d = deltaFromPixels(5, 2, 3, 2, {1, 2, 3, 4, 5, 6});
    ASSERT_EQ(d.runs.size(), 2u);
    EXPECT_EQ(d.runs[0].offset, 517);
    EXPECT_EQ(d.runs[0].data, (std::vector<uint8_t>{1, 2, 3}));
    EXPECT_EQ(d.runs[1].offset, 253);
    EXPECT_EQ(deltaDataSize(d), 12);

    const auto gaps = deltaFromPixels(1, 0, 4, 1, {7, 0, 0, 8}, uint8_t{0});
    ASSERT_EQ(gaps.runs.size(), 2u);
    EXPECT_EQ(gaps.runs[0].offset, 1);
    EXPECT_EQ(gaps.runs[1].offset, 2);

    const auto diff = deltaFromDiff({1, 1, 1, 1}, {1, 5, 1, 6}, 2, 2);
    ASSERT_EQ(diff.runs.size(), 2u);
    EXPECT_EQ(diff.runs[0].offset, 1);
    EXPECT_EQ(diff.runs[1].offset, 255);
}

TEST(DeltaRuns, RefuseAFirstRunAtTheTopLeftPixelAndBadSizes) {
    EXPECT_THROW(deltaFromPixels(0, 0, 1, 1, {3}), std::invalid_argument);
    EXPECT_THROW(deltaFromDiff({0}, {1}, 1, 1), std::invalid_argument);
    EXPECT_THROW(deltaFromPixels(0, 0, 2, 1, {3}), std::invalid_argument);
}

// ------------------------------------------------------------------ style files

TEST(StyleBuilder, SectionsAddUpToTheFileLengthInBothKinds) {
    for (bool is24 : {true, false}) {
        SCOPED_TRACE(is24 ? "G24" : "GRY");
        const StyleSpec desc = smallStyle(is24);
        const auto f = buildStyle(desc);
        const auto o = sectionOffsets(desc);
        ASSERT_EQ(f.size(), o.fileLength);
        EXPECT_EQ(headerOf(f, is24), o.headerFields);

        std::vector<Section> order{o.header, o.tiles, o.anim};
        if (is24)
            order.insert(order.end(), {o.clut, o.paletteIndex});
        else
            order.insert(order.end(), {o.palette, o.remaps, o.remapIndex});
        order.insert(order.end(),
                     {o.objectInfo, o.carInfo, o.spriteInfo, o.spriteGraphics, o.spriteNumbers});
        std::size_t at = 0;
        for (const auto& s : order) {
            EXPECT_EQ(s.offset, at);
            at = s.end();
        }
        EXPECT_EQ(at, f.size());

        // The header's sizes, with the two paddings, give the same length.
        const auto h = headerOf(f, is24);
        std::size_t sum = (is24 ? 64 : 52) + roundUp(h[1] + h[2] + h[3], 16384) + h[4];
        if (is24) sum += roundUp(h[5], 65536);
        for (std::size_t i = is24 ? 10 : 5; i < h.size(); ++i) sum += h[i];
        EXPECT_EQ(sum, f.size());

        const Located at2 = locate(f, is24);
        EXPECT_EQ(at2.carInfo, o.carInfo.offset);
        EXPECT_EQ(at2.spriteInfo, o.spriteInfo.offset);
        EXPECT_EQ(at2.graphics, o.spriteGraphics.offset);
        if (is24) {
            EXPECT_EQ(at2.paletteIndex, at2.clut + roundUp(h[5], 65536));
        } else {
            EXPECT_EQ(at2.palette8, o.palette.offset);
        }
    }
}

TEST(StyleBuilder, PadsTilesToFourAndClutsToWholePages) {
    StyleSpec s;
    s.sideTiles = 3, s.lidTiles = 2, s.auxTiles = 0; // 5 tiles: 8 on disk
    s.cluts.resize(65);
    s.cluts[64][3] = {0x10, 0x20, 0x30};
    s.cluts[1][255] = {1, 2, 3};
    const auto f = buildStyle(s);
    const auto o = sectionOffsets(s);
    EXPECT_EQ(getI32(f, header24::side_size), 3 * 4096);
    EXPECT_EQ(o.tiles.size, 8u * 4096);
    EXPECT_EQ(getI32(f, header24::clut_size), 65 * 1024);
    EXPECT_EQ(o.clut.size, 2u * 65536);
    EXPECT_EQ(o.clut.offset, 64u + 8 * 4096 + 41);
    // CLUT 64 is the first of page 1; colour 3 lies in row 3, stored blue, green, red, 0.
    const std::size_t p = o.clut.offset + 65536 + 3 * 256;
    EXPECT_EQ(f[p], 0x30);
    EXPECT_EQ(f[p + 1], 0x20);
    EXPECT_EQ(f[p + 2], 0x10);
    EXPECT_EQ(f[p + 3], 0);
    const std::size_t q = o.clut.offset + 255 * 256 + 4;
    EXPECT_EQ((std::vector<uint8_t>(f.begin() + q, f.begin() + q + 4)),
              (std::vector<uint8_t>{3, 2, 1, 0}));

    StyleSpec exact;
    exact.sideTiles = 4, exact.lidTiles = 4, exact.auxTiles = 0;
    EXPECT_EQ(sectionOffsets(exact).tiles.size, 8u * 4096);
}

TEST(StyleBuilder, PlacesTilesFourByFourOnPages) {
    StyleSpec s;
    s.sideTiles = 17, s.lidTiles = 0, s.auxTiles = 0;
    s.tilePixel = [](int t, int x, int y) { return static_cast<uint8_t>(t + x + y); };
    const auto f = buildStyle(s);
    // Tile 6 is on page 0, grid column 2, grid row 1; tile 16 starts page 1.
    EXPECT_EQ(f[64 + (64 + 5) * 256 + 128 + 7], 6 + 7 + 5);
    EXPECT_EQ(f[64 + 65536], 16);
    EXPECT_EQ(f[64 + 65536 + 63 * 256 + 63], 16 + 126);

    s.tileData.assign(17 * 4096, 0);
    s.tileData[6 * 4096 + 5 * 64 + 7] = 200;
    EXPECT_EQ(buildStyle(s)[64 + (64 + 5) * 256 + 128 + 7], 200);
    s.tileData.resize(16 * 4096);
    EXPECT_THROW(buildStyle(s), std::invalid_argument);
}

TEST(StyleBuilder, WritesSpriteInfoPixelsAndDeltaStore) {
    for (bool is24 : {true, false}) {
        SCOPED_TRACE(is24 ? "G24" : "GRY");
        const StyleSpec desc = smallStyle(is24);
        const auto f = buildStyle(desc);
        const auto sprites = readSprites(f, is24);
        const Located at = locate(f, is24);
        ASSERT_EQ(sprites.size(), 2u);
        // Type order: the arrow (type 0) comes before the car.
        const ReadSprite& arrow = sprites[0];
        const ReadSprite& car = sprites[1];
        EXPECT_EQ(std::tie(arrow.w, arrow.h, arrow.x, arrow.y, arrow.page),
                  std::make_tuple(2, 2, 5, 17, 2));
        EXPECT_EQ(std::tie(car.w, car.h, car.size, car.x, car.y, car.page),
                  std::make_tuple(3, 2, 6, 10, 20, 0));
        if (is24) {
            EXPECT_EQ(car.clut, 1);
        } else {
            EXPECT_EQ(getI32(f, at.spriteInfo + 6), 2 * 65536 + 17 * 256 + 5);
        }

        EXPECT_EQ(f[at.graphics + 20 * 256 + 10], 1);
        EXPECT_EQ(f[at.graphics + 21 * 256 + 12], 6);
        EXPECT_EQ(f[at.graphics + 2 * 65536 + 18 * 256 + 6], 9);

        // Deltas: after the 3 pages, in sprite order, ptr from the graphics section start.
        ASSERT_EQ(arrow.deltas.size(), 1u);
        ASSERT_EQ(car.deltas.size(), 2u);
        EXPECT_EQ(arrow.deltas[0], (std::pair<int16_t, int32_t>{4, 3 * 65536}));
        EXPECT_EQ(car.deltas[0], (std::pair<int16_t, int32_t>{5, 3 * 65536 + 4}));
        EXPECT_EQ(car.deltas[1], (std::pair<int16_t, int32_t>{0, 3 * 65536 + 9}));
        const std::size_t d = at.graphics + car.deltas[0].second;
        EXPECT_EQ((std::vector<uint8_t>(f.begin() + d, f.begin() + d + 5)),
                  (std::vector<uint8_t>{0x01, 0x01, 2, 7, 8})); // offset 257, length 2
        EXPECT_EQ(at.numbers, at.graphics + 3 * 65536 + 9);
        EXPECT_EQ(getI16(f, at.numbers), 1);         // SPR_ARROW
        EXPECT_EQ(getI16(f, at.numbers + 2 * 5), 1); // SPR_CAR
    }
}

TEST(StyleBuilder, CarRecordsAreFixedSizePlusDoors) {
    CarSpec c;
    c.remap24[2] = {-5, 6, 7};
    c.remap8[11] = 99;
    c.vtype = 13;
    c.model = 88;
    c.front_brake_bias = -98304;
    c.back_end_slide_value = 0x12345678;
    c.fast_change_flag = 1;
    c.doors = {{1, 2, 3, 4}, {-1, -2, -3, -4}};
    const auto r = encodeCarInfo(c);
    ASSERT_EQ(r.size(), 174u + 16);
    EXPECT_EQ(getI16(r, 22 + 12), -5);
    EXPECT_EQ(getI16(r, 22 + 16), 7);
    EXPECT_EQ(r[94 + 11], 99);
    EXPECT_EQ(r[106], 13);
    EXPECT_EQ(r[107], 88);
    EXPECT_EQ(getI32(r, 148), -98304);
    EXPECT_EQ(getI32(r, 158), 0x12345678);
    EXPECT_EQ(r[171], 1);
    EXPECT_EQ(getI16(r, 172), 2);
    EXPECT_EQ(getI16(r, 174 + 8 + 6), -4);

    c.doorsOverride = 5;
    const auto broken = encodeCarInfo(c);
    EXPECT_EQ(broken.size(), 174u + 16);
    EXPECT_EQ(getI16(broken, 172), 5);

    const StyleSpec desc = smallStyle(true);
    const auto f = buildStyle(desc);
    const auto o = sectionOffsets(desc);
    EXPECT_EQ(getI32(f, header24::car_info_size), 174 + 8 + 174);
    EXPECT_EQ(o.carRecords[1], o.carRecords[0] + 182);
}

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

TEST(StyleBuilder, DefaultsGiveAValidMinimalFile) {
    StyleSpec s;
    SpriteSpec sp;
    sp.clut = 2;
    s.sprites = {sp};
    s.spriteNumbers[SPR_CAR] = 1;
    const auto f = buildStyle(s);
    const auto o = sectionOffsets(s);
    EXPECT_EQ(getI32(f, header24::version_code), 336);
    EXPECT_EQ(getI32(f, header24::clut_size), 1024); // one grey CLUT
    // The first sprite entry follows the tile entries; the sprite part covers clut 0..2.
    EXPECT_EQ(getI32(f, header24::tileclut_size), 8 * 4 * 1024);
    EXPECT_EQ(getI32(f, header24::spriteclut_size), 3 * 1024);
    EXPECT_EQ(o.paletteIndex.size, 2u * (32 + 3 + 64 + 8));
    EXPECT_EQ(o.pageCount, 1);

    StyleSpec g;
    g.is24 = false;
    std::array<Rgb, 256> pal{};
    pal[1] = {63, 64, 2};
    g.palette8 = pal;
    const auto gf = buildStyle(g);
    EXPECT_EQ(getI32(gf, headerGry::version_code), 325);
    const std::size_t p = sectionOffsets(g).palette.offset;
    EXPECT_EQ((std::vector<uint8_t>(gf.begin() + p + 3, gf.begin() + p + 6)),
              (std::vector<uint8_t>{63, 64, 2}));
}

TEST(SoundBank, RecordsRunBackToBackToTheEndOfTheRaw) {
    const auto [sdt, raw] = buildSoundBank({{{1, 2, 3}, 11025}, {{}, 8000}, {{9, 9}, 22050}});
    ASSERT_EQ(sdt.size(), 36u);
    EXPECT_EQ(raw, (std::vector<uint8_t>{1, 2, 3, 9, 9}));
    EXPECT_EQ(getI32(sdt, 12 * 2), 3);
    EXPECT_EQ(getI32(sdt, 12 * 2 + 4), 2);
    EXPECT_EQ(getI32(sdt, 12 * 2 + 8), 22050);
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

TEST(SampleLevel, CarRemapsOfNoChangeUseTheCarsOwnClut) {
    const StyleSpec s = sampleSpec24();
    const int tileEntries = *s.tileclutSize / 1024;
    const int remapStart = tileEntries + *s.spriteclutSize / 1024;
    for (std::size_t c = 0; c < s.cars.size(); ++c) {
        const auto& car = s.cars[c];
        const int abs = absoluteSpriteNumber(s.spriteNumbers, car.vtype, car.spr_num);
        const int own = s.paletteIndex[tileEntries + s.sprites[abs - 1].clut];
        for (int j = 0; j < 12; ++j) {
            const int entry = s.paletteIndex[remapStart + 12 * c + j];
            if (car.remap24[j] == std::array<int16_t, 3>{0, 0, 0}) {
                EXPECT_EQ(entry, own);
            } else {
                EXPECT_NE(entry, own);
            }
        }
    }
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
    const auto dir = std::filesystem::temp_directory_path() / "torquil_builder_test_sample";
    std::filesystem::remove_all(dir);
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
    std::filesystem::remove_all(dir);
}

TEST(FullSizeLevel, HasTheGameProportionsAndBuildsQuickly) {
    const auto start = std::chrono::steady_clock::now();
    const StyleSpec s = fullSizeSpec24();
    const auto f = buildStyle(s);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    checkLevel(s, 38);
    const auto o = sectionOffsets(s);
    EXPECT_EQ(o.pageCount, 26);
    EXPECT_GE(s.sprites.size(), 2800u);
    EXPECT_LE(s.sprites.size(), 3200u);
    EXPECT_GE(s.cluts.size(), 850u);
    EXPECT_LE(s.cluts.size(), 1150u);
    EXPECT_GE(o.deltaSizes.size(), 300u);
    EXPECT_GT(f.size(), 3'000'000u);
    // Generous: optimised builds take a fraction of this.
    EXPECT_LT(seconds, 5.0);
}

} // namespace
} // namespace torquil::testing
