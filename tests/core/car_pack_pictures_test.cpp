// The sprites a car pack repaints, as pictures before and after it.

#include "level_copies_fixture.h"

#include "session/car_pack_pictures.h"
#include "session/car_pack_preview.h"
#include "sprites/clut.h"

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

using PackPicturesFixture = tb::LevelCopiesFixture;

TEST_F(PackPicturesFixture, RepaintedSpriteIsPicturedBeforeAndAfterWithOnlyItsFirstRowChanged) {
    load("pristine");
    const int asn = twoCars().first;
    const fs::path pack = packOf("repaint", [&] { repaintSprite(asn); });
    copyPristine("level");
    load("level");
    CarPackFile file;
    ASSERT_TRUE(readCarPack(pack, file, platform));
    const Result<CarPackPlan, CarPackFailure> planned =
        planCarPack(file, {styleIn("level"), fxtIn("level")});
    ASSERT_TRUE(planned.ok()) << planned.message();
    const CarPackPlan& plan = *planned;
    const CarPackPreview preview =
        previewCarPack(plan.packAsPlaced(file.pack), *session, plan.styleBefore, plan.fxtBefore,
                       plan.styleAfter, plan.fxtAfter);
    ASSERT_EQ(preview.sprites.size(), 1u);
    const CarPackPreview::Sprite& s = preview.sprites[0];
    ASSERT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
    const SpriteRec& sprite = *session->selectedSprite();
    ASSERT_EQ(s.before.width, sprite.W);
    ASSERT_EQ(s.before.height, sprite.H);
    ASSERT_EQ(s.after.width, sprite.W);
    ASSERT_EQ(s.after.argb.size(), static_cast<std::size_t>(sprite.W) * sprite.H);

    // Before: the sprite as the level draws it, colour 0 transparent and every other colour
    // opaque through the sprite's CLUT.
    const std::vector<std::uint8_t> pixels = spritePixels(*session, sprite);
    const auto colours = spriteColours(session->colours, true, sprite);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        ASSERT_EQ(s.before.argb[i], pixels[i] == 0 ? 0u : 0xFF000000u | colours[pixels[i]]) << i;
    // After: the first row repainted, the rest as before.
    const auto width = static_cast<std::size_t>(sprite.W);
    for (std::size_t x = 0; x < width; ++x)
        EXPECT_EQ(s.after.argb[x], 0xFF000000u | colours[1 + x % 7]) << x;
    EXPECT_TRUE(std::equal(s.before.argb.begin() + static_cast<std::ptrdiff_t>(width),
                           s.before.argb.end(),
                           s.after.argb.begin() + static_cast<std::ptrdiff_t>(width)));
    EXPECT_NE(s.before.argb, s.after.argb);
}

TEST_F(PackPicturesFixture, SpriteOffThePageOrPastTheFileIsDrawnOnlyWhereItsBytesAre) {
    load("pristine");
    ASSERT_EQ(searchNSelect(*session, platform, twoCars().first), SearchResult::Selected);
    SpriteRec sprite = *session->selectedSprite();
    const auto bytes = tb::readFile(styleIn("pristine"));
    // A file cut short before the sprite's page: every pixel is colour 0.
    const std::vector<std::uint8_t> cut(bytes.begin(),
                                        bytes.begin() + session->style.gSeekGraphicsStart);
    const auto empty = spritePicture(*session, sprite, cut);
    ASSERT_EQ(empty.argb.size(), static_cast<std::size_t>(sprite.W) * sprite.H);
    EXPECT_TRUE(
        std::all_of(empty.argb.begin(), empty.argb.end(), [](std::uint32_t c) { return c == 0; }));
    // A record that reaches past the page's right edge draws the part on the page only.
    sprite.xo = static_cast<std::uint8_t>(kPageSize - 2);
    const auto edge = spritePicture(*session, sprite, bytes);
    ASSERT_EQ(edge.width, sprite.W);
    for (int y = 0; y < sprite.H; ++y)
        for (int x = 2; x < sprite.W; ++x)
            EXPECT_EQ(edge.argb[static_cast<std::size_t>(y) * sprite.W + x], 0u);
    // A page the level cannot have: no picture.
    sprite.page = kMaxPages;
    EXPECT_TRUE(spritePicture(*session, sprite, bytes).empty());
}

} // namespace
