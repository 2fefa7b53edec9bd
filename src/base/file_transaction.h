#pragma once
// One save of one or more files (a style file and ENGLISH.FXT, or either alone) as a transaction:
// every file or none. Every writer of a level's files goes through commitFiles: it holds the lock
// of each file, finishes or rolls back what an interrupted save left, checks that each file is
// still the one this run read (so no run silently writes over another's save), refuses to split
// a file from its other hard links unless told, keeps the originals, and replaces all files
// together (base/atomic_file.h). Nothing is written unless every check passes.

#include "base/atomic_file.h"
#include "base/file_lock.h"
#include "base/file_stamp.h"
#include "base/result.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace torquil {

// One file of a transaction.
struct CommitFile {
    std::filesystem::path target; // as the user named it; a symbolic link is followed
    std::span<const std::uint8_t> bytes;
    // The file as this run read it (stampOf before reading). A stamp that does not exist means
    // the run found no file there, so none may have appeared since.
    FileStamp readAs;
};

struct CommitOptions {
    std::string program = lockProgramName(); // this run's name in the locks
    // Files whose locks the caller already holds (a save that locks its files before it makes
    // their backups); a lock is per open file, so these are not taken again.
    std::vector<std::filesystem::path> lockedByCaller;
    // A file with other names (hard links) gets a new file of its own only when this is set or
    // askBreakLinks answers true; otherwise the transaction is refused.
    bool breakLinks = false;
    std::function<bool(const std::filesystem::path& file, std::uint64_t names)> askBreakLinks;
    // Asked when a file is not the one this run read; true writes over it. Unset: refused.
    std::function<bool(const std::filesystem::path& file)> askWriteOver;
    // Keeps a file's original before it is first written (the run's ".bak"); success when the
    // backup exists afterwards, else the failed replace with its system error. Called under the
    // locks, after every check.
    std::function<ReplaceResult(const std::filesystem::path& file)> keepBackup;
};

// Why a transaction did not commit.
enum class CommitOutcome {
    Busy,         // another run holds the lock of `file`: nothing written
    Changed,      // `file` is not the one this run read (and no one said to write over it)
    HardLinked,   // `file` has other names and splitting it was not allowed
    BackupFailed, // the unmodified `file` could not be kept
    WriteFailed,  // writing failed; see `partly`
};

// A transaction that did not commit. Its message says what happened to which file, then what
// is on the disk now ("Nothing was written: A and B are as they were."); its cause is the
// system's cause in words.
struct CommitFailure : Failure {
    CommitOutcome outcome = CommitOutcome::WriteFailed;
    std::filesystem::path file; // the file the outcome is about
    std::error_code code;       // the system's cause of a failed write or backup
    std::string holder;         // Busy: who holds the lock
    std::uint64_t names = 0;    // HardLinked: how many names the file has
    // WriteFailed only: some files hold their new content and the rest wait beside their files
    // for the next run, which finishes the save (rare: the old content could not be put back).
    bool partly = false;
    bool ownerNotKept = false; // WriteFailed at giving the new file the old one's owner
    // Interrupted saves and stale lock files found and dealt with, in words.
    std::vector<std::string> found;
};

// A transaction that did: every file holds its new content.
struct Committed {
    // Interrupted saves and stale lock files found and dealt with, in words.
    std::vector<std::string> found;
};

using CommitResult = Result<Committed, CommitFailure>;

// The transaction: every file written, or why nothing (or, with `partly`, not all) was written.
[[nodiscard]] CommitResult commitFiles(std::span<const CommitFile> files,
                                       const CommitOptions& options = {});

// What a transaction found and dealt with before it committed or failed.
[[nodiscard]] const std::vector<std::string>& foundBy(const CommitResult& result);

// What the next run (the same command, or the window's open) does first: for each file, under
// its lock, finish or roll back an interrupted save and remove stale side and lock files. A file
// whose lock a live run holds is left alone and reported as busy.
struct RecoveryReport {
    std::vector<std::string> found; // one sentence per thing found and dealt with
    std::vector<std::string> busy;  // lockHeldMessage for files being saved by another run
};
[[nodiscard]] RecoveryReport recoverFiles(std::span<const std::filesystem::path> files,
                                          const std::string& program = lockProgramName());

// How many names (hard links) the file has; 1 for a missing file or where it cannot be told.
[[nodiscard]] std::uint64_t nameCountOf(const std::filesystem::path& file);

} // namespace torquil
