#include "base/atomic_file.h"

#include "base/binary_file.h"

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

    std::error_code write(const fs::path& target, const FileContent& content);
    std::error_code replaceTarget();
    // Once complete and on the disk the side file takes its ".~done" name, so that a leftover
    // tells whether it is whole.
    std::error_code markComplete();
    void discard() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove(path_, ignored);
        path_.clear();
    }

private:
    fs::path path_;
    fs::path target_;
};

#ifdef _WIN32
std::error_code SideFile::write(const fs::path& target, const FileContent& content) {
    target_ = target;
    if (auto ec = injected("create", target)) return ec;
    const fs::path side = sideFileFor(target, kPendingMarker, newRunTag());
    HANDLE h = CreateFileW(side.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) return lastSystemError();
    path_ = side;
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
    if (!ec) ec = injected("flush", target);
    if (!ec && !FlushFileBuffers(h)) ec = lastSystemError();
    if (!CloseHandle(h) && !ec) ec = lastSystemError();
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
std::error_code SideFile::write(const fs::path& target, const FileContent& content) {
    target_ = target;
    if (auto ec = injected("create", target)) return ec;
    const fs::path side = sideFileFor(target, kPendingMarker, newRunTag());
    int fd = ::open(side.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) return lastSystemError();
    path_ = side;
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
    struct stat old {};
    if (!ec && ::stat(target.c_str(), &old) == 0 && ::fchmod(fd, old.st_mode & 07777) != 0)
        ec = lastSystemError();
    if (!ec) ec = injected("flush", target);
    if (!ec && ::fsync(fd) != 0) ec = lastSystemError();
    if (::close(fd) != 0 && !ec) ec = lastSystemError();
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

ReplaceFailure replaceFilesAtomically(std::span<const FileContent> files) {
    for (const FileContent& f : files)
        if (isStream(f.target)) {
            if (files.size() != 1)
                return {f.target, std::make_error_code(std::errc::invalid_argument)};
            return {f.target, writeStream(f.target, f)};
        }
    std::vector<SideFile> sides(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::error_code ec;
        if (isWriteProtected(files[i].target, ec)) return {files[i].target, ec};
    }
    for (std::size_t i = 0; i < files.size(); ++i)
        if (auto ec = sides[i].write(files[i].target, files[i])) return {files[i].target, ec};
    for (std::size_t i = 0; i < files.size(); ++i)
        if (auto ec = sides[i].replaceTarget()) return {files[i].target, ec, i};
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
    ReplaceFailure failure = replaceFilesAtomically(std::span<const FileContent>(&copy, 1));
    std::fclose(in);
    if (readFailed) failure.file = source;
    return failure;
}

std::vector<fs::path> findInterruptedSaves(const fs::path& target) {
    std::vector<fs::path> found;
    std::error_code ec;
    const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
    for (std::string_view marker : {kPendingMarker, kCompleteMarker}) {
        const std::string prefix = target.filename().string() + std::string(marker);
        for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
            const std::string name = it->path().filename().string();
            if (name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0)
                found.push_back(it->path());
        }
    }
    return found;
}

std::string interruptedSaveMessage(const fs::path& leftover, const fs::path& target) {
    const std::string name = target.filename().string();
    const bool complete = leftover.filename().string().find(kCompleteMarker) != std::string::npos;
    std::string text = "A save of " + name + " was interrupted and left the file " +
                       leftover.string() + " beside it." + "\r" + name +
                       " itself is whole: it holds the file from before that save.";
    if (complete)
        return text + "\r" + "The leftover file is the complete new " + name +
               " of that save. To finish that save, rename it to " + name +
               "; to keep the file as it is, delete it.";
    return text + "\r" +
           "The leftover file was not written to its end and is of no use:" + " delete it.";
}

std::uint64_t processId() {
#ifdef _WIN32
    return GetCurrentProcessId();
#else
    return static_cast<std::uint64_t>(::getpid());
#endif
}

} // namespace torquil
