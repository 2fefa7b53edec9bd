#include "sprites/board_lookup.h"
#include "sprites/sprite_info.h"
#include "sprites/sprite_painter.h"

#include "sprite_fixture.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

tb::SpriteSpec filled(int page, int x, int y, int w, int h, int clut, uint8_t value) {
    auto sp = tb::spriteAt(page, x, y, w, h, clut);
    sp.pixels.assign(static_cast<std::size_t>(w) * h, value);
    return sp;
}

// Two overlapping sprites on page 0 (CLUTs 1 and 2) and one on page 1 (CLUT 0).
tb::StyleSpec paintedSpec(bool is24) {
    tb::StyleSpec spec;
    spec.is24 = is24;
    spec.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(100, 0, 0), tb::rampClut(0, 100, 0)};
    spec.sprites = {filled(0, 10, 10, 8, 8, 1, 5), filled(0, 14, 14, 8, 8, 2, 7),
                    filled(1, 0, 0, 4, 4, 0, 9)};
    return spec;
}

std::uint32_t imagePixel(const StyleSession& s, int page, int x, int y) {
    return s.image.row(y)[page * kPageSize + x];
}

} // namespace

TEST(PagePainter, G24PixelsTakeTheOwningSpritesClutAndUnownedOnesDarkGrey) {
    tb::OpenStyle t;
    ASSERT_EQ(t.load("STYLE001.G24", tb::buildStyle(paintedSpec(true))), LoadOutcome::Loaded);
    const StyleSession& s = t.s();
    EXPECT_EQ(imagePixel(s, 0, 10, 10), 0x690505u); // CLUT 1, colour 5: (105, 5, 5)
    EXPECT_EQ(imagePixel(s, 0, 15, 15), 0x076B07u); // overlap: the later sprite, CLUT 2
    EXPECT_EQ(imagePixel(s, 0, 21, 21), 0x076B07u);
    EXPECT_EQ(imagePixel(s, 1, 3, 3), 0x090909u);
    EXPECT_EQ(imagePixel(s, 0, 30, 30), kDarkGrey);
    EXPECT_EQ(imagePixel(s, 1, 4, 0), kDarkGrey);
}

TEST(PagePainter, GryPixelsTakeThePaletteAndUnownedOnesBlack) {
    tb::OpenStyle t;
    ASSERT_EQ(t.load("STYLE002.GRY", tb::buildStyle(paintedSpec(false))), LoadOutcome::Loaded);
    const StyleSession& s = t.s();
    // The default 8-bit palette is a grey ramp of v / 4, times 4 on loading.
    EXPECT_EQ(imagePixel(s, 0, 10, 10), 0x040404u);
    EXPECT_EQ(imagePixel(s, 0, 15, 15), 0x040404u);
    EXPECT_EQ(imagePixel(s, 1, 0, 0), 0x080808u);
    EXPECT_EQ(imagePixel(s, 0, 30, 30), kBlack);
}

TEST(PagePainter, RepaintingAfterAColourChangeUsesTheNewColour) {
    tb::OpenStyle t;
    ASSERT_EQ(t.load("STYLE001.G24", tb::buildStyle(paintedSpec(true))), LoadOutcome::Loaded);
    StyleSession& s = t.s();
    s.colours.pal24[1 * 256 + 5] = {1, 2, 3};
    SpritePagePainter painter(s);
    std::array<std::uint32_t, kPageSize> row{};
    painter.paintRow(0, 10, s.pages.row(0, 10), row.data());
    EXPECT_EQ(row[10], 0x010203u);
    EXPECT_EQ(row[9], kDarkGrey);
    // Rows outside the pages paint nothing.
    row.fill(0xABCDEF);
    painter.paintRow(26, 0, s.pages.row(0, 0), row.data());
    EXPECT_EQ(row[0], 0xABCDEFu);
}

TEST(BoardLookup, DescribesTheSpriteUnderTheMouseWithItsCar) {
    tb::OpenStyle t;
    ASSERT_EQ(t.load("STYLE001.G24", tb::buildStyle(paintedSpec(true))), LoadOutcome::Loaded);
    StyleSession& s = t.s();
    EXPECT_EQ(hitTest(s, 0, 15, 15), std::make_pair(0, 2));
    EXPECT_EQ(hitTest(s, 0, 30, 30), std::nullopt);
    EXPECT_EQ(hitTest(s, 26, 0, 0), std::nullopt);
    EXPECT_EQ(hitTest(s, 0, 256, 0), std::nullopt);
    EXPECT_EQ(describeAt(s, 0, 11, 11), "ASN:1 BLK:0 SIB:1 Size:8x8 CLUT:1");
    EXPECT_EQ(describeAt(s, 0, 30, 30), "");

    s.cars.slots.resize(3);
    s.cars.slots[2].inUse = true;
    s.cars.slots[2].info.model = 12;
    s.cars.slots[2].name = "Beamer";
    EXPECT_EQ(describeAt(s, 0, 20, 20), "ASN:2 BLK:0 SIB:2 Size:8x8 CLUT:2 Model:12 Name:Beamer");
}

TEST(BoardLookup, TilesAreNamedByKindAndGrySpritesHaveNoClut) {
    {
        tb::StyleSpec spec;
        spec.sideTiles = 1;
        spec.lidTiles = 1;
        tb::OpenStyle t;
        ASSERT_EQ(t.load("STYLE001.G24", tb::buildStyle(spec), kLoadTiles), LoadOutcome::Loaded);
        EXPECT_EQ(describeAt(t.s(), 0, 70, 5), "lidTile:2 BLK:0 SIB:2 Size:64x64 CLUT:0");
        EXPECT_EQ(describeAt(t.s(), 0, 130, 5), "");
    }
    {
        tb::OpenStyle t;
        ASSERT_EQ(t.load("STYLE002.GRY", tb::buildStyle(paintedSpec(false))), LoadOutcome::Loaded);
        EXPECT_EQ(describeAt(t.s(), 1, 0, 0), "ASN:3 BLK:1 SIB:1 Size:4x4");
    }
}

TEST(SpriteSearch, SelectsReportsUnloadedPagesAndMissingNumbers) {
    tb::OpenStyle t;
    ASSERT_EQ(t.load("STYLE001.G24", tb::buildStyle(paintedSpec(true))), LoadOutcome::Loaded);
    StyleSession& s = t.s();
    t.platform.shownMessages.clear();

    EXPECT_EQ(searchNSelect(s, t.platform, 3), SearchResult::Selected);
    EXPECT_EQ(s.selection.page, 1);
    EXPECT_EQ(s.selection.sib, 1);
    EXPECT_EQ(s.pages.gBoardOffset, 256);
    EXPECT_TRUE(t.platform.shownMessages.empty());

    EXPECT_EQ(searchNSelect(s, t.platform, 99), SearchResult::NotFound);
    ASSERT_EQ(t.platform.shownMessages.size(), 1u);
    EXPECT_EQ(t.platform.shownMessages[0].text, "ASN:99 not found.");
    EXPECT_EQ(t.platform.shownMessages[0].icon, Icon::None);

    s.pages.gNumBlockLoaded = 0; // as if only page 0 had been loaded
    EXPECT_EQ(searchNSelect(s, t.platform, 3), SearchResult::NotLoaded);
    ASSERT_EQ(t.platform.shownMessages.size(), 2u);
    EXPECT_EQ(t.platform.shownMessages[1].text, "This sprite exists, but has not been loaded.\r"
                                                "Load more blocks when you open the Style file.");
    EXPECT_EQ(t.platform.shownMessages[1].icon, Icon::Warning);
    EXPECT_EQ(s.selection.page, 1); // unchanged

    // Element 0 of page 0 is looked at too: ASN 0 "selects" it.
    EXPECT_EQ(searchNSelect(s, t.platform, 0), SearchResult::Selected);
    EXPECT_EQ(s.selection.sib, 0);
    EXPECT_EQ(s.pages.gBoardOffset, 0);
}

TEST(SpriteSearch, LowestPageThenLowestSibWinsWithinTheHighestPageSeen) {
    SpriteTables t;
    for (auto& list : t.pageSprites) list.assign(1, SpriteRec{});
    t.pageSprites[2].resize(3);
    t.pageSprites[2][2].ASN = 7;
    t.pageSprites[1].resize(4);
    t.pageSprites[1][3].ASN = 7;
    t.pageSprites[1][2].ASN = 7;
    EXPECT_EQ(findSprite(t, 2, 7), std::make_pair(1, 2));
    EXPECT_EQ(findSprite(t, 0, 7), std::nullopt);
    EXPECT_EQ(findSprite(t, 1000, 7), std::make_pair(1, 2));
}
