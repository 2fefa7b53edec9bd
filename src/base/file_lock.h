#pragma once
// Keeps two runs of the program (windows or command lines) from saving one file at the same
// time. The lock is an operating-system lock on a small file beside the locked one (name +
// ".lock") that holds who took it: process id, host and program. The system drops the lock when
// its process ends, so the lock of a run that died is simply taken over.

#include "base/result.h"

#include <filesystem>
#include <string>

namespace torquil {

// Why a lock was not taken.
enum class LockRefusal {
    HeldByOther, // another run holds it; holder() says who (and the message, lockHeldMessage)
    Unavailable  // no lock file can be made there (a read-only folder): nobody can save there
};

struct LockFailure : Failure {
    LockRefusal refusal = LockRefusal::Unavailable;
};

class FileLock {
public:
    // Success: this run holds the lock.
    using Acquired = Result<void, LockFailure>;

    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock() { release(); }

    // Tries once, without waiting. `program` names this run in the lock ("torquil-cli").
    [[nodiscard]] Acquired acquire(const std::filesystem::path& file, const std::string& program);
    void release();
    [[nodiscard]] bool held() const { return handle_ != kNoHandle; }
    // The holder as the lock file states it: "process 123 on host box (torquil-cli)".
    [[nodiscard]] const std::string& holder() const { return holder_; }
    // After Taken: who the lock file named when it was taken over from a run that had ended
    // without removing it; empty when there was no such file.
    [[nodiscard]] const std::string& staleHolder() const { return stale_; }
    [[nodiscard]] const std::filesystem::path& lockPath() const { return lockPath_; }

private:
#ifdef _WIN32
    using Handle = void*;
    static inline const Handle kNoHandle = reinterpret_cast<void*>(-1);
#else
    using Handle = int;
    static constexpr Handle kNoHandle = -1;
#endif
    Handle handle_ = kNoHandle;
    std::filesystem::path lockPath_;
    std::string holder_;
    std::string stale_;
};

// The lock file of `file`.
[[nodiscard]] std::filesystem::path lockPathOf(const std::filesystem::path& file);

// The message for a save refused because another run holds the lock.
[[nodiscard]] std::string lockHeldMessage(const std::filesystem::path& file,
                                          const std::string& holder);
// What is said of a lock file left by a run that had ended (it was taken over and is removed
// when this run lets go of it).
[[nodiscard]] std::string staleLockNote(const std::filesystem::path& lockFile,
                                        const std::string& holder);

// The name this run gives itself in locks (set once at start-up; "Torquil" when never set).
void setLockProgramName(const std::string& name);
[[nodiscard]] const std::string& lockProgramName();

} // namespace torquil
