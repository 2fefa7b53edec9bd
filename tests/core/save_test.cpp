#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/cause_advice.h"
#include "cars/car_names_io.h"
#include "cli_runner.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/session_io.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

const std::vector<std::string> kEverySaveStep24 = {"File Open", "Save Car Info", "Save Pages",
                                                   "Save CLUT", "Save Deltas"};
const std::vector<std::string> kEverySaveStep8 = {"File Open", "Save Car Info", "Save Pages",
                                                  "Save Deltas"};

fs::path withSuffix(fs::path path, const char* suffix) {
    path += suffix;
    return path;
}

// A sample level (style file and ENGLISH.FXT) in a temporary folder, loaded like the editor
// loads it, saved with a registry of backups of its own (a fresh run of the program).
struct SaveFixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    std::unique_ptr<StyleSession> session;
    BackupRegistry backups;
    SaveOptions options;
    fs::path path;
    std::vector<std::uint8_t> original;

    SaveFixture() { options.backups = &backups; }

    void write(bool is24 = true) {
        path = dir / (is24 ? "STYLE001.G24" : "STYLE002.GRY");
        original = tb::buildStyle(is24 ? tb::sampleSpec24() : tb::sampleSpec8());
        tb::writeFile(path, original);
        tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt(tb::sampleFxtEntries()));
    }

    void load() {
        AppOptions app;
        app.workDir = dir / "work";
        fs::create_directories(app.workDir);
        session = std::make_unique<StyleSession>(app);
        prepareStyle(session->style, path, kLoadSprites);
        ASSERT_TRUE(initHeader(*session, platform, standardLoaders()))
            << ::testing::PrintToString(platform.messageTexts());
        platform.shownMessages.clear();
        platform.progressTitles.clear();
        platform.progressTexts.clear();
        platform.progressValues.clear();
    }

    // Every part of the style but the names.
    void markStyleChanged() {
        markAllChanged(*session);
        session->style.gCarNamesChanged = false;
    }

    SaveOutcome save() { return saveChanges(*session, platform, options); }

    // Changes the length of the first run that is long enough by `by` bytes; returns the run.
    RunLine* resizeFirstLongRun(int by) {
        DeltaTable& table = session->deltas;
        for (int i = 0; i < table.deltaCount; ++i)
            for (RunLine& run : table.myDeltas[static_cast<std::size_t>(i)].runLine)
                if (run.offset != 0 && run.length + by >= 1 && run.length + by <= 255) {
                    run.length = static_cast<std::uint8_t>(run.length + by);
                    run.data.resize(run.length, 0x42);
                    session->style.gDeltasChanged = true;
                    return &run;
                }
        ADD_FAILURE() << "no run to resize";
        static RunLine none;
        return &none;
    }
    // The same run after a reload (deltas and runs keep their places).
    const RunLine& sameRunAfterReload(const RunLine* before) const {
        for (const DeltaRec& d : session->deltas.myDeltas)
            for (const RunLine& run : d.runLine)
                if (run.offset == before->offset && run.data == before->data) return run;
        static RunLine none;
        return none;
    }

    std::vector<std::uint8_t> bytes() const { return tb::readFile(path); }
    fs::path bak() const { return withSuffix(path, ".bak"); }
};

struct SaveBothKinds : SaveFixture, ::testing::WithParamInterface<bool> {};

} // namespace

// ---------------------------------------------------------------- the whole sequence

TEST_P(SaveBothKinds, FullSaveOfAnUnchangedFileGivesBackTheSameBytes) {
    const bool is24 = GetParam();
    write(is24);
    load();
    markStyleChanged();
    const FileStamp loaded = stampOf(path);
    const SaveOutcome out = save();
    EXPECT_EQ(out.result, SaveResult::Saved) << ::testing::PrintToString(platform.messageTexts());
    EXPECT_EQ(out.steps, is24 ? kEverySaveStep24 : kEverySaveStep8);
    EXPECT_TRUE(out.disableSaveCommand());
    EXPECT_FALSE(out.shrunk);
    EXPECT_TRUE(platform.shownMessages.empty());
    // The savers give back the file's own bytes, so neither the file nor a .bak is written.
    EXPECT_TRUE(out.nothingChanged);
    EXPECT_EQ(stampOf(path), loaded);
    EXPECT_FALSE(fs::exists(bak()));
    EXPECT_FALSE(fs::exists(withSuffix(path, "~")));
    EXPECT_FALSE(session->style.anyChange());

    // Written when asked to all the same: the same bytes, the unmodified file kept in the .bak.
    markStyleChanged();
    options.writeUnchanged = true;
    const SaveOutcome written = save();
    EXPECT_EQ(written.result, SaveResult::Saved);
    EXPECT_FALSE(written.nothingChanged);
    EXPECT_NE(stampOf(path), loaded);
    EXPECT_TRUE(platform.shownMessages.empty());
    EXPECT_EQ(bytes(), original);
    EXPECT_EQ(tb::readFile(bak()), original);
}

INSTANTIATE_TEST_SUITE_P(G24AndGry, SaveBothKinds, ::testing::Values(true, false),
                         [](const auto& info) { return info.param ? "G24" : "GRY"; });

TEST_F(SaveFixture, NothingChangedOpensAndClosesAndWritesNothing) {
    write();
    load();
    const auto stamp = fs::last_write_time(path);
    const SaveOutcome out = save();
    EXPECT_EQ(out.result, SaveResult::Saved);
    EXPECT_EQ(out.steps, std::vector<std::string>{"File Open"});
    EXPECT_FALSE(out.styleWritten);
    EXPECT_EQ(bytes(), original);
    EXPECT_EQ(fs::last_write_time(path), stamp);
    EXPECT_FALSE(fs::exists(bak()));
}

TEST_F(SaveFixture, OnlyNamesChangedRewritesEnglishFxtAndLeavesTheStyleAlone) {
    write();
    load();
    const auto fxtBefore = tb::readFile(dir / "ENGLISH.FXT");
    const auto stamp = fs::last_write_time(path);
    ASSERT_TRUE(renameCarModel(*session, 1, "Zipper"));
    const SaveOutcome out = save();
    EXPECT_EQ(out.result, SaveResult::Saved);
    EXPECT_TRUE(out.namesSaved);
    EXPECT_FALSE(session->style.gCarNamesChanged);
    EXPECT_EQ(bytes(), original);
    EXPECT_EQ(fs::last_write_time(path), stamp);
    EXPECT_FALSE(fs::exists(bak()));
    EXPECT_NE(tb::readFile(dir / "ENGLISH.FXT"), fxtBefore);
    EXPECT_EQ(tb::readFile(dir / "ENGLISH.FXT.bak"), fxtBefore);
}

TEST_F(SaveFixture, GrownDeltaMovesTheSpriteNumbersAndTheHeaderAndTheFileGrows) {
    write();
    load();
    const std::int32_t graphics = session->style.header.sprite_graphics_size();
    const RunLine* run = resizeFirstLongRun(+5);
    const SaveOutcome out = save();
    ASSERT_EQ(out.result, SaveResult::Saved);
    EXPECT_FALSE(out.shrunk);
    EXPECT_TRUE(platform.progressTitles.end() == std::find(platform.progressTitles.begin(),
                                                           platform.progressTitles.end(),
                                                           "Shrinking STYLE file"));
    const auto after = bytes();
    ASSERT_EQ(after.size(), original.size() + 5);
    EXPECT_EQ(tb::getI32(after, tb::header24::sprite_graphics_size), graphics + 5);
    // The sprite numbers record is the last thing in the file, unchanged.
    EXPECT_TRUE(std::equal(original.end() - 42, original.end(), after.end() - 42));
    EXPECT_EQ(session->style.gSeekGraphicsEnd, static_cast<std::int64_t>(after.size()) - 42 + 1);

    // What was saved loads again, with the longer run.
    const RunLine grown = *run;
    load();
    EXPECT_EQ(sameRunAfterReload(&grown).length, grown.length);
}

TEST_F(SaveFixture, ShrunkDeltaStoreCutsTheFileThroughItsCopy) {
    write();
    load();
    const RunLine shortened = *resizeFirstLongRun(-2);
    const SaveOutcome out = save();
    ASSERT_EQ(out.result, SaveResult::Saved);
    EXPECT_TRUE(out.shrunk);
    const auto after = bytes();
    ASSERT_EQ(after.size(), original.size() - 2);
    EXPECT_TRUE(std::equal(original.end() - 42, original.end(), after.end() - 42));
    EXPECT_FALSE(fs::exists(withSuffix(path, "~")));
    EXPECT_EQ(platform.progressTitles.back(), "Shrinking STYLE file");
    EXPECT_EQ(platform.progressTexts.back(), "From:" + std::to_string(original.size()) + " to " +
                                                 std::to_string(original.size() - 1) + " bytes.");
    EXPECT_EQ(std::vector<int>(platform.progressValues.end() - 3, platform.progressValues.end()),
              (std::vector<int>{4, 7, 9}));
    load();
    EXPECT_EQ(sameRunAfterReload(&shortened).length, shortened.length);
}

TEST_F(SaveFixture, DeltaStoreShorterByOneByteLeavesTheFileOneByteLong) {
    write();
    load();
    resizeFirstLongRun(-1);
    ASSERT_EQ(save().result, SaveResult::Saved);
    const auto after = bytes();
    // The record now ends one byte before the end; that byte is the old record's last one.
    ASSERT_EQ(after.size(), original.size());
    EXPECT_TRUE(std::equal(original.end() - 42, original.end(), after.end() - 43));
    EXPECT_EQ(after.back(), original.back());
}

// ---------------------------------------------------------------- refusals and failures

TEST_F(SaveFixture, ReadOnlyFileStopsAtFileOpenWithNothingWritten) {
    write();
    load();
    // Refused by its permissions, even for a user (root) the system would let write it.
    fs::permissions(path, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    markStyleChanged();
    const SaveOutcome out = save();
    fs::permissions(path, fs::perms::owner_all);
    EXPECT_EQ(out.result, SaveResult::Failed);
    EXPECT_EQ(out.failedStep, "File Open");
    EXPECT_EQ(out.errorNumber, err::PathFileAccess);
    EXPECT_FALSE(out.disableSaveCommand());
    EXPECT_EQ(platform.messageTexts(),
              std::vector<std::string>{
                  "ERROR: File Open\r"
                  "There was a problem during the save of change to the KRB STYLE file.\r"
                  "Please check that you are not editing the file while KRB is trying to use it!\r"
                  "The file may have become corrupt, you may have to reinstall the " +
                  path.string() + " from the KRB CD.\rThere is no backup copy at " +
                  bak().string() + ".\rThe system said: permission denied.\r" +
                  causeAdvice("permission denied", Access::Writing)});
    EXPECT_NE(platform.messageTexts().front().find("it is not damaged. Make it writable"),
              std::string::npos);
    EXPECT_EQ(bytes(), original);
    EXPECT_FALSE(fs::exists(bak()));
    EXPECT_TRUE(session->style.gPagesChanged && session->style.gDeltasChanged);
}

TEST_F(SaveFixture, FailedStepIsNamedAndEveryEditStaysPending) {
    write();
    load();
    markAllChanged(*session);
    options.savers.pages = [](StyleSession&, BinaryFile&, Platform&) { return err::DiskFull; };
    const SaveOutcome out = save();
    EXPECT_EQ(out.result, SaveResult::Failed);
    EXPECT_EQ(out.failedStep, "Save Pages");
    EXPECT_EQ(out.errorNumber, err::DiskFull);
    EXPECT_EQ(out.steps, (std::vector<std::string>{"File Open", "Save Car Info", "Save Pages"}));
    EXPECT_FALSE(out.disableSaveCommand());
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    const std::string& text = platform.shownMessages[0].text;
    EXPECT_EQ(text.substr(0, text.find('\r')), "ERROR: Save Pages");
    // The savers work in memory: the file is untouched and nothing was backed up yet.
    EXPECT_EQ(text.substr(text.rfind('\r') + 1),
              "There is no backup copy at " + bak().string() + ".");
    // A save that fails writes nothing: the cars it had put into the content are still to save.
    EXPECT_GT(session->style.gSaveCarInfo.size(), 1u);
    EXPECT_EQ(bytes(), original);
    EXPECT_TRUE(session->style.gPagesChanged);
    EXPECT_TRUE(session->style.gClutChanged);
    EXPECT_TRUE(session->style.gDeltasChanged);
    EXPECT_TRUE(session->style.gCarNamesChanged);
    EXPECT_FALSE(fs::exists(bak()));
}

TEST_F(SaveFixture, PartWithoutASaverFailsInsteadOfPassingForSaved) {
    write();
    load();
    session->style.gClutChanged = true;
    options.savers.clut = nullptr;
    const SaveOutcome out = save();
    EXPECT_EQ(out.result, SaveResult::Failed);
    EXPECT_EQ(out.failedStep, "Save CLUT");
    EXPECT_TRUE(session->style.gClutChanged);
}

TEST_F(SaveFixture, FileChangedOnDiskAsksBeforeWritingOverIt) {
    write();
    load();
    fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(5));
    markStyleChanged();
    resizeFirstLongRun(+1);

    const SaveOutcome declined = save(); // the fake answers No
    EXPECT_EQ(declined.result, SaveResult::Declined);
    EXPECT_FALSE(declined.disableSaveCommand());
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    EXPECT_EQ(platform.shownMessages[0].text, changedOnDiskQuestion(path));
    EXPECT_EQ(platform.shownMessages[0].buttons, Buttons::YesNo);
    EXPECT_EQ(platform.shownMessages[0].icon, Icon::Warning);
    EXPECT_EQ(bytes(), original);
    EXPECT_FALSE(fs::exists(bak()));
    EXPECT_TRUE(session->style.gDeltasChanged);

    platform.scriptedAnswers.push_back(Answer::Yes);
    EXPECT_EQ(save().result, SaveResult::Saved);
    EXPECT_EQ(bytes().size(), original.size() + 1);
}

// ---------------------------------------------------------------- backups

TEST_F(SaveFixture, BackupIsMadeOnceAndNeverOverwritten) {
    write();
    load();
    session->style.gPagesChanged = true;
    session->pages.pixel(0, 0, 0) ^= 0xFF;
    ASSERT_EQ(save().result, SaveResult::Saved);
    const auto firstSave = bytes();
    ASSERT_NE(firstSave, original);
    EXPECT_EQ(tb::readFile(bak()), original);

    // Later saves of the same run, and saves of a later run, keep the backup of the unmodified
    // file.
    session->style.gPagesChanged = true;
    session->pages.pixel(0, 1, 0) ^= 0xFF;
    ASSERT_EQ(save().result, SaveResult::Saved);
    backups.reset();
    load();
    session->style.gPagesChanged = true;
    session->pages.pixel(0, 2, 0) ^= 0xFF;
    ASSERT_EQ(save().result, SaveResult::Saved);
    EXPECT_EQ(tb::readFile(bak()), original);
    EXPECT_TRUE(findInterruptedSaves(bak()).empty());
}

TEST_F(SaveFixture, ProcessRegistryRemembersFilesUntilReset) {
    write();
    BackupRegistry& shared = processBackups();
    shared.reset();
    EXPECT_TRUE(shared.ensureBackup(path).ok());
    EXPECT_TRUE(shared.handled(path));
    EXPECT_TRUE(shared.handled(dir.path() / "." / path.filename()));
    fs::remove(bak());
    EXPECT_TRUE(shared.ensureBackup(path).ok());
    EXPECT_FALSE(fs::exists(bak())); // made once per run, not once per call
    shared.reset();
    EXPECT_FALSE(shared.handled(path));
}

// ---------------------------------------------------------------- a crash part-way

// One test per point of the save at which the process dies. On Windows a death test runs the
// test again in a new process up to the death; the folders it writes are named by the test,
// so the child works on the files this process then checks.
struct SaveCrash : SaveFixture, ::testing::WithParamInterface<const char*> {};

TEST_P(SaveCrash, LeavesTheOriginalRecoverable) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string at = GetParam();
    write();
    // What a save that runs to the end writes.
    load();
    markStyleChanged();
    resizeFirstLongRun(-3);
    ASSERT_EQ(save().result, SaveResult::Saved);
    const auto saved = bytes();
    ASSERT_NE(saved, original);

    tb::writeFile(path, original);
    fs::remove(bak());
    backups.reset();
    load();
    markStyleChanged();
    resizeFirstLongRun(-3);
    options.checkpoint = [at](std::string_view reached) {
        if (reached == at) std::_Exit(3);
    };
    EXPECT_EXIT(save(), ::testing::ExitedWithCode(3), "");

    // The .bak is made once the new content is known to differ, before anything is replaced.
    if (at == "Files Built" || at == "Files Replaced")
        EXPECT_EQ(tb::readFile(bak()), original);
    else
        EXPECT_FALSE(fs::exists(bak()));
    // Nothing reaches the style file before the one replace at the end.
    EXPECT_EQ(bytes(), at == "Files Replaced" ? saved : original);
    EXPECT_TRUE(findInterruptedSaves(path).empty());
}

INSTANTIATE_TEST_SUITE_P(AtEveryPoint, SaveCrash,
                         ::testing::Values("File Open", "Save Car Info", "Save Pages", "Save CLUT",
                                           "Save Deltas", "Sprite Numbers Written", "Files Built",
                                           "Files Replaced"),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::erase(name, ' ');
                             return name;
                         });

// ---------------------------------------------------------------- cutting the file

TEST(ShrinkStyleFile, KeepsExactlyTheBytesBeforeTheEndPosition) {
    std::vector<std::uint8_t> content(6000);
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<std::uint8_t>(i * 7);
    for (std::int64_t keep : {1, 1023, 1024, 1025, 2048, 2049, 5998}) {
        SCOPED_TRACE(keep);
        tb::FakePlatform platform;
        ErrorState errors;
        BinaryFile file(errors);
        file.openInMemory("STYLE001.G24", content);
        EXPECT_EQ(shrinkStyleContent(file, keep + 1, platform), 0);
        EXPECT_EQ(file.takeBytes(),
                  std::vector<std::uint8_t>(content.begin(), content.begin() + keep));
        EXPECT_EQ(platform.progressTitles, std::vector<std::string>{"Shrinking STYLE file"});
        EXPECT_EQ(platform.progressTexts,
                  std::vector<std::string>{"From:6000 to " + std::to_string(keep + 1) + " bytes."});
        EXPECT_EQ(platform.progressValues, (std::vector<int>{4, 7, 9}));
    }
}

TEST(ShrinkStyleFile, ContentNotLongerThanTheEndPositionIsLeftAsItIs) {
    const std::vector<std::uint8_t> content(3000, 9);
    for (std::int64_t end : {3000, 3001, 9000, 1}) {
        tb::FakePlatform platform;
        ErrorState errors;
        BinaryFile file(errors);
        file.openInMemory("STYLE001.G24", content);
        // Never down to nothing.
        EXPECT_EQ(shrinkStyleContent(file, end, platform), end == 1 ? err::InvalidCall : 0);
        EXPECT_EQ(file.takeBytes().size(), 3000u);
        EXPECT_EQ(platform.progressOpenCount, 0);
    }
}

// ---------------------------------------------------------------- torquil-cli save-test

TEST(CliSaveTest, FullSaveReportsEveryStepAndKeepsTheBytesAndFailuresExitNonZero) {
    tb::TempDir dir;
    tb::writeSampleLevel(dir.path());
    const auto before = tb::readFile(dir / "STYLE001.G24");
    const auto saved = tb::runCli(
        {"save-test", "--workdir", (dir / "work").string(), (dir / "STYLE001.G24").string()});
    EXPECT_EQ(saved.status, 0) << saved.err;
    EXPECT_EQ(saved.out, "step: File Open\nstep: Save Car Info\nstep: Save Pages\n"
                         "step: Save CLUT\nstep: Save Deltas\nsaved\n");
    EXPECT_EQ(tb::readFile(dir / "STYLE001.G24"), before);
    // A style that does not load exits 1, a missing argument 2.
    EXPECT_EQ(
        tb::runCli({"save-test", "--workdir", dir.path().string(), (dir / "none.G24").string()})
            .status,
        1);
    EXPECT_EQ(tb::runCli({"save-test"}).status, 2);
}
