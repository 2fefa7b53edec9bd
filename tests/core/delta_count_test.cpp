// Delta sets that grow or shrink: the frames of the picture set the sprite's delta count, the
// delta table and the doors follow, and the saved file loads and saves again unchanged.

#include "exchange/delta_frames.h"
#include "exchange/sprite_exchange.h"
#include "sample_level.h"
#include "session/delta_count.h"
#include "session/delta_sets.h"
#include "session/edits.h"
#include "session/picture_file.h"
#include "session/save_sequence.h"
#include "session/sprite_layout.h"

#include "exchange_fixture.h"

#include <map>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

struct DeltaCountFixture : tb::StyleFixture {
    // Every sprite's deltas by sprite number.
    std::map<int, std::vector<std::vector<RunLine>>> deltasBySprite() const {
        std::map<int, std::vector<std::vector<RunLine>>> out;
        for (const SpriteRec* s : spritesInFileOrder(session->sprites))
            for (std::int16_t d : s->deltas)
                out[s->ASN].push_back(session->deltas.myDeltas[d].runLine);
        return out;
    }
    // The selected sprite's dirty delta set as pixels, frame after frame.
    std::vector<std::uint8_t> dirtySet() {
        const fs::path file = dir / "set.bmp";
        EXPECT_TRUE(exportDeltaSet(*session, platform, file, false));
        std::vector<std::uint8_t> picture;
        EXPECT_TRUE(readPicture(*session, platform, file, selected().clut,
                                selected().W * selected().delta_count, selected().H, picture));
        return picture;
    }
    // A picture of `frames` frames: the first of `set` (of `had` frames), then copies of the
    // sprite with a mark at (x, y).
    std::vector<std::uint8_t> withFrames(const std::vector<std::uint8_t>& set, int had, int frames,
                                         int x, int y) {
        const int w = selected().W, h = selected().H;
        const std::vector<std::uint8_t> sprite = spritePixels(*session, selected());
        std::vector<std::uint8_t> out(static_cast<std::size_t>(w) * frames * h);
        for (int row = 0; row < h; ++row)
            for (int f = 0; f < frames; ++f)
                for (int col = 0; col < w; ++col) {
                    std::uint8_t v =
                        f < had ? set[(row * had + f) * w + col] : sprite[row * w + col];
                    if (f >= had && col == x && row == y) v = static_cast<std::uint8_t>(v ^ 0x55);
                    out[(row * frames + f) * w + col] = v;
                }
        return out;
    }
    fs::path write(const std::vector<std::uint8_t>& picture, int frames) {
        const fs::path file = dir / "changed.bmp";
        EXPECT_TRUE(writePicture(*session, platform, file, picture, selected().clut,
                                 selected().W * frames, selected().H));
        return file;
    }
    void saveAndCheckAFullSaveKeepsTheBytes() {
        ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
        reopen();
        const auto saved = tb::readFile(stylePath);
        markAllChanged(*session);
        ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
        EXPECT_EQ(tb::readFile(stylePath), saved);
        reopen();
    }
};

} // namespace

TEST_F(DeltaCountFixture, ADeltaSetOfTheFullSizeLevelGrowsByOneFrameAndShrinksByOne) {
    open(tb::fullSizeSpec24());
    int asn = 0;
    for (int i = 1; i <= session->cars.highest && asn == 0; ++i)
        if (const CarEntry* car = session->cars.find(i); car && !car->doorList.empty()) {
            select(i);
            if (selected().delta_count >= 2) asn = i;
        }
    ASSERT_GT(asn, 0);
    select(asn);
    const int n = selected().delta_count;
    const auto before = deltasBySprite();
    const auto doors = session->cars.find(asn)->doorList;

    // One more frame: the sprite with one pixel changed in its second row.
    const std::vector<std::uint8_t> set = dirtySet();
    const fs::path grown = write(withFrames(set, n, n + 1, 3, 1), n + 1);
    ASSERT_FALSE(importDeltaSetResizing(*session, platform, grown, false, {}));
    ASSERT_TRUE(importDeltaSetResizing(*session, platform, grown, false, {true, false}))
        << (messages().empty() ? "" : messages().back());
    saveAndCheckAFullSaveKeepsTheBytes();
    select(asn);
    ASSERT_EQ(selected().delta_count, n + 1);
    auto now = deltasBySprite();
    ASSERT_EQ(now[asn].size(), static_cast<std::size_t>(n + 1));
    for (int d = 0; d < n; ++d) EXPECT_EQ(now[asn][d], before.at(asn)[d]) << d;
    const DeltaRec& added = session->deltas.myDeltas[selected().deltas.back()];
    const DeltaExtent extent = deltaExtent(added, selected().W, selected().H);
    EXPECT_EQ(extent.pixels, 1);
    EXPECT_EQ(extent.left, 3);
    EXPECT_EQ(extent.top, 1);
    EXPECT_EQ(session->cars.find(asn)->doorList, doors);
    for (const auto& [sprite, runs] : before)
        if (sprite != asn) {
            EXPECT_EQ(now[sprite], runs) << sprite;
        }

    // One frame fewer than at first: the last delta goes, and a door that showed it is refused
    // unless allowed, then shows the last delta left.
    const auto shrunk = write(withFrames(dirtySet(), n + 1, n - 1, 0, 0), n - 1);
    bool doorOnLast = false;
    for (const DoorRec& door : doors) doorOnLast = doorOnLast || door.delta == n - 1;
    if (doorOnLast) {
        ASSERT_FALSE(importDeltaSetResizing(*session, platform, shrunk, false, {true, false}));
        EXPECT_TRUE(tb::contains(messages().back(), "removing deltas that doors show"));
    }
    ASSERT_TRUE(importDeltaSetResizing(*session, platform, shrunk, false, {true, true}));
    saveAndCheckAFullSaveKeepsTheBytes();
    select(asn);
    ASSERT_EQ(selected().delta_count, n - 1);
    now = deltasBySprite();
    for (int d = 0; d < n - 1; ++d) EXPECT_EQ(now[asn][d], before.at(asn)[d]) << d;
    const auto& doorsNow = session->cars.find(asn)->doorList;
    ASSERT_EQ(doorsNow.size(), doors.size());
    for (std::size_t i = 0; i < doors.size(); ++i)
        EXPECT_EQ(doorsNow[i].delta, doors[i].delta == n - 1 ? n - 2 : doors[i].delta) << i;
    for (const auto& [sprite, runs] : before)
        if (sprite != asn) {
            EXPECT_EQ(now[sprite], runs) << sprite;
        }
}

TEST_F(DeltaCountFixture, CountsPastTheFormatAreRefusedAndRefusedFramesChangeNothing) {
    open(tb::fullSizeSpec24());
    int asn = session->sprites.firstCarSprite();
    EXPECT_FALSE(planDeltaCount(*session, asn, 256).possible);
    EXPECT_TRUE(planDeltaCount(*session, asn, 255).possible);

    for (select(asn); selected().delta_count == 0; select(++asn)) {
    }
    const int n = selected().delta_count;
    const auto before = deltasBySprite();
    // A new frame whose change starts at the sprite's top-left pixel cannot be a delta: the count
    // goes back as well.
    const fs::path file = write(withFrames(dirtySet(), n, n + 1, 0, 0), n + 1);
    EXPECT_FALSE(importDeltaSetResizing(*session, platform, file, false, {true, true}));
    EXPECT_EQ(selected().delta_count, n);
    EXPECT_EQ(deltasBySprite(), before);
    EXPECT_FALSE(session->style.gLayoutChanged);
}

TEST_F(DeltaCountFixture, AddAndRemoveDeltaAreOneUndoableStepEachAndSaveAsTheyShow) {
    open(tb::fullSizeSpec24());
    int asn = 0;
    for (int i = 1; i <= session->cars.highest && asn == 0; ++i)
        if (const CarEntry* car = session->cars.find(i); car && !car->doorList.empty()) {
            select(i);
            if (selected().delta_count >= 2) asn = i;
        }
    ASSERT_GT(asn, 0);
    select(asn);
    const int n = selected().delta_count;
    const auto before = deltasBySprite();
    const auto doors = session->cars.find(asn)->doorList;
    const int shown = doors.front().delta;

    ASSERT_TRUE(addDelta(*session, platform));
    EXPECT_EQ(selected().delta_count, n + 1);
    EXPECT_EQ(session->history.undoName(), "Add Delta " + std::to_string(asn));
    // A door's delta is refused unless allowed.
    EXPECT_FALSE(removeDelta(*session, platform, shown, false));
    ASSERT_TRUE(removeDelta(*session, platform, shown, true));
    EXPECT_EQ(selected().delta_count, n);

    ASSERT_NE(session->history.undo(*session), nullptr);
    ASSERT_NE(session->history.undo(*session), nullptr);
    EXPECT_EQ(selected().delta_count, n);
    EXPECT_EQ(deltasBySprite(), before);
    EXPECT_EQ(session->cars.find(asn)->doorList, doors);
    EXPECT_FALSE(session->style.anyChange());

    ASSERT_NE(session->history.redo(*session), nullptr);
    ASSERT_NE(session->history.redo(*session), nullptr);
    saveAndCheckAFullSaveKeepsTheBytes();
    select(asn);
    ASSERT_EQ(selected().delta_count, n);
    auto now = deltasBySprite();
    auto expected = before.at(asn);
    expected.erase(expected.begin() + shown);
    expected.push_back({}); // the added delta, empty: a save writes no run for it
    now[asn].back().clear();
    EXPECT_EQ(now[asn], expected);
    for (const auto& [sprite, runs] : before)
        if (sprite != asn) {
            EXPECT_EQ(now[sprite], runs) << sprite;
        }
}

TEST_F(DeltaCountFixture, TheCommandLineSetsTheDeltaCountOnlyWhenAsked) {
    open(tb::fullSizeSpec24());
    int asn = session->sprites.firstCarSprite();
    for (select(asn); selected().delta_count == 0; select(++asn)) {
    }
    const int n = selected().delta_count;
    const fs::path file = write(withFrames(dirtySet(), n, n + 1, 3, 1), n + 1);
    const std::string work = dir.path().string();
    const std::string number = std::to_string(asn);
    auto r =
        tb::runCli({"import-deltas", "--workdir", work, stylePath.string(), number, file.string()});
    EXPECT_EQ(r.status, 1);
    r = tb::runCli({"import-deltas", "--workdir", work, "--resize", stylePath.string(), number,
                    file.string()});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(tb::contains(r.out, "deltas: " + std::to_string(n + 1))) << r.out;
    reopen();
    select(asn);
    EXPECT_EQ(selected().delta_count, n + 1);
}
