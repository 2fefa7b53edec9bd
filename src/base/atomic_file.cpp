#include "base/atomic_file.h"

#include "base/binary_file.h"
#include "base/utf8_path.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <mutex>

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace torquil {

namespace fs = std::filesystem;

namespace {

std::mutex hookMutex;
ReplaceFaultHook faultHook;

std::error_code injected(std::string_view step, const fs::path& target) {
    ReplaceFaultHook hook;
    {
        std::lock_guard lock(hookMutex);
        hook = faultHook;
    }
    return hook ? hook(step, target) : std::error_code{};
}

std::error_code lastSystemError() {
#ifdef _WIN32
    return {static_cast<int>(GetLastError()), std::system_category()};
#else
    return {errno, std::generic_category()};
#endif
}

// A side-file name no other run (other process id) and no other replace of this run shares.
fs::path sideFileFor(const fs::path& target, std::string_view marker, const std::string& run) {
    fs::path side = target;
    side += std::string(marker) + run;
    return side;
}

std::string newRunTag() {
    static std::atomic<unsigned> counter{0};
    return std::to_string(processId()) + "-" + std::to_string(counter++);
}

#ifndef _WIN32
// The folder's entry of a rename reaches the disk only when the folder is flushed too (on
// Windows MOVEFILE_WRITE_THROUGH does that).
void syncFolder(const fs::path& folder) {
    int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}
#endif

// A complete side file on the disk, ready to be renamed over its target.
class SideFile {
public:
    SideFile() = default;
    SideFile(const SideFile&) = delete;
    SideFile& operator=(const SideFile&) = delete;
    ~SideFile() { discard(); }

    // Writes the side file of `target` (already resolved) named by `tag`, from the content's
    // bytes or piece by piece from its source; it takes the mode, owner and group of `like` when
    // that file exists. `step` names the step that failed.
    std::error_code write(const fs::path& target, const FileContent& content,
                          const std::string& tag, const fs::path& like, std::string_view& step);
    std::error_code replaceTarget();
    // Once complete and on the disk the side file takes its ".~done" name, so that a leftover
    // tells whether it is whole.
    std::error_code markComplete();
    void discard() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove(path_, ignored);
        path_.clear();
    }
    // Leaves the side file on the disk for the next run to finish with.
    void keep() { path_.clear(); }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
    fs::path target_;
};

#ifdef _WIN32
std::error_code SideFile::write(const fs::path& target, const FileContent& content,
                                const std::string& tag, const fs::path&, std::string_view& step) {
    target_ = target;
    step = "create";
    if (auto ec = injected("create", target)) return ec;
    const fs::path side = sideFileFor(target, kPendingMarker, tag);
    HANDLE h = CreateFileW(side.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) return lastSystemError();
    path_ = side;
    step = "write";
    std::error_code ec = injected("write", target);
    const ContentWriter put = [h](std::span<const std::uint8_t> bytes) {
        for (std::size_t done = 0; done < bytes.size();) {
            const DWORD want =
                static_cast<DWORD>(std::min<std::size_t>(bytes.size() - done, 1u << 30));
            DWORD wrote = 0;
            if (!WriteFile(h, bytes.data() + done, want, &wrote, nullptr)) return lastSystemError();
            done += wrote;
        }
        return std::error_code{};
    };
    if (!ec) ec = content.source ? content.source(put) : put(content.bytes);
    if (!ec) {
        step = "flush";
        ec = injected("flush", target);
    }
    if (!ec && !FlushFileBuffers(h)) ec = lastSystemError();
    if (!CloseHandle(h) && !ec) ec = lastSystemError();
    if (!ec) step = "rename";
    return ec ? ec : markComplete();
}

std::error_code SideFile::replaceTarget() {
    if (auto ec = injected("rename", target_)) return ec;
    if (!MoveFileExW(path_.c_str(), target_.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return lastSystemError();
    path_.clear();
    return {};
}
#else
// The new file gets the old one's owner and group (when this user may give them) and its mode.
std::error_code keepOwnerAndMode(int fd, const fs::path& like, std::string_view& step) {
    struct stat old {
    }, now{};
    if (like.empty() || ::stat(like.c_str(), &old) != 0) return {};
    if (::fstat(fd, &now) != 0) return lastSystemError();
    if (now.st_uid != old.st_uid || now.st_gid != old.st_gid) {
        step = "owner";
        if (::fchown(fd, old.st_uid, old.st_gid) != 0) return lastSystemError();
    }
    // After the owner: a change of owner clears the set-id bits.
    step = "write";
    if (::fchmod(fd, old.st_mode & 07777) != 0) return lastSystemError();
    return {};
}

std::error_code SideFile::write(const fs::path& target, const FileContent& content,
                                const std::string& tag, const fs::path& like,
                                std::string_view& step) {
    target_ = target;
    step = "create";
    if (auto ec = injected("create", target)) return ec;
    const fs::path side = sideFileFor(target, kPendingMarker, tag);
    int fd = ::open(side.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) return lastSystemError();
    path_ = side;
    step = "write";
    std::error_code ec = injected("write", target);
    // One write for each piece when the system takes it; a short write goes on from there.
    const ContentWriter put = [fd](std::span<const std::uint8_t> bytes) {
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t wrote = ::write(fd, bytes.data() + done, bytes.size() - done);
            if (wrote < 0 && errno == EINTR) continue;
            if (wrote <= 0)
                return wrote < 0 ? lastSystemError()
                                 : std::make_error_code(std::errc::no_space_on_device);
            done += static_cast<std::size_t>(wrote);
        }
        return std::error_code{};
    };
    if (!ec) ec = content.source ? content.source(put) : put(content.bytes);
    if (!ec) ec = keepOwnerAndMode(fd, like, step);
    if (!ec) {
        step = "flush";
        ec = injected("flush", target);
    }
    if (!ec && ::fsync(fd) != 0) ec = lastSystemError();
    if (::close(fd) != 0 && !ec) ec = lastSystemError();
    if (!ec) step = "rename";
    return ec ? ec : markComplete();
}

std::error_code SideFile::replaceTarget() {
    if (auto ec = injected("rename", target_)) return ec;
    if (::rename(path_.c_str(), target_.c_str()) != 0) return lastSystemError();
    path_.clear();
    syncFolder(target_.parent_path());
    return {};
}
#endif

std::error_code SideFile::markComplete() {
    std::string name = path_.filename().string();
    const auto at = name.rfind(kPendingMarker);
    const fs::path done = path_.parent_path() / (name.substr(0, at) + std::string(kCompleteMarker) +
                                                 name.substr(at + kPendingMarker.size()));
    if (auto ec = injected("rename", target_)) return ec;
    std::error_code ec;
    fs::rename(path_, done, ec);
    if (ec) return ec;
    path_ = done;
    return {};
}

// ---------------------------------------------------------------- journals of replaces of pairs

struct JournalEntry {
    fs::path target, side, old;
};

fs::path folderOf(const fs::path& file) {
    return file.parent_path().empty() ? fs::path(".") : file.parent_path();
}

// One journal per folder that holds files of the replace, named by the folder's first file.
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
    std::vector<std::uint8_t> bytes;
    if (!readWholeFile(journal, bytes)) return false;
    std::vector<std::string> lines;
    std::string line;
    for (std::uint8_t b : bytes) {
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

// Puts an old file back under its name (its second name ".~old" holds it).
void restoreOld(const JournalEntry& e) {
    if (!existsQuietly(e.old)) return;
    std::error_code ec;
    fs::rename(e.old, e.target, ec); // the same file under both names: nothing happens
    removeQuietly(e.old);
}

} // namespace

void setReplaceFaultHook(ReplaceFaultHook hook) {
    std::lock_guard lock(hookMutex);
    faultHook = std::move(hook);
}

bool isWriteProtected(const fs::path& target, std::error_code& ec) {
    ec.clear();
    std::error_code probe;
    const fs::file_status status = fs::status(target, probe);
    if (probe || !fs::exists(status)) return false;
    // No write bit for anyone: the user made the file read-only, even when the system would let
    // this user (an administrator) write it.
    constexpr fs::perms anyWrite =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if ((status.permissions() & anyWrite) == fs::perms::none) {
        ec = std::make_error_code(std::errc::permission_denied);
        return true;
    }
#ifndef _WIN32
    if (::access(target.c_str(), W_OK) != 0) {
        ec = lastSystemError();
        return true;
    }
#endif
    return false;
}

// A device or a pipe (/dev/stdout) has no old content to keep: it is written straight.
static bool isStream(const fs::path& target) {
    std::error_code ec;
    const fs::file_status status = fs::status(target, ec);
    return !ec && fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

static std::error_code writeStream(const fs::path& target, const FileContent& content) {
    std::FILE* out = nullptr;
#ifdef _WIN32
    out = _wfopen(target.c_str(), L"wb");
#else
    out = std::fopen(target.c_str(), "wb");
#endif
    if (!out) return lastSystemError();
    const ContentWriter put = [out](std::span<const std::uint8_t> bytes) {
        return std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size() ? std::error_code{}
                                                                               : lastSystemError();
    };
    std::error_code ec = content.source ? content.source(put) : put(content.bytes);
    if (std::fclose(out) != 0 && !ec) ec = lastSystemError();
    return ec;
}

fs::path replacedFileOf(const fs::path& target) {
    std::error_code ec;
    if (!fs::is_symlink(fs::symlink_status(target, ec))) return target;
    const fs::path resolved = fs::weakly_canonical(target, ec);
    return ec ? target : resolved;
}

namespace {

// Renames the complete side files over their targets, each old file kept under a second name
// and every file listed in a journal first, so that a crash between two renames can be finished
// and a failed rename undone.
ReplaceFailure replacePair(std::span<const FileContent> files, const std::vector<fs::path>& targets,
                           std::vector<SideFile>& sides, const std::string& tag) {
    std::vector<JournalEntry> entries;
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::error_code ec;
        JournalEntry e{fs::absolute(targets[i], ec).lexically_normal(),
                       fs::absolute(sides[i].path(), ec).lexically_normal(),
                       {}};
        if (fs::exists(targets[i], ec)) {
            const fs::path old = sideFileFor(e.target, kOldMarker, tag);
            fs::create_hard_link(targets[i], old, ec);
            // Without hard links a failed rename cannot be undone; the journal still lets the
            // next run finish it.
            if (!ec) e.old = old;
        }
        entries.push_back(e);
    }
    const std::vector<fs::path> journals = journalPaths(entries, tag);
    auto dropOlds = [&] {
        for (const JournalEntry& e : entries) removeQuietly(e.old);
    };
    auto dropJournals = [&] {
        for (const fs::path& j : journals) removeQuietly(j);
    };
    const std::string text = journalText(entries);
    for (const fs::path& journal : journals) {
        std::error_code ec = injected("journal", targets.front());
        if (!ec) ec = writeJournal(journal, text);
        if (ec) {
            dropJournals();
            dropOlds();
            return {files[0].target, ec, 0, "journal"};
        }
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (auto ec = sides[i].replaceTarget()) {
            // Undone in the order a crash part-way leaves sound: journals first (the next run
            // then rolls back), then every old file back under its name.
            bool undone = true;
            for (std::size_t j = 0; j < i; ++j) undone = undone && !entries[j].old.empty();
            if (!undone) {
                for (SideFile& side : sides) side.keep();
                return {files[i].target, ec, i, "rename"};
            }
            dropJournals();
            for (std::size_t j = 0; j < i; ++j) restoreOld(entries[j]);
            dropOlds();
            return {files[i].target, ec, 0, "rename"};
        }
    }
    // The old files go before the journals: an old file without a journal is put back.
    dropOlds();
    dropJournals();
    return {};
}

// Writes every file's side file; the mode and owner come from `like[i]`.
ReplaceFailure writeSides(std::span<const FileContent> files, const std::vector<fs::path>& targets,
                          const std::vector<fs::path>& like, std::vector<SideFile>& sides,
                          const std::string& tag) {
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::string_view step;
        if (auto ec = sides[i].write(targets[i], files[i], tag, like[i], step))
            return {files[i].target, ec, 0, step};
    }
    return {};
}

} // namespace

ReplaceFailure replaceFilesAtomically(std::span<const FileContent> files) {
    for (const FileContent& f : files)
        if (isStream(f.target)) {
            if (files.size() != 1)
                return {f.target, std::make_error_code(std::errc::invalid_argument)};
            return {f.target, writeStream(f.target, f)};
        }
    std::vector<fs::path> targets;
    for (const FileContent& f : files) targets.push_back(replacedFileOf(f.target));
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::error_code ec;
        if (isWriteProtected(targets[i], ec)) return {files[i].target, ec, 0, "create"};
    }
    const std::string tag = newRunTag();
    std::vector<SideFile> sides(files.size());
    if (ReplaceFailure failure = writeSides(files, targets, targets, sides, tag)) return failure;
    if (files.size() > 1) return replacePair(files, targets, sides, tag);
    for (std::size_t i = 0; i < files.size(); ++i)
        if (auto ec = sides[i].replaceTarget()) return {files[i].target, ec, i, "rename"};
    return {};
}

ReplaceFailure replaceFileAtomically(const fs::path& target, std::span<const std::uint8_t> bytes) {
    const FileContent one{target, bytes};
    return replaceFilesAtomically(std::span<const FileContent>(&one, 1));
}

std::string describeCause(const std::error_code& cause) {
    if (!cause) return {};
    const std::error_condition c = cause.default_error_condition();
    if (c == std::errc::permission_denied || c == std::errc::operation_not_permitted)
        return "permission denied";
    if (c == std::errc::no_space_on_device || c == std::errc::file_too_large) return "disk full";
    if (c == std::errc::read_only_file_system) return "read-only file system";
    if (c == std::errc::no_such_file_or_directory) return "no such file or directory";
    if (c == std::errc::text_file_busy || c == std::errc::device_or_resource_busy)
        return "file in use";
#ifdef _WIN32
    if (cause.category() == std::system_category()) {
        switch (cause.value()) {
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return "file in use";
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return "disk full";
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return "no such file or directory";
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return "permission denied";
        default:
            break;
        }
    }
#endif
    return cause.message();
}

ReplaceFailure copyFileAtomically(const fs::path& source, const fs::path& target) {
    std::error_code ec;
    std::FILE* in = nullptr;
#ifdef _WIN32
    in = _wfopen(source.c_str(), L"rb");
#else
    in = std::fopen(source.c_str(), "rb");
#endif
    if (!in)
        return {source, fs::exists(source, ec)
                            ? std::make_error_code(std::errc::io_error)
                            : std::make_error_code(std::errc::no_such_file_or_directory)};
    if (isStream(target)) {
        std::vector<std::uint8_t> bytes;
        std::fclose(in);
        if (!readWholeFile(source, bytes))
            return {source, std::make_error_code(std::errc::io_error)};
        const FileContent whole{target, bytes};
        return {target, writeStream(target, whole)};
    }
    const std::vector<fs::path> targets{replacedFileOf(target)};
    if (isWriteProtected(targets[0], ec)) {
        std::fclose(in);
        return {target, ec, 0, "create"};
    }
    // Copied a piece at a time: a file of any size costs one piece of memory.
    bool readFailed = false;
    FileContent copy{target, {}};
    copy.source = [&](const ContentWriter& write) -> std::error_code {
        std::vector<std::uint8_t> piece(1u << 20);
        for (;;) {
            const std::size_t n = std::fread(piece.data(), 1, piece.size(), in);
            if (n > 0)
                if (auto failed = write(std::span<const std::uint8_t>(piece.data(), n)))
                    return failed;
            if (n < piece.size()) break;
        }
        readFailed = std::ferror(in) != 0;
        return readFailed ? std::make_error_code(std::errc::io_error) : std::error_code{};
    };
    // A new copy (a .bak) takes the mode and owner of its source; a copy over a file keeps the
    // file's own.
    const std::vector<fs::path> like{fs::exists(targets[0], ec) ? targets[0] : source};
    std::vector<SideFile> sides(1);
    ReplaceFailure failure =
        writeSides(std::span<const FileContent>(&copy, 1), targets, like, sides, newRunTag());
    if (!failure)
        if (auto e = sides[0].replaceTarget()) failure = {target, e, 0, "rename"};
    std::fclose(in);
    if (readFailed) failure.file = source;
    return failure;
}

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

std::uint64_t processId() {
#ifdef _WIN32
    return GetCurrentProcessId();
#else
    return static_cast<std::uint64_t>(::getpid());
#endif
}

} // namespace torquil
