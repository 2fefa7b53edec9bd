// A style file and its ENGLISH.FXT saved as one transaction: both or neither, the loser of two
// runs at once is told, an interrupted pair is finished or rolled back by the next open, a save
// keeps links, owner and mode, and a failed save keeps every edit pending.

#include "base/atomic_file.h"
#include "base/file_lock.h"
#include "base/file_transaction.h"
#include "base/utf8_path.h"
#include "cli_runner.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/style_session.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;
using tb::contains;

namespace {

constexpr auto kReadOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;

// The sample level in a temporary folder, loaded as the editor loads it.
struct PairLevel {
    tb::TempDir dir;
    fs::path style = dir / "STYLE001.G24", fxt = dir / "ENGLISH.FXT", work = dir / "work";
    std::vector<std::uint8_t> styleBytes, fxtBytes;

    PairLevel() {
        tb::writeSampleLevel(dir.path());
        fs::create_directories(work);
        styleBytes = tb::readFile(style);
        fxtBytes = tb::readFile(fxt);
    }
    std::unique_ptr<StyleSession> load(tb::FakePlatform& platform) const {
        AppOptions app;
        app.workDir = work;
        auto session = std::make_unique<StyleSession>(app);
        prepareStyle(session->style, style, kLoadSprites);
        EXPECT_TRUE(initHeader(*session, platform, standardLoaders()));
        return session;
    }
    bool unchanged() const {
        return tb::readFile(style) == styleBytes && tb::readFile(fxt) == fxtBytes;
    }
    tb::CliRun cli(std::vector<std::string> args) const {
        args.insert(args.begin() + 1, {"--workdir", work.string()});
        return tb::runCli(std::move(args));
    }
};

// Cars whose models have an entry in ENGLISH.FXT, one per model.
std::vector<int> namedCars(StyleSession& s, std::size_t most) {
    std::vector<int> cars;
    std::set<int> models;
    for (int asn = 1; asn <= s.cars.highest && cars.size() < most; ++asn) {
        const CarEntry* car = s.cars.find(asn);
        if (!car || car->info.model >= kCarNameCount) continue;
        if (s.names.keys[car->info.model].empty() || !models.insert(car->info.model).second)
            continue;
        cars.push_back(asn);
    }
    return cars;
}

// A record field and the name of one car changed, and a page pixel.
void editBoth(StyleSession& s, int asn, const std::string& name) {
    CarEdit edit;
    edit.info = s.cars.find(asn)->info;
    edit.info->max_speed = static_cast<std::int16_t>(edit.info->max_speed + 7);
    edit.name = name;
    ASSERT_TRUE(editCar(s, asn, edit));
}

bool hasEntry(const fs::path& fxt, const std::string& entry) {
    const auto entries = tb::decodeFxt(tb::readFile(fxt));
    return std::find(entries.begin(), entries.end(), entry) != entries.end();
}

std::string nameEntry(StyleSession& s, int asn, const std::string& name) {
    return s.names.keys[s.cars.find(asn)->info.model] + name;
}

} // namespace

// ---------------------------------------------------------------- both or neither

TEST(SavePair, UnwritableFxtLeavesBothFilesAsTheyWereAndSaysSo) {
    PairLevel level;
    tb::FakePlatform p;
    auto s = level.load(p);
    const int asn = namedCars(*s, 1).at(0);
    fs::permissions(level.fxt, kReadOnly);

    // The command line: the record and the name, exit 1, neither file written.
    const auto run = level.cli(
        {"car-set", level.style.string(), std::to_string(asn), "name=Halfway", "max_speed=99"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(contains(run.err, "permission denied")) << run.err;
    EXPECT_TRUE(contains(run.err, "Nothing was written: " + level.style.string() + " and " +
                                      level.fxt.string() + " are as they were."))
        << run.err;
    EXPECT_TRUE(contains(run.err, "car-set: nothing was saved")) << run.err;
    EXPECT_TRUE(level.unchanged());

    // The window: the save fails and every edit stays pending.
    editBoth(*s, asn, "Halfway");
    p.shownMessages.clear();
    const SaveOutcome out = saveChanges(*s, p);
    EXPECT_EQ(out.result, SaveResult::Failed);
    EXPECT_FALSE(out.namesSaved);
    EXPECT_TRUE(level.unchanged());
    EXPECT_TRUE(s->style.gCarNamesChanged);
    EXPECT_EQ(s->style.gSaveCarInfo,
              (std::vector<std::int16_t>{0, static_cast<std::int16_t>(asn)}));
    ASSERT_FALSE(p.messageTexts().empty());
    EXPECT_TRUE(contains(p.messageTexts().back(), "Error occured during write of FXT file."));
    EXPECT_TRUE(findInterruptedSaves(level.style).empty());
    EXPECT_TRUE(findInterruptedSaves(level.fxt).empty());
}

TEST(SavePair, FailedThenRepairedSaveWritesEveryEdit) {
    // What the edits give when the save goes through at once.
    PairLevel clean;
    tb::FakePlatform pc;
    auto sc = clean.load(pc);
    const int asn = namedCars(*sc, 1).at(0);
    editBoth(*sc, asn, "Mended");
    sc->pages.pixel(0, 3, 3) ^= 0x5A;
    sc->style.gPagesChanged = true;
    ASSERT_EQ(saveChanges(*sc, pc).result, SaveResult::Saved);

    PairLevel level;
    tb::FakePlatform p;
    auto s = level.load(p);
    editBoth(*s, asn, "Mended");
    s->pages.pixel(0, 3, 3) ^= 0x5A;
    s->style.gPagesChanged = true;
    fs::permissions(level.fxt, kReadOnly);
    BackupRegistry backups;
    SaveOptions options;
    options.backups = &backups;
    ASSERT_EQ(saveChanges(*s, p, options).result, SaveResult::Failed);
    EXPECT_TRUE(level.unchanged());
    EXPECT_TRUE(s->style.anyChange());
    EXPECT_TRUE(s->style.gPagesChanged && s->style.gCarNamesChanged);

    fs::permissions(level.fxt, fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_EQ(saveChanges(*s, p, options).result, SaveResult::Saved);
    EXPECT_FALSE(s->style.anyChange());
    EXPECT_EQ(tb::readFile(level.style), tb::readFile(clean.style));
    EXPECT_EQ(tb::readFile(level.fxt), tb::readFile(clean.fxt));
}

// ---------------------------------------------------------------- interrupted pairs

namespace {

// Ends the process at the n-th "rename" (or the first `step`) of a replace of `target`.
void killAt(const fs::path& target, std::string_view step, int nth) {
    auto seen = std::make_shared<int>(0);
    const fs::path file = fs::absolute(target).lexically_normal();
    setReplaceFaultHook([=](std::string_view at, const fs::path& t) -> std::error_code {
        if (at == step && fs::absolute(t).lexically_normal() == file && ++*seen == nth)
            std::_Exit(7);
        return {};
    });
}

} // namespace

TEST(SavePair, PairCutBetweenItsRenamesIsFinishedByTheNextOpen) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    PairLevel level, clean;
    tb::FakePlatform pc;
    auto sc = clean.load(pc);
    const int asn = namedCars(*sc, 1).at(0);
    editBoth(*sc, asn, "Finished");
    ASSERT_EQ(saveChanges(*sc, pc).result, SaveResult::Saved);

    tb::FakePlatform p;
    auto s = level.load(p);
    editBoth(*s, asn, "Finished");
    // ENGLISH.FXT's second rename is its last: the style file has its new content by then.
    EXPECT_EXIT(
        {
            killAt(level.fxt, "rename", 2);
            (void)saveChanges(*s, p);
        },
        ::testing::ExitedWithCode(7), "");
    EXPECT_EQ(tb::readFile(level.style), tb::readFile(clean.style));
    EXPECT_EQ(tb::readFile(level.fxt), level.fxtBytes);

    tb::FakePlatform next;
    auto again = level.load(next);
    // One message for the save, one for each lock file the killed run left.
    std::vector<std::string> saves;
    for (const std::string& m : next.messageTexts()) {
        if (contains(m, "which has ended; it was taken over and removed.")) continue;
        saves.push_back(m);
    }
    ASSERT_EQ(saves.size(), 1u) << ::testing::PrintToString(next.messageTexts());
    EXPECT_TRUE(
        contains(saves[0], "was interrupted after it had replaced " + level.style.string()));
    EXPECT_TRUE(contains(saves[0], "It was finished"));
    EXPECT_FALSE(fs::exists(lockPathOf(level.style)) || fs::exists(lockPathOf(level.fxt)));
    EXPECT_EQ(tb::readFile(level.style), tb::readFile(clean.style));
    EXPECT_EQ(tb::readFile(level.fxt), tb::readFile(clean.fxt));
    EXPECT_TRUE(findInterruptedSaves(level.style).empty());
    EXPECT_TRUE(findInterruptedSaves(level.fxt).empty());
    EXPECT_TRUE(hasEntry(level.fxt, nameEntry(*again, asn, "Finished")));
}

TEST(SavePair, PairCutBeforeItsJournalIsRolledBackByTheNextRunOfTheCommand) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    PairLevel level;
    tb::FakePlatform p;
    auto s = level.load(p);
    const int asn = namedCars(*s, 1).at(0);
    editBoth(*s, asn, "Rolled");
    EXPECT_EXIT(
        {
            killAt(level.style, "journal", 1);
            (void)saveChanges(*s, p);
        },
        ::testing::ExitedWithCode(7), "");
    EXPECT_TRUE(level.unchanged());
    ASSERT_FALSE(findInterruptedSaves(level.style).empty());

    // The same command again: it says what it found, rolls it back, then saves.
    const auto run = level.cli(
        {"car-set", level.style.string(), std::to_string(asn), "name=Rolled", "max_speed=99"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(contains(run.err, "before it replaced the file")) << run.err;
    EXPECT_TRUE(findInterruptedSaves(level.style).empty());
    EXPECT_TRUE(findInterruptedSaves(level.fxt).empty());
    EXPECT_FALSE(fs::exists(lockPathOf(level.style)));
}

TEST(SavePair, LiveSaveIsBusyNotDamageAndStaleLeftoversAreNamedAndRemoved) {
    PairLevel level;
    const fs::path side = fs::path(level.style.string() + ".~done424242-0");
    tb::writeFile(side, {1, 2, 3});
    {
        // Another run is saving: its side file is left alone and named as that run's.
        FileLock other;
        ASSERT_TRUE(other.acquire(level.style, "torquil-test").ok());
        tb::FakePlatform p;
        auto s = level.load(p);
        ASSERT_EQ(p.messageTexts().size(), 1u) << ::testing::PrintToString(p.messageTexts());
        EXPECT_TRUE(contains(p.messageTexts()[0], "is being saved by process"));
        EXPECT_TRUE(contains(p.messageTexts()[0], "(torquil-test)"));
        EXPECT_FALSE(contains(p.messageTexts()[0], "interrupted"));
        EXPECT_TRUE(fs::exists(side));
    }
    // That run died: its leftovers, a backup copy cut short and its lock file are named once and
    // removed.
    const fs::path bakSide = fs::path(level.fxt.string() + ".bak.~new424242-1");
    tb::writeFile(bakSide, {9});
    tb::writeFile(lockPathOf(level.fxt), {'p', 'r', 'o', 'c', 'e', 's', 's', ' ', '1'});
    // A journal cut short while it was written (no rename had begun).
    const fs::path journal = fs::path(level.style.string() + ".~pair424242-2");
    tb::writeFile(journal, {'t', 'o', 'r'});
    tb::FakePlatform p;
    auto s = level.load(p);
    const auto texts = p.messageTexts();
    ASSERT_EQ(texts.size(), 4u) << ::testing::PrintToString(texts);
    std::string all;
    for (const auto& t : texts) all += t + "\n";
    EXPECT_TRUE(contains(all, "Its unfinished file " + side.string() + " was removed."));
    EXPECT_TRUE(contains(all, "An unfinished copy of the backup " + level.fxt.string() +
                                  ".bak was removed: " + bakSide.string()));
    EXPECT_TRUE(contains(all, "The lock file " + lockPathOf(level.fxt).string() +
                                  " was left by process 1, which has ended"));
    EXPECT_TRUE(contains(all, "was interrupted while it wrote " + journal.string()));
    EXPECT_FALSE(fs::exists(side) || fs::exists(bakSide) || fs::exists(lockPathOf(level.fxt)) ||
                 fs::exists(journal));
    EXPECT_TRUE(level.unchanged());
    tb::FakePlatform quiet;
    auto third = level.load(quiet);
    EXPECT_TRUE(quiet.messageTexts().empty());
}

// ---------------------------------------------------------------- what the file was

#if !defined(_WIN32)
TEST(SavePair, SaveKeepsLinksOwnerAndModeAndAsksBeforeSplittingAHardLink) {
    PairLevel level;
    // The level's files live elsewhere; the folder the modder opens holds links to them.
    const fs::path real = level.dir / "real";
    fs::create_directories(real);
    fs::rename(level.style, real / "STYLE001.G24");
    fs::create_symlink(real / "STYLE001.G24", level.style);
    constexpr auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(real / "STYLE001.G24", mode);
    fs::permissions(level.fxt, mode);
    const bool root = ::geteuid() == 0;
    constexpr uid_t nobody = 65534;
    if (root) {
        ASSERT_EQ(::chown((real / "STYLE001.G24").c_str(), nobody, nobody), 0);
        ASSERT_EQ(::chown(level.fxt.c_str(), nobody, nobody), 0);
    }
    tb::FakePlatform probe;
    const int asn = namedCars(*level.load(probe), 1).at(0);

    const auto run = level.cli(
        {"car-set", level.style.string(), std::to_string(asn), "name=Linked", "max_speed=99"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(fs::is_symlink(level.style));
    EXPECT_NE(tb::readFile(real / "STYLE001.G24"), level.styleBytes);
    for (const fs::path& f :
         {real / "STYLE001.G24", level.fxt, fs::path(level.style.string() + ".bak"),
          fs::path(level.fxt.string() + ".bak")}) {
        SCOPED_TRACE(f.string());
        EXPECT_EQ(fs::status(f).permissions() & fs::perms::all, mode);
        struct stat st {};
        ASSERT_EQ(::stat(f.c_str(), &st), 0);
        if (root && f.extension() != ".bak") {
            EXPECT_EQ(st.st_uid, nobody);
            EXPECT_EQ(st.st_gid, nobody);
        }
    }
    EXPECT_EQ(tb::readFile(level.style.string() + ".bak"), level.styleBytes);

    // A second name of ENGLISH.FXT: refused unless told, and then the other name keeps the old.
    const fs::path other = level.dir / "OTHER.FXT";
    fs::create_hard_link(level.fxt, other);
    const auto fxtBefore = tb::readFile(level.fxt);
    const auto styleBefore = tb::readFile(level.style);
    auto refused = level.cli(
        {"car-set", level.style.string(), std::to_string(asn), "name=Split", "max_speed=98"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(contains(refused.err, "has 2 names (hard links)")) << refused.err;
    EXPECT_TRUE(contains(refused.err, "--break-links")) << refused.err;
    EXPECT_EQ(tb::readFile(level.fxt), fxtBefore);
    EXPECT_EQ(tb::readFile(level.style), styleBefore);

    // The window asks: No writes nothing, Yes splits the file from its other name.
    tb::FakePlatform p;
    auto s = level.load(p);
    editBoth(*s, asn, "Split");
    p.shownMessages.clear();
    EXPECT_EQ(saveChanges(*s, p).result, SaveResult::Failed);
    ASSERT_FALSE(p.messageTexts().empty());
    EXPECT_EQ(p.messageTexts()[0], hardLinkQuestion(level.fxt, 2));
    EXPECT_EQ(tb::readFile(level.fxt), fxtBefore);
    EXPECT_EQ(tb::readFile(level.style), styleBefore);
    p.scriptedAnswers = {Answer::Yes};
    EXPECT_EQ(saveChanges(*s, p).result, SaveResult::Saved);
    EXPECT_TRUE(hasEntry(level.fxt, nameEntry(*s, asn, "Split")));
    EXPECT_EQ(tb::readFile(other), fxtBefore);

    // Told on the command line: saved, and the other name keeps what it held.
    const fs::path third = level.dir / "THIRD.FXT";
    fs::create_hard_link(level.fxt, third);
    const auto linked = tb::readFile(third);
    const auto told = level.cli(
        {"car-set", "--break-links", level.style.string(), std::to_string(asn), "name=Told"});
    EXPECT_EQ(told.status, 0) << told.err;
    EXPECT_EQ(tb::readFile(third), linked);
    EXPECT_TRUE(hasEntry(level.fxt, nameEntry(*s, asn, "Told")));
}

// ---------------------------------------------------------------- runs at once

namespace {

// Starts torquil-cli with `args`, its output and errors going to `log`.
pid_t startCli(const std::vector<std::string>& args, const fs::path& log) {
    const pid_t pid = ::fork();
    if (pid != 0) return pid;
    const int fd = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ::dup2(fd, 1);
    ::dup2(fd, 2);
    std::vector<char*> argv;
    std::string program = TORQUIL_CLI_PATH;
    argv.push_back(program.data());
    std::vector<std::string> copy = args;
    for (std::string& a : copy) argv.push_back(a.data());
    argv.push_back(nullptr);
    ::execv(program.c_str(), argv.data());
    std::_Exit(127);
}

std::string readText(const fs::path& file) {
    const auto bytes = tb::readFile(file);
    return std::string(bytes.begin(), bytes.end());
}

} // namespace

TEST(SavePair, ThirtyWritersAtOnceEitherWinOrAreToldAndNothingIsHalfSaved) {
    PairLevel level;
    tb::FakePlatform p;
    auto before = level.load(p);
    const std::vector<int> cars = namedCars(*before, 22);
    ASSERT_GE(cars.size(), 8u);
    const std::size_t texts = 30 - cars.size();

    struct Writer {
        pid_t pid;
        fs::path log;
        int asn = 0;      // car-set: the car it changes
        std::string mark; // txt2fxt: the entry only its text holds
        int status = -1;
    };
    std::vector<Writer> writers;
    const std::string work = level.work.string();
    for (std::size_t i = 0; i < cars.size(); ++i) {
        const fs::path log = level.dir / ("car" + std::to_string(i) + ".log");
        const std::string asn = std::to_string(cars[i]);
        writers.push_back(
            {startCli({"car-set", "--workdir", work, level.style.string(), asn,
                       "name=Racer " + std::to_string(i), "max_speed=" + std::to_string(1000 + i)},
                      log),
             log,
             cars[i],
             {}});
    }
    const auto original = tb::decodeFxt(level.fxtBytes);
    for (std::size_t i = 0; i < texts; ++i) {
        const fs::path txt = level.dir / ("names" + std::to_string(i) + ".txt");
        std::string text;
        for (const std::string& entry : original) text += entry + "\r\n";
        const std::string mark = "[9" + std::to_string(i) + "]Text run " + std::to_string(i);
        text += mark + "\r\n";
        tb::writeFile(txt, std::vector<std::uint8_t>(text.begin(), text.end()));
        const fs::path log = level.dir / ("txt" + std::to_string(i) + ".log");
        writers.push_back(
            {startCli({"txt2fxt", "--workdir", work, txt.string(), level.fxt.string()}, log), log,
             0, mark});
    }
    for (Writer& w : writers) {
        int status = 0;
        ASSERT_EQ(::waitpid(w.pid, &status, 0), w.pid);
        w.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    tb::FakePlatform q;
    auto after = level.load(q);
    const auto entries = tb::decodeFxt(tb::readFile(level.fxt));
    auto has = [&](const std::string& e) {
        return std::find(entries.begin(), entries.end(), e) != entries.end();
    };
    int won = 0, marks = 0;
    for (std::size_t i = 0; i < writers.size(); ++i) {
        const Writer& w = writers[i];
        const std::string log = readText(w.log);
        SCOPED_TRACE(w.log.string() + ":\n" + log);
        ASSERT_TRUE(w.status == 0 || w.status == 1);
        won += w.status == 0 ? 1 : 0;
        if (w.status == 1) {
            // Told why: another run held the lock or had saved first; nothing of it was written.
            EXPECT_TRUE(contains(log, "is being saved by") ||
                        contains(log, "was changed by another program"));
        }
        if (!w.mark.empty()) {
            if (has(w.mark)) {
                ++marks;
                EXPECT_EQ(w.status, 0);
            }
            continue;
        }
        // Only car-set writes the style file: a winner's record is there, a loser's is not.
        const bool record =
            after->cars.find(w.asn)->info.max_speed == static_cast<std::int16_t>(1000 + i);
        EXPECT_EQ(record, w.status == 0);
        const std::string name = nameEntry(*after, w.asn, "Racer " + std::to_string(i));
        if (w.status == 1) {
            EXPECT_FALSE(has(name));
        }
    }
    EXPECT_GE(won, 1);
    // The file is the last winner's: at most one text, and when no text won after them, every
    // car-set winner's name (each read the file the winner before it wrote).
    EXPECT_LE(marks, 1);
    if (marks == 0) {
        for (std::size_t i = 0; i < cars.size(); ++i)
            if (writers[i].status == 0) {
                EXPECT_TRUE(has(nameEntry(*after, writers[i].asn, "Racer " + std::to_string(i))));
            }
    }
    EXPECT_TRUE(findInterruptedSaves(level.style).empty());
    EXPECT_TRUE(findInterruptedSaves(level.fxt).empty());
    EXPECT_FALSE(fs::exists(lockPathOf(level.style)) || fs::exists(lockPathOf(level.fxt)));
}
#endif
