#include "sprites/clut.h"

#include "sprite_fixture.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

using Entry = std::array<std::uint8_t, 3>;

tb::StyleSpec specWithCluts(int count) {
    tb::StyleSpec layout;
    for (int k = 0; k < count; ++k)
        layout.cluts.push_back(tb::rampClut(static_cast<uint8_t>(k), static_cast<uint8_t>(k + 10),
                                            static_cast<uint8_t>(k + 20)));
    return layout;
}

// Loads the CLUTs of bytes, then saves them back through a read-write handle.
struct SaveRun {
    tb::OpenStyle t;
    std::vector<uint8_t> before;
    int result = 0;

    explicit SaveRun(const std::vector<uint8_t>& bytes, const std::string& name = "STYLE001.G24")
        : before(bytes) {
        t.open(name, bytes);
        if (t.s().style.gIs24Bit) {
            EXPECT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
        }
    }
    std::vector<uint8_t> save() {
        t.file->close();
        BinaryFile rw(t.s().errors);
        rw.open(t.path, BinaryFile::Mode::ReadWrite);
        t.s().style.gClutChanged = true;
        result = saveCLUT(t.s(), rw, t.platform);
        rw.close();
        // A .GRY file is refused before the flag is looked at.
        EXPECT_EQ(t.s().style.gClutChanged, !t.s().style.gIs24Bit);
        return tb::readFile(t.path);
    }
};

} // namespace

TEST(ClutLoad, StoresColoursInReverseFileOrderAndReadsThePaletteIndex) {
    tb::StyleSpec layout;
    layout.cluts = {tb::rampClut(10, 20, 30), tb::rampClut(100, 110, 120)};
    for (int i = 0; i < 40; ++i) layout.paletteIndex.push_back(static_cast<int16_t>(i % 3 - 1));
    auto bytes = tb::buildStyle(layout);
    // Colour 5 of CLUT 0 as the file holds it: 0x10 0x20 0x30 0x00.
    const std::size_t at = tb::sectionOffsets(layout).clut.offset + 5 * 256;
    bytes[at] = 0x10, bytes[at + 1] = 0x20, bytes[at + 2] = 0x30;

    tb::OpenStyle t;
    t.open("STYLE001.G24", bytes);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    const ColourTables& c = t.s().colours;
    EXPECT_EQ(c.pal24[5], (Entry{0x30, 0x20, 0x10}));
    EXPECT_EQ(c.pal24[6], (Entry{16, 26, 36}));
    EXPECT_EQ(c.pal24[256 + 7], (Entry{107, 117, 127}));
    ASSERT_EQ(c.palIndexCount, 40);
    for (int i = 0; i < 40; ++i) EXPECT_EQ(c.PalIndex[i], i % 3 - 1) << i;
    EXPECT_EQ(c.used, std::vector<std::int16_t>(65, 0));
    EXPECT_EQ(t.platform.detailLines.back(), "CLUTS loaded:63");
}

TEST(ClutLoad, TableSizeFollowsClutSizeRoundedUpToWholePages) {
    struct Case {
        int cluts, clutSize, avail;
    };
    // 968 CLUTs is the clut_size of the game's level 1 (991232).
    for (const Case c : {Case{64, 65536, 64}, Case{65, 65537, 128}, Case{968, 991232, 1024}}) {
        auto bytes = tb::buildStyle(specWithCluts(c.cluts));
        tb::setHeaderField(bytes, tb::header24::clut_size, c.clutSize);
        tb::OpenStyle t;
        t.open("STYLE001.G24", bytes);
        ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform)) << c.cluts;
        EXPECT_EQ(t.s().colours.gClutsAvail, c.avail);
        EXPECT_EQ(t.s().colours.pal24.size(), (c.avail + 1u) * 256);
        EXPECT_EQ(t.platform.detailLines.back(), "CLUTS loaded:" + std::to_string(c.avail - 1));
        const int last = c.cluts - 1; // its colour 3, read from the last page
        EXPECT_EQ(t.s().colours.pal24[last * 256 + 3],
                  (Entry{static_cast<uint8_t>(last + 3), static_cast<uint8_t>(last + 13),
                         static_cast<uint8_t>(last + 23)}));
    }
}

TEST(ClutLoad, SectionStartsAfterTilesRoundedTo16384AndTheAnimData) {
    StyleFileState style;
    style.header.g24.side_size = 16384;
    style.header.g24.anim_size = 41;
    EXPECT_EQ(clutSectionStart(style), 64 + 16384 + 41 + 1);
    style.header.g24.aux_size = 1;
    EXPECT_EQ(clutSectionStart(style), 64 + 32768 + 41 + 1);
}

TEST(ClutLoad, PaletteIndexReadsAtLeastOneAndAtMost3001Entries) {
    tb::StyleSpec layout;
    auto bytes = tb::buildStyle(layout);
    tb::setHeaderField(bytes, tb::header24::palette_index_size, 0);
    tb::OpenStyle empty;
    empty.open("STYLE001.G24", bytes);
    ASSERT_TRUE(loadCLUT(empty.s(), *empty.file, empty.platform));
    // The empty index now starts where object info starts: its first two bytes are entry 0.
    EXPECT_EQ(empty.s().colours.palIndexCount, 1);
    EXPECT_EQ(empty.s().colours.PalIndex[0],
              tb::getI16(bytes, tb::sectionOffsets(layout).objectInfo.offset));

    layout.paletteIndex.assign(3001, 0);
    tb::OpenStyle full;
    full.open("STYLE001.G24", layout);
    EXPECT_TRUE(loadCLUT(full.s(), *full.file, full.platform));

    layout.paletteIndex.assign(3002, 0);
    tb::OpenStyle over;
    over.open("STYLE001.G24", layout);
    EXPECT_FALSE(loadCLUT(over.s(), *over.file, over.platform));
    EXPECT_EQ(over.s().errors.pending(), err::SubscriptOutOfRange);
    tb::OpenStyle debug;
    debug.open("STYLE001.G24", tb::buildStyle(layout), kLoadSprites, /*debug=*/true);
    EXPECT_THROW(loadCLUT(debug.s(), *debug.file, debug.platform), RuntimeError);
}

TEST(ClutLoad, HeadersThatDoNotFitTheFileFailCleanly) {
    const auto good = tb::buildStyle(tb::StyleSpec{});
    struct Case {
        std::size_t field;
        int32_t value;
        int error;
    };
    for (const Case c : {Case{tb::header24::clut_size, 0x7FFF0000, err::SubscriptOutOfRange},
                         Case{tb::header24::palette_index_size, 0x40000000, err::BadRecordNumber},
                         Case{tb::header24::side_size, -0x40000000, err::BadRecordNumber}}) {
        auto bytes = good;
        tb::setHeaderField(bytes, c.field, c.value);
        tb::OpenStyle t;
        t.open("STYLE001.G24", bytes);
        EXPECT_FALSE(loadCLUT(t.s(), *t.file, t.platform)) << c.field;
        EXPECT_EQ(t.s().errors.pending(), c.error) << c.field;
    }
    // An error left by an earlier step: no table is read on top of it.
    tb::OpenStyle t;
    t.open("STYLE001.G24", good);
    t.s().errors.raise(err::Overflow);
    EXPECT_FALSE(loadCLUT(t.s(), *t.file, t.platform));
    EXPECT_EQ(t.s().colours.palIndexCount, 0);
}

TEST(ClutLoad, DumpFilesListTheIndexAndColoursInFileOrder) {
    tb::StyleSpec layout;
    layout.cluts = {tb::rampClut(10, 20, 30)};
    layout.paletteIndex = {0, 7, -2};
    const auto o = tb::sectionOffsets(layout);
    tb::OpenStyle t;
    t.open("STYLE003.G24", tb::buildStyle(layout), kLoadSprites, false,
           DumpFlags{false, false, true});
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    EXPECT_EQ(tb::readLines(t.dir / "3PALINDEX.txt"),
              (std::vector<std::string>{
                  t.path.string(), "PalIndex Seek:" + std::to_string(o.paletteIndex.offset + 1),
                  "PALINDEX DATA FOLLOWS, Read as (int):", "0", "7", "-2"}));
    const auto clut = tb::readLines(t.dir / "3CLUT0.txt");
    ASSERT_EQ(clut.size(), 2u + 64 * 256);
    EXPECT_EQ(clut[0], "CLUT Seek:" + std::to_string(o.clut.offset + 1));
    EXPECT_TRUE(clut[1].ends_with(") DATA FOLLOWS  (R byte, G byte, B byte, 0 byte):"));
    EXPECT_EQ(clut[2], " CLU:0 RGB0:30 20 10");
    EXPECT_EQ(clut[3], " CLU:0 RGB0:31 21 11");
    EXPECT_EQ(clut[2 + 256], " CLU:1 RGB0:0 0 0");
}

TEST(Palette8, BytesAreTimesFourKeptInEightBits) {
    tb::StyleSpec layout;
    layout.is24 = false;
    std::array<tb::Rgb, 256> palette{};
    palette[0] = {63, 64, 1};
    palette[255] = {200, 16, 30};
    layout.palette8 = palette;
    tb::OpenStyle t;
    t.open("STYLE002.GRY", layout);
    ASSERT_TRUE(load8bitPal(t.s(), *t.file, t.platform));
    const ColourTables& c = t.s().colours;
    EXPECT_EQ((std::array<int, 6>{c.red[0], c.green[0], c.blue[0], c.red[255], c.green[255],
                                  c.blue[255]}),
              (std::array<int, 6>{252, 0, 4, 32, 64, 120}));
    EXPECT_EQ(
        t.platform.detailLines,
        std::vector<std::string>{"load8bitPal Seek:" +
                                 std::to_string(tb::sectionOffsets(layout).palette.offset + 1)});

    auto bytes = tb::buildStyle(layout);
    tb::setHeaderField(bytes, tb::headerGry::palette_size, 0x10000000);
    tb::OpenStyle bad;
    bad.open("STYLE002.GRY", bytes);
    EXPECT_FALSE(load8bitPal(bad.s(), *bad.file, bad.platform));
}

TEST(ClutSave, UnchangedColoursWriteTheSameBytesExceptTheFourthByteBecomesZero) {
    tb::StyleSpec layout = specWithCluts(3);
    auto bytes = tb::buildStyle(layout);
    const auto o = tb::sectionOffsets(layout);
    bytes[o.clut.offset + 3] = 0xAA;             // CLUT 0, colour 0
    bytes[o.clut.offset + 255 * 256 + 7] = 0x55; // CLUT 1, colour 255
    SaveRun run(bytes);
    const auto after = run.save();
    EXPECT_EQ(run.result, 0);
    bytes[o.clut.offset + 3] = bytes[o.clut.offset + 255 * 256 + 7] = 0;
    EXPECT_EQ(after, bytes);
}

TEST(ClutSave, WritesOnePagePer64CLUTsAndNothingBeyond) {
    for (int cluts : {64, 65}) { // 64 or 128 CLUTs in the table: one page or two
        tb::StyleSpec layout = specWithCluts(cluts);
        SaveRun run(tb::buildStyle(layout));
        const int avail = run.t.s().colours.gClutsAvail;
        auto& pal24 = run.t.s().colours.pal24;
        pal24[static_cast<std::size_t>(avail - 1) * 256 + 255] = {1, 2, 3};
        pal24[static_cast<std::size_t>(avail) * 256] = {4, 5, 6}; // the spare CLUT is not saved
        auto expected = run.before;
        const std::size_t at =
            tb::sectionOffsets(layout).clut.offset + (avail / 64 - 1) * 65536 + 255 * 256 + 63 * 4;
        expected[at] = 3, expected[at + 1] = 2, expected[at + 2] = 1;
        EXPECT_EQ(run.save(), expected) << cluts;
    }
}

TEST(ClutSave, RefusalsAndFailuresWriteNothingAndStillClearTheFlag) {
    tb::StyleSpec gry;
    gry.is24 = false;
    SaveRun refused(tb::buildStyle(gry), "STYLE002.GRY");
    EXPECT_EQ(refused.save(), refused.before);
    EXPECT_EQ(refused.result, -1);
    EXPECT_EQ(refused.t.platform.messageTexts(),
              std::vector<std::string>{"Cannot save Clut on 8bit style."});

    auto bytes = tb::buildStyle(tb::StyleSpec{});
    tb::setHeaderField(bytes, tb::header24::side_size, 0x70000000);
    SaveRun outside(bytes); // a section past the end is refused, not written by growing the file
    EXPECT_EQ(outside.save(), outside.before);
    EXPECT_EQ(outside.result, err::BadRecordNumber);

    SaveRun readOnly(tb::buildStyle(tb::StyleSpec{}));
    readOnly.t.s().style.gClutChanged = true;
    const int result = saveCLUT(readOnly.t.s(), *readOnly.t.file, readOnly.t.platform);
    EXPECT_NE(result, 0);
    EXPECT_FALSE(readOnly.t.s().style.gClutChanged);
}

TEST(ColourLookup, SpritesUseTheirPhysicalClutOrThe8BitPalette) {
    tb::StyleSpec layout;
    layout.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(100, 110, 120)};
    tb::OpenStyle t;
    t.open("STYLE001.G24", layout);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    SpriteRec rec;
    rec.clut = 1;
    EXPECT_EQ(spriteColour(t.s(), rec, 7), 0x6B757Fu);
    EXPECT_EQ(spriteColours(t.s(), rec)[7], 0x6B757Fu);
    for (std::int16_t outside : {65, -1}) { // beyond the table: black, never a read outside it
        rec.clut = outside;
        EXPECT_EQ(spriteColour(t.s(), rec, 7), 0u);
    }
    t.s().style.gIs24Bit = false;
    t.s().colours.red[7] = 0x11, t.s().colours.green[7] = 0x22, t.s().colours.blue[7] = 0x33;
    EXPECT_EQ(spriteColour(t.s(), rec, 7), 0x112233u);
}
