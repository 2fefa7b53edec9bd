#include "sprites/clut.h"
#include "sprites/sprite_info.h"

#include "sprite_fixture.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

// 5 side, 3 lid and 10 aux tiles: 16 on page 0, 2 on page 1. Tile n's first palette index entry
// sends it to CLUT n % 2.
tb::StyleSpec eighteenTiles() {
    tb::StyleSpec spec;
    spec.sideTiles = 5;
    spec.lidTiles = 3;
    spec.auxTiles = 10;
    spec.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(9, 9, 9)};
    spec.paletteIndex.assign(4 * 18 + 8, 7);
    for (int n = 1; n <= 18; ++n) spec.paletteIndex[4 * (n - 1)] = static_cast<int16_t>(n % 2);
    return spec;
}

} // namespace

TEST(TileRegions, SixteenTilesAPageWithTheirKindsAndCluts) {
    tb::OpenStyle t;
    t.open("STYLE001.G24", eighteenTiles(), kLoadTiles);
    ASSERT_TRUE(loadCLUT(t.s(), *t.file, t.platform));
    ASSERT_TRUE(calcTileSpriteInfo(t.s(), *t.file, t.platform));
    const StyleSession& s = t.s();
    EXPECT_EQ(s.pages.highestPage, 1);
    ASSERT_EQ(s.sprites.pageSprites[0].size(), 17u);
    ASSERT_EQ(s.sprites.pageSprites[1].size(), 3u);

    EXPECT_EQ(t.sprite(0, 5).kind, "sideTile");
    const SpriteRec& six = t.sprite(0, 6);
    EXPECT_EQ(six.kind, "lidTile");
    EXPECT_EQ(six.ASN, 6);
    EXPECT_EQ(six.xo, 64);
    EXPECT_EQ(six.yo, 64);
    EXPECT_EQ(six.W, 64);
    EXPECT_EQ(six.H, 64);
    EXPECT_EQ(six.palPos, 20);
    EXPECT_EQ(six.clut, 0);
    EXPECT_EQ(t.sprite(0, 9).kind, "auxTile");
    EXPECT_EQ(t.sprite(0, 9).clut, 1);
    const SpriteRec& last = t.sprite(1, 2);
    EXPECT_EQ(last.ASN, 18);
    EXPECT_EQ(last.kind, "auxTile");
    EXPECT_EQ(last.xo, 64);
    EXPECT_EQ(last.yo, 0);
    EXPECT_EQ(last.page, 1);
    EXPECT_EQ(s.colours.used[0], 9);
    EXPECT_EQ(s.colours.used[1], 9);

    EXPECT_EQ(s.sprites.over(0, 64, 64), 6);
    EXPECT_EQ(s.sprites.over(0, 127, 127), 6);
    EXPECT_EQ(s.sprites.over(0, 128, 127), 7);
    EXPECT_EQ(s.sprites.over(1, 127, 63), 2);
    EXPECT_EQ(s.sprites.over(1, 128, 0), 0); // no tile 19
    EXPECT_EQ(t.platform.progressTitles.back(), "Calculating SpriteInfo");
}

TEST(TileRegions, GryTilesTakeNoClut) {
    tb::StyleSpec spec;
    spec.is24 = false;
    spec.sideTiles = 20;
    spec.lidTiles = 0;
    tb::OpenStyle t;
    t.open("STYLE002.GRY", spec, kLoadTiles);
    ASSERT_TRUE(calcTileSpriteInfo(t.s(), *t.file, t.platform));
    EXPECT_EQ(t.s().pages.highestPage, 1);
    EXPECT_EQ(t.s().sprites.pageSprites[1].size(), 5u);
    EXPECT_EQ(t.sprite(1, 4).kind, "sideTile");
    EXPECT_EQ(t.sprite(1, 4).ASN, 20);
    EXPECT_EQ(t.sprite(1, 4).palPos, 0);
    EXPECT_TRUE(t.s().colours.used.empty());
}

TEST(TileRegions, TileAreaOfMoreThan26PagesFails) {
    auto bytes = tb::buildStyle(tb::StyleSpec{});
    tb::setHeaderField(bytes, tb::header24::side_size, 27 * 65536);
    tb::OpenStyle t;
    t.open("STYLE001.G24", bytes, kLoadTiles);
    t.s().colours.used.assign(65, 0);
    EXPECT_FALSE(calcTileSpriteInfo(t.s(), *t.file, t.platform));
    EXPECT_EQ(t.s().errors.pending(), err::SubscriptOutOfRange);
    EXPECT_EQ(t.s().sprites.pageSprites[25].size(), 17u);
}
