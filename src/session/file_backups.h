#pragma once
// Keeps the modder's originals: before the program first writes a file in a run, the file is
// copied to its name + ".bak". An existing .bak is the pristine original from an earlier run and
// is never overwritten.

#include <filesystem>
#include <mutex>
#include <set>
#include <system_error>

namespace torquil {

// The name of a file's backup: the file's full name with ".bak" appended.
std::filesystem::path backupPathOf(const std::filesystem::path& file);

class BackupRegistry {
public:
    // Makes the backup of `file` the first time this registry is asked about it. True when the
    // backup exists afterwards, or when there is no file to back up; false (ec set) when the copy
    // could not be written, in which case a later call tries again.
    bool ensureBackup(const std::filesystem::path& file, std::error_code& ec);
    // Whether `file` was already dealt with in this run.
    bool handled(const std::filesystem::path& file) const;
    // Forgets every file (for tests: a fresh run of the program).
    void reset();

private:
    static std::filesystem::path key(const std::filesystem::path& file);

    mutable std::mutex mutex_;
    std::set<std::filesystem::path> handled_;
};

// The registry of the whole run of the program.
BackupRegistry& processBackups();

} // namespace torquil
