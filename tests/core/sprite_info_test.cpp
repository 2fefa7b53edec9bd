#include "sprites/sprite_info.h"

#include "sprites/clut.h"

#include "sprite_fixture.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

tb::DeltaSpec oneRunDelta(uint8_t value) {
    tb::DeltaSpec d;
    d.runs = {{1, {value, value}}};
    return d;
}

// Three sprites on two pages; the palette index sends sprite clut 0, 1, 2 to CLUTs 2, 0, 1.
tb::StyleSpec threeSprites() {
    tb::StyleSpec layout;
    layout.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(50, 50, 50), tb::rampClut(90, 90, 90)};
    layout.paletteIndex.assign(32, 0); // 8 tiles, 4 entries each
    for (int16_t v : {2, 0, 1}) layout.paletteIndex.push_back(v);
    layout.paletteIndex.resize(60, 0);
    auto s1 = tb::spriteAt(0, 10, 20, 4, 3, 0);
    s1.deltas = {oneRunDelta(1), oneRunDelta(2)};
    auto s2 = tb::spriteAt(1, 0, 0, 2, 2, 2);
    auto s3 = tb::spriteAt(0, 100, 100, 1, 1, 1);
    s3.deltas = {oneRunDelta(3)};
    layout.sprites = {s1, s2, s3};
    return layout;
}

// Opens the file and runs the palette loader its kind needs, then the sprite info loader.
bool openAndLoad(tb::OpenStyle& t, const std::vector<uint8_t>& bytes, bool is24 = true,
                 bool debug = false, DumpFlags dumps = {}) {
    t.open(is24 ? "STYLE001.G24" : "STYLE002.GRY", bytes, kLoadSprites, debug, dumps);
    if (is24 && !loadCLUT(t.s(), *t.file, t.platform)) return false;
    return loadSpriteInfo(t.s(), *t.file, t.platform);
}

} // namespace

TEST(SpriteInfo, G24RecordsFillPageListsClutsDeltaReferencesAndDetails) {
    const auto layout = threeSprites();
    const auto o = tb::sectionOffsets(layout);
    tb::OpenStyle t;
    ASSERT_TRUE(openAndLoad(t, tb::buildStyle(layout)));
    const StyleSession& s = t.s();
    ASSERT_EQ(s.sprites.pageSprites[0].size(), 3u);
    ASSERT_EQ(s.sprites.pageSprites[1].size(), 2u);
    const SpriteRec& a = t.sprite(0, 1);
    EXPECT_EQ((std::array<int, 9>{a.ASN, a.W, a.H, a.size, a.xo, a.yo, a.page, a.rawClut, a.clut}),
              (std::array<int, 9>{1, 4, 3, 12, 10, 20, 0, 0, 2}));
    EXPECT_EQ(a.ptr, (10 << 16) | (20 << 24)); // the raw clut, xo and yo bytes
    EXPECT_EQ(t.sprite(0, 2).ASN, 3);          // SIB counts per page, ASN over the section
    EXPECT_EQ(t.sprite(1, 1).ASN, 2);
    EXPECT_EQ(t.sprite(1, 1).clut, 1);
    EXPECT_EQ(std::vector<std::int16_t>(s.colours.used.begin(), s.colours.used.begin() + 3),
              (std::vector<std::int16_t>{1, 1, 1}));
    // Delta entries are numbered on across sprites, each with its entry's 1-based position.
    EXPECT_EQ(a.deltas, (std::vector<std::int16_t>{0, 1}));
    EXPECT_TRUE(t.sprite(1, 1).deltas.empty());
    EXPECT_EQ(t.sprite(0, 2).deltas, (std::vector<std::int16_t>{2}));
    ASSERT_EQ(s.deltas.myDeltas.size(), 3u);
    EXPECT_EQ(s.deltas.deltaCount, 3);
    for (std::size_t i = 0; i < 3; ++i) {
        const DeltaRec& d = s.deltas.myDeltas[i];
        EXPECT_EQ(d.entryPos, static_cast<std::int32_t>(o.deltaEntries[i] + 1)) << i;
        EXPECT_EQ(std::make_pair(d.size, d.ptr), std::make_pair(o.deltaSizes[i], o.deltaPtrs[i]));
    }
    EXPECT_EQ(s.pages.highestPage, 1);
    EXPECT_EQ(
        tb::detailsFrom(t.platform, "loadSpriteInfoSeek:"),
        (std::vector<std::string>{"loadSpriteInfoSeek:" + std::to_string(o.spriteInfo.offset + 1),
                                  "3 sprite_infos loaded", "1 highest block number",
                                  "2 highest CLUT number referenced"}));
}

TEST(SpriteInfo, MouseOverCoversEachRectangleAndTheLaterSpriteWins) {
    tb::StyleSpec layout;
    layout.sprites = {tb::spriteAt(0, 0, 0, 10, 10), tb::spriteAt(0, 5, 5, 10, 10),
                      tb::spriteAt(1, 250, 250, 6, 6), tb::spriteAt(0, 40, 40, 0, 5)};
    tb::OpenStyle t;
    ASSERT_TRUE(openAndLoad(t, tb::buildStyle(layout)));
    const SpriteTables& m = t.s().sprites;
    EXPECT_EQ((std::array<int, 6>{m.over(0, 9, 2), m.over(0, 7, 7), m.over(0, 14, 14),
                                  m.over(0, 15, 14), m.over(1, 255, 255), m.over(0, 40, 40)}),
              (std::array<int, 6>{1, 2, 2, 0, 1, 0}));
}

TEST(SpriteInfo, GryPtrGivesPageXoAndYo) {
    tb::StyleSpec layout;
    layout.is24 = false;
    layout.sprites = {tb::spriteAt(3, 5, 17, 2, 2)};
    tb::OpenStyle t;
    ASSERT_TRUE(openAndLoad(t, tb::buildStyle(layout), false));
    const SpriteRec& r = t.sprite(3, 1);
    EXPECT_EQ((std::array<int, 3>{r.page, r.xo, r.yo}), (std::array<int, 3>{3, 5, 17}));
    EXPECT_EQ(r.gryPtr, 3 * 65536 + 17 * 256 + 5);
    EXPECT_EQ(t.s().sprites.over(3, 6, 18), 1);
    EXPECT_EQ(t.platform.detailLines.back(), "3 highest block number"); // no CLUT line
}

TEST(SpriteInfo, SizeMismatchStopsAtThatSpriteNamingIt) {
    tb::StyleSpec layout;
    layout.sprites = {tb::spriteAt(0, 0, 0, 2, 2), tb::spriteAt(0, 10, 0, 2, 2),
                      tb::spriteAt(0, 20, 0, 2, 2)};
    layout.sprites[1].sizeOverride = 5;
    tb::OpenStyle t;
    EXPECT_FALSE(openAndLoad(t, tb::buildStyle(layout)));
    EXPECT_EQ(t.platform.messageTexts(),
              std::vector<std::string>{"WARNING: loadSpriteInfo sprite(2).Size mismatch"});
    EXPECT_EQ(t.s().sprites.pageSprites[0].size(), 2u); // the first sprite stays
    EXPECT_EQ(tb::detailsFrom(t.platform, "2 sprite_infos").size(), 3u);
}

TEST(SpriteInfo, EmptySectionStillReadsOneRecord) {
    tb::OpenStyle t; // no sprites: the first page's zero bytes are read as one record
    ASSERT_TRUE(openAndLoad(t, tb::buildStyle(tb::StyleSpec{})));
    EXPECT_EQ(t.s().style.gSeekSpriteInfo, t.s().style.gSeekSpriteInfoEnd);
    EXPECT_EQ(t.sprite(0, 1).ASN, 1);
    EXPECT_EQ(tb::detailsFrom(t.platform, "1 sprite_infos")[0], "1 sprite_infos loaded");
}

TEST(SpriteInfo, BadRecordsRaiseRunTimeErrorsAndFail) {
    struct Case {
        const char* what;
        std::function<void(tb::StyleSpec&)> change;
        int error;
    };
    const Case cases[] = {
        {"page above 25",
         [](tb::StyleSpec& s) { s.sprites = {tb::spriteAt(26, 0, 0, 1, 1)}, s.pageCount = 1; },
         err::SubscriptOutOfRange},
        {"palette index entry past 3000", [](tb::StyleSpec& s) { s.tileclutSize = 3001 * 1024; },
         err::SubscriptOutOfRange},
        {"CLUT past the loaded ones",
         [](tb::StyleSpec& s) { s.paletteIndex.assign(32, 0), s.paletteIndex.push_back(500); },
         err::SubscriptOutOfRange},
        {"32768 sprites",
         [](tb::StyleSpec& s) { s.sprites.assign(32768, tb::spriteAt(0, 0, 0, 0, 0)); },
         err::Overflow},
    };
    for (const Case& c : cases) {
        tb::StyleSpec layout;
        layout.sprites = {tb::spriteAt(0, 0, 0, 1, 1)};
        c.change(layout);
        tb::OpenStyle t;
        EXPECT_FALSE(openAndLoad(t, tb::buildStyle(layout))) << c.what;
        EXPECT_EQ(t.s().errors.pending(), c.error) << c.what;
    }
    tb::StyleSpec gry; // a negative ptr gives a negative xo, which no byte field holds
    gry.is24 = false;
    gry.sprites = {tb::spriteAt(0, 0, 0, 1, 1)};
    auto bytes = tb::buildStyle(gry);
    tb::putI32(bytes, tb::sectionOffsets(gry).spriteRecords[0] + 6, -5);
    tb::OpenStyle t;
    EXPECT_FALSE(openAndLoad(t, bytes, false));
    EXPECT_EQ(t.s().errors.pending(), err::Overflow);
}

TEST(SpriteInfo, SpritePastThePageEdgeWritesUpToItThenFails) {
    tb::StyleSpec layout;
    layout.sprites = {tb::spriteAt(0, 250, 0, 10, 2)};
    tb::OpenStyle pastX;
    EXPECT_FALSE(openAndLoad(pastX, tb::buildStyle(layout)));
    EXPECT_EQ(pastX.s().errors.pending(), err::SubscriptOutOfRange);
    EXPECT_EQ(pastX.s().sprites.over(0, 255, 1), 1);

    layout.sprites = {tb::spriteAt(0, 3, 250, 2, 10)};
    tb::OpenStyle pastY;
    EXPECT_FALSE(openAndLoad(pastY, tb::buildStyle(layout)));
    EXPECT_EQ(pastY.s().sprites.over(0, 3, 255), 1); // x outer: column 3 up to the edge
    EXPECT_EQ(pastY.s().sprites.over(0, 4, 250), 0); // then it stopped

    tb::OpenStyle debug; // debug mode: the error is not trapped
    EXPECT_THROW(openAndLoad(debug, tb::buildStyle(layout), true, true), RuntimeError);
}

TEST(SpriteInfo, SectionRunningOffTheFileIsUnexpectedEof) {
    tb::StyleSpec layout;
    layout.sprites = {tb::spriteAt(0, 0, 0, 1, 1), tb::spriteAt(0, 5, 0, 1, 1)};
    const auto o = tb::sectionOffsets(layout);
    auto bytes = tb::buildStyle(layout);
    // The file now ends three bytes into the last head; the sections behind it are gone.
    tb::truncate(bytes, o.spriteInfo.end() - 3);
    tb::setHeaderField(bytes, tb::header24::sprite_info_size,
                       static_cast<int32_t>(o.spriteInfo.size - 3));
    tb::setHeaderField(bytes, tb::header24::sprite_graphics_size, 0);
    tb::setHeaderField(bytes, tb::header24::sprite_numbers_size, 0);
    tb::OpenStyle t;
    EXPECT_FALSE(openAndLoad(t, bytes));
    EXPECT_EQ(t.platform.messageTexts(),
              std::vector<std::string>{"Unexpected EOF during loadSpriteInfo"});
    EXPECT_EQ(t.platform.detailLines.back(),
              "loadSpriteInfoSeek:" + std::to_string(o.spriteInfo.offset + 1));
}

TEST(SpriteInfo, DumpFileListsEveryHeadAndDeltaEntry) {
    const DumpFlags dumps{false, true, false, false};
    tb::StyleSpec layout;
    auto sp = tb::spriteAt(0, 10, 20, 4, 3, 0);
    sp.ws = 9;
    sp.deltas = {oneRunDelta(4)};
    layout.sprites = {sp};
    const auto o = tb::sectionOffsets(layout);
    tb::OpenStyle t;
    ASSERT_TRUE(openAndLoad(t, tb::buildStyle(layout), true, false, dumps));
    EXPECT_EQ(tb::readLines(t.dir / "1SPRINFO.txt"),
              (std::vector<std::string>{t.path.string(), "",
                                        "SPRITE:1 FSEEK:" + std::to_string(o.spriteRecords[0] + 1),
                                        " W:4 H:3 size:12 deltas:1", " ws:9 delta_count:1",
                                        " clut:0 xo:10 yo:20 page:0", " myDeltaRef:0",
                                        " delta:0 size:" + std::to_string(o.deltaSizes[0]) +
                                            " ptr:" + std::to_string(o.deltaPtrs[0])}));

    layout.is24 = false;
    layout.sprites = {tb::spriteAt(1, 5, 17, 2, 2)};
    tb::OpenStyle gry;
    ASSERT_TRUE(openAndLoad(gry, tb::buildStyle(layout), false, false, dumps));
    const auto lines = tb::readLines(gry.dir / "2SPRINFO.txt");
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(lines[5], " sprnfo.ptr:" + std::to_string(65536 + 17 * 256 + 5));
    EXPECT_EQ(lines[6], " Calculated from ptr:  page:1 xo:5 yo:17");
}

TEST(SpriteNumbers, TwentyOneCountsEachWithItsDetailsLine) {
    tb::StyleSpec layout;
    layout.spriteNumbers = {49, 0, 1, 0, 6, 27, 562, 295, 0, 2, 6, 5, 0, 26, 0, 0, 7, 48, 0, 0, 0};
    tb::OpenStyle t;
    t.open("STYLE001.G24", layout);
    ASSERT_TRUE(loadSpriteNumbers(t.s(), *t.file, t.platform));
    ASSERT_EQ(t.platform.detailLines.size(), 21u);
    EXPECT_EQ(t.platform.detailLines[0], " SPR_ARROW: 49");
    EXPECT_EQ(t.platform.detailLines[10], " SPR_TRAFFIC_LIGHTS: 6");
    EXPECT_EQ(t.platform.detailLines[20], " SPR_FERRY: 0");
    EXPECT_EQ(t.s().sprites.firstCarSprite(), 57);

    auto bytes = tb::buildStyle(layout);
    tb::setHeaderField(bytes, tb::header24::sprite_numbers_size, 0x7000000);
    tb::OpenStyle bad;
    bad.open("STYLE001.G24", bytes);
    EXPECT_FALSE(loadSpriteNumbers(bad.s(), *bad.file, bad.platform));
}

TEST(TileRegions, SixteenTilesAPageWithTheirKindsAndCluts) {
    tb::StyleSpec layout; // 5 side, 3 lid, 10 aux: 16 tiles on page 0, 2 on page 1
    layout.sideTiles = 5, layout.lidTiles = 3, layout.auxTiles = 10;
    layout.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(9, 9, 9)};
    layout.paletteIndex.assign(4 * 18 + 8, 7);
    for (int n = 1; n <= 18; ++n) layout.paletteIndex[4 * (n - 1)] = static_cast<int16_t>(n % 2);
    tb::OpenStyle t;
    t.open("STYLE001.G24", layout, kLoadTiles);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    ASSERT_TRUE(calcTileSpriteInfo(t.s(), *t.file, t.platform));
    const StyleSession& s = t.s();
    EXPECT_EQ(s.pages.highestPage, 1);
    EXPECT_EQ(s.sprites.pageSprites[1].size(), 3u);
    const SpriteRec& six = t.sprite(0, 6);
    EXPECT_EQ((std::array<int, 6>{six.ASN, six.xo, six.yo, six.W, six.palPos, six.clut}),
              (std::array<int, 6>{6, 64, 64, 64, 20, 0}));
    EXPECT_EQ(t.sprite(0, 5).kind + " " + six.kind + " " + t.sprite(1, 2).kind,
              "sideTile lidTile auxTile");
    EXPECT_EQ(t.sprite(1, 2).ASN, 18);
    EXPECT_EQ(s.colours.used[0], 9);
    EXPECT_EQ(s.colours.used[1], 9);
    EXPECT_EQ((std::array<int, 4>{s.sprites.over(0, 127, 127), s.sprites.over(0, 128, 127),
                                  s.sprites.over(1, 127, 63), s.sprites.over(1, 128, 0)}),
              (std::array<int, 4>{6, 7, 2, 0}));

    auto bytes = tb::buildStyle(layout); // more than 26 pages of tiles
    tb::setHeaderField(bytes, tb::header24::side_size, 27 * 65536);
    tb::OpenStyle big;
    big.open("STYLE001.G24", bytes, kLoadTiles);
    ASSERT_TRUE(loadCLUT(big.s(), *big.file, big.platform));
    EXPECT_FALSE(calcTileSpriteInfo(big.s(), *big.file, big.platform));
    EXPECT_EQ(big.s().errors.pending(), err::SubscriptOutOfRange);
}
