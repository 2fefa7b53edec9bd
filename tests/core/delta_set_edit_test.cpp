// An edited delta set changes only the pixels the modder changed: stored pixels that the sheet
// shows as they were exported (colour 0 on a clean sheet looks like the background) keep their
// place and value.

#include "delta_runs.h"
#include "exchange/delta_frame_edit.h"
#include "exchange/sprite_exchange.h"
#include "sample_level.h"
#include "session/delta_sets.h"
#include "session/edits.h"
#include "session/picture_file.h"
#include "session/save_sequence.h"

#include "exchange_fixture.h"

#include <map>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

using torquil::testing::deltaOf;
using torquil::testing::run;

// Position (row * 256 + column) -> value of every pixel the delta stores.
using Pixels = std::map<int, std::uint8_t>;
Pixels storedPixels(const DeltaRec& d) {
    Pixels out;
    int position = 0;
    for (const RunLine& r : usedRuns(d)) {
        position += r.offset;
        for (std::size_t k = 0; k < r.length; ++k) out[position + static_cast<int>(k)] = r.data[k];
        position += r.length;
    }
    return out;
}

} // namespace

TEST(DeltaFrameEdit, OnlyPixelsThatDifferFromTheExportChange) {
    constexpr int w = 8, h = 4;
    // Row 1: columns 2..4 hold 0, 5, 0; a pixel past the right edge (column 10) holds 6.
    const DeltaRec d = deltaOf({run(256 + 2, {0, 5, 0}), run(256 + 10 - (256 + 5), {6})});
    const std::vector<std::uint8_t> sprite(w * h, 9);
    for (const bool clean : {true, false}) {
        SCOPED_TRACE(clean ? "clean" : "dirty");
        const std::vector<std::uint8_t> base = clean ? std::vector<std::uint8_t>(w * h, 0) : sprite;
        std::vector<std::uint8_t> frame = base;
        drawDelta(d, w, h, frame);
        frame[3 * w + 6] = 44; // one pixel added

        const FrameRuns added = runsFromEditedFrame(d, base, frame, w, h);
        ASSERT_TRUE(added.ok) << added.reason;
        Pixels expected = storedPixels(d);
        expected[3 * 256 + 6] = 44;
        EXPECT_EQ(storedPixels(deltaOf(added.runs)), expected);

        // The stored 5 painted back to what the sheet shows without a delta: removed. The stored
        // 0 at column 2 painted 7: changed.
        frame[1 * w + 3] = base[1 * w + 3];
        frame[1 * w + 2] = 7;
        const FrameRuns edited = runsFromEditedFrame(d, base, frame, w, h);
        ASSERT_TRUE(edited.ok) << edited.reason;
        expected.erase(256 + 3);
        expected[256 + 2] = 7;
        EXPECT_EQ(storedPixels(deltaOf(edited.runs)), expected);
    }
}

TEST(DeltaFrameEdit, RefusesAPixelAtTheTopLeftAndOffsetsPastSixteenBits) {
    const std::vector<std::uint8_t> base(4 * 4, 0);
    std::vector<std::uint8_t> frame = base;
    frame[0] = 3;
    const FrameRuns topLeft = runsFromEditedFrame(deltaOf({RunLine{}}), base, frame, 4, 4);
    EXPECT_FALSE(topLeft.ok);
    EXPECT_NE(topLeft.reason.find("top-left pixel (0,0)"), std::string::npos);
    // A stored pixel far below the sprite stays; removing the one at (3,3) before it leaves a gap
    // from (1,0) that no 16-bit offset reaches.
    const DeltaRec far = deltaOf({run(1, {1}), run(3 * 256 + 3 - 2, {2}), run(65000, {3})});
    frame = base;
    drawDelta(far, 4, 4, frame);
    frame[3 * 4 + 3] = 0;
    const FrameRuns gap = runsFromEditedFrame(far, base, frame, 4, 4);
    EXPECT_FALSE(gap.ok);
    EXPECT_NE(gap.reason.find("65535"), std::string::npos);
}

namespace {

struct DeltaSetEditFixture : tb::StyleFixture {
    int deltaIndex = -1; // table index of the tested frame's delta
    int asn = 0;

    // The full-size level with a car of at least three deltas whose third delta (frame 3) stores
    // pixels of colour 0 inside the sprite: its first run's first two pixels are made 0.
    void openFullSize() {
        tb::StyleSpec layout = tb::fullSizeSpec24();
        int car = -1;
        for (std::size_t i = 0; i < layout.sprites.size() && car < 0; ++i)
            if (layout.sprites[i].type == tb::SPR_CAR && layout.sprites[i].deltas.size() >= 3 &&
                layout.sprites[i].w >= 16 && layout.sprites[i].h >= 32)
                car = static_cast<int>(i);
        ASSERT_GE(car, 0);
        tb::DeltaRun& first = layout.sprites[static_cast<std::size_t>(car)].deltas[2].runs.at(0);
        ASSERT_GE(first.data.size(), 2u);
        first.data[0] = first.data[1] = 0;
        open(layout);
        // The sprite with that drawing: the one whose frame 3 now stores those zeros.
        for (int page = 0; page < kMaxPages && deltaIndex < 0; ++page)
            for (int sib = 1; sib <= session->sprites.pageCount(page); ++sib) {
                const SpriteRec& s = session->sprites.pageSprites[page][sib];
                if (s.delta_count < 3 || s.W != layout.sprites[static_cast<std::size_t>(car)].w ||
                    s.H != layout.sprites[static_cast<std::size_t>(car)].h)
                    continue;
                const DeltaRec& d = session->deltas.myDeltas[s.deltas[2]];
                if (usedRuns(d).empty() || usedRuns(d)[0].data.size() < 2 ||
                    usedRuns(d)[0].data[0] != 0 || usedRuns(d)[0].data[1] != 0)
                    continue;
                deltaIndex = s.deltas[2];
                asn = s.ASN;
                break;
            }
        ASSERT_GE(deltaIndex, 0);
        select(asn);
    }

    // Adds one pixel to frame 3 of the exported set, where the delta stores nothing, imports it,
    // and checks that exactly that pixel was added; then again after saving and reopening.
    void addOnePixel(bool clean) {
        const SpriteRec sprite = selected();
        const std::vector<DeltaRec> old = session->deltas.myDeltas;
        const Pixels before = storedPixels(old[static_cast<std::size_t>(deltaIndex)]);
        int zeros = 0;
        for (const auto& [at, v] : before) zeros += v == 0 && at % 256 < sprite.W;
        ASSERT_GE(zeros, 2);

        const fs::path file = dir / (clean ? "clean.bmp" : "dirty.bmp");
        ASSERT_TRUE(exportDeltaSet(*session, platform, file, clean));
        const int width = sprite.W * sprite.delta_count;
        std::vector<std::uint8_t> picture;
        ASSERT_TRUE(readPicture(*session, platform, file, sprite.clut, width, sprite.H, picture));
        const std::vector<std::uint8_t> car = spritePixels(*session, sprite);
        int x = -1, y = -1;
        for (int yy = sprite.H - 1; yy > 0 && x < 0; --yy)
            for (int xx = 1; xx < sprite.W && x < 0; ++xx)
                if (!before.contains(yy * 256 + xx)) x = xx, y = yy;
        ASSERT_GE(x, 0);
        const std::uint8_t under = clean ? 0 : car[static_cast<std::size_t>(y) * sprite.W + x];
        const std::uint8_t added = under == 201 ? 202 : 201;
        picture[static_cast<std::size_t>(y) * width + 2 * sprite.W + x] = added; // frame 3
        ASSERT_TRUE(writePicture(*session, platform, file, picture, sprite.clut, width, sprite.H));

        const DeltaSetImport result = importDeltaSet(*session, platform, file, clean);
        ASSERT_TRUE(result) << (messages().empty() ? "" : messages().back());
        EXPECT_EQ(*result, 1);
        Pixels expected = before;
        expected[y * 256 + x] = added;
        auto check = [&](const char* when) {
            SCOPED_TRACE(when);
            const auto& now = session->deltas.myDeltas;
            ASSERT_EQ(now.size(), old.size());
            for (std::size_t i = 0; i < now.size(); ++i)
                EXPECT_EQ(storedPixels(now[i]),
                          static_cast<int>(i) == deltaIndex ? expected : storedPixels(old[i]))
                    << i;
        };
        check("imported");
        ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
        reopen();
        select(asn);
        check("saved and reopened");
    }
};

} // namespace

TEST_F(DeltaSetEditFixture, OnePixelAddedToACleanSetOfAFullSizeCarChangesOnlyThatPixel) {
    ASSERT_NO_FATAL_FAILURE(openFullSize());
    addOnePixel(true);
}

TEST_F(DeltaSetEditFixture, OnePixelAddedToADirtySetOfAFullSizeCarChangesOnlyThatPixel) {
    ASSERT_NO_FATAL_FAILURE(openFullSize());
    addOnePixel(false);
}
