#include "base/replace_journal.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/utf8_path.h"

#include <algorithm>
#include <cstdio>

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace torquil::replace_journal {

namespace fs = std::filesystem;

std::error_code lastSystemError() {
#ifdef _WIN32
    return {static_cast<int>(GetLastError()), std::system_category()};
#else
    return {errno, std::generic_category()};
#endif
}

fs::path sideFileFor(const fs::path& target, std::string_view marker, const std::string& run) {
    fs::path side = target;
    side += std::string(marker) + run;
    return side;
}

#ifndef _WIN32
void syncFolder(const fs::path& folder) {
    int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}
#endif

fs::path folderOf(const fs::path& file) {
    return file.parent_path().empty() ? fs::path(".") : file.parent_path();
}

std::vector<fs::path> journalPaths(const std::vector<JournalEntry>& entries,
                                   const std::string& tag) {
    std::vector<fs::path> journals;
    std::vector<fs::path> folders;
    for (const JournalEntry& e : entries) {
        const fs::path folder = folderOf(e.target);
        if (std::find(folders.begin(), folders.end(), folder) != folders.end()) continue;
        folders.push_back(folder);
        journals.push_back(sideFileFor(e.target, kJournalMarker, tag));
    }
    return journals;
}

std::string journalText(const std::vector<JournalEntry>& entries) {
    std::string text = "torquil replace\n";
    for (const JournalEntry& e : entries)
        text += utf8Of(e.target) + "\n" + utf8Of(e.side) + "\n" + utf8Of(e.old) + "\n";
    return text + "end\n"; // a journal cut short while written lacks it
}

bool parseJournal(const fs::path& journal, std::vector<JournalEntry>& entries) {
    const auto bytes = readWholeFile(journal);
    if (!bytes) return false;
    std::vector<std::string> lines;
    std::string line;
    for (std::uint8_t b : *bytes) {
        if (b == '\n') {
            lines.push_back(line);
            line.clear();
        } else {
            line.push_back(static_cast<char>(b));
        }
    }
    if (lines.size() < 2 || lines[0] != "torquil replace" || lines.back() != "end" ||
        (lines.size() - 2) % 3 != 0)
        return false;
    for (std::size_t i = 1; i + 3 < lines.size(); i += 3)
        entries.push_back({pathFromUtf8(lines[i]), pathFromUtf8(lines[i + 1]),
                           lines[i + 2].empty() ? fs::path() : pathFromUtf8(lines[i + 2])});
    return !entries.empty();
}

std::error_code writeJournal(const fs::path& journal, const std::string& text) {
    std::FILE* out = nullptr;
#ifdef _WIN32
    out = _wfopen(journal.c_str(), L"wb"); // the tag makes the name this run's own
#else
    out = std::fopen(journal.c_str(), "wb");
#endif
    if (!out) return lastSystemError();
    std::error_code ec;
    if (std::fwrite(text.data(), 1, text.size(), out) != text.size() || std::fflush(out) != 0)
        ec = lastSystemError();
#ifndef _WIN32
    if (!ec && ::fsync(::fileno(out)) != 0) ec = lastSystemError();
#endif
    if (std::fclose(out) != 0 && !ec) ec = lastSystemError();
#ifndef _WIN32
    if (!ec) syncFolder(folderOf(journal));
#endif
    return ec;
}

void removeQuietly(const fs::path& file) {
    std::error_code ignored;
    if (!file.empty()) fs::remove(file, ignored);
}

bool existsQuietly(const fs::path& file) {
    std::error_code ec;
    return !file.empty() && fs::exists(fs::symlink_status(file, ec));
}

void restoreOld(const JournalEntry& e) {
    if (!existsQuietly(e.old)) return;
    std::error_code ec;
    fs::rename(e.old, e.target, ec); // the same file under both names: nothing happens
    removeQuietly(e.old);
}

} // namespace torquil::replace_journal
