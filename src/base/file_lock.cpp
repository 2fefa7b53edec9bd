#include "base/file_lock.h"

#include <string_view>

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace torquil {

namespace fs = std::filesystem;

namespace {

std::string& programName() {
    static std::string name = "Torquil";
    return name;
}

std::string hostName() {
#ifdef _WIN32
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = sizeof name;
    return GetComputerNameA(name, &size) ? std::string(name, size) : std::string("?");
#else
    char name[256] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? std::string(name) : std::string("?");
#endif
}

std::string describeSelf(const std::string& program) {
#ifdef _WIN32
    const auto pid = static_cast<unsigned long>(GetCurrentProcessId());
#else
    const auto pid = static_cast<long>(::getpid());
#endif
    return "process " + std::to_string(pid) + " on host " + hostName() + " (" + program + ")";
}

std::string trimmed(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == 0))
        text.pop_back();
    return text.empty() ? std::string("another run of the program") : text;
}

} // namespace

fs::path lockPathOf(const fs::path& file) {
    fs::path lock = file;
    lock += ".lock";
    return lock;
}

std::string lockHeldMessage(const fs::path& file, const std::string& holder) {
    return "The file " + file.string() + " is being saved by " + holder + "." + "\r" +
           "Nothing was written. Wait until that save is over, then save again.";
}

std::string staleLockNote(const fs::path& lockFile, const std::string& holder) {
    return "The lock file " + lockFile.string() + " was left by " + holder +
           ", which has ended; it was taken over and removed.";
}

void setLockProgramName(const std::string& name) {
    programName() = name;
}

const std::string& lockProgramName() {
    return programName();
}

namespace {

LockFailure heldByOther(const fs::path& file, const std::string& holder) {
    LockFailure f;
    f.message = lockHeldMessage(file, holder);
    f.refusal = LockRefusal::HeldByOther;
    return f;
}

LockFailure unavailable(const fs::path& lockFile) {
    LockFailure f;
    f.message = "No lock file can be made: " + lockFile.string();
    f.cause = "a read-only folder?";
    f.refusal = LockRefusal::Unavailable;
    return f;
}

} // namespace

#ifdef _WIN32

FileLock::Acquired FileLock::acquire(const fs::path& file, const std::string& program) {
    release();
    lockPath_ = lockPathOf(file);
    // No sharing for writers: a second run cannot open the file for writing while we hold it.
    HANDLE h = CreateFileW(lockPath_.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        if (GetLastError() != ERROR_SHARING_VIOLATION) return unavailable(lockPath_);
        holder_.clear();
        HANDLE r = CreateFileW(lockPath_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (r != INVALID_HANDLE_VALUE) {
            char buffer[512];
            DWORD got = 0;
            if (ReadFile(r, buffer, sizeof buffer, &got, nullptr)) holder_.assign(buffer, got);
            CloseHandle(r);
        }
        holder_ = trimmed(holder_);
        return heldByOther(file, holder_);
    }
    stale_.clear();
    {
        char buffer[512];
        DWORD got = 0;
        if (ReadFile(h, buffer, sizeof buffer, &got, nullptr) && got > 0)
            stale_ = trimmed(std::string(buffer, got));
        SetFilePointer(h, 0, nullptr, FILE_BEGIN);
    }
    holder_ = describeSelf(program);
    SetEndOfFile(h);
    DWORD put = 0;
    WriteFile(h, holder_.data(), static_cast<DWORD>(holder_.size()), &put, nullptr);
    handle_ = h;
    return {};
}

void FileLock::release() {
    if (handle_ == kNoHandle) return;
    CloseHandle(handle_);
    handle_ = kNoHandle;
    DeleteFileW(lockPath_.c_str()); // fails harmlessly when another run opened it meanwhile
}

#else

FileLock::Acquired FileLock::acquire(const fs::path& file, const std::string& program) {
    release();
    lockPath_ = lockPathOf(file);
    for (int attempt = 0; attempt < 8; ++attempt) {
        int fd = ::open(lockPath_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        if (fd < 0) return unavailable(lockPath_);
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            const int why = errno;
            char buffer[512];
            const ssize_t got = ::pread(fd, buffer, sizeof buffer, 0);
            ::close(fd);
            if (why != EWOULDBLOCK) return unavailable(lockPath_);
            holder_ = trimmed(got > 0 ? std::string(buffer, static_cast<std::size_t>(got)) : "");
            return heldByOther(file, holder_);
        }
        // The holder before us may have removed the file between our open and our lock: the lock
        // counts only when it is on the file that has the name now.
        struct stat opened {
        }, named{};
        if (::fstat(fd, &opened) != 0 || ::stat(lockPath_.c_str(), &named) != 0 ||
            opened.st_ino != named.st_ino || opened.st_dev != named.st_dev) {
            ::close(fd);
            continue;
        }
        char previous[512];
        const ssize_t had = ::pread(fd, previous, sizeof previous, 0);
        stale_ = had > 0 ? trimmed(std::string(previous, static_cast<std::size_t>(had))) : "";
        holder_ = describeSelf(program);
        // A lock file left by a run that died still names it: this run's name replaces it.
        if (::ftruncate(fd, 0) != 0 || ::pwrite(fd, holder_.data(), holder_.size(), 0) !=
                                           static_cast<ssize_t>(holder_.size())) {
            // The lock holds without the text; a second run then names an unknown holder.
        }
        handle_ = fd;
        return {};
    }
    return unavailable(lockPath_);
}

void FileLock::release() {
    if (handle_ == kNoHandle) return;
    // Removed while still locked, so a run waiting on this file retries on the new one.
    ::unlink(lockPath_.c_str());
    ::close(handle_);
    handle_ = kNoHandle;
}

#endif

} // namespace torquil
