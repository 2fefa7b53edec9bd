#include "sprites/sprite_info.h"

#include "sprites/clut.h"

#include "sprite_fixture.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

tb::DeltaSpec oneRunDelta(uint8_t value) {
    tb::DeltaSpec d;
    d.runs = {{1, {value, value}}};
    return d;
}

// Three sprites on two pages over three CLUTs; the palette index sends sprite clut 0, 1, 2 to
// physical CLUTs 2, 0, 1.
tb::StyleSpec threeSprites() {
    tb::StyleSpec spec;
    spec.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(50, 50, 50), tb::rampClut(90, 90, 90)};
    spec.paletteIndex.assign(32, 0); // 8 tiles, 4 entries each
    for (int16_t v : {2, 0, 1}) spec.paletteIndex.push_back(v);
    spec.paletteIndex.resize(60, 0);
    auto s1 = tb::spriteAt(0, 10, 20, 4, 3, 0);
    s1.deltas = {oneRunDelta(1), oneRunDelta(2)};
    auto s2 = tb::spriteAt(1, 0, 0, 2, 2, 2);
    s2.ws = 7;
    auto s3 = tb::spriteAt(0, 100, 100, 1, 1, 1);
    s3.deltas = {oneRunDelta(3)};
    spec.sprites = {s1, s2, s3};
    return spec;
}

bool loadG24(tb::OpenStyle& t) {
    return loadCLUT(t.s(), *t.file, t.platform) && loadSpriteInfo(t.s(), *t.file, t.platform);
}

std::vector<std::string> readLines(const std::filesystem::path& path) {
    std::vector<std::string> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::vector<std::string> detailsAfter(const tb::FakePlatform& p, const std::string& first) {
    auto it = std::find_if(p.detailLines.begin(), p.detailLines.end(),
                           [&](const std::string& l) { return l.starts_with(first); });
    return {it, p.detailLines.end()};
}

} // namespace

TEST(SpriteInfo, G24RecordsFillPageListsClutsUseCountsAndDetails) {
    const auto spec = threeSprites();
    const auto o = tb::sectionOffsets(spec);
    tb::OpenStyle t;
    t.open("STYLE001.G24", spec);
    ASSERT_TRUE(loadG24(t));
    StyleSession& s = t.s();

    ASSERT_EQ(s.sprites.pageSprites[0].size(), 3u);
    ASSERT_EQ(s.sprites.pageSprites[1].size(), 2u);
    const SpriteRec& a = t.sprite(0, 1);
    EXPECT_EQ(a.ASN, 1);
    EXPECT_EQ(a.W, 4);
    EXPECT_EQ(a.H, 3);
    EXPECT_EQ(a.size, 12);
    EXPECT_EQ(a.xo, 10);
    EXPECT_EQ(a.yo, 20);
    EXPECT_EQ(a.page, 0);
    EXPECT_EQ(a.rawClut, 0);
    EXPECT_EQ(a.clut, 2);
    EXPECT_EQ(a.ptr, 0 | (10 << 16) | (20 << 24)); // the raw clut, xo, yo bytes
    EXPECT_EQ(t.sprite(0, 2).ASN, 3);
    EXPECT_EQ(t.sprite(0, 2).clut, 0);
    const SpriteRec& b = t.sprite(1, 1);
    EXPECT_EQ(b.ASN, 2);
    EXPECT_EQ(b.ws, 7);
    EXPECT_EQ(b.rawClut, 2);
    EXPECT_EQ(b.clut, 1);
    EXPECT_EQ(s.colours.used[0], 1);
    EXPECT_EQ(s.colours.used[1], 1);
    EXPECT_EQ(s.colours.used[2], 1);
    EXPECT_EQ(s.sprites.spriteCount, 3);
    EXPECT_EQ(s.pages.highestPage, 1);
    EXPECT_EQ(s.sprites.highestRawClut, 2);

    EXPECT_EQ(
        detailsAfter(t.platform, "loadSpriteInfoSeek:"),
        (std::vector<std::string>{"loadSpriteInfoSeek:" + std::to_string(o.spriteInfo.offset + 1),
                                  "3 sprite_infos loaded", "1 highest block number",
                                  "2 highest CLUT number referenced"}));
    EXPECT_EQ(t.platform.progressTitles.back(), "Loading SpriteInfo");
    EXPECT_EQ(t.platform.progressTexts.back(), "Load SpriteInfo / Build MouseOvers...");
}

TEST(SpriteInfo, DeltaReferencesAreNumberedAcrossSpritesWithTheirEntryPositions) {
    const auto spec = threeSprites();
    const auto o = tb::sectionOffsets(spec);
    tb::OpenStyle t;
    t.open("STYLE001.G24", spec);
    ASSERT_TRUE(loadG24(t));
    EXPECT_EQ(t.sprite(0, 1).deltas, (std::vector<std::int16_t>{0, 1}));
    EXPECT_TRUE(t.sprite(1, 1).deltas.empty());
    EXPECT_EQ(t.sprite(0, 2).deltas, (std::vector<std::int16_t>{2}));
    const auto& refs = t.s().deltas.myDeltas;
    ASSERT_EQ(refs.size(), 3u);
    EXPECT_EQ(t.s().deltas.deltaCount, 3);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(refs[i].entryPos, static_cast<std::int32_t>(o.deltaEntries[i] + 1)) << i;
        EXPECT_EQ(refs[i].size, o.deltaSizes[i]) << i;
        EXPECT_EQ(refs[i].ptr, o.deltaPtrs[i]) << i;
    }
}

TEST(SpriteInfo, MouseOverCoversEachRectangleAndTheLaterSpriteWins) {
    tb::StyleSpec spec;
    spec.sprites = {tb::spriteAt(0, 0, 0, 10, 10), tb::spriteAt(0, 5, 5, 10, 10),
                    tb::spriteAt(1, 250, 250, 6, 6), tb::spriteAt(0, 40, 40, 0, 5)};
    tb::OpenStyle t;
    t.open("STYLE001.G24", spec);
    ASSERT_TRUE(loadG24(t));
    const SpriteTables& m = t.s().sprites;
    EXPECT_EQ(m.over(0, 2, 2), 1);
    EXPECT_EQ(m.over(0, 9, 2), 1);
    EXPECT_EQ(m.over(0, 7, 7), 2);
    EXPECT_EQ(m.over(0, 14, 14), 2);
    EXPECT_EQ(m.over(0, 15, 14), 0);
    EXPECT_EQ(m.over(0, 14, 15), 0);
    EXPECT_EQ(m.over(1, 255, 255), 1); // reaching the page's last pixel is fine
    EXPECT_EQ(m.over(0, 40, 40), 0);   // a sprite 0 pixels wide covers nothing
    EXPECT_EQ(t.sprite(0, 3).ASN, 4);
}

TEST(SpriteInfo, GryPtrGivesPageXoAndYo) {
    tb::StyleSpec spec;
    spec.is24 = false;
    spec.sprites = {tb::spriteAt(3, 5, 17, 2, 2)};
    const auto o = tb::sectionOffsets(spec);
    tb::OpenStyle t;
    t.open("STYLE002.GRY", spec);
    ASSERT_TRUE(loadSpriteInfo(t.s(), *t.file, t.platform));
    const SpriteRec& r = t.sprite(3, 1);
    EXPECT_EQ(r.page, 3);
    EXPECT_EQ(r.xo, 5);
    EXPECT_EQ(r.yo, 17);
    EXPECT_EQ(r.gryPtr, 3 * 65536 + 17 * 256 + 5);
    EXPECT_EQ(r.ptr, r.gryPtr);
    EXPECT_EQ(t.s().sprites.over(3, 6, 18), 1);
    EXPECT_EQ(
        t.platform.detailLines,
        (std::vector<std::string>{"loadSpriteInfoSeek:" + std::to_string(o.spriteInfo.offset + 1),
                                  "1 sprite_infos loaded", "3 highest block number"}));
}

TEST(SpriteInfo, SizeMismatchStopsAtThatSpriteNamingIt) {
    tb::StyleSpec spec;
    spec.sprites = {tb::spriteAt(0, 0, 0, 2, 2), tb::spriteAt(0, 10, 0, 2, 2),
                    tb::spriteAt(0, 20, 0, 2, 2)};
    spec.sprites[1].sizeOverride = 5;
    tb::OpenStyle t;
    t.open("STYLE001.G24", spec);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    EXPECT_FALSE(loadSpriteInfo(t.s(), *t.file, t.platform));
    EXPECT_EQ(t.platform.messageTexts(),
              std::vector<std::string>{"WARNING: loadSpriteInfo sprite(2).Size mismatch"});
    EXPECT_EQ(t.s().sprites.pageSprites[0].size(), 2u); // the first sprite stays
    EXPECT_EQ(t.s().sprites.over(0, 10, 0), 0);
    EXPECT_EQ(detailsAfter(t.platform, "2 sprite_infos")[0], "2 sprite_infos loaded");
}

TEST(SpriteInfo, EmptySectionStillReadsOneRecord) {
    tb::StyleSpec spec; // no sprites: the first page's zero bytes are read as one record
    tb::OpenStyle t;
    t.open("STYLE001.G24", spec);
    ASSERT_EQ(t.s().style.gSeekSpriteInfo, t.s().style.gSeekSpriteInfoEnd);
    ASSERT_TRUE(loadG24(t));
    EXPECT_EQ(t.s().sprites.spriteCount, 1);
    ASSERT_EQ(t.s().sprites.pageSprites[0].size(), 2u);
    EXPECT_EQ(t.sprite(0, 1).ASN, 1);
    EXPECT_EQ(detailsAfter(t.platform, "1 sprite_infos")[0], "1 sprite_infos loaded");
}

TEST(SpriteInfo, BadRecordsRaiseRunTimeErrorsAndFail) {
    struct Case {
        const char* what;
        std::function<void(tb::StyleSpec&)> change;
        int error;
    };
    const Case cases[] = {
        {"page above 25",
         [](tb::StyleSpec& s) {
             s.sprites = {tb::spriteAt(26, 0, 0, 1, 1)};
             s.pageCount = 1;
         },
         err::SubscriptOutOfRange},
        {"palette index entry past 3000",
         [](tb::StyleSpec& s) {
             s.sprites = {tb::spriteAt(0, 0, 0, 1, 1)};
             s.tileclutSize = 3001 * 1024;
         },
         err::SubscriptOutOfRange},
        {"CLUT past the loaded ones",
         [](tb::StyleSpec& s) {
             s.sprites = {tb::spriteAt(0, 0, 0, 1, 1)};
             s.paletteIndex.assign(32, 0);
             s.paletteIndex.push_back(500);
         },
         err::SubscriptOutOfRange},
    };
    for (const Case& c : cases) {
        tb::StyleSpec spec;
        c.change(spec);
        tb::OpenStyle t;
        t.open("STYLE001.G24", spec);
        ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform)) << c.what;
        EXPECT_FALSE(loadSpriteInfo(t.s(), *t.file, t.platform)) << c.what;
        EXPECT_EQ(t.s().errors.pending(), c.error) << c.what;
    }
}

TEST(SpriteInfo, SpritePastThePageEdgeWritesUpToItThenFails) {
    {
        tb::StyleSpec spec;
        spec.sprites = {tb::spriteAt(0, 250, 0, 10, 2)};
        tb::OpenStyle t;
        t.open("STYLE001.G24", spec);
        ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_FALSE(loadSpriteInfo(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().errors.pending(), err::SubscriptOutOfRange);
        EXPECT_EQ(t.s().sprites.over(0, 255, 1), 1);
        EXPECT_EQ(t.s().sprites.over(0, 250, 0), 1);
    }
    {
        tb::StyleSpec spec;
        spec.sprites = {tb::spriteAt(0, 3, 250, 2, 10)};
        tb::OpenStyle t;
        t.open("STYLE001.G24", spec);
        ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_FALSE(loadSpriteInfo(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().sprites.over(0, 3, 255), 1); // x outer: column 3 up to the edge
        EXPECT_EQ(t.s().sprites.over(0, 4, 250), 0); // then it stopped
    }
    {
        tb::OpenStyle t;
        tb::StyleSpec spec;
        spec.sprites = {tb::spriteAt(26, 0, 0, 1, 1)};
        spec.pageCount = 1;
        t.open("STYLE001.G24", tb::buildStyle(spec), kLoadSprites, /*debug=*/true);
        ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
        try {
            loadSpriteInfo(t.s(), *t.file, t.platform);
            FAIL() << "no error in debug mode";
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.number(), err::SubscriptOutOfRange);
        }
    }
}

TEST(SpriteInfo, GryNegativePtrIsAnOverflow) {
    tb::StyleSpec spec;
    spec.is24 = false;
    spec.sprites = {tb::spriteAt(0, 0, 0, 1, 1)};
    auto bytes = tb::buildStyle(spec);
    tb::putI32(bytes, tb::sectionOffsets(spec).spriteRecords[0] + 6, -5);
    tb::OpenStyle t;
    t.open("STYLE002.GRY", bytes);
    EXPECT_FALSE(loadSpriteInfo(t.s(), *t.file, t.platform));
    EXPECT_EQ(t.s().errors.pending(), err::Overflow);
}

TEST(SpriteInfo, MoreThan32767SpritesIsAnOverflow) {
    tb::StyleSpec spec;
    spec.sprites.assign(32768, tb::spriteAt(0, 0, 0, 0, 0));
    tb::OpenStyle t;
    t.open("STYLE001.G24", spec);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    EXPECT_FALSE(loadSpriteInfo(t.s(), *t.file, t.platform));
    EXPECT_EQ(t.s().errors.pending(), err::Overflow);
    EXPECT_EQ(detailsAfter(t.platform, "32767 sprite_infos")[0], "32767 sprite_infos loaded");
    EXPECT_EQ(t.platform.progressValues.back(), 32700);
}

TEST(SpriteInfo, SectionRunningOffTheFileIsUnexpectedEof) {
    tb::StyleSpec spec;
    spec.sprites = {tb::spriteAt(0, 0, 0, 1, 1), tb::spriteAt(0, 5, 0, 1, 1)};
    const auto o = tb::sectionOffsets(spec);
    auto bytes = tb::buildStyle(spec);
    // The file now ends three bytes into the last head; the sections behind it are gone.
    tb::truncate(bytes, o.spriteInfo.end() - 3);
    tb::setHeaderField(bytes, tb::header24::sprite_info_size,
                       static_cast<int32_t>(o.spriteInfo.size - 3));
    tb::setHeaderField(bytes, tb::header24::sprite_graphics_size, 0);
    tb::setHeaderField(bytes, tb::header24::sprite_numbers_size, 0);
    tb::OpenStyle t;
    t.open("STYLE001.G24", bytes);
    ASSERT_EQ(t.s().style.gSeekSpriteInfo, static_cast<std::int64_t>(o.spriteInfo.offset + 1));
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    EXPECT_FALSE(loadSpriteInfo(t.s(), *t.file, t.platform));
    EXPECT_EQ(t.platform.messageTexts(),
              std::vector<std::string>{"Unexpected EOF during loadSpriteInfo"});
    EXPECT_EQ(t.platform.detailLines.back(),
              "loadSpriteInfoSeek:" + std::to_string(o.spriteInfo.offset + 1));
    EXPECT_EQ(t.platform.progressCloseCount, 2); // the CLUT's and this one's
}

TEST(SpriteInfo, FailedLoadEndsTheWholeLoadWithItsStep) {
    tb::StyleSpec spec;
    spec.sprites = {tb::spriteAt(26, 0, 0, 1, 1)};
    spec.pageCount = 1;
    tb::OpenStyle t;
    EXPECT_EQ(t.load("STYLE001.G24", tb::buildStyle(spec)), LoadOutcome::Failed);
    ASSERT_FALSE(t.platform.shownMessages.empty());
    EXPECT_TRUE(t.platform.shownMessages.back().text.starts_with("ERROR: Load Sprite Info\r"));
}

TEST(SpriteInfo, DumpFileListsEveryHeadAndDeltaEntry) {
    DumpFlags dumps;
    dumps.spriteInfo = true;
    {
        tb::StyleSpec spec;
        auto sp = tb::spriteAt(0, 10, 20, 4, 3, 0);
        sp.ws = 9;
        sp.deltas = {oneRunDelta(4)};
        spec.sprites = {sp};
        const auto o = tb::sectionOffsets(spec);
        tb::OpenStyle t;
        t.open("STYLE001.G24", tb::buildStyle(spec), kLoadSprites, false, dumps);
        ASSERT_TRUE(loadG24(t));
        EXPECT_EQ(
            readLines(t.dir / "1SPRINFO.txt"),
            (std::vector<std::string>{t.path.string(), "",
                                      "SPRITE:1 FSEEK:" + std::to_string(o.spriteRecords[0] + 1),
                                      " W:4 H:3 size:12 deltas:1", " ws:9 delta_count:1",
                                      " clut:0 xo:10 yo:20 page:0", " myDeltaRef:0",
                                      " delta:0 size:" + std::to_string(o.deltaSizes[0]) +
                                          " ptr:" + std::to_string(o.deltaPtrs[0])}));
    }
    {
        tb::StyleSpec spec;
        spec.is24 = false;
        spec.sprites = {tb::spriteAt(1, 5, 17, 2, 2)};
        const auto o = tb::sectionOffsets(spec);
        tb::OpenStyle t;
        t.open("STYLE002.GRY", tb::buildStyle(spec), kLoadSprites, false, dumps);
        ASSERT_TRUE(loadSpriteInfo(t.s(), *t.file, t.platform));
        EXPECT_EQ(
            readLines(t.dir / "2SPRINFO.txt"),
            (std::vector<std::string>{t.path.string(), "",
                                      "SPRITE:1 FSEEK:" + std::to_string(o.spriteRecords[0] + 1),
                                      " W:2 H:2 size:4 deltas:0", " ws:0 delta_count:0",
                                      " sprnfo.ptr:" + std::to_string(65536 + 17 * 256 + 5),
                                      " Calculated from ptr:  page:1 xo:5 yo:17"}));
    }
}

TEST(SpriteNumbers, TwentyOneCountsEachWithItsDetailsLine) {
    tb::StyleSpec spec;
    spec.spriteNumbers = {49, 0, 1, 0, 6, 27, 562, 295, 0, 2, 6, 5, 0, 26, 0, 0, 7, 48, 0, 0, 0};
    tb::OpenStyle t;
    t.open("STYLE001.G24", spec);
    ASSERT_TRUE(loadSpriteNumbers(t.s(), *t.file, t.platform));
    EXPECT_EQ(t.platform.detailLines,
              (std::vector<std::string>{
                  " SPR_ARROW: 49",  " SPR_DIGITS: 0", " SPR_BOAT: 1",           " SPR_BOX: 0",
                  " SPR_BUS: 6",     " SPR_CAR: 27",   " SPR_OBJECT: 562",       " SPR_PED: 295",
                  " SPR_SPEEDO: 0",  " SPR_TANK: 2",   " SPR_TRAFFIC_LIGHTS: 6", " SPR_TRAIN: 5",
                  " SPR_TRDOORS: 0", " SPR_BIKE: 26",  " SPR_TRAM: 0",           " SPR_WBUS: 0",
                  " SPR_WCAR: 7",    " SPR_EX: 48",    " SPR_TUMCAR: 0",         " SPR_TUMTRUCK: 0",
                  " SPR_FERRY: 0"}));
    EXPECT_EQ(t.s().sprites.firstCarSprite(), 57);

    auto bytes = tb::buildStyle(spec);
    tb::setHeaderField(bytes, tb::header24::sprite_numbers_size, 0x7000000);
    tb::OpenStyle bad;
    bad.open("STYLE001.G24", bytes);
    EXPECT_FALSE(loadSpriteNumbers(bad.s(), *bad.file, bad.platform));
}
