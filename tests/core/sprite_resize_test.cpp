// Sprites of another size: the place on the pages, the deltas that no longer fit, the doors that
// follow them, undo, the command line, and the saved file on the full-size level.

#include "exchange/delta_frames.h"
#include "exchange/sprite_exchange.h"
#include "sample_level.h"
#include "session/edits.h"
#include "session/picture_file.h"
#include "session/save_sequence.h"
#include "session/sprite_layout.h"
#include "session/sprite_resize.h"

#include "exchange_fixture.h"

#include <map>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

struct SpriteState {
    int W = 0, H = 0;
    std::vector<std::uint8_t> pixels;
    std::vector<std::vector<RunLine>> deltas;
    bool operator==(const SpriteState&) const = default;
};

struct ResizeFixture : tb::StyleFixture {
    // With the level's text file beside it, a load has nothing to warn about.
    void open(const tb::StyleSpec& layout) {
        tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt(tb::sampleFxtEntries()));
        tb::StyleFixture::open(layout);
    }
    // Every sprite by number: size, pixels and its deltas' runs.
    std::map<int, SpriteState> sprites() const {
        std::map<int, SpriteState> out;
        for (const SpriteRec* s : spritesInFileOrder(session->sprites)) {
            SpriteState& st = out[s->ASN];
            st.W = s->W;
            st.H = s->H;
            st.pixels = spritePixels(*session, *s);
            for (std::int16_t d : s->deltas)
                st.deltas.push_back(session->deltas.myDeltas[d].runLine);
        }
        return out;
    }
    // Loads the saved file again; the load must show no message at all.
    void reopenQuietly() {
        platform.shownMessages.clear();
        AppOptions options;
        options.workDir = dir.path();
        session = std::make_unique<StyleSession>(options);
        prepareStyle(session->style, stylePath, kLoadSprites);
        ASSERT_TRUE(initHeader(*session, platform, standardLoaders()));
        EXPECT_EQ(platform.messageTexts(), std::vector<std::string>{});
        platform.shownMessages.clear();
    }
    // Writes w x h pixels in the selected sprite's colours (so no palette question is asked).
    fs::path picture(const std::vector<std::uint8_t>& pixels, int w, int h,
                     const std::string& name = "resized.bmp") {
        const fs::path file = dir / name;
        EXPECT_TRUE(writePicture(*session, platform, file, pixels, selected().clut, w, h));
        return file;
    }
    std::vector<std::uint8_t> exported() {
        const fs::path out = dir / "exported.bmp";
        EXPECT_TRUE(exportSpriteTo(*session, platform, out));
        std::vector<std::uint8_t> pixels;
        EXPECT_TRUE(readPicture(*session, platform, out, selected().clut, selected().W,
                                selected().H, pixels));
        return pixels;
    }
};

// One page held whole by three sprites: car A (60 x 40 at 0,0) with three deltas and a record
// with two doors, object B (156 x 256 at 100,0) and object C (100 x 216 at 0,40).
tb::SpriteSpec spriteAt(tb::SpriteType type, int x, int y, int w, int h, int clut) {
    tb::SpriteSpec s;
    s.type = type;
    s.x = x;
    s.y = y;
    s.w = w;
    s.h = h;
    s.clut = clut;
    s.pixels = tb::patternPixels(w, h, clut + 1);
    return s;
}

tb::StyleSpec fullPageSpec() {
    tb::StyleSpec layout;
    tb::SpriteSpec car = spriteAt(tb::SPR_CAR, 0, 0, 60, 40, 0);
    car.deltas.push_back(tb::deltaFromPixels(2, 2, 4, 2, std::vector<std::uint8_t>(8, 9)));
    car.deltas.push_back(tb::deltaFromPixels(50, 35, 8, 4, std::vector<std::uint8_t>(32, 7)));
    car.deltas.push_back(tb::deltaFromPixels(10, 3, 3, 3, std::vector<std::uint8_t>(9, 5)));
    layout.sprites.push_back(car);
    layout.sprites.push_back(spriteAt(tb::SPR_OBJECT, 100, 0, 156, 200, 1));
    layout.sprites.push_back(spriteAt(tb::SPR_OBJECT, 0, 40, 100, 216, 2));
    layout.sprites.push_back(spriteAt(tb::SPR_OBJECT, 100, 200, 156, 56, 2));
    tb::sortAndCountSprites(layout);
    tb::CarSpec record;
    record.spr_num = 0;
    record.doors = {{1, 2, 3, 2}, {4, 5, 6, 1}};
    layout.cars.push_back(record);
    layout.cluts = {tb::distinctClut(1), tb::distinctClut(2), tb::distinctClut(3)};
    return layout;
}

} // namespace

TEST_F(ResizeFixture, ACarOfTheFullSizeLevelGrownAndShrunkRoundTripsAndLeavesEverythingElse) {
    const tb::StyleSpec layout = tb::fullSizeSpec24();
    open(layout);
    const std::vector<std::uint8_t> original = tb::readFile(stylePath);
    int asn = 0;
    for (int i = 1; i <= session->cars.highest && asn == 0; ++i)
        if (session->cars.find(i)) {
            select(i);
            if (selected().delta_count >= 2) asn = i;
        }
    ASSERT_GT(asn, 0);
    const auto before = sprites();
    const auto cluts = session->colours.pal24;

    for (const int grow : {8, -4}) {
        SCOPED_TRACE(grow);
        tb::writeFile(stylePath, original);
        reopen();
        select(asn);
        const SpriteRec old = selected();
        const int w = old.W + grow, h = old.H + grow;
        const auto pixels = tb::patternPixels(w, h, 40 + grow);
        std::vector<std::vector<RunLine>> kept;
        for (std::int16_t d : old.deltas)
            if (deltaExtent(session->deltas.myDeltas[d], w, h).outside == 0)
                kept.push_back(session->deltas.myDeltas[d].runLine);
        if (grow > 0) {
            ASSERT_EQ(kept.size(), old.deltas.size());
        }

        ASSERT_TRUE(importSpriteResizing(*session, platform, picture(pixels, w, h), {true, true}))
            << (messages().empty() ? "" : messages().back());
        ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
        reopenQuietly();
        select(asn);
        EXPECT_EQ(selected().W, w);
        EXPECT_EQ(selected().H, h);
        EXPECT_EQ(exported(), pixels);

        auto now = sprites();
        EXPECT_EQ(now[asn].deltas, kept);
        now.erase(asn);
        auto others = before;
        others.erase(asn);
        EXPECT_TRUE(now == others) << "another sprite changed";
        EXPECT_EQ(session->colours.pal24, cluts);

        // A full save of the result gives the same bytes again.
        const auto saved = tb::readFile(stylePath);
        markAllChanged(*session);
        ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
        EXPECT_EQ(tb::readFile(stylePath), saved);
    }
}

TEST_F(ResizeFixture, ASpriteWithNoRoomOnAnyPageGoesOnANewPage) {
    open(fullPageSpec());
    select(1);
    const auto before = sprites();
    const auto pixels = tb::patternPixels(68, 48, 9);
    const ResizePlan plan = planSpriteResize(*session, selected(), 68, 48);
    ASSERT_TRUE(plan.possible);
    EXPECT_EQ(plan.place.kind, PlaceKind::NewPage);
    EXPECT_EQ(plan.place.page, 1);
    ASSERT_TRUE(importSpriteResizing(*session, platform, picture(pixels, 68, 48), {true, false}));
    EXPECT_EQ(session->pages.gNumBlockLoaded, 1);
    ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);

    reopenQuietly();
    EXPECT_EQ(session->pages.gNumBlockLoaded, 1);
    select(1);
    EXPECT_EQ(selected().page, 1);
    EXPECT_EQ(selected().xo, 0);
    EXPECT_EQ(selected().yo, 0);
    EXPECT_EQ(exported(), pixels);
    auto now = sprites();
    EXPECT_EQ(now[1].deltas, before.at(1).deltas);
    for (int asn = 2; asn <= 4; ++asn) EXPECT_TRUE(now[asn] == before.at(asn)) << asn;
    // The old place is free space now.
    EXPECT_EQ(session->pages.pixel(0, 5, 5), 0);
}

TEST_F(ResizeFixture, DeltasThatNoLongerFitAreNamedAndRemovedOnlyWhenAllowed) {
    open(fullPageSpec());
    const auto original = tb::readFile(stylePath);
    select(1);
    const auto before = sprites();
    const auto pixels = tb::patternPixels(56, 36, 3);
    const fs::path file = picture(pixels, 56, 36);

    ASSERT_FALSE(importSpriteResizing(*session, platform, file, {true, false}));
    ASSERT_FALSE(messages().empty());
    EXPECT_TRUE(tb::contains(messages().back(), "Sprite 1 is 60 x 40; the picture is 56 x 36."));
    EXPECT_TRUE(tb::contains(messages().back(), "Deltas 1 do not fit the new size"));
    EXPECT_TRUE(tb::contains(messages().back(), "Doors 2 use them"));
    EXPECT_FALSE(session->style.anyChange());
    EXPECT_TRUE(sprites() == before);

    // Without --resize the present refusal stays.
    ASSERT_FALSE(importSpriteResizing(*session, platform, file, {false, false}));
    EXPECT_TRUE(tb::contains(messages().back(), "should be (60,40) but is (56,36)"));

    ASSERT_TRUE(importSpriteResizing(*session, platform, file, {true, true}));
    EXPECT_EQ(selected().delta_count, 2);
    ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
    reopenQuietly();
    select(1);
    EXPECT_EQ(selected().page, 0); // the old place still holds it
    const auto now = sprites();
    EXPECT_EQ(now.at(1).deltas,
              (std::vector<std::vector<RunLine>>{before.at(1).deltas[0], before.at(1).deltas[2]}));
    const CarEntry* car = session->cars.find(1);
    ASSERT_NE(car, nullptr);
    ASSERT_EQ(car->doorList.size(), 2u);
    EXPECT_EQ(car->doorList[0].delta, 1);            // was delta 2, which moved down one place
    EXPECT_EQ(car->doorList[1].delta, 1);            // its delta 1 was removed: the last one left
    EXPECT_EQ(car->info.width, tb::CarSpec{}.width); // the collision size is left as it is
    EXPECT_NE(tb::readFile(stylePath), original);
}

TEST_F(ResizeFixture, UndoPutsTheSpriteBackAndRedoResizesItAgain) {
    open(fullPageSpec());
    select(1);
    const auto before = sprites();
    const SpriteRec old = selected();
    const auto pixels = tb::patternPixels(68, 48, 5);
    ASSERT_TRUE(importSpriteResizing(*session, platform, picture(pixels, 68, 48), {true, true}));
    EXPECT_EQ(session->history.undoName(), "Resize Sprite 1");

    ASSERT_NE(session->history.undo(*session), nullptr);
    EXPECT_TRUE(sprites() == before);
    EXPECT_EQ(selected(), old);
    EXPECT_EQ(session->pages.gNumBlockLoaded, 0);
    EXPECT_EQ(session->sprites.over(0, 5, 5), 1);
    EXPECT_FALSE(session->style.anyChange());

    ASSERT_NE(session->history.redo(*session), nullptr);
    EXPECT_EQ(selected().page, 1);
    EXPECT_EQ(session->sprites.over(1, 5, 5), 1);
    EXPECT_EQ(session->sprites.over(0, 5, 5), 0);
    ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
    reopenQuietly();
    select(1);
    EXPECT_EQ(exported(), pixels);
}

TEST_F(ResizeFixture, ASpriteTooLargeForTheFormatOrForTheLastPageIsRefused) {
    open(tb::fullSizeSpec24());
    select(session->sprites.firstCarSprite());
    EXPECT_FALSE(planSpriteResize(*session, selected(), 200, 200).possible); // 40000 pixels
    // Every page of the full-size level is in use, and 26 pages are the most.
    const ResizePlan full = planSpriteResize(*session, selected(), 255, 128);
    if (!full.possible) {
        EXPECT_TRUE(tb::contains(full.why, "26 pages"));
    }
}

TEST_F(ResizeFixture, TheCommandLineResizesOnlyWhenAsked) {
    open(fullPageSpec());
    select(1);
    const fs::path file = picture(tb::patternPixels(56, 36, 3), 56, 36);
    const std::string work = dir.path().string();
    auto r =
        tb::runCli({"import-sprite", "--workdir", work, stylePath.string(), "1", file.string()});
    EXPECT_EQ(r.status, 1);
    r = tb::runCli(
        {"import-sprite", "--workdir", work, "--resize", stylePath.string(), "1", file.string()});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(tb::contains(r.err, "Deltas 1 do not fit")) << r.err;
    r = tb::runCli({"import-sprite", "--workdir", work, "--resize", "--drop-deltas",
                    stylePath.string(), "1", file.string()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(tb::contains(r.out, "resized: 56 x 36 on page 0 at (0,0), deltas 3 -> 2")) << r.out;
    reopenQuietly();
}

TEST_F(ResizeFixture, DeltaEntryPlacesFollowTheSpriteRecords) {
    open(tb::fullSizeSpec24());
    std::vector<std::int32_t> loaded;
    for (const DeltaRec& d : session->deltas.myDeltas) loaded.push_back(d.entryPos);
    placeDeltaEntries(*session);
    std::vector<std::int32_t> placed;
    for (const DeltaRec& d : session->deltas.myDeltas) placed.push_back(d.entryPos);
    EXPECT_EQ(placed, loaded);
    const auto bytes = tb::readFile(stylePath);
    const auto section = buildSpriteInfoSection(*session);
    const auto start = static_cast<std::size_t>(session->style.gSeekSpriteInfo - 1);
    ASSERT_EQ(static_cast<std::int64_t>(section.size()),
              session->style.gSeekSpriteInfoEnd - session->style.gSeekSpriteInfo);
    EXPECT_TRUE(std::equal(section.begin(), section.end(), bytes.begin() + start));
}
