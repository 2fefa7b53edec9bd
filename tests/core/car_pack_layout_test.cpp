// Car packs of edits that move things in a level of real size (16 full pages): a sprite of another
// size (its new place on the pages, the layout tables, the delta store) and a sprite with another
// number of deltas. The pack made from the saved level turns a pristine copy into exactly the
// saved bytes.

#include "car_pack_outcome.h"
#include "session/car_pack.h"

#include "fake_platform.h"
#include "fxt_coder.h"
#include "sample_level.h"
#include "session/delta_count.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/picture_file.h"
#include "session/save_sequence.h"
#include "session/session_io.h"
#include "session/style_session.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

struct PackOfLayoutFixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    std::unique_ptr<StyleSession> session;
    BackupRegistry backups;
    fs::path style = dir / "STYLE001.G24";
    fs::path fxt = dir / "ENGLISH.FXT";
    fs::path pack = dir / "LAYOUT.GC3";
    std::vector<std::uint8_t> pristineStyle, pristineFxt;

    void SetUp() override {
        tb::writeFile(style, tb::buildStyle(tb::fullSizeSpec24(16)));
        tb::writeFile(fxt, tb::encodeFxt(tb::sampleFxtEntries()));
        pristineStyle = tb::readFile(style);
        pristineFxt = tb::readFile(fxt);
        AppOptions app;
        app.workDir = dir / "work";
        fs::create_directories(app.workDir);
        session = std::make_unique<StyleSession>(app);
        prepareStyle(session->style, style, kLoadSprites);
        ASSERT_TRUE(initHeader(*session, platform, standardLoaders()));
        platform.shownMessages.clear();
    }
    // The first car sprite with at least `deltas` deltas.
    int carWithDeltas(int deltas) const {
        for (int page = 0; page < kMaxPages; ++page)
            for (int sib = 1; sib <= session->sprites.pageCount(page); ++sib) {
                const SpriteRec& s = session->sprites.pageSprites[page][sib];
                if (session->cars.find(s.ASN) && s.delta_count >= deltas) return s.ASN;
            }
        ADD_FAILURE() << "no car with " << deltas << " deltas";
        return 0;
    }
    // Saves, builds the pack from the .bak originals, puts the pristine files back and applies
    // the pack: the level must then be byte for byte the saved one.
    void packAppliesExactly() {
        SaveOptions options;
        options.backups = &backups;
        ASSERT_EQ(saveChanges(*session, platform, options).result, SaveResult::Saved);
        const auto savedStyle = tb::readFile(style);
        const auto savedFxt = tb::readFile(fxt);
        ASSERT_NE(savedStyle, pristineStyle);
        const CarPackFiles bak = levelBackups(session->style);
        ASSERT_FALSE(bak.style.empty());
        ASSERT_TRUE(
            writeCarPack(style, bak.style, fxt, bak.fxt.empty() ? fxt : bak.fxt, pack, platform))
            << (platform.messageTexts().empty() ? "" : platform.messageTexts().back());

        tb::writeFile(style, pristineStyle);
        tb::writeFile(fxt, pristineFxt);
        BackupRegistry fresh;
        platform.shownMessages.clear();
        const CarPackApplied applied =
            applyCarPack(pack, levelFiles(session->style), platform, fresh);
        ASSERT_EQ(tb::applyOutcome(applied), "applied")
            << (platform.messageTexts().empty() ? "" : platform.messageTexts().back());
        EXPECT_EQ(tb::readFile(style), savedStyle);
        EXPECT_EQ(tb::readFile(fxt), savedFxt);
    }
};

TEST_F(PackOfLayoutFixture, PackOfAResizedCarSpriteAppliesExactly) {
    const int asn = carWithDeltas(0);
    ASSERT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
    const SpriteRec before = *session->selectedSprite();
    // Taller and wider: the sprite needs a new place, its deltas may no longer fit.
    const int w = before.W + 24, h = before.H + 20;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(w) * h);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint8_t>(1 + i % 97);
    const fs::path picture = dir / "bigger.bmp";
    ASSERT_TRUE(writePicture(*session, platform, picture, pixels, before.clut, w, h));
    ASSERT_TRUE(importSpriteResizing(*session, platform, picture, {true, true}));
    ASSERT_EQ(int(session->selectedSprite()->W), w);
    ASSERT_EQ(int(session->selectedSprite()->H), h);
    const SpriteRec& after = *session->selectedSprite();
    // It no longer fits its old place: it moved, and the sections behind sprite info with it.
    EXPECT_TRUE(after.page != before.page || after.xo != before.xo || after.yo != before.yo);
    packAppliesExactly();
}

TEST_F(PackOfLayoutFixture, PackOfAnotherDeltaCountAppliesExactly) {
    const int asn = carWithDeltas(2);
    ASSERT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
    const int count = session->selectedSprite()->delta_count;
    ASSERT_TRUE(addDelta(*session, platform));
    ASSERT_TRUE(addDelta(*session, platform));
    ASSERT_TRUE(removeDelta(*session, platform, 0, true));
    ASSERT_EQ(int(session->selectedSprite()->delta_count), count + 1);
    packAppliesExactly();
}

} // namespace
