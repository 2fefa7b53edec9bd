// A command that saves reads the style file once: the load keeps the bytes with the stamp that
// proves them, and the save starts from them only while the file still has that stamp. A session
// of the command line paints no page image and keeps no undo steps.

#include "base/stamped_content.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/car_edit.h"
#include "session/edits.h"
#include "session/level_bytes_check.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/style_session.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

struct KeptOptions {
    bool keep = true;
    bool shown = true;
};

std::unique_ptr<StyleSession> loadKept(const fs::path& style, tb::FakePlatform& platform,
                                       KeptOptions how) {
    AppOptions app;
    app.workDir = style.parent_path() / "work";
    fs::create_directories(app.workDir);
    app.keepStyleContent = how.keep;
    app.showPages = how.shown;
    app.keepUndo = how.shown;
    auto session = std::make_unique<StyleSession>(app);
    prepareStyle(session->style, style, kLoadSprites);
    EXPECT_TRUE(initHeader(*session, platform, standardLoaders()));
    return session;
}

// A level folder with the sample style file and its ENGLISH.FXT.
fs::path keptLevel(const fs::path& dir) {
    fs::create_directories(dir);
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(tb::sampleSpec24()));
    tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt(tb::sampleFxtEntries()));
    return dir / "STYLE001.G24";
}

// Another program's save of the same length and write time: the file is replaced by rename.
void replaceBehindOurBack(const fs::path& file, std::vector<std::uint8_t> bytes) {
    const auto written = fs::last_write_time(file);
    const fs::path other = file.parent_path() / "other";
    tb::writeFile(other, bytes);
    fs::last_write_time(other, written);
    fs::rename(other, file);
}

} // namespace

TEST(StampedContent, KeptBytesAreHandedOutOnlyWhileTheFileHasTheirStamp) {
    tb::TempDir dir;
    const fs::path file = dir / "f.bin";
    const std::vector<std::uint8_t> first{1, 2, 3, 4};
    tb::writeFile(file, first);

    StampedContent kept;
    ASSERT_TRUE(readStampedContent(file, kept));
    EXPECT_EQ(kept.bytes, first);
    EXPECT_EQ(kept.stamp, stampOf(file));
    std::vector<std::uint8_t> out{9};
    FileStamp readAs;
    ASSERT_TRUE(kept.takeIfUnchanged(file, out, readAs));
    EXPECT_EQ(out, first);
    EXPECT_EQ(readAs, stampOf(file));
    // Handed out once: the taker changes them.
    EXPECT_FALSE(kept.kept());
    EXPECT_FALSE(kept.takeIfUnchanged(file, out, readAs));

    // Replaced with another file of the same length and time: the kept bytes are not its bytes.
    ASSERT_TRUE(readStampedContent(file, kept));
    replaceBehindOurBack(file, {5, 6, 7, 8});
    out = {9};
    EXPECT_FALSE(kept.takeIfUnchanged(file, out, readAs));
    EXPECT_EQ(out, std::vector<std::uint8_t>{9});
    EXPECT_FALSE(kept.kept());
    EXPECT_TRUE(kept.bytes.empty());

    EXPECT_FALSE(readStampedContent(dir / "missing", kept));
    EXPECT_FALSE(kept.kept());
}

TEST(KeptContent, SaveFromTheKeptBytesWritesWhatASaveThatReadsTheFileWrites) {
    tb::TempDir dir;
    const fs::path kept = keptLevel(dir / "kept"), read = keptLevel(dir / "read");
    for (const fs::path& style : {kept, read}) {
        tb::FakePlatform p;
        auto s = loadKept(style, p, {style == kept, false});
        EXPECT_EQ(s->keptStyle.kept(), style == kept);
        markAllChanged(*s);
        s->style.gCarNamesChanged = false;
        s->pages.pixel(0, 0, 0) ^= 0xFF;
        BackupRegistry backups;
        SaveOptions options;
        options.backups = &backups;
        ASSERT_EQ(saveChanges(*s, p, options).result, SaveResult::Saved);
        EXPECT_FALSE(s->keptStyle.kept());
    }
    EXPECT_EQ(tb::readFile(kept), tb::readFile(read));
    EXPECT_NE(tb::readFile(kept), tb::buildStyle(tb::sampleSpec24()));
}

TEST(KeptContent, FileSavedByAnotherProgramAfterTheLoadIsReadAgainBeforeWritingOverIt) {
    tb::TempDir dir;
    const fs::path style = keptLevel(dir / "level");
    tb::FakePlatform p;
    auto s = loadKept(style, p, {true, false});
    const int asn = s->cars.lowest;
    ASSERT_NE(s->cars.find(asn), nullptr);
    ASSERT_TRUE(editCarField(*s, asn, 0, "17"));

    // Another program changes a pixel, which the car record save leaves alone.
    tb::FakePlatform other;
    auto theirs = loadKept(style, other, {false, true});
    theirs->pages.pixel(0, 3, 3) ^= 0x5A;
    theirs->style.gPagesChanged = true;
    BackupRegistry theirBackups;
    SaveOptions theirOptions;
    theirOptions.backups = &theirBackups;
    ASSERT_EQ(saveChanges(*theirs, other, theirOptions).result, SaveResult::Saved);
    const auto afterTheirs = tb::readFile(style);

    // Told to write over it, the save starts from the file as it is now, not from the load's bytes.
    p.scriptedAnswers.push_back(Answer::Yes);
    BackupRegistry backups;
    SaveOptions options;
    options.backups = &backups;
    ASSERT_EQ(saveChanges(*s, p, options).result, SaveResult::Saved);
    tb::FakePlatform check;
    auto saved = loadKept(style, check, {false, false});
    EXPECT_EQ(saved->pages.pixel(0, 3, 3), theirs->pages.pixel(0, 3, 3));
    EXPECT_EQ(saved->cars.find(asn)->info.width, 17);
    EXPECT_NE(tb::readFile(style), afterTheirs);
}

TEST(UnshownPages, SessionWithoutPagesPaintsNothingAndRecordsNoUndoYetSaves) {
    tb::TempDir dir;
    const fs::path style = keptLevel(dir / "level");
    tb::FakePlatform p;
    auto shown = loadKept(style, p, {false, true});
    auto unshown = loadKept(style, p, {true, false});
    const auto nonZero = [](std::uint32_t v) { return v != 0; };
    EXPECT_TRUE(std::any_of(shown->image.rgb.begin(), shown->image.rgb.end(), nonZero));
    EXPECT_FALSE(std::any_of(unshown->image.rgb.begin(), unshown->image.rgb.end(), nonZero));
    // The pages themselves are loaded all the same.
    ASSERT_EQ(unshown->pages.gNumBlockLoaded, shown->pages.gNumBlockLoaded);
    EXPECT_TRUE(std::equal(unshown->pages.gPixels.begin(), unshown->pages.gPixels.end(),
                           shown->pages.gPixels.begin()));

    const int asn = shown->cars.lowest;
    for (StyleSession* s : {shown.get(), unshown.get()})
        ASSERT_TRUE(editCarField(*s, asn, 0, "19"));
    EXPECT_EQ(shown->history.size(), 1u);
    EXPECT_EQ(unshown->history.size(), 0u);
    // The edit set its flag without a recorded step.
    EXPECT_GT(unshown->style.gSaveCarInfo.size(), 1u);
    BackupRegistry backups;
    SaveOptions options;
    options.backups = &backups;
    ASSERT_EQ(saveChanges(*unshown, p, options).result, SaveResult::Saved);
    tb::FakePlatform check;
    EXPECT_EQ(loadKept(style, check, {false, false})->cars.find(asn)->info.width, 19);
}

TEST(LentLevelBytes, AreCheckedWhereTheyLieAndLeftAsTheyWere) {
    tb::TempDir dir;
    const fs::path style = dir / "STYLE001.G24";
    const auto fxt = tb::encodeFxt(tb::sampleFxtEntries());
    std::vector<std::uint8_t> bytes = tb::buildStyle(tb::sampleSpec24());
    const auto whole = bytes;
    EXPECT_TRUE(checkLentLevelBytes(style, bytes, fxt).ok());
    EXPECT_EQ(bytes, whole);
    // Cut short: refused with the words of the copying check, and still as lent.
    bytes.resize(bytes.size() / 2);
    const auto cut = bytes;
    const Result<void> refused = checkLentLevelBytes(style, bytes, fxt);
    ASSERT_FALSE(refused.ok());
    EXPECT_FALSE(refused.message().empty());
    EXPECT_EQ(refused.message(), checkLevelBytes(style, cut, fxt).message());
    EXPECT_EQ(bytes, cut);
}
