// What the file operations of base/ and the output guard give back when they fail: the message
// names the file, the cause says why, and the error carries what callers branch on.

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/file_lock.h"
#include "base/file_stamp.h"
#include "base/file_transaction.h"
#include "session/output_guard.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

using namespace torquil;
namespace fs = std::filesystem;
namespace tb = torquil::testing;

TEST(FileResults, ReadWholeFileGivesTheBytesOrSaysWhichFileAndWhy) {
    tb::TempDir dir;
    const fs::path file = dir / "bytes.bin";
    tb::writeFile(file, {7, 8, 9});
    const Result<std::vector<std::uint8_t>> read = readWholeFile(file);
    ASSERT_TRUE(read) << read.message();
    EXPECT_EQ(*read, (std::vector<std::uint8_t>{7, 8, 9}));

    tb::writeFile(dir / "empty.bin", {});
    const auto empty = readWholeFile(dir / "empty.bin");
    ASSERT_TRUE(empty); // an empty file is read, not refused
    EXPECT_TRUE(empty->empty());

    const auto missing = readWholeFile(dir / "missing.bin");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.message(), "Cannot open " + (dir / "missing.bin").string());
    EXPECT_EQ(missing.error().cause, "no such file or directory");
}

TEST(FileResults, AFailedReplaceNamesTheFileTheStepAndTheCause) {
    tb::TempDir dir;
    const fs::path target = dir / "no-folder" / "out.bin";
    const ReplaceResult written = replaceFileAtomically(target, std::vector<std::uint8_t>{1});
    ASSERT_FALSE(written);
    const ReplaceFailure& failure = written.error();
    EXPECT_EQ(failure.file, target);
    EXPECT_EQ(failure.step, "create");
    EXPECT_EQ(failure.code, std::errc::no_such_file_or_directory);
    EXPECT_EQ(failure.replaced, 0u);
    EXPECT_EQ(failure.message, "Cannot write " + target.string());
    EXPECT_EQ(failure.cause, "no such file or directory");
    EXPECT_FALSE(fs::exists(target));

    // A copy from a file that is not there names the source, not the target.
    const ReplaceResult copied = copyFileAtomically(dir / "absent.bin", dir / "copy.bin");
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error().file, dir / "absent.bin");
    EXPECT_EQ(copied.message(), "Cannot read " + (dir / "absent.bin").string());
    EXPECT_FALSE(fs::exists(dir / "copy.bin"));
}

TEST(FileResults, ACommitRefusedForAChangedFileSaysSoAndWritesNothing) {
    tb::TempDir dir;
    const fs::path file = dir / "STYLE001.G24";
    tb::writeFile(file, {1, 2, 3});
    const FileStamp readAs = stampOf(file);
    const std::vector<std::uint8_t> first{4, 5};
    const CommitFile one[] = {{file, first, readAs}};
    const CommitResult committed = commitFiles(one);
    ASSERT_TRUE(committed) << committed.message();
    EXPECT_TRUE(foundBy(committed).empty());
    EXPECT_EQ(tb::readFile(file), first);

    // The stamp taken before the first commit no longer matches the file.
    const std::vector<std::uint8_t> second{6};
    const CommitFile again[] = {{file, second, readAs}};
    const CommitResult refused = commitFiles(again);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().outcome, CommitOutcome::Changed);
    EXPECT_EQ(refused.error().file, file);
    EXPECT_EQ(refused.message(), "The file " + file.string() +
                                     " was changed by another program after it was read.\r"
                                     "Nothing was written: " +
                                     file.string() +
                                     " is as it was.\rOpen it again to see that change, then "
                                     "make yours again.");
    EXPECT_EQ(tb::readFile(file), first);
}

TEST(FileResults, ALockThatCannotBeMadeIsUnavailableNotHeld) {
    tb::TempDir dir;
    FileLock lock;
    const FileLock::Acquired taken = lock.acquire(dir / "no-folder" / "x.G24", "torquil-test");
    ASSERT_FALSE(taken);
    EXPECT_EQ(taken.error().refusal, LockRefusal::Unavailable);
    EXPECT_FALSE(lock.held());

    FileLock good;
    ASSERT_TRUE(good.acquire(dir / "x.G24", "torquil-test"));
    EXPECT_TRUE(good.held());
}

TEST(FileResults, AnOutputThatIsOneOfTheLevelsFilesIsRefusedByName) {
    tb::TempDir dir;
    const fs::path style = dir / "STYLE001.G24";
    tb::writeFile(style, {1});
    const std::vector<GuardedFile> guarded = levelFiles(style);
    EXPECT_TRUE(checkOutput(dir / "sprite.bmp", guarded));
    // Another case of the same name is the same file for the game.
    const Result<void> clash = checkOutput(dir / "style001.g24", guarded);
    ASSERT_FALSE(clash);
    EXPECT_NE(clash.message().find("nothing was written. Choose another file name."),
              std::string::npos)
        << clash.message();
}

TEST(FileResults, AFileWithoutWritePermissionIsRefusedBeforeAnythingIsWritten) {
#ifdef _WIN32
    GTEST_SKIP() << "Windows files have no mode bits";
#endif
    tb::TempDir dir;
    const fs::path file = dir / "kept.G24";
    tb::writeFile(file, {1});
    EXPECT_TRUE(checkWritable(file));
    EXPECT_TRUE(checkWritable(dir / "not-there.G24")); // a new file may be made
    // No write bit for anyone refuses even a user the system would let write it.
    fs::permissions(file, fs::perms::owner_read);
    const ReplaceResult refused = checkWritable(file);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().step, "create");
    EXPECT_EQ(refused.error().cause, "permission denied");
    EXPECT_EQ(refused.message(), "Cannot write " + file.string());
}
