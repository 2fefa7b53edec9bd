#include "session/save_sequence.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/cause_advice.h"
#include "base/file_lock.h"
#include "base/file_transaction.h"
#include "base/work_dir.h"
#include "cars/car_names_io.h"
#include "platform/platform.h"
#include "session/sprite_layout.h"
#include "session/style_session.h"
#include "style/section_total.h"

#include <cerrno>
#include <optional>

namespace torquil {

namespace fs = std::filesystem;

std::string saveFailureMessage(const std::string& step, const fs::path& path,
                               const fs::path& backup, const std::string& cause) {
    std::error_code ec;
    const std::string backupLine = fs::exists(backup, ec)
                                       ? "The original file is kept as " + backup.string() + "."
                                       : "There is no backup copy at " + backup.string() + ".";
    return "ERROR: " + step + "\r" +
           "There was a problem during the save of change to the KRB STYLE file." + "\r" +
           "Please check that you are not editing the file while KRB is trying to use it!" + "\r" +
           "The file may have become corrupt, you may have to reinstall the " + path.string() +
           " from the KRB CD." + "\r" + backupLine +
           (cause.empty() ? std::string() : "\r" + std::string("The system said: ") + cause + ".") +
           // The cause decides what to do: a read-only file needs no reinstalling.
           (causeAdvice(cause, Access::Writing).empty()
                ? std::string()
                : "\r" + causeAdvice(cause, Access::Writing));
}

int reportInterruptedSaves(const fs::path& styleFile, Platform& platform) {
    const fs::path files[] = {styleFile, findFileNoCase(styleFile.parent_path(), "ENGLISH.FXT")};
    const RecoveryReport report = recoverFiles(files);
    for (const std::string& text : report.busy) platform.message(text, Buttons::Ok, Icon::Warning);
    for (const std::string& text : report.found) platform.message(text, Buttons::Ok, Icon::Warning);
    return static_cast<int>(report.found.size() + report.busy.size());
}

std::string hardLinkQuestion(const fs::path& path, std::uint64_t names) {
    return "The file " + path.string() + " has " + std::to_string(names) +
           " names (hard links): they all lead to the same file." + "\r" +
           "Saving gives it a new file of its own; its other names keep the old content." + "\r" +
           "Save anyway?";
}

std::string changedOnDiskQuestion(const fs::path& path) {
    return "The file " + path.string() + " was changed by another program after it was loaded." +
           "\r" + "Write your changes over it anyway?";
}

namespace {

bool writesStyleFile(const StyleFileState& style) {
    return style.gSaveCarInfo.size() > 1 || style.gPagesChanged || style.gClutChanged ||
           style.gDeltasChanged || style.gLayoutChanged;
}

// Length, last write time or the file itself differ from what the load saw.
bool changedOnDisk(const StyleFileState& style) {
    const FileStamp now = stampOf(style.path);
    if (!now.exists) return false; // a missing file fails at "File Open" anyway
    return now != style.loadedStamp;
}

// What the file looks like after our own save, so the next save does not take it for a change
// made behind our back.
void rememberFileState(StyleFileState& style) {
    style.loadedStamp = stampOf(style.path);
    if (style.loadedStamp.exists) style.fileLength = style.loadedStamp.length;
}

class SaveRun {
public:
    SaveRun(StyleSession& session, Platform& platform, const SaveOptions& options)
        : s_(session), platform_(platform), options_(options), file_(session.errors) {
        out_.backup = backupPathOf(session.style.path);
    }

    SaveOutcome run();

private:
    void begin(const char* step) {
        s_.stepText = step;
        out_.steps.emplace_back(step);
    }
    void checkpoint(std::string_view point) {
        if (options_.checkpoint) options_.checkpoint(point);
    }
    SaveOutcome fail(int error);
    SaveOutcome refuse(const std::string& message);
    // Takes the style file's content into memory; false (error_ set) when it cannot be written.
    bool openContent();
    // Runs one saver under its step text; false when it returned an error.
    bool runSaver(const char* step, const StyleSaver& saver);
    bool saveDeltasAndCut();
    // Builds the new ENGLISH.FXT; false when the save must stop (the message was shown).
    bool buildNames();
    // Replaces the style file and ENGLISH.FXT with their new content as one transaction: both
    // or neither. False when nothing was written (out_ says why, the message was shown).
    bool writeFiles();
    bool styleFailed(const CommitFailure& failure);

    StyleSession& s_;
    Platform& platform_;
    const SaveOptions& options_;
    BinaryFile file_;
    SaveOutcome out_;
    int error_ = err::None;
    std::vector<std::uint8_t> styleBytes_, fxtBytes_;
    FileStamp styleReadAs_; // the style file as its content was read for the savers
    // Held from before the backups until the files are replaced, so that no other run (nor the
    // next open's clean-up) touches this save's side files.
    FileLock styleLock_, fxtLock_;
    fs::path fxtPath_;
    bool writeNames_ = false;
    std::string pairLine_;      // after a failed write of both files: that neither was written
    bool styleChanged_ = false; // the savers' result differs from the file's content
    SpriteInfoRewrite layout_;  // the section positions to put back when the save fails
};

SaveOutcome SaveRun::fail(int error) {
    file_.close();
    layout_.restore(s_);
    out_.result = SaveResult::Failed;
    out_.failedStep = s_.stepText;
    out_.errorNumber = error;
    std::string text = saveFailureMessage(s_.stepText, s_.style.path, out_.backup, out_.cause);
    if (!pairLine_.empty()) text += "\r" + pairLine_;
    platform_.message(text);
    return out_;
}

SaveOutcome SaveRun::refuse(const std::string& message) {
    out_.result = SaveResult::Failed;
    out_.failedStep = s_.stepText;
    out_.errorNumber = err::PathFileAccess;
    platform_.message(message, Buttons::Ok, Icon::Critical);
    return out_;
}

bool SaveRun::openContent() {
    StyleFileState& style = s_.style;
    std::error_code ec;
    if (!fs::is_regular_file(style.path, ec)) {
        error_ = err::FileNotFound;
        return false;
    }
    if (const ReplaceResult writable = checkWritable(style.path); !writable) {
        out_.cause = writable.error().cause;
        error_ = err::PathFileAccess;
        return false;
    }
    std::vector<std::uint8_t> kept;
    // The bytes the load kept are the file's while it has the stamp they were read with.
    if (s_.keptStyle.takeIfUnchanged(style.path, kept, styleReadAs_)) {
        file_.openInMemory(style.path, std::move(kept));
        return true;
    }
    styleReadAs_ = stampOf(style.path);
    auto bytes = readWholeFile(style.path);
    if (!bytes) {
        out_.cause = bytes.error().cause;
        error_ = err::PathFileAccess;
        return false;
    }
    file_.openInMemory(style.path, std::move(bytes).value());
    return true;
}

bool SaveRun::runSaver(const char* step, const StyleSaver& saver) {
    begin(step);
    out_.styleWritten = true;
    // A part without a saver must not pass for saved.
    error_ = saver ? saver(s_, file_, platform_) : err::InvalidCall;
    if (error_ == err::None && s_.errors.hasPending()) error_ = s_.errors.pending();
    checkpoint(step);
    return error_ == err::None;
}

// After the delta store moved: the sprite numbers record goes right behind it and the content is
// cut just after the record.
bool SaveRun::saveDeltasAndCut() {
    if (!runSaver("Save Deltas", options_.savers.deltas)) return false;
    StyleFileState& style = s_.style;
    file_.seek(style.gSeekGraphicsEnd);
    std::vector<std::uint8_t> numbers(s_.sprites.spriteNumbers.size() * 2);
    for (std::size_t i = 0; i < s_.sprites.spriteNumbers.size(); ++i)
        putI16(&numbers[2 * i], s_.sprites.spriteNumbers[i]);
    file_.write(numbers);
    const std::int64_t end = file_.position();
    if (s_.errors.hasPending()) {
        error_ = s_.errors.pending();
        return false;
    }
    style.gSeekSpriteNumbers = style.gSeekGraphicsEnd;
    checkpoint("Sprite Numbers Written");

    const std::int64_t before = file_.length();
    error_ = shrinkStyleContent(file_, end, platform_);
    out_.shrunk = error_ == err::None && before > end;
    return error_ == err::None;
}

bool SaveRun::buildNames() {
    BusyCursor busy(platform_);
    fxtPath_ = findFileNoCase(s_.style.dataFolder(), "ENGLISH.FXT");
    const NamesSaver& saver = options_.savers.carNames;
    if (!s_.names.fromFxt) {
        // No ENGLISH.FXT was read: there is no file to save the names into (the saver says so),
        // and the style file's own changes are saved.
        if (saver) (void)saver(s_, platform_, fxtBytes_);
        return true;
    }
    if (const FileLock::Acquired taken =
            fxtLock_.acquire(replacedFileOf(fxtPath_), lockProgramName());
        !taken && taken.error().refusal == LockRefusal::HeldByOther) {
        s_.stepText = "Save Car Names";
        (void)refuse(lockHeldMessage(fxtPath_, fxtLock_.holder()));
        return false;
    }
    if (!fxtLock_.staleHolder().empty())
        platform_.message(staleLockNote(fxtLock_.lockPath(), fxtLock_.staleHolder()), Buttons::Ok,
                          Icon::Warning);
    writeNames_ = saver && saver(s_, platform_, fxtBytes_);
    if (!writeNames_) {
        out_.result = SaveResult::Failed;
        out_.failedStep = s_.stepText = "Save Car Names";
        return false;
    }
    // Names that come out as the file already holds them leave it (and its .bak) alone.
    const auto unchanged = [this] {
        const auto old = readWholeFile(fxtPath_);
        return old && *old == fxtBytes_;
    };
    if (!options_.writeUnchanged && unchanged()) {
        writeNames_ = false;
        s_.style.gCarNamesChanged = false;
        return true;
    }
    if (const ReplaceResult kept = options_.backups->ensureBackup(fxtPath_); !kept) {
        platform_.message(
            "ENGLISH.FXT could not be copied to " + backupPathOf(fxtPath_).string() +
            ", so nothing was saved.\rThe system said: " + describeCause(kept.error().code) + ".");
        out_.result = SaveResult::Failed;
        out_.failedStep = s_.stepText = "Save Car Names";
        writeNames_ = false;
        return false;
    }
    return true;
}

bool SaveRun::writeFiles() {
    std::vector<CommitFile> files;
    if (styleChanged_) files.push_back({s_.style.path, styleBytes_, styleReadAs_});
    if (writeNames_) files.push_back({fxtPath_, fxtBytes_, s_.names.fxtStamp});
    if (files.empty()) return true;
    checkpoint("Files Built");
    CommitOptions commit;
    if (styleLock_.held()) commit.lockedByCaller.push_back(s_.style.path);
    if (fxtLock_.held()) commit.lockedByCaller.push_back(fxtPath_);
    commit.askWriteOver = [this](const fs::path& file) {
        return platform_.message(changedOnDiskQuestion(file), Buttons::YesNo, Icon::Warning) ==
               Answer::Yes;
    };
    const LinkPolicy links = options_.links ? *options_.links : s_.options.links;
    commit.breakLinks = links == LinkPolicy::Break;
    if (links == LinkPolicy::Ask)
        commit.askBreakLinks = [this](const fs::path& file, std::uint64_t names) {
            return platform_.message(hardLinkQuestion(file, names), Buttons::YesNo,
                                     Icon::Warning) == Answer::Yes;
        };
    const CommitResult result = commitFiles(files, commit);
    for (const std::string& text : foundBy(result))
        platform_.message(text, Buttons::Ok, Icon::Warning);
    if (result) {
        if (styleChanged_) rememberFileState(s_.style);
        checkpoint("Files Replaced");
        return true;
    }
    const CommitFailure& failure = result.error();
    switch (failure.outcome) {
    case CommitOutcome::Changed:
        // The user was asked and chose not to write over the other program's save.
        out_.result = SaveResult::Declined;
        return false;
    case CommitOutcome::Busy:
    case CommitOutcome::HardLinked:
    case CommitOutcome::BackupFailed:
        (void)refuse(failure.message);
        return false;
    case CommitOutcome::WriteFailed:
        break;
    }
    if (failure.file == fxtPath_ || failure.partly) {
        s_.stepText = "Save Car Names";
        out_.cause = failure.cause;
        (void)refuse(std::string("Error occured during write of FXT file.") + "\r" +
                     failure.message);
        return false;
    }
    if (files.size() > 1)
        pairLine_ = "ENGLISH.FXT was not written either: " + fxtPath_.string() + " is as it was.";
    return styleFailed(failure);
}

bool SaveRun::styleFailed(const CommitFailure& failure) {
    s_.stepText = "Write STYLE file";
    out_.cause = failure.cause;
    if (failure.ownerNotKept)
        out_.cause = "the new file could not be given the owner and group of the old one (" +
                     out_.cause + ")";
    const std::error_condition c = failure.code.default_error_condition();
    error_ = c == std::errc::no_space_on_device ? err::DiskFull : err::PathFileAccess;
    (void)fail(error_);
    return false;
}

SaveOutcome SaveRun::run() {
    StyleFileState& style = s_.style;
    const SaverSet& savers = options_.savers;
    const bool toStyle = writesStyleFile(style);

    begin("File Open");
    // One save of a file at a time, across every run of the program on this machine.
    if (toStyle || style.gCarNamesChanged) {
        if (const FileLock::Acquired taken =
                styleLock_.acquire(replacedFileOf(style.path), lockProgramName());
            !taken && taken.error().refusal == LockRefusal::HeldByOther)
            return refuse(lockHeldMessage(style.path, styleLock_.holder()));
        if (!styleLock_.staleHolder().empty())
            platform_.message(staleLockNote(styleLock_.lockPath(), styleLock_.staleHolder()),
                              Buttons::Ok, Icon::Warning);
    }
    if (toStyle && changedOnDisk(style)) {
        Answer answer =
            platform_.message(changedOnDiskQuestion(style.path), Buttons::YesNo, Icon::Warning);
        if (answer != Answer::Yes) {
            out_.result = SaveResult::Declined;
            return out_;
        }
    }
    // Each save starts from no pending error, so the error it reports is its own.
    s_.errors.clear();
    if (toStyle) {
        if (!openContent()) return fail(error_);
        // A header whose sections do not add up to the length would be written back damaged.
        std::vector<std::uint8_t> head(static_cast<std::size_t>(style.header.headSize()));
        file_.seek(1);
        file_.read(head);
        const std::string mismatch = sectionMismatch(
            style.path, parseStyleHeader(head.data(), style.header.is24), file_.length());
        if (!mismatch.empty()) return refuse(mismatch);
    } else {
        std::error_code ec;
        if (!fs::is_regular_file(style.path, ec)) return fail(err::FileNotFound);
    }
    checkpoint("File Open");

    // A sprite moved or resized: the sprite info section first, as the places of the pages and the
    // delta store behind it follow from its length.
    if (style.gLayoutChanged &&
        !runSaver("Save Sprite Info", [this](StyleSession& s, BinaryFile& f, Platform&) {
            return layout_.apply(s, f);
        }))
        return fail(error_);
    // Each delta's entry lies where the sprite records put it (edits that change delta counts and
    // their undo leave the loaded positions behind).
    if (style.gDeltasChanged) placeDeltaEntries(s_);
    if (style.gSaveCarInfo.size() > 1 && !runSaver("Save Car Info", savers.carInfo))
        return fail(error_);
    if (style.gPagesChanged && !runSaver("Save Pages", savers.pages)) return fail(error_);
    if (style.gClutChanged && !runSaver("Save CLUT", savers.clut)) return fail(error_);
    if (style.gDeltasChanged && !saveDeltasAndCut()) return fail(error_);
    if (out_.styleWritten) {
        if (s_.errors.hasPending()) return fail(s_.errors.pending());
        file_.close();
        // A result equal to the file's content is not written, nor backed up.
        styleChanged_ = options_.writeUnchanged || file_.memoryChanged();
        styleBytes_ = file_.takeBytes();
        // Nothing is written before the file as it was is safe in its .bak.
        if (styleChanged_) {
            if (const ReplaceResult kept = options_.backups->ensureBackup(style.path); !kept) {
                out_.cause = describeCause(kept.error().code);
                return fail(err::PathFileAccess);
            }
        }
    }

    const bool namesToSave = style.gCarNamesChanged;
    if (namesToSave && !buildNames()) return out_;
    if (!writeFiles()) return out_;
    out_.nothingChanged = (out_.styleWritten || namesToSave) && !styleChanged_ && !writeNames_ &&
                          !style.gCarNamesChanged;
    if (writeNames_) {
        rememberFxtState(s_.names, fxtPath_);
        out_.namesSaved = true;
        style.gCarNamesChanged = false;
        platform_.message(kCarNamesSavedNote);
    }
    return out_;
}

} // namespace

SaveOutcome saveChanges(StyleSession& session, Platform& platform) {
    return saveChanges(session, platform, SaveOptions{});
}

SaveOutcome saveChanges(StyleSession& session, Platform& platform, const SaveOptions& options) {
    // The savers clear their flags and move the section positions as they go; a save that writes
    // nothing puts them back, so every edit stays pending and the next save writes them all.
    const StyleFileState style = session.style;
    std::optional<DeltaTable> deltas;
    if (style.gDeltasChanged) deltas = session.deltas;
    SaveRun run(session, platform, options);
    SaveOutcome outcome = run.run();
    if (outcome.result != SaveResult::Saved) {
        session.style = style;
        if (deltas) session.deltas = std::move(*deltas);
    }
    return outcome;
}

} // namespace torquil
