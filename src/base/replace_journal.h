#pragma once
// The pieces the replace of files (atomic_file.cpp) and the recovery of interrupted replaces
// (replace_recovery.cpp) share: side-file names, the journal that lists the files of a replace
// of several files, and quiet removal. Internal to base.

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace torquil::replace_journal {

// The last system call's error.
[[nodiscard]] std::error_code lastSystemError();

// A side-file name no other run (other process id) and no other replace of this run shares.
[[nodiscard]] std::filesystem::path sideFileFor(const std::filesystem::path& target,
                                                std::string_view marker, const std::string& run);

// The folder a file is in ("." for a bare name).
[[nodiscard]] std::filesystem::path folderOf(const std::filesystem::path& file);

#ifndef _WIN32
// The folder's entry of a rename reaches the disk only when the folder is flushed too (on
// Windows MOVEFILE_WRITE_THROUGH does that).
void syncFolder(const std::filesystem::path& folder);
#endif

// One file of a replace of several: its name, its complete new file, its old file's second name
// (empty when it had none).
struct JournalEntry {
    std::filesystem::path target, side, old;
};

// One journal per folder that holds files of the replace, named by the folder's first file.
[[nodiscard]] std::vector<std::filesystem::path>
journalPaths(const std::vector<JournalEntry>& entries, const std::string& tag);
[[nodiscard]] std::string journalText(const std::vector<JournalEntry>& entries);
// False for a journal that cannot be read or was cut short while written.
[[nodiscard]] bool parseJournal(const std::filesystem::path& journal,
                                std::vector<JournalEntry>& entries);
// Writes the journal and flushes it (and its folder) to the disk.
[[nodiscard]] std::error_code writeJournal(const std::filesystem::path& journal,
                                           const std::string& text);

void removeQuietly(const std::filesystem::path& file);
[[nodiscard]] bool existsQuietly(const std::filesystem::path& file);
// Puts an old file back under its name (its second name ".~old" holds it).
void restoreOld(const JournalEntry& e);

} // namespace torquil::replace_journal
