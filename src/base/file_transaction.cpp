#include "base/file_transaction.h"

#include "base/atomic_file.h"

#include <algorithm>
#include <memory>
#include <string_view>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace torquil {

namespace fs = std::filesystem;

namespace {

// What an interrupted save left beside the file, dealt with. recoverInterruptedSaves looks at the
// folder once per kind of side file; one look first tells whether the folder holds any side file
// of any save at all, which it almost never does.
std::vector<std::string> recoverWhatIsLeft(const fs::path& named) {
    const fs::path target = replacedFileOf(named);
    const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
    std::error_code ec;
    bool any = false;
    for (fs::directory_iterator it(folder, ec), end; !any && !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        for (std::string_view marker :
             {kPendingMarker, kCompleteMarker, kOldMarker, kJournalMarker})
            any = any || name.find(marker) != std::string::npos;
    }
    // A folder that cannot be listed is looked at kind by kind all the same.
    if (!any && !ec) return {};
    return recoverInterruptedSaves(named);
}

// The locks of a run, one per file, all let go (and their files removed) at the end.
class LockSet {
public:
    // Files whose locks the caller holds.
    void heldAlready(const std::vector<fs::path>& files) {
        for (const fs::path& f : files)
            held_.push_back(fs::absolute(replacedFileOf(f)).lexically_normal());
    }
    // Takes the lock of `file` unless this set holds it already; false when another run holds it.
    bool take(const fs::path& file, const std::string& program, std::string& holder,
              std::vector<std::string>& found) {
        const fs::path key = fs::absolute(file).lexically_normal();
        if (std::find(held_.begin(), held_.end(), key) != held_.end()) return true;
        auto lock = std::make_unique<FileLock>();
        if (const FileLock::Acquired taken = lock->acquire(file, program);
            !taken && taken.error().refusal == LockRefusal::HeldByOther) {
            holder = lock->holder();
            return false;
        }
        // Unavailable (no lock file can be made there): the write itself then says why.
        if (lock->held() && !lock->staleHolder().empty())
            found.push_back(staleLockNote(lock->lockPath(), lock->staleHolder()));
        held_.push_back(key);
        locks_.push_back(std::move(lock));
        return true;
    }

private:
    std::vector<fs::path> held_;
    std::vector<std::unique_ptr<FileLock>> locks_;
};

// Each file once, as the replace writes it (a link's target), with the files that interrupted
// saves of them name.
std::vector<fs::path> filesToLock(std::span<const fs::path> named) {
    std::vector<fs::path> files;
    auto add = [&files](const fs::path& f) {
        const fs::path key = fs::absolute(f).lexically_normal();
        for (const fs::path& have : files)
            if (fs::absolute(have).lexically_normal() == key) return;
        files.push_back(f);
    };
    for (const fs::path& f : named) add(replacedFileOf(f));
    for (const fs::path& f : named)
        for (const fs::path& other : filesOfInterruptedSaves(f)) add(other);
    return files;
}

std::string busySavingNote(const fs::path& file, const std::string& holder) {
    return "The file " + file.string() + " is being saved by " + holder + "." + "\r" +
           "The files beside it whose names go on with .~new, .~done, .~old or .~pair belong to "
           "that save: leave them.";
}

std::string listOf(std::span<const CommitFile> files) {
    std::string text;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (i > 0) text += i + 1 == files.size() ? " and " : ", ";
        text += files[i].target.string();
    }
    return text;
}

} // namespace

std::uint64_t nameCountOf(const fs::path& file) {
#ifdef _WIN32
    HANDLE h = CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                           nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (h == INVALID_HANDLE_VALUE) return 1;
    BY_HANDLE_FILE_INFORMATION info{};
    const bool ok = GetFileInformationByHandle(h, &info) != 0;
    CloseHandle(h);
    return ok && info.nNumberOfLinks > 0 ? info.nNumberOfLinks : 1;
#else
    struct stat st {};
    if (::stat(file.c_str(), &st) != 0 || st.st_nlink < 1) return 1;
    return static_cast<std::uint64_t>(st.st_nlink);
#endif
}

namespace {

// Why a transaction did not commit, in words: what happened to which file, then what is on the
// disk now.
std::string commitFailureText(const CommitFailure& r, std::span<const CommitFile> files) {
    const std::string nothing = "Nothing was written: " + listOf(files) +
                                (files.size() > 1 ? " are as they were." : " is as it was.");
    const std::string file = r.file.string();
    switch (r.outcome) {
    case CommitOutcome::Busy:
        return "The file " + file + " is being saved by " + r.holder + "." + "\r" + nothing + "\r" +
               "Wait until that save is over, then save again.";
    case CommitOutcome::Changed:
        return "The file " + file + " was changed by another program after it was read." + "\r" +
               nothing + "\r" + "Open it again to see that change, then make yours again.";
    case CommitOutcome::HardLinked:
        return "The file " + file + " has " + std::to_string(r.names) +
               " names (hard links). Saving gives it a new file of its own; its other names " +
               "would keep the old content." + "\r" + nothing + "\r" +
               "To save it anyway, allow the link to be broken (--break-links).";
    case CommitOutcome::BackupFailed:
        return "The unmodified " + file + " could not be kept as " + file + ".bak." + "\r" +
               "The system said: " + describeCause(r.code) + "." + "\r" + nothing;
    case CommitOutcome::WriteFailed:
        break;
    }
    const std::string said = "The system said: " + describeCause(r.code) + ".";
    const std::string what =
        r.ownerNotKept
            ? file + " could not be written: its new file could not be given the " +
                  "owner and group of the old one."
            : file + (r.partly ? " could not take its new content." : " could not be written.");
    if (!r.partly) return what + "\r" + said + "\r" + nothing;
    return what + "\r" + said + "\r" +
           "The other files of the save hold their new content; the new " + file +
           " waits beside it and the next save or open of the level puts it in place.";
}

CommitFailure commitFailed(CommitFailure r, CommitOutcome outcome, const fs::path& file,
                           std::span<const CommitFile> files) {
    r.outcome = outcome;
    r.file = file;
    r.message = commitFailureText(r, files);
    r.cause = describeCause(r.code);
    return r;
}

} // namespace

const std::vector<std::string>& foundBy(const CommitResult& result) {
    return result ? result.value().found : result.error().found;
}

CommitResult commitFiles(std::span<const CommitFile> files, const CommitOptions& options) {
    CommitFailure r;
    std::vector<fs::path> named;
    for (const CommitFile& f : files) named.push_back(f.target);
    LockSet locks;
    locks.heldAlready(options.lockedByCaller);
    for (const fs::path& file : filesToLock(named)) {
        if (!locks.take(file, options.program, r.holder, r.found))
            return commitFailed(std::move(r), CommitOutcome::Busy, file, files);
    }
    // What an interrupted save left is dealt with first: a file it finished is no longer the one
    // this run read, and the check below says so.
    for (const fs::path& file : named)
        for (std::string& said : recoverWhatIsLeft(file)) r.found.push_back(std::move(said));

    for (const CommitFile& f : files) {
        if (stampOf(f.target) != f.readAs &&
            !(options.askWriteOver && options.askWriteOver(f.target)))
            return commitFailed(std::move(r), CommitOutcome::Changed, f.target, files);
    }
    for (const CommitFile& f : files) {
        const std::uint64_t names = nameCountOf(f.target);
        if (names > 1 && !options.breakLinks &&
            !(options.askBreakLinks && options.askBreakLinks(f.target, names))) {
            r.names = names;
            return commitFailed(std::move(r), CommitOutcome::HardLinked, f.target, files);
        }
    }
    if (options.keepBackup) {
        for (const CommitFile& f : files) {
            if (const ReplaceResult kept = options.keepBackup(f.target); !kept) {
                r.code = kept.error().code;
                return commitFailed(std::move(r), CommitOutcome::BackupFailed, f.target, files);
            }
        }
    }
    std::vector<FileContent> contents;
    for (const CommitFile& f : files) contents.push_back({f.target, f.bytes});
    if (const ReplaceResult written = replaceFilesAtomically(contents); !written) {
        const ReplaceFailure& failure = written.error();
        r.code = failure.code;
        r.partly = failure.replaced > 0;
        r.ownerNotKept = failure.step == "owner";
        return commitFailed(std::move(r), CommitOutcome::WriteFailed, failure.file, files);
    }
    return Committed{std::move(r.found)};
}

RecoveryReport recoverFiles(std::span<const fs::path> files, const std::string& program) {
    RecoveryReport report;
    LockSet locks;
    for (const fs::path& file : filesToLock(files)) {
        std::string holder;
        if (!locks.take(file, program, holder, report.found)) {
            // A live save: its side files are its own, not damage.
            if (!findInterruptedSaves(file).empty())
                report.busy.push_back(busySavingNote(file, holder));
            continue;
        }
        for (std::string& said : recoverWhatIsLeft(file)) report.found.push_back(std::move(said));
    }
    return report;
}

} // namespace torquil
