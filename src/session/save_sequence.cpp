#include "session/save_sequence.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/file_lock.h"
#include "base/work_dir.h"
#include "cars/car_names_io.h"
#include "platform/platform.h"
#include "session/style_session.h"
#include "style/section_total.h"

#include <cerrno>

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
           (cause.empty() ? std::string() : "\r" + std::string("The system said: ") + cause + ".");
}

int reportInterruptedSaves(const fs::path& styleFile, Platform& platform) {
    int count = 0;
    for (const fs::path& target :
         {styleFile, findFileNoCase(styleFile.parent_path(), "ENGLISH.FXT")}) {
        for (const fs::path& leftover : findInterruptedSaves(target)) {
            platform.message(interruptedSaveMessage(leftover, target), Buttons::Ok, Icon::Warning);
            ++count;
        }
    }
    return count;
}

std::string changedOnDiskQuestion(const fs::path& path) {
    return "The file " + path.string() + " was changed by another program after it was loaded." +
           "\r" + "Write your changes over it anyway?";
}

namespace {

bool writesStyleFile(const StyleFileState& style) {
    return style.gSaveCarInfo.size() > 1 || style.gPagesChanged || style.gClutChanged ||
           style.gDeltasChanged;
}

// Length, last write time or the file itself differ from what the load saw.
bool changedOnDisk(const StyleFileState& style) {
    const FileStamp now = stampOf(style.path);
    if (!now.exists) return false; // a missing file fails at "File Open" anyway
    return now != style.loadedStamp;
}

// What the file looks like after our own save, so the next save does not take it for a change
// made behind our back, and starts from the bytes just written.
void rememberFileState(StyleFileState& style, std::vector<std::uint8_t>& written) {
    style.loadedStamp = stampOf(style.path);
    if (style.loadedStamp.exists) style.fileLength = style.loadedStamp.length;
    style.content = std::move(written);
}

// The bytes the load (or the last save) kept still are the file on disk.
bool heldContentIsCurrent(const StyleFileState& style) {
    if (style.content.empty() || !style.loadedStamp.exists ||
        style.loadedStamp.length != static_cast<std::int64_t>(style.content.size()))
        return false;
    return stampOf(style.path) == style.loadedStamp;
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
    void buildNames();
    // Backs up and replaces the style file and ENGLISH.FXT whose new content differs from the
    // old, both complete first.
    bool writeFiles();
    bool backUpStyle();
    bool styleFailed(const ReplaceFailure& failure);

    StyleSession& s_;
    Platform& platform_;
    const SaveOptions& options_;
    BinaryFile file_;
    SaveOutcome out_;
    int error_ = err::None;
    std::vector<std::uint8_t> styleBytes_, fxtBytes_, oldFxtBytes_;
    FileLock fxtLock_;
    fs::path fxtPath_;
    bool writeNames_ = false;
    bool styleChanged_ = false; // the savers' result differs from the file's content
};

SaveOutcome SaveRun::fail(int error) {
    file_.close();
    out_.result = SaveResult::Failed;
    out_.failedStep = s_.stepText;
    out_.errorNumber = error;
    platform_.message(saveFailureMessage(s_.stepText, s_.style.path, out_.backup, out_.cause));
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
    if (isWriteProtected(style.path, ec)) {
        out_.cause = describeCause(ec);
        error_ = err::PathFileAccess;
        return false;
    }
    // The content of the last save is used while the file on disk is still what it wrote;
    // otherwise the file is read. The savers change it in place and the in-memory file notes
    // whether any byte changed, so no second copy is needed to compare.
    std::vector<std::uint8_t> bytes;
    if (heldContentIsCurrent(style)) {
        bytes = std::move(style.content);
    } else if (!readWholeFile(style.path, bytes)) {
        out_.cause = describeCause(std::error_code(errno, std::generic_category()));
        error_ = err::PathFileAccess;
        return false;
    }
    style.content.clear();
    file_.openInMemory(style.path, std::move(bytes));
    return true;
}

// Nothing is written before the file as it was is safe in its .bak (the file on disk is still
// untouched here).
bool SaveRun::backUpStyle() {
    std::error_code ec;
    if (options_.backups->ensureBackup(s_.style.path, ec)) return true;
    out_.cause = describeCause(ec);
    error_ = err::PathFileAccess;
    return false;
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

// ENGLISH.FXT is not part of the style file: a failure to build it has its own messages and does
// not stop the style file's save.
void SaveRun::buildNames() {
    BusyCursor busy(platform_);
    fxtPath_ = findFileNoCase(s_.style.dataFolder(), "ENGLISH.FXT");
    // Levels in one folder share ENGLISH.FXT: one writer at a time, and never over a newer file.
    if (fxtLock_.acquire(fxtPath_, lockProgramName()) == FileLock::Result::HeldByOther) {
        platform_.message(lockHeldMessage(fxtPath_, fxtLock_.holder()));
        return;
    }
    if (s_.names.fromFxt && fxtChangedSinceLoad(s_.names, fxtPath_) &&
        platform_.message(changedOnDiskQuestion(fxtPath_), Buttons::YesNo, Icon::Warning) !=
            Answer::Yes)
        return;
    if (!options_.savers.carNames || !options_.savers.carNames(s_, platform_, fxtBytes_)) return;
    // Names that come out as the file already holds them leave it (and its .bak) alone.
    const bool read = readWholeFile(fxtPath_, oldFxtBytes_);
    if (read && oldFxtBytes_ == fxtBytes_ && !options_.writeUnchanged) {
        s_.style.gCarNamesChanged = false;
        return;
    }
    std::error_code ec;
    // A file that could not be read is copied, so the copy names the cause.
    if (!(read ? options_.backups->ensureBackup(fxtPath_, oldFxtBytes_, ec)
               : options_.backups->ensureBackup(fxtPath_, ec))) {
        platform_.message(
            "ENGLISH.FXT could not be copied to " + backupPathOf(fxtPath_).string() +
            ", so the car names were not saved.\rThe system said: " + describeCause(ec) + ".");
        return;
    }
    writeNames_ = true;
}

bool SaveRun::writeFiles() {
    std::vector<FileContent> files;
    if (styleChanged_) files.push_back({s_.style.path, styleBytes_});
    if (writeNames_) files.push_back({fxtPath_, fxtBytes_});
    if (files.empty()) return true;
    checkpoint("Files Built");
    const ReplaceFailure failure = replaceFilesAtomically(files);
    if (!failure) {
        if (styleChanged_) rememberFileState(s_.style, styleBytes_);
        checkpoint("Files Replaced");
        return true;
    }
    if (writeNames_ && failure.file == fxtPath_) {
        // ENGLISH.FXT has its own message and does not stop the style file's save.
        platform_.message(std::string("Error occured during write of FXT file.") + "\r" +
                          "The system said: " + describeCause(failure.cause) + ".");
        writeNames_ = false;
        if (!styleChanged_) return true;
        if (failure.replaced == 0) {
            if (const ReplaceFailure alone = replaceFileAtomically(s_.style.path, styleBytes_))
                return styleFailed(alone);
        }
        rememberFileState(s_.style, styleBytes_);
        return true;
    }
    return styleFailed(failure);
}

bool SaveRun::styleFailed(const ReplaceFailure& failure) {
    s_.stepText = "Write STYLE file";
    out_.cause = describeCause(failure.cause);
    const std::error_condition c = failure.cause.default_error_condition();
    error_ = c == std::errc::no_space_on_device ? err::DiskFull : err::PathFileAccess;
    return false;
}

SaveOutcome SaveRun::run() {
    StyleFileState& style = s_.style;
    const SaverSet& savers = options_.savers;
    const bool toStyle = writesStyleFile(style);

    begin("File Open");
    // One save of a file at a time, across every run of the program on this machine.
    FileLock lock;
    if (toStyle || style.gCarNamesChanged) {
        if (lock.acquire(style.path, lockProgramName()) == FileLock::Result::HeldByOther)
            return refuse(lockHeldMessage(style.path, lock.holder()));
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

    if (style.gSaveCarInfo.size() > 1 && !runSaver("Save Car Info", savers.carInfo))
        return fail(error_);
    if (style.gPagesChanged && !runSaver("Save Pages", savers.pages)) return fail(error_);
    if (style.gClutChanged && !runSaver("Save CLUT", savers.clut)) return fail(error_);
    if (style.gDeltasChanged && !saveDeltasAndCut()) return fail(error_);
    if (out_.styleWritten) {
        if (s_.errors.hasPending()) return fail(s_.errors.pending());
        file_.close();
        styleBytes_ = file_.takeBytes();
        // A result equal to the file's content is not written, nor backed up.
        styleChanged_ = options_.writeUnchanged || file_.memoryChanged();
        if (!styleChanged_) style.content = std::move(styleBytes_);
        if (styleChanged_ && !backUpStyle()) return fail(error_);
    }

    const bool namesToSave = style.gCarNamesChanged;
    if (namesToSave) buildNames();
    if (!writeFiles()) return fail(error_);
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
    SaveRun run(session, platform, options);
    return run.run();
}

} // namespace torquil
