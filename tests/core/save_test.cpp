#include "base/binary_file.h"
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
#include <cstdio>
#include <cstdlib>

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

// True when this process may write a file whose permissions forbid it (running as root).
bool writableDespiteReadOnly(const fs::path& path) {
    std::FILE* f = std::fopen(path.c_str(), "r+b");
    if (!f) return false;
    std::fclose(f);
    return true;
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
        ASSERT_EQ(initHeader(*session, platform, standardLoaders()), LoadOutcome::Loaded)
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
    const SaveOutcome out = save();
    EXPECT_EQ(out.result, SaveResult::Saved) << ::testing::PrintToString(platform.messageTexts());
    EXPECT_EQ(out.steps, is24 ? kEverySaveStep24 : kEverySaveStep8);
    EXPECT_TRUE(out.disableSaveCommand());
    EXPECT_FALSE(out.shrunk);
    EXPECT_TRUE(platform.shownMessages.empty());
    EXPECT_EQ(bytes(), original);
    EXPECT_EQ(tb::readFile(bak()), original);
    EXPECT_FALSE(fs::exists(withSuffix(path, "~")));
    EXPECT_FALSE(session->style.anyChange());

    // A second full save in the same run neither asks nor changes a byte.
    markStyleChanged();
    EXPECT_EQ(save().result, SaveResult::Saved);
    EXPECT_TRUE(platform.shownMessages.empty());
    EXPECT_EQ(bytes(), original);
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
    fs::permissions(path, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    if (writableDespiteReadOnly(path)) {
        fs::permissions(path, fs::perms::owner_all);
        GTEST_SKIP() << "read-only files are writable for this user (root)";
    }
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
                  bak().string() + "."});
    EXPECT_EQ(bytes(), original);
    EXPECT_FALSE(fs::exists(bak()));
    EXPECT_TRUE(session->style.gPagesChanged && session->style.gDeltasChanged);
}

TEST_F(SaveFixture, FailedStepIsNamedAndTheStepsNotReachedStayDirty) {
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
    EXPECT_EQ(text.substr(text.rfind('\r') + 1),
              "The original file is kept as " + bak().string() + ".");
    EXPECT_EQ(session->style.gSaveCarInfo.size(), 1u); // car info went through
    EXPECT_TRUE(session->style.gPagesChanged);
    EXPECT_TRUE(session->style.gClutChanged);
    EXPECT_TRUE(session->style.gDeltasChanged);
    EXPECT_TRUE(session->style.gCarNamesChanged);
    EXPECT_EQ(tb::readFile(bak()), original);
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
    EXPECT_FALSE(fs::exists(withSuffix(bak(), ".part")));
}

TEST_F(SaveFixture, ProcessRegistryRemembersFilesUntilReset) {
    write();
    BackupRegistry& shared = processBackups();
    shared.reset();
    std::error_code ec;
    EXPECT_TRUE(shared.ensureBackup(path, ec));
    EXPECT_TRUE(shared.handled(path));
    EXPECT_TRUE(shared.handled(dir.path() / "." / path.filename()));
    fs::remove(bak());
    EXPECT_TRUE(shared.ensureBackup(path, ec));
    EXPECT_FALSE(fs::exists(bak())); // made once per run, not once per call
    shared.reset();
    EXPECT_FALSE(shared.handled(path));
}

// ---------------------------------------------------------------- a crash part-way

TEST_F(SaveFixture, CrashAtAnyPointLeavesTheOriginalRecoverable) {
    GTEST_FLAG_SET(death_test_style, "fast");
    write();
    // What a save that runs to the end writes.
    load();
    markStyleChanged();
    resizeFirstLongRun(-3);
    ASSERT_EQ(save().result, SaveResult::Saved);
    const auto saved = bytes();

    for (const char* point : {"File Open", "Save Car Info", "Save Pages", "Save CLUT",
                              "Save Deltas", "Sprite Numbers Written", "Shrink Copy Written"}) {
        SCOPED_TRACE(point);
        tb::writeFile(path, original);
        fs::remove(bak());
        fs::remove(withSuffix(path, "~"));
        backups.reset();
        load();
        markStyleChanged();
        resizeFirstLongRun(-3);
        const std::string at = point;
        options.checkpoint = [at](std::string_view reached) {
            if (reached == at) std::_Exit(3);
        };
        EXPECT_EXIT(save(), ::testing::ExitedWithCode(3), "");

        ASSERT_TRUE(fs::exists(path)); // the name always holds a file
        EXPECT_EQ(tb::readFile(bak()), original);
        if (at == "File Open") {
            EXPECT_EQ(bytes(), original);
        }
        if (at == "Shrink Copy Written") {
            EXPECT_EQ(bytes().size(), original.size());
            EXPECT_EQ(tb::readFile(withSuffix(path, "~")), saved);
        }
    }
}

// ---------------------------------------------------------------- cutting the file

TEST(ShrinkStyleFile, KeepsExactlyTheBytesBeforeTheEndPosition) {
    tb::TempDir dir;
    std::vector<std::uint8_t> content(6000);
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<std::uint8_t>(i * 7);
    for (std::int64_t keep : {1, 1023, 1024, 1025, 2048, 2049, 5998}) {
        SCOPED_TRACE(keep);
        const fs::path path = dir / "STYLE001.G24";
        tb::writeFile(path, content);
        tb::FakePlatform platform;
        EXPECT_EQ(shrinkStyleFile(path, keep + 1, platform), 0);
        EXPECT_EQ(tb::readFile(path),
                  std::vector<std::uint8_t>(content.begin(), content.begin() + keep));
        EXPECT_EQ(platform.progressTitles, std::vector<std::string>{"Shrinking STYLE file"});
        EXPECT_EQ(platform.progressTexts,
                  std::vector<std::string>{"From:6000 to " + std::to_string(keep + 1) + " bytes."});
        EXPECT_EQ(platform.progressValues, (std::vector<int>{4, 7, 9}));
        EXPECT_FALSE(fs::exists(withSuffix(path, "~")));
    }
}

TEST(ShrinkStyleFile, FileNotLongerThanTheEndPositionIsLeftAsItIs) {
    tb::TempDir dir;
    const fs::path path = dir / "STYLE001.G24";
    const std::vector<std::uint8_t> content(3000, 9);
    for (std::int64_t end : {3000, 3001, 9000}) {
        tb::writeFile(path, content);
        tb::FakePlatform platform;
        EXPECT_EQ(shrinkStyleFile(path, end, platform), 0);
        EXPECT_EQ(tb::readFile(path).size(), 3000u);
        EXPECT_EQ(platform.progressOpenCount, 0);
    }
    tb::FakePlatform platform;
    EXPECT_EQ(shrinkStyleFile(path, 1, platform), err::InvalidCall); // never down to nothing
    EXPECT_EQ(shrinkStyleFile(dir / "missing.G24", 10, platform), err::FileNotFound);
    EXPECT_EQ(tb::readFile(path).size(), 3000u);
}

TEST(ShrinkStyleFile, CopyThatCannotBeWrittenLeavesTheStyleFileAlone) {
    tb::TempDir dir;
    const fs::path folder = dir / "locked";
    fs::create_directories(folder);
    const fs::path path = folder / "STYLE001.G24";
    tb::writeFile(path, std::vector<std::uint8_t>(3000, 9));
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    if (std::FILE* probe = std::fopen((folder / "probe").c_str(), "wb")) {
        std::fclose(probe);
        fs::permissions(folder, fs::perms::owner_all);
        GTEST_SKIP() << "read-only folders are writable for this user (root)";
    }
    tb::FakePlatform platform;
    EXPECT_EQ(shrinkStyleFile(path, 100, platform), err::PathFileAccess);
    fs::permissions(folder, fs::perms::owner_all);
    EXPECT_EQ(tb::readFile(path).size(), 3000u);
    EXPECT_EQ(platform.progressCloseCount, platform.progressOpenCount);
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
