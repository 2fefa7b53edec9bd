#include "sprites/clut.h"

#include "sprite_fixture.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

using Entry = std::array<std::uint8_t, 3>;

std::vector<std::string> readLines(const std::filesystem::path& path) {
    std::vector<std::string> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

tb::StyleSpec specWithCluts(int count) {
    tb::StyleSpec spec;
    for (int k = 0; k < count; ++k)
        spec.cluts.push_back(tb::rampClut(static_cast<uint8_t>(k), static_cast<uint8_t>(k + 10),
                                          static_cast<uint8_t>(k + 20)));
    return spec;
}

} // namespace

TEST(ClutLoad, StoresEachColourInReverseFileOrderAndReadsThePaletteIndex) {
    tb::StyleSpec spec;
    spec.cluts = {tb::rampClut(10, 20, 30), tb::rampClut(100, 110, 120)};
    for (int i = 0; i < 40; ++i) spec.paletteIndex.push_back(static_cast<int16_t>(i % 3 - 1));
    auto bytes = tb::buildStyle(spec);
    const auto o = tb::sectionOffsets(spec);
    // Colour 5 of CLUT 0 as the file holds it: 0x10 0x20 0x30 0x00.
    const std::size_t at = o.clut.offset + 5 * 256;
    bytes[at] = 0x10, bytes[at + 1] = 0x20, bytes[at + 2] = 0x30, bytes[at + 3] = 0x00;

    tb::OpenStyle t;
    t.open("STYLE001.G24", bytes);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    const ColourTables& c = t.s().colours;
    EXPECT_EQ(c.gClutsAvail, 64);
    EXPECT_EQ(c.pal24.size(), 65u * 256);
    EXPECT_EQ(c.pal24[0 * 256 + 5], (Entry{0x30, 0x20, 0x10}));
    EXPECT_EQ(c.pal24[0 * 256 + 6], (Entry{16, 26, 36}));
    EXPECT_EQ(c.pal24[1 * 256 + 7], (Entry{107, 117, 127}));
    ASSERT_EQ(c.palIndexCount, 40);
    for (int i = 0; i < 40; ++i) EXPECT_EQ(c.PalIndex[i], i % 3 - 1) << i;
    EXPECT_EQ(c.PalIndex[40], 0);
    EXPECT_EQ(c.used, std::vector<std::int16_t>(65, 0));
    EXPECT_EQ(t.platform.detailLines.back(), "CLUTS loaded:63");
    EXPECT_EQ(t.platform.progressTitles.front(), "Loading CLUT");
    EXPECT_EQ(t.platform.progressTexts.front(), "Loading 24bit Color Look Up Table");
}

TEST(ClutLoad, TableSizeFollowsClutSizeRoundedUpToWholePages) {
    {
        tb::OpenStyle t;
        t.open("STYLE001.G24", specWithCluts(64)); // clut_size 65536
        ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().colours.gClutsAvail, 64);
        EXPECT_EQ(t.s().colours.pal24.size(), 65u * 256);
        EXPECT_EQ(t.platform.detailLines.back(), "CLUTS loaded:63");
    }
    {
        auto bytes = tb::buildStyle(specWithCluts(65));
        tb::setHeaderField(bytes, tb::header24::clut_size, 65537);
        tb::OpenStyle t;
        t.open("STYLE001.G24", bytes);
        ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().colours.gClutsAvail, 128);
        EXPECT_EQ(t.s().colours.pal24.size(), 129u * 256);
        // CLUT 64 is the first of the second page.
        EXPECT_EQ(t.s().colours.pal24[64 * 256 + 3], (Entry{67, 77, 87}));
        EXPECT_EQ(t.platform.detailLines.back(), "CLUTS loaded:127");
    }
    {
        // The clut_size of the game's level 1: 968 CLUTs on 16 pages.
        tb::OpenStyle t;
        t.open("STYLE001.G24", specWithCluts(968));
        ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().style.header.g24.clut_size, 991232);
        EXPECT_EQ(t.platform.detailLines.back(), "CLUTS loaded:1023");
        EXPECT_EQ(t.s().colours.pal24[967 * 256 + 1], (Entry{200, 210, 220})); // 967 + 1 wraps
    }
}

TEST(ClutLoad, SectionStartsAfterTilesRoundedTo16384AndTheAnimData) {
    StyleFileState style;
    style.header.g24.side_size = 16384;
    style.header.g24.anim_size = 41;
    EXPECT_EQ(clutSectionStart(style), 64 + 16384 + 41 + 1);
    style.header.g24.aux_size = 1; // 16385 bytes of tiles
    EXPECT_EQ(clutSectionStart(style), 64 + 32768 + 41 + 1);
}

TEST(ClutLoad, EmptyPaletteIndexStillReadsEntryZero) {
    tb::StyleSpec spec;
    auto bytes = tb::buildStyle(spec);
    const auto o = tb::sectionOffsets(spec);
    tb::setHeaderField(bytes, tb::header24::palette_index_size, 0);
    tb::OpenStyle t;
    t.open("STYLE001.G24", bytes);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    // The index now starts where object info starts: its first two bytes are entry 0.
    EXPECT_EQ(t.s().colours.palIndexCount, 1);
    EXPECT_EQ(t.s().colours.PalIndex[0], tb::getI16(bytes, o.objectInfo.offset));
}

TEST(ClutLoad, PaletteIndexHolds3001EntriesAndA3002ndIsSubscriptOutOfRange) {
    tb::StyleSpec spec;
    spec.paletteIndex.assign(3001, 0);
    {
        tb::OpenStyle t;
        t.open("STYLE001.G24", spec);
        EXPECT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().colours.palIndexCount, 3001);
    }
    spec.paletteIndex.assign(3002, 0);
    {
        tb::OpenStyle t;
        t.open("STYLE001.G24", spec);
        EXPECT_FALSE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().errors.pending(), err::SubscriptOutOfRange);
        EXPECT_EQ(t.platform.progressCloseCount, t.platform.progressOpenCount);
    }
    {
        tb::OpenStyle t;
        t.open("STYLE001.G24", tb::buildStyle(spec), kLoadSprites, /*debug=*/true);
        try {
            loadCLUT(t.s(), *t.file, t.platform);
            FAIL() << "no error in debug mode";
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.number(), err::SubscriptOutOfRange);
        }
    }
}

TEST(ClutLoad, HeadersThatDoNotFitTheFileFailCleanly) {
    const auto good = tb::buildStyle(tb::StyleSpec{});
    {
        auto bytes = good;
        tb::setHeaderField(bytes, tb::header24::clut_size, 0x7FFF0000);
        tb::OpenStyle t;
        t.open("STYLE001.G24", bytes);
        EXPECT_FALSE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().errors.pending(), err::SubscriptOutOfRange);
        EXPECT_TRUE(t.s().colours.pal24.empty());
    }
    {
        auto bytes = good;
        tb::setHeaderField(bytes, tb::header24::palette_index_size, 0x40000000);
        tb::OpenStyle t;
        t.open("STYLE001.G24", bytes);
        EXPECT_FALSE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().errors.pending(), err::BadRecordNumber);
    }
    {
        // An error left by an earlier step: no table is read on top of it.
        tb::OpenStyle t;
        t.open("STYLE001.G24", good);
        t.s().errors.raise(err::Overflow);
        EXPECT_FALSE(loadCLUT(t.s(), *t.file, t.platform));
        EXPECT_EQ(t.s().colours.palIndexCount, 0);
    }
}

TEST(ClutLoad, DumpFilesNameTheLevelAndListIndexAndColoursInFileOrder) {
    tb::StyleSpec spec;
    spec.cluts = {tb::rampClut(10, 20, 30)};
    spec.paletteIndex = {0, 0, 7, -2};
    tb::OpenStyle t;
    DumpFlags dumps;
    dumps.clut = true;
    t.open("STYLE003.G24", tb::buildStyle(spec), kLoadSprites, false, dumps);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    const auto o = tb::sectionOffsets(spec);

    const auto index = readLines(t.dir / "3PALINDEX.txt");
    EXPECT_EQ(index,
              (std::vector<std::string>{
                  t.path.string(), "PalIndex Seek:" + std::to_string(o.paletteIndex.offset + 1),
                  "PALINDEX DATA FOLLOWS, Read as (int):", "0", "0", "7", "-2"}));
    const auto clut = readLines(t.dir / "3CLUT0.txt");
    ASSERT_EQ(clut.size(), 2u + 64 * 256);
    EXPECT_EQ(clut[0], "CLUT Seek:" + std::to_string(o.clut.offset + 1));
    EXPECT_TRUE(clut[1].ends_with(") DATA FOLLOWS  (R byte, G byte, B byte, 0 byte):"));
    EXPECT_EQ(clut[2], " CLU:0 RGB0:30 20 10");
    EXPECT_EQ(clut[3], " CLU:0 RGB0:31 21 11");
    EXPECT_EQ(clut[2 + 256], " CLU:1 RGB0:0 0 0");
    EXPECT_FALSE(std::filesystem::exists(t.dir / "3CLUT1.txt"));
}

TEST(Palette8, BytesAreTimesFourKeptInEightBits) {
    tb::StyleSpec spec;
    spec.is24 = false;
    std::array<tb::Rgb, 256> palette{};
    palette[0] = {63, 64, 1};
    palette[1] = {200, 16, 0};
    palette[255] = {10, 20, 30};
    spec.palette8 = palette;
    const auto o = tb::sectionOffsets(spec);
    tb::OpenStyle t;
    t.open("STYLE002.GRY", spec);
    ASSERT_TRUE(load8bitPal(t.s(), *t.file, t.platform));
    const ColourTables& c = t.s().colours;
    EXPECT_EQ(c.red[0], 252);
    EXPECT_EQ(c.green[0], 0);
    EXPECT_EQ(c.blue[0], 4);
    EXPECT_EQ(c.red[1], 32); // 800 in 8 bits
    EXPECT_EQ(c.green[1], 64);
    EXPECT_EQ(c.blue[255], 120);
    EXPECT_EQ(t.platform.detailLines,
              std::vector<std::string>{"load8bitPal Seek:" + std::to_string(o.palette.offset + 1)});
}

TEST(Palette8, PositionBeforeTheFileFailsWithAPendingError) {
    tb::StyleSpec spec;
    spec.is24 = false;
    auto bytes = tb::buildStyle(spec);
    tb::setHeaderField(bytes, tb::headerGry::palette_size, 0x10000000);
    tb::OpenStyle t;
    t.open("STYLE002.GRY", bytes);
    EXPECT_FALSE(load8bitPal(t.s(), *t.file, t.platform));
}

namespace {

// Loads the CLUTs of bytes, then saves them back through a read-write handle.
struct SaveRun {
    tb::OpenStyle t;
    std::vector<uint8_t> before;
    int result = 0;

    explicit SaveRun(const std::vector<uint8_t>& bytes, const std::string& name = "STYLE001.G24")
        : before(bytes) {
        t.open(name, bytes);
        if (t.s().style.gIs24Bit) EXPECT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    }
    std::vector<uint8_t> save() {
        t.file->close();
        BinaryFile rw(t.s().errors);
        rw.open(t.path, BinaryFile::Mode::ReadWrite);
        t.s().style.gClutChanged = true;
        result = saveCLUT(t.s(), rw, t.platform);
        rw.close();
        return tb::readFile(t.path);
    }
};

} // namespace

TEST(ClutSave, UnchangedColoursWriteTheSameBytesExceptTheFourthByteBecomesZero) {
    tb::StyleSpec spec = specWithCluts(3);
    auto bytes = tb::buildStyle(spec);
    const auto o = tb::sectionOffsets(spec);
    bytes[o.clut.offset + 3] = 0xAA;             // CLUT 0, colour 0
    bytes[o.clut.offset + 255 * 256 + 7] = 0x55; // CLUT 1, colour 255
    SaveRun run(bytes);
    const auto after = run.save();
    EXPECT_EQ(run.result, 0);
    EXPECT_FALSE(run.t.s().style.gClutChanged);
    auto expected = bytes;
    expected[o.clut.offset + 3] = 0;
    expected[o.clut.offset + 255 * 256 + 7] = 0;
    EXPECT_EQ(after, expected);
    EXPECT_EQ(run.t.platform.progressTitles.back(), "Saving CLUT");
}

TEST(ClutSave, WritesOnePagePer64CLUTsAndNothingBeyond) {
    {
        tb::StyleSpec spec = specWithCluts(64);
        const auto o = tb::sectionOffsets(spec);
        SaveRun run(tb::buildStyle(spec));
        auto& c = run.t.s().colours;
        c.pal24[5 * 256 + 9] = {1, 2, 3};
        c.pal24[64 * 256 + 0] = {4, 5, 6}; // the spare CLUT is never written
        const auto after = run.save();
        auto expected = run.before;
        const std::size_t at = o.clut.offset + 9 * 256 + 5 * 4;
        expected[at] = 3, expected[at + 1] = 2, expected[at + 2] = 1;
        EXPECT_EQ(after, expected);
    }
    {
        tb::StyleSpec spec = specWithCluts(65); // 128 CLUTs: two pages
        const auto o = tb::sectionOffsets(spec);
        SaveRun run(tb::buildStyle(spec));
        run.t.s().colours.pal24[127 * 256 + 255] = {7, 8, 9};
        const auto after = run.save();
        auto expected = run.before;
        const std::size_t at = o.clut.offset + 65536 + 255 * 256 + 63 * 4;
        expected[at] = 9, expected[at + 1] = 8, expected[at + 2] = 7;
        EXPECT_EQ(after, expected);
    }
}

TEST(ClutSave, RefusesAn8BitStyleAndWritesNothing) {
    tb::StyleSpec spec;
    spec.is24 = false;
    SaveRun run(tb::buildStyle(spec), "STYLE002.GRY");
    const auto after = run.save();
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(after, run.before);
    EXPECT_EQ(run.t.platform.messageTexts(),
              std::vector<std::string>{"Cannot save Clut on 8bit style."});
}

TEST(ClutSave, AFailedSaveStillClearsTheDirtyFlag) {
    SaveRun run(tb::buildStyle(tb::StyleSpec{}));
    run.t.s().style.gClutChanged = true;
    // The read-only handle of the load: every write fails.
    const int result = saveCLUT(run.t.s(), *run.t.file, run.t.platform);
    EXPECT_NE(result, 0);
    EXPECT_EQ(result, run.t.s().errors.pending());
    EXPECT_FALSE(run.t.s().style.gClutChanged);
}

TEST(ColourLookup, SpritesUseTheirPhysicalClutOr8BitPalette) {
    tb::StyleSpec spec;
    spec.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(100, 110, 120)};
    tb::OpenStyle t;
    t.open("STYLE001.G24", spec);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    SpriteRec rec;
    rec.clut = 1;
    EXPECT_EQ(spriteColour(t.s(), rec, 7), 0x6B757Fu);
    EXPECT_EQ(spriteColours(t.s(), rec)[7], 0x6B757Fu);
    rec.clut = 65; // beyond the table: black, never a read outside it
    EXPECT_EQ(spriteColour(t.s(), rec, 7), 0u);
    rec.clut = -1;
    EXPECT_EQ(spriteColour(t.s(), rec, 7), 0u);

    t.s().style.gIs24Bit = false;
    t.s().colours.red[7] = 0x11, t.s().colours.green[7] = 0x22, t.s().colours.blue[7] = 0x33;
    EXPECT_EQ(spriteColour(t.s(), rec, 7), 0x112233u);
}

TEST(ClutSave, SectionOutsideTheFileIsRefusedWithoutGrowingIt) {
    auto bytes = tb::buildStyle(tb::StyleSpec{});
    tb::setHeaderField(bytes, tb::header24::side_size, 0x70000000);
    SaveRun run(bytes);
    const auto after = run.save();
    EXPECT_EQ(run.result, err::BadRecordNumber);
    EXPECT_EQ(after, run.before);
    EXPECT_FALSE(run.t.s().style.gClutChanged);
}
