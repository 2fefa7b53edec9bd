// Saving under faults: a failure or a crash at every system step of every saving command leaves
// each file old or new, never missing, empty or mixed; locks, read-only files, damaged headers
// and interrupted saves are refused or named.

#include "base/atomic_file.h"
#include "base/file_lock.h"
#include "base/file_stamp.h"
#include "car_pack_outcome.h"
#include "cars/car_names_io.h"
#include "cars/fxt.h"
#include "cli_runner.h"
#include "exchange/gc3.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/car_pack.h"
#include "session/file_backups.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/style_session.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

// Fails (or ends the process at) the n-th system step of replaces, counted from 1.
struct FaultAt {
    int n;
    bool kill = false;
    int seen = 0;
    std::error_code cause = std::make_error_code(std::errc::no_space_on_device);
};

class ScopedFault {
public:
    explicit ScopedFault(FaultAt& fault) {
        setReplaceFaultHook([&fault](std::string_view, const fs::path&) -> std::error_code {
            if (++fault.seen != fault.n) return {};
            if (fault.kill) std::_Exit(9);
            return fault.cause;
        });
    }
    ~ScopedFault() { setReplaceFaultHook({}); }
};

// Counts the system steps of a replace when nothing fails.
int countSteps(const std::function<void()>& run) {
    FaultAt none{0};
    ScopedFault hook(none);
    run();
    return none.seen;
}

// A level on disk with its ENGLISH.FXT, and sessions that load it.
struct Level {
    fs::path dir, style, fxt;
    std::vector<std::uint8_t> styleBytes, fxtBytes;

    explicit Level(const fs::path& folder, bool is24 = true) : dir(folder) {
        fs::create_directories(dir);
        style = dir / (is24 ? "STYLE001.G24" : "STYLE002.GRY");
        fxt = dir / "ENGLISH.FXT";
        styleBytes = tb::buildStyle(is24 ? tb::sampleSpec24() : tb::sampleSpec8());
        fxtBytes = tb::encodeFxt(tb::sampleFxtEntries());
        reset();
    }
    void reset() const {
        tb::writeFile(style, styleBytes);
        tb::writeFile(fxt, fxtBytes);
        for (const auto& entry : fs::directory_iterator(dir))
            if (entry.path() != style && entry.path() != fxt) fs::remove_all(entry.path());
    }
    std::unique_ptr<StyleSession> load(tb::FakePlatform& platform, fs::path work = {}) const {
        AppOptions app;
        app.workDir = work.empty() ? dir / "work" : work;
        fs::create_directories(app.workDir);
        auto session = std::make_unique<StyleSession>(app);
        prepareStyle(session->style, style, kLoadSprites);
        EXPECT_TRUE(initHeader(*session, platform, standardLoaders()));
        platform.shownMessages.clear();
        return session;
    }
};

// Each file holds exactly its old or its new bytes.
void expectOldOrNew(const fs::path& file, const std::vector<std::uint8_t>& before,
                    const std::vector<std::uint8_t>& after) {
    ASSERT_TRUE(fs::exists(file)) << file;
    const auto now = tb::readFile(file);
    EXPECT_TRUE(now == before || now == after) << file << " is neither old nor new";
}

enum class Change { Style, Names, Both };

void change(StyleSession& s, Change what) {
    if (what != Change::Names) {
        markAllChanged(s);
        s.style.gCarNamesChanged = false;
        // A pixel really changed: a style file that comes out as it was is not written.
        s.pages.pixel(0, 0, 0) ^= 0xFF;
    }
    if (what != Change::Style) {
        ASSERT_TRUE(renameCarModel(s, 43, "Caf\xE9 Bus"));
    }
}

// A pack made from `level` and a copy of it with both files changed; true when written.
bool writeChangedPack(const Level& level, const Level& changed, const fs::path& pack) {
    tb::FakePlatform p;
    auto s = changed.load(p);
    change(*s, Change::Both);
    if (saveChanges(*s, p).result != SaveResult::Saved) return false;
    return writeGC3(changed.style, level.style, changed.fxt, level.fxt, pack, p);
}

struct SaveCase {
    Change what;
    const char* name;
};

class FaultedSave : public ::testing::TestWithParam<SaveCase> {};

// The saved files of a run that went through, for comparison.
std::pair<std::vector<std::uint8_t>, std::vector<std::uint8_t>> cleanSave(const Level& level,
                                                                          Change what) {
    level.reset();
    tb::FakePlatform p;
    auto s = level.load(p);
    change(*s, what);
    BackupRegistry backups;
    SaveOptions options;
    options.backups = &backups;
    EXPECT_EQ(saveChanges(*s, p, options).result, SaveResult::Saved);
    return {tb::readFile(level.style), tb::readFile(level.fxt)};
}

TEST_P(FaultedSave, FailureAtEveryStepLeavesEachFileOldOrNewAndNamesTheCause) {
    tb::TempDir dir;
    const Level level(dir / "level");
    const auto [newStyle, newFxt] = cleanSave(level, GetParam().what);
    const int steps = countSteps([&] { cleanSave(level, GetParam().what); });
    ASSERT_GE(steps, 5);
    for (int n = 1; n <= steps; ++n) {
        SCOPED_TRACE(n);
        level.reset();
        tb::FakePlatform p;
        auto s = level.load(p);
        change(*s, GetParam().what);
        BackupRegistry backups;
        SaveOptions options;
        options.backups = &backups;
        FaultAt fault{n};
        SaveOutcome out;
        {
            ScopedFault hook(fault);
            out = saveChanges(*s, p, options);
        }
        expectOldOrNew(level.style, level.styleBytes, newStyle);
        expectOldOrNew(level.fxt, level.fxtBytes, newFxt);
        // A failed save writes nothing, and keeps its edits for the next one.
        EXPECT_EQ(out.result, SaveResult::Failed);
        EXPECT_EQ(tb::readFile(level.style), level.styleBytes);
        EXPECT_EQ(tb::readFile(level.fxt), level.fxtBytes);
        EXPECT_TRUE(s->style.anyChange());
        bool named = false;
        for (const std::string& m : p.messageTexts())
            named = named || m.find("The system said: disk full.") != std::string::npos;
        EXPECT_TRUE(named) << ::testing::PrintToString(p.messageTexts());
        // A failed step leaves no side file behind.
        EXPECT_TRUE(findInterruptedSaves(level.style).empty());
        EXPECT_TRUE(findInterruptedSaves(level.fxt).empty());
    }
}

TEST_P(FaultedSave, CrashAtEveryStepLeavesEachFileOldOrNewAndTheNextOpenNamesTheLeftover) {
    GTEST_FLAG_SET(death_test_style, "fast");
    tb::TempDir dir;
    const Level level(dir / "level");
    const auto [newStyle, newFxt] = cleanSave(level, GetParam().what);
    const int steps = countSteps([&] { cleanSave(level, GetParam().what); });
    for (int n = 1; n <= steps; ++n) {
        SCOPED_TRACE(n);
        level.reset();
        tb::FakePlatform p;
        auto s = level.load(p);
        change(*s, GetParam().what);
        auto crash = [&] {
            FaultAt fault{n, true};
            ScopedFault hook(fault);
            (void)saveChanges(*s, p);
        };
        EXPECT_EXIT(crash(), ::testing::ExitedWithCode(9), "");
        expectOldOrNew(level.style, level.styleBytes, newStyle);
        expectOldOrNew(level.fxt, level.fxtBytes, newFxt);
        tb::FakePlatform next;
        AppOptions app;
        app.workDir = dir / "work";
        StyleSession again(app);
        prepareStyle(again.style, level.style, kLoadSprites);
        ASSERT_TRUE(initHeader(again, next, standardLoaders()));
        // The next open finishes or rolls back what it found, and says so: the two files are
        // then both old or both new, with nothing left beside them.
        const bool oldPair = tb::readFile(level.style) == level.styleBytes &&
                             tb::readFile(level.fxt) == level.fxtBytes;
        const bool newPair =
            tb::readFile(level.style) == newStyle && tb::readFile(level.fxt) == newFxt;
        EXPECT_TRUE(oldPair || newPair);
        EXPECT_TRUE(findInterruptedSaves(level.style).empty());
        EXPECT_TRUE(findInterruptedSaves(level.fxt).empty());
        for (const std::string& m : next.messageTexts())
            EXPECT_TRUE(m.find("was interrupted") != std::string::npos ||
                        m.find("An unfinished copy of the backup") != std::string::npos ||
                        m.find("which has ended") != std::string::npos)
                << m;
    }
}

INSTANTIATE_TEST_SUITE_P(SaveCommands, FaultedSave,
                         ::testing::Values(SaveCase{Change::Style, "style"},
                                           SaveCase{Change::Names, "names"},
                                           SaveCase{Change::Both, "both"}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(FaultedCommands, Txt2FxtAndGc3ApplyLeaveEachFileOldOrNew) {
    tb::TempDir dir;
    const Level level(dir / "level");
    // A pack that renames a car in both files.
    const Level changed(dir / "changed");
    const fs::path pack = dir / "CARS.GC3";
    ASSERT_TRUE(writeChangedPack(level, changed, pack));
    tb::FakePlatform p;
    const auto packedStyle = tb::readFile(changed.style), packedFxt = tb::readFile(changed.fxt);

    const fs::path txt = dir / "names.txt";
    tb::writeFile(txt, {'[', 'c', 'a', 'r', '1', ']', 'Z', 'e', 'd', '\r', '\n'});
    const auto coded = encodeFxtBytes(tb::readFile(txt));

    struct Command {
        const char* name;
        std::function<void()> run;
        std::vector<std::uint8_t> newStyle, newFxt;
    };
    const Command commands[] = {
        {"txt2fxt",
         [&] {
             tb::runCli({"txt2fxt", txt.string(), level.fxt.string()});
         },
         level.styleBytes, coded},
        {"gc3 apply",
         [&] {
             tb::runCli({"gc3", "apply", pack.string(), level.style.string(), level.fxt.string()});
         },
         packedStyle, packedFxt},
    };
    for (const Command& c : commands) {
        SCOPED_TRACE(c.name);
        level.reset();
        const int steps = countSteps(c.run);
        ASSERT_GE(steps, 4);
        for (int n = 1; n <= steps; ++n) {
            SCOPED_TRACE(n);
            level.reset();
            FaultAt fault{n};
            {
                ScopedFault hook(fault);
                c.run();
            }
            expectOldOrNew(level.style, level.styleBytes, c.newStyle);
            expectOldOrNew(level.fxt, level.fxtBytes, c.newFxt);
            // The backup of each replaced file is its original.
            if (fs::exists(fs::path(level.fxt.string() + ".bak"))) {
                EXPECT_EQ(tb::readFile(fs::path(level.fxt.string() + ".bak")), level.fxtBytes);
            }
        }
    }
}

// ---------------------------------------------------------------- refusals

TEST(SafeSave, DamagedHeaderIsNeverWrittenBack) {
    tb::TempDir dir;
    const Level level(dir / "level");
    auto damaged = level.styleBytes;
    // anim_size one byte short: the file still opens, but a save would spread the damage.
    damaged[16] = static_cast<std::uint8_t>(damaged[16] - 1);
    tb::writeFile(level.style, damaged);
    tb::FakePlatform p;
    auto s = level.load(p);
    change(*s, Change::Style);
    const SaveOutcome out = saveChanges(*s, p);
    EXPECT_EQ(out.result, SaveResult::Failed);
    ASSERT_EQ(p.messageTexts().size(), 1u);
    EXPECT_NE(p.messageTexts()[0].find("its header's sections add up to"), std::string::npos);
    EXPECT_EQ(tb::readFile(level.style), damaged);
    EXPECT_FALSE(fs::exists(fs::path(level.style.string() + ".bak")));
}

TEST(SafeSave, ReadOnlyFilesAreRefusedAndKeepTheirModeEvenForRoot) {
    tb::TempDir dir;
    const Level level(dir / "level");
    constexpr auto readOnly =
        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    fs::permissions(level.fxt, readOnly);
    tb::FakePlatform p;
    auto s = level.load(p);
    change(*s, Change::Names);
    const SaveOutcome out = saveChanges(*s, p);
    EXPECT_FALSE(out.namesSaved);
    EXPECT_EQ(tb::readFile(level.fxt), level.fxtBytes);
    EXPECT_EQ(fs::status(level.fxt).permissions() & fs::perms::all, readOnly);

    const fs::path txt = dir / "names.txt";
    tb::writeFile(txt, {'[', '1', ']', 'x', '\r', '\n'});
    const auto run = tb::runCli({"txt2fxt", txt.string(), level.fxt.string()});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("permission denied"), std::string::npos) << run.err;
    EXPECT_EQ(tb::readFile(level.fxt), level.fxtBytes);
    EXPECT_EQ(fs::status(level.fxt).permissions() & fs::perms::all, readOnly);
}

TEST(SafeSave, ReplaceKeepsTheFilesPermissions) {
#ifdef _WIN32
    GTEST_SKIP() << "Windows files have no mode bits and no /dev/null (read-only files are "
                    "refused in ReadOnlyFilesAreRefusedAndKeepTheirModeEvenForRoot)";
#endif
    tb::TempDir dir;
    const fs::path file = dir / "kept.txt";
    tb::writeFile(file, {1});
    constexpr auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(file, mode);
    ASSERT_TRUE(replaceFileAtomically(file, std::vector<std::uint8_t>{2, 3}));
    EXPECT_EQ(tb::readFile(file), (std::vector<std::uint8_t>{2, 3}));
    EXPECT_EQ(fs::status(file).permissions() & fs::perms::all, mode);

    // A device or a pipe is written straight: there is no old file to keep.
    EXPECT_TRUE(replaceFileAtomically("/dev/null", std::vector<std::uint8_t>{1}));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(SafeSave, SaveHeldByAnotherRunIsRefusedAndNamesTheHolder) {
    tb::TempDir dir;
    const Level level(dir / "level");
    tb::FakePlatform p;
    auto s = level.load(p);
    change(*s, Change::Style);
    FileLock other;
    ASSERT_TRUE(other.acquire(level.style, "torquil-test").ok());
    // A second lock in the same process is refused as well (the lock is per open file).
    FileLock second;
    const FileLock::Acquired refused = second.acquire(level.style, "x");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().refusal, LockRefusal::HeldByOther);
    EXPECT_EQ(refused.message(), lockHeldMessage(level.style, other.holder()));
    const SaveOutcome out = saveChanges(*s, p);
    EXPECT_EQ(out.result, SaveResult::Failed);
    ASSERT_EQ(p.messageTexts().size(), 1u);
    EXPECT_NE(p.messageTexts()[0].find("is being saved by process"), std::string::npos);
    EXPECT_NE(p.messageTexts()[0].find("(torquil-test)"), std::string::npos);
    EXPECT_EQ(tb::readFile(level.style), level.styleBytes);
    other.release();
    EXPECT_FALSE(fs::exists(lockPathOf(level.style)));

    // A lock file left by a run that died holds no lock: it is taken over.
    tb::writeFile(lockPathOf(level.style), {'p', 'i', 'd'});
    p.shownMessages.clear();
    EXPECT_EQ(saveChanges(*s, p).result, SaveResult::Saved);
}

TEST(SafeSave, SecondSaveOfOneFileNeverLosesTheFirstSilently) {
    tb::TempDir dir;
    const Level level(dir / "level");
    tb::FakePlatform p1, p2;
    auto first = level.load(p1);
    auto second = level.load(p2);
    change(*first, Change::Both);
    change(*second, Change::Both);
    ASSERT_TRUE(renameCarModel(*second, 43, "Other Bus"));
    ASSERT_EQ(saveChanges(*first, p1).result, SaveResult::Saved);
    const auto savedStyle = tb::readFile(level.style), savedFxt = tb::readFile(level.fxt);
    // The second run is asked; answering no (the default) writes nothing.
    const SaveOutcome out = saveChanges(*second, p2);
    EXPECT_EQ(out.result, SaveResult::Declined);
    EXPECT_EQ(tb::readFile(level.style), savedStyle);
    EXPECT_EQ(tb::readFile(level.fxt), savedFxt);
    ASSERT_FALSE(p2.messageTexts().empty());
    EXPECT_NE(p2.messageTexts()[0].find("was changed by another program"), std::string::npos);

    // Names only: the same question for ENGLISH.FXT.
    tb::FakePlatform p3;
    auto third = level.load(p3);
    ASSERT_TRUE(renameCarModel(*third, 43, "Third Bus"));
    ASSERT_TRUE(renameCarModel(*first, 43, "First Again"));
    ASSERT_TRUE(saveChanges(*first, p1).namesSaved);
    const SaveOutcome names = saveChanges(*third, p3);
    EXPECT_FALSE(names.namesSaved);
    EXPECT_TRUE(third->style.gCarNamesChanged);
    const auto text = tb::decodeFxt(tb::readFile(level.fxt));
    EXPECT_EQ(std::count(text.begin(), text.end(), "[car43]First Again"), 1);
}

TEST(SafeSave, StampNoticesAFileReplacedBehindOurBackEvenWithTheSameSizeAndTime) {
    tb::TempDir dir;
    const fs::path file = dir / "STYLE001.G24", other = dir / "other";
    tb::writeFile(file, {1, 2, 3});
    const FileStamp loaded = stampOf(file);
    ASSERT_TRUE(loaded.exists);
    EXPECT_EQ(stampOf(file), loaded);
    // Another program's save by rename: same length, same write time, another file.
    tb::writeFile(other, {4, 5, 6});
    fs::last_write_time(other, loaded.written);
    fs::rename(other, file);
    EXPECT_NE(stampOf(file), loaded);
    EXPECT_FALSE(stampOf(dir / "missing").exists);
}

TEST(SafeSave, TwoLevelsSavedAtOnceKeepTheirOwnTexts) {
    tb::TempDir dir;
    const Level a(dir / "a"), b(dir / "b");
    // B's ENGLISH.FXT has a text of its own.
    auto entries = tb::sampleFxtEntries();
    entries.insert(entries.begin(), "[9999]Only in B");
    tb::writeFile(b.fxt, tb::encodeFxt(entries));
    tb::FakePlatform pa, pb;
    // Both sessions share one work folder, as two runs of one install do.
    auto sa = a.load(pa, dir / "work");
    auto sb = b.load(pb, dir / "work");
    ASSERT_TRUE(renameCarModel(*sa, 43, "Bus A"));
    ASSERT_TRUE(renameCarModel(*sb, 43, "Bus B"));
    ASSERT_TRUE(saveChanges(*sa, pa).namesSaved);
    ASSERT_TRUE(saveChanges(*sb, pb).namesSaved);
    const auto textA = tb::decodeFxt(tb::readFile(a.fxt));
    const auto textB = tb::decodeFxt(tb::readFile(b.fxt));
    EXPECT_EQ(std::count(textA.begin(), textA.end(), "[9999]Only in B"), 0);
    EXPECT_EQ(std::count(textB.begin(), textB.end(), "[9999]Only in B"), 1);
    EXPECT_EQ(std::count(textA.begin(), textA.end(), "[car43]Bus A"), 1);
    EXPECT_EQ(std::count(textB.begin(), textB.end(), "[car43]Bus B"), 1);
}

// ---------------------------------------------------------------- car packs

TEST(SafeGc3, PackChecksTheFilesItWasMadeAgainstAndKnowsWhenItIsApplied) {
    tb::TempDir dir;
    const Level level(dir / "level"), changed(dir / "changed");
    const fs::path pack = dir / "CARS.GC3";
    ASSERT_TRUE(writeChangedPack(level, changed, pack));
    tb::FakePlatform p;

    // Files that differ from the pack's originals (one text line changed) are refused.
    auto otherFxt = tb::sampleFxtEntries();
    otherFxt[0] += "!";
    tb::writeFile(level.fxt, tb::encodeFxt(otherFxt));
    BackupRegistry backups;
    CarPackApplied out = applyCarPack(pack, {level.style, level.fxt}, p, backups);
    EXPECT_EQ(tb::applyOutcome(out), "refused") << out.message();
    EXPECT_NE(out.message().find("ENGLISH.FXT: its texts have moved"), std::string::npos)
        << out.message();
    EXPECT_EQ(tb::readFile(level.style), level.styleBytes);

    level.reset();
    auto run =
        tb::runCli({"gc3", "apply", pack.string(), level.style.string(), level.fxt.string()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(tb::readFile(level.style), tb::readFile(changed.style));
    EXPECT_EQ(tb::readFile(level.fxt), tb::readFile(changed.fxt));
    // A file the pack does not change is neither rewritten nor backed up.
    EXPECT_EQ(fs::exists(fs::path(level.style.string() + ".bak")),
              tb::readFile(changed.style) != level.styleBytes);
    EXPECT_EQ(tb::readFile(fs::path(level.fxt.string() + ".bak")), level.fxtBytes);

    out = applyCarPack(pack, {level.style, level.fxt}, p, backups);
    EXPECT_EQ(tb::applyOutcome(out), "refused");
    EXPECT_NE(out.message().find("already applied"), std::string::npos);

    // A pack's reader that follows the header never sees the trailer.
    const Result<Gc3Pack> parsed = parseGc3(tb::readFile(pack));
    ASSERT_TRUE(parsed.ok()) << parsed.message();
    EXPECT_TRUE(findGc3Trailer(tb::readFile(pack), parsed->header).has_value());

    // Read-only files are refused.
    level.reset();
    fs::permissions(level.fxt, fs::perms::owner_read);
    out = applyCarPack(pack, {level.style, level.fxt}, p, backups);
    EXPECT_EQ(tb::applyOutcome(out), "failed");
    EXPECT_NE(out.message().find("permission denied"), std::string::npos);
    EXPECT_EQ(tb::readFile(level.fxt), level.fxtBytes);
}

} // namespace
