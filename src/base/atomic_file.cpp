#include "base/atomic_file.h"

#include "base/binary_file.h"
#include "base/replace_journal.h"

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
using namespace replace_journal;

namespace {

ReplaceFailure replaceFailed(const fs::path& file, std::error_code code, std::size_t replaced = 0,
                             std::string_view step = {}) {
    ReplaceFailure f;
    f.message = "Cannot write " + file.string();
    f.cause = describeCause(code);
    f.file = file;
    f.code = code;
    f.replaced = replaced;
    f.step = step;
    return f;
}

// Success when the step gave no error.
ReplaceResult resultOf(const fs::path& file, std::error_code code) {
    if (!code) return {};
    return replaceFailed(file, code);
}

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

std::string newRunTag() {
    static std::atomic<unsigned> counter{0};
    return std::to_string(processId()) + "-" + std::to_string(counter++);
}

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

} // namespace

void setReplaceFaultHook(ReplaceFaultHook hook) {
    std::lock_guard lock(hookMutex);
    faultHook = std::move(hook);
}

namespace {

// Why an existing file may not be replaced; empty when it may (or does not exist).
std::error_code writeRefusal(const fs::path& target) {
    std::error_code probe;
    const fs::file_status status = fs::status(target, probe);
    if (probe || !fs::exists(status)) return {};
    // No write bit for anyone: the user made the file read-only, even when the system would let
    // this user (an administrator) write it.
    constexpr fs::perms anyWrite =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if ((status.permissions() & anyWrite) == fs::perms::none)
        return std::make_error_code(std::errc::permission_denied);
#ifndef _WIN32
    if (::access(target.c_str(), W_OK) != 0) return lastSystemError();
#endif
    return {};
}

} // namespace

ReplaceResult checkWritable(const fs::path& target) {
    if (const std::error_code refused = writeRefusal(target))
        return replaceFailed(target, refused, 0, "create");
    return {};
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
ReplaceResult replacePair(std::span<const FileContent> files, const std::vector<fs::path>& targets,
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
            return replaceFailed(files[0].target, ec, 0, "journal");
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
                return replaceFailed(files[i].target, ec, i, "rename");
            }
            dropJournals();
            for (std::size_t j = 0; j < i; ++j) restoreOld(entries[j]);
            dropOlds();
            return replaceFailed(files[i].target, ec, 0, "rename");
        }
    }
    // The old files go before the journals: an old file without a journal is put back.
    dropOlds();
    dropJournals();
    return {};
}

// Writes every file's side file; the mode and owner come from `like[i]`.
ReplaceResult writeSides(std::span<const FileContent> files, const std::vector<fs::path>& targets,
                         const std::vector<fs::path>& like, std::vector<SideFile>& sides,
                         const std::string& tag) {
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::string_view step;
        if (auto ec = sides[i].write(targets[i], files[i], tag, like[i], step))
            return replaceFailed(files[i].target, ec, 0, step);
    }
    return {};
}

} // namespace

ReplaceResult replaceFilesAtomically(std::span<const FileContent> files) {
    for (const FileContent& f : files)
        if (isStream(f.target)) {
            if (files.size() != 1)
                return replaceFailed(f.target, std::make_error_code(std::errc::invalid_argument));
            return resultOf(f.target, writeStream(f.target, f));
        }
    std::vector<fs::path> targets;
    for (const FileContent& f : files) targets.push_back(replacedFileOf(f.target));
    for (std::size_t i = 0; i < files.size(); ++i)
        if (const std::error_code refused = writeRefusal(targets[i]))
            return replaceFailed(files[i].target, refused, 0, "create");
    const std::string tag = newRunTag();
    std::vector<SideFile> sides(files.size());
    if (ReplaceResult written = writeSides(files, targets, targets, sides, tag); !written)
        return written;
    if (files.size() > 1) return replacePair(files, targets, sides, tag);
    for (std::size_t i = 0; i < files.size(); ++i)
        if (auto ec = sides[i].replaceTarget())
            return replaceFailed(files[i].target, ec, i, "rename");
    return {};
}

ReplaceResult replaceFileAtomically(const fs::path& target, std::span<const std::uint8_t> bytes) {
    const FileContent one{target, bytes};
    return replaceFilesAtomically(std::span<const FileContent>(&one, 1));
}

ReplaceResult copyFileAtomically(const fs::path& source, const fs::path& target) {
    std::error_code ec;
    std::FILE* in = nullptr;
#ifdef _WIN32
    in = _wfopen(source.c_str(), L"rb");
#else
    in = std::fopen(source.c_str(), "rb");
#endif
    if (!in) {
        ReplaceFailure unread =
            replaceFailed(source, fs::exists(source, ec)
                                      ? std::make_error_code(std::errc::io_error)
                                      : std::make_error_code(std::errc::no_such_file_or_directory));
        unread.message = "Cannot read " + source.string();
        return unread;
    }
    if (isStream(target)) {
        std::fclose(in);
        const auto bytes = readWholeFile(source);
        if (!bytes) return replaceFailed(source, std::make_error_code(std::errc::io_error));
        const FileContent whole{target, *bytes};
        return resultOf(target, writeStream(target, whole));
    }
    const std::vector<fs::path> targets{replacedFileOf(target)};
    if (const std::error_code refused = writeRefusal(targets[0])) {
        std::fclose(in);
        return replaceFailed(target, refused, 0, "create");
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
    ReplaceResult copied =
        writeSides(std::span<const FileContent>(&copy, 1), targets, like, sides, newRunTag());
    if (copied)
        if (auto e = sides[0].replaceTarget()) copied = replaceFailed(target, e, 0, "rename");
    std::fclose(in);
    if (!copied && readFailed) {
        copied.error().file = source;
        copied.error().message = "Cannot read " + source.string();
    }
    return copied;
}

std::uint64_t processId() {
#ifdef _WIN32
    return GetCurrentProcessId();
#else
    return static_cast<std::uint64_t>(::getpid());
#endif
}

} // namespace torquil
