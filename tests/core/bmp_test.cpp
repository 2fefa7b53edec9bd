#include "exchange/bmp.h"
#include "exchange/remap_recolour.h"
#include "exchange/sprite_exchange.h"

#include "cars/remap_colours.h"
#include "exchange_fixture.h"
#include "sprites/clut.h"

#include <functional>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

constexpr int kFirstRemapClut = 4;

// ASN 1: 30 x 20, CLUT 1 of its own. ASN 2 and 3: 32 x 10 and 8 x 8 sharing CLUT 2.
// ASN 4: a car (model 7) of 16 x 24 with CLUT 3 and one delta; its 12 remaps have CLUTs 4..15.
tb::StyleSpec exchangeSpec(bool is24) {
    tb::StyleSpec s;
    s.is24 = is24;
    for (int i = 0; i < 16; ++i)
        s.cluts.push_back(tb::distinctClut(static_cast<std::uint8_t>(i * 16)));
    auto sprite = [](tb::SpriteType type, int x, int y, int w, int h, int clut, int seed) {
        tb::SpriteSpec sp;
        sp.type = type;
        sp.x = x, sp.y = y, sp.w = w, sp.h = h, sp.clut = clut;
        sp.pixels = tb::patternPixels(w, h, seed);
        return sp;
    };
    s.sprites = {
        sprite(tb::SPR_ARROW, 0, 0, 30, 20, 1, 0), sprite(tb::SPR_ARROW, 64, 0, 32, 10, 2, 5),
        sprite(tb::SPR_ARROW, 128, 0, 8, 8, 2, 9), sprite(tb::SPR_CAR, 0, 64, 16, 24, 3, 3)};
    s.sprites[3].deltas = {tb::deltaFromPixels(2, 2, 2, 1, {5, 6})};
    tb::CarSpec car;
    car.vtype = 4;
    car.spr_num = 0;
    car.model = 7;
    for (int i = 0; i < 12; ++i)
        car.remap24[static_cast<std::size_t>(i)] = {static_cast<int16_t>(i * 30), 0, 20};
    s.cars = {car};
    tb::sortAndCountSprites(s);
    // 8 tiles of 4 entries, sprite CLUTs 0..3, the car's 12 remaps, 64 ped remaps, 8 font entries.
    s.paletteIndex.assign(32, 0);
    for (int k = 0; k < 4; ++k) s.paletteIndex.push_back(static_cast<int16_t>(k));
    for (int k = 0; k < 12; ++k)
        s.paletteIndex.push_back(static_cast<int16_t>(kFirstRemapClut + k));
    s.paletteIndex.resize(s.paletteIndex.size() + 64 + 8, 0);
    return s;
}

struct BmpFixture : tb::StyleFixture {
    void SetUp() override { open(exchangeSpec(true)); }

    std::filesystem::path exported(int asn) {
        select(asn);
        auto path = exportSprite(*session, platform);
        EXPECT_FALSE(path.empty());
        return path;
    }
    std::vector<std::uint8_t> clutBytes(int clut) const {
        std::vector<std::uint8_t> out;
        for (int c = 0; c < 256; ++c)
            for (auto v : session->colours.entry(clut, c)) out.push_back(v);
        return out;
    }
    std::vector<std::uint8_t> pageBytes() const { return session->pages.gPixels.toVector(); }
};

// Row y of the sprite is stored at file row h - 1 - y.
void setBmpPixel(std::vector<std::uint8_t>& file, int w, int h, int x, int y, std::uint8_t v) {
    const auto rowLength = static_cast<std::size_t>(bmpRowLength(w));
    file[1078 + static_cast<std::size_t>(h - 1 - y) * rowLength + static_cast<std::size_t>(x)] = v;
}

// ---- Writing ---------------------------------------------------------------------------------

TEST_F(BmpFixture, ExportOfA30WideSpriteHasPaddedBottomUpRowsAndTheLengthPlusOneSizeField) {
    const auto path = exported(1);
    EXPECT_EQ(path, dir / "KRBSPR1_1.bmp");
    // Header (size field = length + 1, the next write position; image size = width x height, not
    // the padded size), CLUT 1 as blue, green, red, 0, then rows bottom up padded with zeros.
    std::vector<std::uint8_t> want(1078 + 32 * 20, 0);
    want[0] = 'B', want[1] = 'M';
    tb::putI32(want, 2, static_cast<int32_t>(want.size()) + 1);
    tb::putI32(want, 10, 1078);
    tb::putI32(want, 14, 40);
    tb::putI32(want, 18, 30);
    tb::putI32(want, 22, 20);
    tb::putI16(want, 26, 1);
    tb::putI16(want, 28, 8);
    tb::putI32(want, 34, 600);
    const tb::Clut clut = tb::distinctClut(16);
    for (std::size_t c = 0; c < 256; ++c)
        std::tie(want[54 + 4 * c], want[55 + 4 * c], want[56 + 4 * c]) =
            std::tie(clut[c].b, clut[c].g, clut[c].r);
    const auto pixels = tb::patternPixels(30, 20, 0);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) setBmpPixel(want, 30, 20, x, y, pixels[y * 30 + x]);
    EXPECT_EQ(tb::readFile(path), want);
    EXPECT_EQ(platform.progressTitles.back(), "Exporting");
}

TEST_F(BmpFixture, FileNamesNameCarsByModelAndTilesByTileNumber) {
    select(4);
    EXPECT_EQ(bmpFileName(*session), "CAR1_7.bmp");
    select(2);
    EXPECT_EQ(bmpFileName(*session), "KRBSPR1_2.bmp");
    // A car-range sprite without a car record keeps the sprite name.
    select(4);
    session->cars.slots[4].inUse = false;
    EXPECT_EQ(bmpFileName(*session), "KRBSPR1_4.bmp");
    SpriteRec tile;
    tile.ASN = 12;
    session->style.loadOption = kLoadTiles;
    EXPECT_EQ(bmpFileName(*session, tile), "KRBTIL1_12.bmp");
}

// ---- Reading back ----------------------------------------------------------------------------

TEST_F(BmpFixture, ExportThenImportLeavesPagesAndColoursUnchanged) {
    exported(1);
    const auto pages = pageBytes();
    const auto clut = clutBytes(1);
    ASSERT_TRUE(importSprite(*session, platform));
    EXPECT_EQ(pageBytes(), pages);
    EXPECT_EQ(clutBytes(1), clut);
    EXPECT_TRUE(messages().empty()); // identical palette: silent outside debug mode
    EXPECT_TRUE(session->style.gPagesChanged);
    EXPECT_FALSE(session->style.gClutChanged);
}

TEST_F(BmpFixture, IdenticalPaletteIsReportedInDebugModeOnly) {
    open(exchangeSpec(true), "STYLE001.G24", /*debug=*/true);
    exported(1);
    ASSERT_TRUE(importSprite(*session, platform));
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0], "Imported Sprite's Palette is identical to original.\r"
                             "No CLUT changes necessary.");
}

TEST_F(BmpFixture, EditedPixelsWithTheOwnPaletteChangeOnlyThePixelsAndTheirPicture) {
    const auto path = exported(1);
    auto file = tb::readFile(path);
    setBmpPixel(file, 30, 20, 0, 0, 200);
    setBmpPixel(file, 30, 20, 29, 19, 0);
    tb::writeFile(path, file);
    const auto clut = clutBytes(1);
    auto expectedPages = pageBytes();
    expectedPages[0] = 200;
    expectedPages[19 * 256 + 29] = 0;

    ASSERT_TRUE(importSprite(*session, platform));
    EXPECT_EQ(pageBytes(), expectedPages);
    EXPECT_EQ(clutBytes(1), clut);
    EXPECT_TRUE(messages().empty());
    // The picture shows the new pixels at once.
    EXPECT_EQ(session->image.at(0, 0), spriteColour(*session, selected(), 200));
    EXPECT_EQ(session->image.at(29, 19), spriteColour(*session, selected(), 0));
}

TEST_F(BmpFixture, ForeignPaletteAsksAndOkOverwritesTheClut) {
    const auto path = exported(1);
    auto file = tb::readFile(path);
    file[54 + 4 * 9] = 1, file[54 + 4 * 9 + 1] = 2, file[54 + 4 * 9 + 2] = 3; // colour 9: B, G, R
    tb::writeFile(path, file);
    platform.scriptedAnswers = {Answer::Ok};

    ASSERT_TRUE(importSprite(*session, platform));
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    const Message& m = platform.shownMessages[0];
    EXPECT_EQ(m.text, "Warning: The imported sprite's palette does not match original palette.\r"
                      "Overwrite the original CLUT entry with imported palette?\r(recommended)");
    EXPECT_EQ(m.title, "Import G24 Palette");
    EXPECT_EQ(m.buttons, Buttons::OkCancel);
    EXPECT_EQ(m.icon, Icon::Warning);
    const std::array<std::uint8_t, 3> nine{3, 2, 1};
    EXPECT_EQ(session->colours.entry(1, 9), nine);
    EXPECT_TRUE(session->style.gClutChanged);
}

TEST_F(BmpFixture, ForeignPaletteCancelChangesNothing) {
    const auto path = exported(1);
    auto file = tb::readFile(path);
    file[54] ^= 0xFF;
    setBmpPixel(file, 30, 20, 3, 3, 77);
    tb::writeFile(path, file);
    const auto pages = pageBytes();
    const auto clut = clutBytes(1);
    platform.scriptedAnswers = {Answer::Cancel};

    EXPECT_FALSE(importSprite(*session, platform));
    EXPECT_EQ(pageBytes(), pages);
    EXPECT_EQ(clutBytes(1), clut);
    EXPECT_FALSE(session->style.gClutChanged);
    EXPECT_FALSE(session->style.gPagesChanged);
}

TEST_F(BmpFixture, SharedClutIsNotRecommendedAndNamesTheOtherSprites) {
    const auto path = exported(2);
    auto file = tb::readFile(path);
    file[54 + 4 * 200] ^= 0x55;
    tb::writeFile(path, file);
    platform.scriptedAnswers = {Answer::Ok};

    ASSERT_TRUE(importSprite(*session, platform));
    ASSERT_EQ(messages().size(), 2u);
    EXPECT_EQ(messages()[0],
              "Warning: The imported sprite's palette does not match original palette.\r"
              "This Sprite's palette is also used by 1 other sprites!\r"
              "Overwrite the original CLUT entry with imported palette?\r"
              "(NOT recommended)");
    EXPECT_EQ(messages()[1], "You must Save and ReOpen the STYLE file in order to see the other 1 "
                             "sprites effected by this CLUT change.");
}

TEST_F(BmpFixture, SpriteWithDeltasOffersTheRemapCorrection) {
    const auto path = exported(4);
    EXPECT_EQ(path.filename(), "CAR1_7.bmp");
    auto file = tb::readFile(path);
    for (int c = 1; c < 256; ++c) file[54 + 4 * static_cast<std::size_t>(c) + 2] = 250; // redder
    tb::writeFile(path, file);
    const auto untouchedRemap = clutBytes(kFirstRemapClut + 1);
    platform.scriptedAnswers = {Answer::Ok, Answer::No};

    ASSERT_TRUE(importSprite(*session, platform));
    ASSERT_EQ(platform.shownMessages.size(), 2u);
    const Message& q = platform.shownMessages[1];
    EXPECT_EQ(q.text, "You have just modified this sprite's palette.\r"
                      "This will also effect the sprite's Deltas and Remaps.\r"
                      "Would you like to AutoCorrect the Remaps? (recommended)");
    EXPECT_EQ(q.title, "Palette Change");
    EXPECT_EQ(q.buttons, Buttons::YesNo);
    EXPECT_EQ(q.icon, Icon::Question);
    EXPECT_TRUE(q.helpButton);
    EXPECT_EQ(clutBytes(kFirstRemapClut + 1), untouchedRemap); // No: remaps as they were
}

TEST_F(BmpFixture, RemapCorrectionRecoloursTheCarsRemapClutsFromTheNewClut) {
    select(4);
    EXPECT_EQ(remapPaletteIndexPosition(*session, 0, 0), 36);
    const int base = selected().clut;
    ASSERT_EQ(base, 3);
    EXPECT_EQ(autoCorrectRemaps(*session, selected()), 12);
    const ClutColours baseColours = clutColours(session->colours, base);
    for (int slot = 0; slot < 12; ++slot) {
        const ClutColours want = remapClut(baseColours, {static_cast<int16_t>(slot * 30), 0, 20});
        ASSERT_EQ(clutColours(session->colours, kFirstRemapClut + slot), want) << slot;
    }
    // A CLUT that a sprite draws with is never recoloured as a remap.
    session->colours.PalIndex[36] = 1;
    const auto spriteClut = clutBytes(1);
    EXPECT_EQ(autoCorrectRemaps(*session, selected()), 11);
    EXPECT_EQ(clutBytes(1), spriteClut);
    // Not a car: nothing.
    select(1);
    EXPECT_EQ(autoCorrectRemaps(*session, selected()), 0);
}

// ---- Refusals --------------------------------------------------------------------------------

struct RefusalCase {
    const char* name;
    std::function<void(std::vector<std::uint8_t>&)> edit;
    std::string message;
};

TEST_F(BmpFixture, EveryRefusedFileNamesItsReasonAndLeavesThePageAlone) {
    const std::vector<RefusalCase> cases = {
        {"wider", [](auto& f) { tb::putI32(f, 18, 31); },
         "Imported sprite must be of the exact same size as sprite.\r"
         "BMP image should be (30,20) but is (31,20)"},
        {"top-down", [](auto& f) { tb::putI32(f, 22, -20); },
         "Imported sprite must be of the exact same size as sprite.\r"
         "BMP image should be (30,20) but is (30,-20)"},
        {"compressed", [](auto& f) { tb::putI32(f, 30, 1); },
         "Imported sprite must be uncompressed BMP type."},
        {"4-bit and compressed: the last failing test wins",
         [](auto& f) {
             tb::putI16(f, 28, 4);
             tb::putI32(f, 30, 1);
         },
         "Imported sprite must be 8 bit BMP file."},
        {"not BM", [](auto& f) { f[0] = 'X'; }, "Imported sprite must be 8 bit BMP file."},
        {"shorter than 255 bytes", [](auto& f) { tb::truncate(f, 254); },
         "Imported sprite file size is too small."},
        {"short and 4-bit",
         [](auto& f) {
             tb::putI16(f, 28, 4);
             tb::truncate(f, 100);
         },
         "Imported sprite file size is too small.\r8 bit BMP file."},
        {"pixel data cut off", [](auto& f) { tb::truncate(f, 1078 + 32 * 19); },
         "Imported sprite file size is too small."},
        {"data offset past the end", [](auto& f) { tb::putI32(f, 10, 1 << 30); },
         "Imported sprite file size is too small."},
    };
    const auto path = exported(1);
    const auto good = tb::readFile(path);
    const auto pages = pageBytes();
    for (const auto& c : cases) {
        auto file = good;
        c.edit(file);
        tb::writeFile(path, file);
        platform.shownMessages.clear();
        EXPECT_FALSE(importSprite(*session, platform)) << c.name;
        ASSERT_EQ(messages().size(), 1u) << c.name;
        EXPECT_EQ(messages()[0], c.message) << c.name;
        EXPECT_EQ(pageBytes(), pages) << c.name;
        EXPECT_FALSE(session->style.gPagesChanged) << c.name;
    }
}

TEST_F(BmpFixture, MissingFileIsNamedWithItsFullPath) {
    select(1);
    EXPECT_FALSE(importSprite(*session, platform));
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0], "Sprite to be imported named " + (dir / "KRBSPR1_1.bmp").string() +
                                 " was not found.");
}

TEST_F(BmpFixture, PixelDataIsReadFromTheOffsetTheHeaderGives) {
    const auto path = exported(1);
    auto file = tb::readFile(path);
    // 22 bytes of rubbish between the colour table and the pixels.
    file.insert(file.begin() + 1078, 22, std::uint8_t{0xEE});
    tb::putI32(file, 10, 1100);
    tb::writeFile(path, file);
    std::vector<std::uint8_t> pixels;
    ASSERT_TRUE(readBmp(*session, platform, path, 1, 30, 20, pixels));
    EXPECT_EQ(pixels, tb::patternPixels(30, 20, 0));
}

TEST_F(BmpFixture, A32WideSpriteHasNoPaddingAndZeroWidthTakesTheFilesOwnSize) {
    const auto path = exported(2);
    EXPECT_EQ(tb::readFile(path).size(), 1078u + 32u * 10u);
    std::vector<std::uint8_t> pixels;
    ASSERT_TRUE(readBmp(*session, platform, path, 2, 0, 0, pixels));
    EXPECT_EQ(pixels, tb::patternPixels(32, 10, 5));
}

// ---- 8-bit styles ----------------------------------------------------------------------------

TEST_F(BmpFixture, GreyStyleKeepsIndexesOfAForeignPaletteOnOk) {
    open(exchangeSpec(false), "STYLE002.GRY");
    const auto path = exported(1);
    EXPECT_EQ(path.filename(), "KRBSPR2_1.bmp");
    auto file = tb::readFile(path);
    // The table holds the 8-bit palette (bytes times 4).
    EXPECT_EQ(file[54 + 4 * 10], session->colours.blue[10]);
    file[54 + 4 * 10] ^= 0x40;
    setBmpPixel(file, 30, 20, 5, 5, 222);
    tb::writeFile(path, file);
    const auto pages = pageBytes();

    platform.scriptedAnswers = {Answer::Cancel};
    EXPECT_FALSE(importSprite(*session, platform));
    EXPECT_EQ(pageBytes(), pages);
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    EXPECT_EQ(platform.shownMessages[0].text,
              "Warning: Imported Sprite palette does not match 8bit KRB palette.\r"
              "The imported palette will be ignored in favor of the correct KRB8bit palette.");
    EXPECT_EQ(platform.shownMessages[0].title, "Import GRY Palette");

    platform.scriptedAnswers = {Answer::Ok};
    ASSERT_TRUE(importSprite(*session, platform));
    EXPECT_EQ(session->pages.pixel(0, 5, 5), 222);
    EXPECT_FALSE(session->style.gClutChanged);
}

// ---- Command line ----------------------------------------------------------------------------

TEST_F(BmpFixture, CommandLineExportsEditsImportsAndSaves) {
    const std::string work = dir.path().string();
    auto exported = tb::runCli({"export-sprite", "--workdir", work, stylePath.string(), "1"});
    ASSERT_EQ(exported.status, 0) << exported.err;
    EXPECT_EQ(exported.out, (dir / "KRBSPR1_1.bmp").string() + "\n");

    // The sprite just exported comes back as it is: nothing is written, not even the .bak.
    const FileStamp loaded = stampOf(stylePath);
    auto same = tb::runCli({"import-sprite", "--workdir", work, stylePath.string(), "1",
                            (dir / "KRBSPR1_1.bmp").string()});
    ASSERT_EQ(same.status, 0) << same.err;
    EXPECT_EQ(same.out, "imported: " + (dir / "KRBSPR1_1.bmp").string() + "\nnothing changed\n");
    EXPECT_EQ(stampOf(stylePath), loaded);
    EXPECT_FALSE(std::filesystem::exists(stylePath.string() + ".bak"));

    auto file = tb::readFile(dir / "KRBSPR1_1.bmp");
    setBmpPixel(file, 30, 20, 2, 1, 250);
    file[54 + 4 * 250] ^= 0x0F; // a new colour for the new pixel
    tb::writeFile(dir / "edited.bmp", file);

    // Without an answer the palette question is cancelled and nothing is written.
    const auto before = tb::readFile(stylePath);
    auto cancelled = tb::runCli({"import-sprite", "--workdir", work, stylePath.string(), "1",
                                 (dir / "edited.bmp").string()});
    EXPECT_EQ(cancelled.status, 1);
    EXPECT_NE(cancelled.err.find("answer: cancel"), std::string::npos) << cancelled.err;
    EXPECT_EQ(tb::readFile(stylePath), before);

    auto imported = tb::runCli({"import-sprite", "--workdir", work, "--answer", "ok",
                                stylePath.string(), "1", (dir / "edited.bmp").string()});
    ASSERT_EQ(imported.status, 0) << imported.err;
    EXPECT_EQ(imported.out, "imported: " + (dir / "edited.bmp").string() + "\nclut changed\n");
    reopen();
    EXPECT_EQ(session->pages.pixel(0, 2, 1), 250);
    auto again = tb::runCli({"export-sprite", "--workdir", work, stylePath.string(), "1", "-o",
                             (dir / "again.bmp").string()});
    ASSERT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(tb::readFile(dir / "again.bmp"), file);

    auto missing = tb::runCli({"export-sprite", "--workdir", work, stylePath.string(), "99"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("ASN:99 not found."), std::string::npos) << missing.err;
}

} // namespace
