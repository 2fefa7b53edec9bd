#include "base/atomic_file.h"
#include "base/replace_journal.h"

#include <algorithm>

namespace torquil {

namespace fs = std::filesystem;
using namespace replace_journal;

namespace {

// Files in the folder of `target` whose names are the target's name, `marker`, then a tag.
std::vector<std::pair<fs::path, std::string>> sideFilesOf(const fs::path& target,
                                                          std::string_view marker) {
    std::vector<std::pair<fs::path, std::string>> found;
    std::error_code ec;
    const std::string prefix = target.filename().string() + std::string(marker);
    for (fs::directory_iterator it(folderOf(target), ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0)
            found.emplace_back(it->path(), name.substr(prefix.size()));
    }
    std::sort(found.begin(), found.end());
    return found;
}

// Journals in the folder of `target` that list it, with their tags and entries.
struct FoundJournal {
    fs::path path;
    std::string tag;
    std::vector<JournalEntry> entries;
};

std::vector<FoundJournal> journalsListing(const fs::path& target) {
    std::vector<FoundJournal> found;
    std::error_code ec;
    const fs::path self = fs::absolute(target, ec).lexically_normal();
    for (fs::directory_iterator it(folderOf(target), ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        const auto at = name.rfind(kJournalMarker);
        if (at == std::string::npos) continue;
        FoundJournal j{it->path(), name.substr(at + kJournalMarker.size()), {}};
        if (!parseJournal(j.path, j.entries)) continue;
        for (const JournalEntry& e : j.entries)
            if (e.target == self) {
                found.push_back(std::move(j));
                break;
            }
    }
    return found;
}

std::string namesOf(const std::vector<JournalEntry>& entries) {
    std::string text;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i > 0) text += i + 1 == entries.size() ? " and " : ", ";
        text += entries[i].target.string();
    }
    return text;
}

// Finishes or rolls back one interrupted replace of several files and says which.
std::string settleJournal(const FoundJournal& found) {
    const std::vector<JournalEntry>& entries = found.entries;
    std::vector<std::string> replaced, waiting;
    for (const JournalEntry& e : entries)
        (existsQuietly(e.side) ? waiting : replaced).push_back(e.target.string());
    bool allJournals = true;
    for (const fs::path& j : journalPaths(entries, found.tag))
        allJournals = allJournals && existsQuietly(j);
    const std::string what = "A save of " + namesOf(entries) + " was interrupted";
    if (!replaced.empty() || allJournals) {
        // Every new file was complete before the first rename: the save is finished.
        for (const JournalEntry& e : entries)
            if (existsQuietly(e.side)) {
                std::error_code ec;
                fs::rename(e.side, e.target, ec);
            }
        for (const JournalEntry& e : entries) removeQuietly(e.old);
        for (const fs::path& j : journalPaths(entries, found.tag)) removeQuietly(j);
        if (waiting.empty())
            return what + " after it had replaced every file. Its leftover files were removed.";
        return what +
               (replaced.empty() ? " just before it replaced the files"
                                 : " after it had replaced " + replaced.front() +
                                       (replaced.size() > 1 ? " and others" : "")) +
               ". It was finished: each file now holds the content of that save.";
    }
    for (const fs::path& j : journalPaths(entries, found.tag)) removeQuietly(j);
    for (const JournalEntry& e : entries) {
        restoreOld(e);
        removeQuietly(e.side);
    }
    return what + " before it replaced any file. It was rolled back: each file is as it was "
                  "before that save, and the unfinished files were removed.";
}

} // namespace

std::vector<fs::path> findInterruptedSaves(const fs::path& target) {
    std::vector<fs::path> found;
    fs::path bak = target;
    bak += ".bak";
    for (const fs::path& file : {target, bak})
        for (std::string_view marker :
             {kPendingMarker, kCompleteMarker, kOldMarker, kJournalMarker})
            for (const auto& [path, tag] : sideFilesOf(file, marker)) found.push_back(path);
    return found;
}

std::vector<fs::path> filesOfInterruptedSaves(const fs::path& target) {
    std::vector<fs::path> files;
    for (const FoundJournal& j : journalsListing(replacedFileOf(target)))
        for (const JournalEntry& e : j.entries)
            if (std::find(files.begin(), files.end(), e.target) == files.end())
                files.push_back(e.target);
    return files;
}

std::vector<std::string> recoverInterruptedSaves(const fs::path& named) {
    std::vector<std::string> said;
    const fs::path target = replacedFileOf(named);
    for (const FoundJournal& j : journalsListing(target)) said.push_back(settleJournal(j));
    // What is left had no journal: no rename had begun, the file holds its old content.
    for (const auto& [old, tag] : sideFilesOf(target, kOldMarker)) {
        restoreOld({target, {}, old});
        said.push_back("A save of " + target.string() + " was interrupted before it was " +
                       "complete. The file holds its content from before that save.");
    }
    for (std::string_view marker : {kPendingMarker, kCompleteMarker})
        for (const auto& [side, tag] : sideFilesOf(target, marker)) {
            removeQuietly(side);
            said.push_back("A save of " + target.string() +
                           " was interrupted before it replaced the file, which is as it was "
                           "before that save. Its unfinished file " +
                           side.string() + " was removed.");
        }
    fs::path bak = target;
    bak += ".bak";
    for (std::string_view marker : {kPendingMarker, kCompleteMarker})
        for (const auto& [side, tag] : sideFilesOf(bak, marker)) {
            removeQuietly(side);
            said.push_back("An unfinished copy of the backup " + bak.string() +
                           " was removed: " + side.string() + ".");
        }
    // A journal that cannot be read was cut short while it was written: the renames begin only
    // once every journal is whole, so nothing had been replaced yet (the files above were rolled
    // back); it goes too.
    for (const auto& [journal, tag] : sideFilesOf(target, kJournalMarker)) {
        std::vector<JournalEntry> entries;
        if (parseJournal(journal, entries)) continue; // another file's save, settled from there
        removeQuietly(journal);
        said.push_back("A save of " + target.string() + " was interrupted while it wrote " +
                       journal.string() + ", before it replaced any file; that file was removed.");
    }
    return said;
}

} // namespace torquil
