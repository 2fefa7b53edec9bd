// Pictures handed to a paint program: where they go, and what each version on disk asks for.

#include "session/paint_edit.h"

#include "exchange/png_codec.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/picture_file.h"
#include "session/session_io.h"
#include "session/style_session.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

SpriteRec paintSprite(int w, int h, int deltas, const char* kind = "") {
    SpriteRec r;
    r.ASN = 7;
    r.W = static_cast<std::uint8_t>(w);
    r.H = static_cast<std::uint8_t>(h);
    r.delta_count = static_cast<std::uint8_t>(deltas);
    r.kind = kind;
    return r;
}

TEST(PaintReturnTest, EachVersionOnDiskAsksForWhatItsSizeSays) {
    const PaintedVersion written{true, 500, 0x1234};
    const PaintedVersion saved{true, 500, 0x9999};
    const SpriteRec car = paintSprite(20, 10, 3);
    const SpriteRec tile = paintSprite(64, 64, 0, "sideTile");
    struct Case {
        const char* what;
        const SpriteRec& sprite;
        bool deltaSet;
        PaintedVersion now;
        std::optional<PictureSize> size;
        PaintReturn expected;
    };
    const Case cases[] = {
        {"same bytes", car, false, written, PictureSize{20, 10}, PaintReturn::Unchanged},
        {"gone", car, false, {}, std::nullopt, PaintReturn::Missing},
        {"emptied mid-save", car, false, {true, 0, 0}, std::nullopt, PaintReturn::Missing},
        {"redrawn", car, false, saved, PictureSize{20, 10}, PaintReturn::SameSize},
        {"wider", car, false, saved, PictureSize{24, 10}, PaintReturn::OtherSize},
        {"taller", car, false, saved, PictureSize{20, 11}, PaintReturn::OtherSize},
        {"no picture", car, false, saved, std::nullopt, PaintReturn::Unreadable},
        {"tile of another size", tile, false, saved, PictureSize{32, 64}, PaintReturn::Unreadable},
        {"tile redrawn", tile, false, saved, PictureSize{64, 64}, PaintReturn::SameSize},
        {"delta set redrawn", car, true, saved, PictureSize{60, 10}, PaintReturn::SameSize},
        {"one frame more", car, true, saved, PictureSize{80, 10}, PaintReturn::OtherDeltaCount},
        {"one frame less", car, true, saved, PictureSize{40, 10}, PaintReturn::OtherDeltaCount},
        {"frames of another width", car, true, saved, PictureSize{70, 10}, PaintReturn::Unreadable},
        {"frames of another height", car, true, saved, PictureSize{60, 12},
         PaintReturn::Unreadable},
    };
    for (const Case& c : cases)
        EXPECT_EQ(judgePaintedFile(c.sprite, c.deltaSet, c.now, written, c.size), c.expected)
            << c.what;
}

// The sample level loaded, with its work folder.
struct PaintEditFixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    std::unique_ptr<StyleSession> session;

    void SetUp() override {
        tb::writeSampleLevel(dir.path());
        AppOptions app;
        app.workDir = dir / "work";
        fs::create_directories(app.workDir);
        session = std::make_unique<StyleSession>(app);
        prepareStyle(session->style, dir / "STYLE001.G24", kLoadSprites);
        ASSERT_EQ(initHeader(*session, platform, standardLoaders()), LoadOutcome::Loaded);
        platform.shownMessages.clear();
    }
    // The first car sprite with deltas, selected.
    const SpriteRec& selectCarWithDeltas() {
        for (int page = 0; page < kMaxPages; ++page)
            for (int sib = 1; sib <= session->sprites.pageCount(page); ++sib) {
                const SpriteRec& s = session->sprites.pageSprites[page][sib];
                if (session->cars.find(s.ASN) && s.delta_count > 0) {
                    EXPECT_EQ(searchNSelect(*session, platform, s.ASN), SearchResult::Selected);
                    return *session->selectedSprite();
                }
            }
        throw std::runtime_error("the sample has no car with deltas");
    }
};

TEST_F(PaintEditFixture, WrittenPicturesHaveTheSpriteSizeAndEachChangeIsANewVersion) {
    const SpriteRec& car = selectCarWithDeltas();
    const bool png = pngSupported();
    const PaintTarget sprite = paintTarget(*session, car, false, false, png);
    const std::string stem = fs::path(bmpFileName(*session, car)).stem().string();
    EXPECT_EQ(sprite.file, dir / "work" / "paint" / (stem + (png ? ".png" : ".bmp")));
    ASSERT_FALSE(fs::exists(sprite.file.parent_path()));
    ASSERT_TRUE(writePaintPicture(*session, platform, sprite));
    EXPECT_EQ(pictureSize(sprite.file), (PictureSize{car.W, car.H}));
    const PaintedVersion written = paintedVersion(sprite.file);
    ASSERT_TRUE(written.exists);
    EXPECT_EQ(written.length, static_cast<std::int64_t>(fs::file_size(sprite.file)));
    EXPECT_EQ(judgePaintedFile(car, false, paintedVersion(sprite.file), written,
                               pictureSize(sprite.file)),
              PaintReturn::Unchanged);

    // Redrawn at the same size, then at another.
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(car.W) * car.H, 3);
    ASSERT_TRUE(writePicture(*session, platform, sprite.file, pixels, car.clut, car.W, car.H));
    const PaintedVersion redrawn = paintedVersion(sprite.file);
    EXPECT_NE(redrawn, written);
    EXPECT_EQ(judgePaintedFile(car, false, redrawn, written, pictureSize(sprite.file)),
              PaintReturn::SameSize);
    pixels.assign(static_cast<std::size_t>(car.W + 4) * car.H, 3);
    ASSERT_TRUE(writePicture(*session, platform, sprite.file, pixels, car.clut, car.W + 4, car.H));
    EXPECT_EQ(judgePaintedFile(car, false, paintedVersion(sprite.file), redrawn,
                               pictureSize(sprite.file)),
              PaintReturn::OtherSize);

    // The delta set: its frames side by side.
    const PaintTarget deltas = paintTarget(*session, car, true, true, false);
    EXPECT_EQ(deltas.file.filename(), stem + "_deltas_clean.bmp");
    ASSERT_TRUE(writePaintPicture(*session, platform, deltas));
    EXPECT_EQ(pictureSize(deltas.file), (PictureSize{car.W * car.delta_count, car.H}));
    fs::remove(deltas.file);
    EXPECT_EQ(judgePaintedFile(car, true, paintedVersion(deltas.file), written, std::nullopt),
              PaintReturn::Missing);
    EXPECT_TRUE(platform.messageTexts().empty());
}

} // namespace
