#include "session/board_lookup.h"
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
std::vector<uint8_t> painted(bool is24) {
    tb::StyleSpec layout;
    layout.is24 = is24;
    layout.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(100, 0, 0), tb::rampClut(0, 100, 0)};
    layout.sprites = {filled(0, 10, 10, 8, 8, 1, 5), filled(0, 14, 14, 8, 8, 2, 7),
                      filled(1, 0, 0, 4, 4, 0, 9)};
    return tb::buildStyle(layout);
}

std::uint32_t pixel(const StyleSession& s, int page, int x, int y) {
    return s.image.row(y)[page * kPageSize + x];
}

} // namespace

TEST(PagePainter, PixelsTakeTheOwnersColoursAndUnownedOnesTheBackground) {
    tb::OpenStyle g24;
    ASSERT_TRUE(g24.load("STYLE001.G24", painted(true)));
    // CLUT 1 colour 5; the overlap in the later sprite's CLUT 2; page 1 in CLUT 0.
    EXPECT_EQ((std::array<std::uint32_t, 5>{pixel(g24.s(), 0, 10, 10), pixel(g24.s(), 0, 15, 15),
                                            pixel(g24.s(), 1, 3, 3), pixel(g24.s(), 0, 30, 30),
                                            pixel(g24.s(), 1, 4, 0)}),
              (std::array<std::uint32_t, 5>{0x690505, 0x076B07, 0x090909, kDarkGrey, kDarkGrey}));

    tb::OpenStyle gry; // the default 8-bit palette is a grey ramp of v / 4, times 4 on loading
    ASSERT_TRUE(gry.load("STYLE002.GRY", painted(false)));
    EXPECT_EQ((std::array<std::uint32_t, 3>{pixel(gry.s(), 0, 15, 15), pixel(gry.s(), 1, 0, 0),
                                            pixel(gry.s(), 0, 30, 30)}),
              (std::array<std::uint32_t, 3>{0x040404, 0x080808, kBlack}));

    // A painter made after a colour change paints the new colour.
    g24.s().colours.pal24[1 * 256 + 5] = {1, 2, 3};
    SpritePagePainter painter(g24.s().sprites, g24.s().colours, g24.s().style.gIs24Bit);
    std::array<std::uint32_t, kPageSize> row{};
    painter.paintRow(0, 10, g24.s().pages.row(0, 10), row.data());
    EXPECT_EQ(row[10], 0x010203u);
}

TEST(BoardLookup, DescribesWhatIsUnderTheMouse) {
    tb::OpenStyle t;
    ASSERT_TRUE(t.load("STYLE001.G24", painted(true)));
    StyleSession& s = t.s();
    EXPECT_EQ(hitTest(s, 0, 15, 15), std::make_pair(0, 2));
    for (auto [page, x] : {std::pair{0, 30}, std::pair{26, 0}, std::pair{0, 256}})
        EXPECT_EQ(hitTest(s, page, x, 0), std::nullopt);
    EXPECT_EQ(describeAt(s, 0, 11, 11), "ASN:1 BLK:0 SIB:1 Size:8x8 CLUT:1");
    EXPECT_EQ(describeAt(s, 0, 30, 30), "");
    s.cars.slots.resize(3);
    s.cars.slots[2].inUse = true;
    s.cars.slots[2].info.model = 12;
    s.cars.slots[2].name = "Beamer";
    EXPECT_EQ(describeAt(s, 0, 20, 20), "ASN:2 BLK:0 SIB:2 Size:8x8 CLUT:2 Model:12 Name:Beamer");

    tb::OpenStyle gry;
    ASSERT_TRUE(gry.load("STYLE002.GRY", painted(false)));
    EXPECT_EQ(describeAt(gry.s(), 1, 0, 0), "ASN:3 BLK:1 SIB:1 Size:4x4");
    tb::OpenStyle tiles;
    ASSERT_TRUE(tiles.load("STYLE001.G24", painted(true), kLoadTiles));
    EXPECT_EQ(describeAt(tiles.s(), 0, 70, 70), "lidTile:6 BLK:0 SIB:6 Size:64x64 CLUT:0");
}

TEST(SpriteSearch, SelectsOrSaysWhyNot) {
    tb::OpenStyle t;
    ASSERT_TRUE(t.load("STYLE001.G24", painted(true)));
    StyleSession& s = t.s();
    t.platform.shownMessages.clear();
    EXPECT_EQ(searchNSelect(s, t.platform, 3), SearchResult::Selected);
    EXPECT_EQ(std::make_pair(s.selection.page, s.selection.sib), std::make_pair(1, 1));
    EXPECT_EQ(s.pages.gBoardOffset, 256);

    EXPECT_EQ(searchNSelect(s, t.platform, 99), SearchResult::NotFound);
    s.pages.gNumBlockLoaded = 0; // as if only page 0 had been loaded
    EXPECT_EQ(searchNSelect(s, t.platform, 3), SearchResult::NotLoaded);
    ASSERT_EQ(t.platform.shownMessages.size(), 2u);
    EXPECT_EQ(t.platform.shownMessages[0].text, "ASN:99 not found.");
    EXPECT_EQ(t.platform.shownMessages[0].icon, Icon::None);
    EXPECT_EQ(t.platform.shownMessages[1].text, "This sprite exists, but has not been loaded.\r"
                                                "Load more blocks when you open the Style file.");
    EXPECT_EQ(t.platform.shownMessages[1].icon, Icon::Warning);

    // Element 0 of page 0 is looked at too: ASN 0 "selects" it.
    EXPECT_EQ(searchNSelect(s, t.platform, 0), SearchResult::Selected);
    EXPECT_EQ(s.selection.sib, 0);

    SpriteTables tables; // the lowest page, then the lowest SIB, up to the highest page seen
    for (auto& list : tables.pageSprites) list.assign(4, SpriteRec{});
    tables.pageSprites[2][1].ASN = tables.pageSprites[1][3].ASN = tables.pageSprites[1][2].ASN = 7;
    EXPECT_EQ(findSprite(tables, 2, 7), std::make_pair(1, 2));
    EXPECT_EQ(findSprite(tables, 0, 7), std::nullopt);
}
