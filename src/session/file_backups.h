#pragma once
// Keeps the modder's originals: before the program first writes a file in a run, the file is
// copied to its name + ".bak". An existing .bak is the pristine original from an earlier run and
// is never overwritten.

#include "base/atomic_file.h"

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <set>
#include <span>

namespace torquil {

// The name of a file's backup: the file's full name with ".bak" appended.
[[nodiscard]] std::filesystem::path backupPathOf(const std::filesystem::path& file);

class BackupRegistry {
public:
    // Makes the backup of `file` the first time this registry is asked about it. Success when the
    // backup exists afterwards, or when there is no file to back up; the failed replace of the
    // backup (its system error in `code`) when the copy could not be written, in which case a
    // later call tries again.
    [[nodiscard]] ReplaceResult ensureBackup(const std::filesystem::path& file);
    // The same with the file's content already in memory: the backup is written from `content`
    // instead of reading the file again.
    [[nodiscard]] ReplaceResult ensureBackup(const std::filesystem::path& file,
                                             std::span<const std::uint8_t> content);
    // Whether `file` was already dealt with in this run.
    [[nodiscard]] bool handled(const std::filesystem::path& file) const;
    // Forgets every file (for tests: a fresh run of the program).
    void reset();

private:
    [[nodiscard]] ReplaceResult ensure(const std::filesystem::path& file,
                                       const std::span<const std::uint8_t>* content);
    [[nodiscard]] static std::filesystem::path key(const std::filesystem::path& file);

    mutable std::mutex mutex_;
    std::set<std::filesystem::path> handled_;
};

// The registry of the whole run of the program.
BackupRegistry& processBackups();

} // namespace torquil
