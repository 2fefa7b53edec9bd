#include "session/save_sequence.h"

#include "base/binary_file.h"
#include "base/work_dir.h"
#include "platform/platform.h"
#include "session/style_session.h"

namespace torquil {

namespace fs = std::filesystem;

std::string saveFailureMessage(const std::string& step, const fs::path& path,
                               const fs::path& backup) {
    std::error_code ec;
    const std::string backupLine = fs::exists(backup, ec)
                                       ? "The original file is kept as " + backup.string() + "."
                                       : "There is no backup copy at " + backup.string() + ".";
    return "ERROR: " + step + "\r" +
           "There was a problem during the save of change to the KRB STYLE file." + "\r" +
           "Please check that you are not editing the file while KRB is trying to use it!" + "\r" +
           "The file may have become corrupt, you may have to reinstall the " + path.string() +
           " from the KRB CD." + "\r" + backupLine;
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

// Size or last write time differ from what the load saw.
bool changedOnDisk(const StyleFileState& style) {
    std::error_code ec;
    const auto size = fs::file_size(style.path, ec);
    if (ec) return false; // a missing file fails at "File Open" anyway
    const auto written = fs::last_write_time(style.path, ec);
    if (ec) return false;
    return static_cast<std::int64_t>(size) != style.fileLength || written != style.loadedWriteTime;
}

// What the file looks like after our own save, so the next save does not take it for a change
// made behind our back.
void rememberFileState(StyleFileState& style) {
    std::error_code ec;
    const auto size = fs::file_size(style.path, ec);
    if (!ec) style.fileLength = static_cast<std::int64_t>(size);
    const auto written = fs::last_write_time(style.path, ec);
    if (!ec) style.loadedWriteTime = written;
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
    // Runs one saver under its step text; false when it returned an error.
    bool runSaver(const char* step, const StyleSaver& saver);
    bool saveDeltasAndCut();
    void saveNames();

    StyleSession& s_;
    Platform& platform_;
    const SaveOptions& options_;
    BinaryFile file_;
    SaveOutcome out_;
    int error_ = err::None;
};

SaveOutcome SaveRun::fail(int error) {
    file_.close();
    out_.result = SaveResult::Failed;
    out_.failedStep = s_.stepText;
    out_.errorNumber = error;
    if (out_.styleWritten) rememberFileState(s_.style);
    platform_.message(saveFailureMessage(s_.stepText, s_.style.path, out_.backup));
    return out_;
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

// After the delta store moved: the sprite numbers record goes right behind it and the file is
// cut just after the record.
bool SaveRun::saveDeltasAndCut() {
    if (!runSaver("Save Deltas", options_.savers.deltas)) return false;
    StyleFileState& style = s_.style;
    file_.seek(style.gSeekGraphicsEnd);
    for (std::int16_t count : s_.sprites.spriteNumbers) file_.writeI16(count);
    const std::int64_t end = file_.position();
    file_.flush();
    file_.close();
    if (s_.errors.hasPending()) {
        error_ = s_.errors.pending();
        return false;
    }
    style.gSeekSpriteNumbers = style.gSeekGraphicsEnd;
    checkpoint("Sprite Numbers Written");

    std::error_code ec;
    const auto before = static_cast<std::int64_t>(fs::file_size(style.path, ec));
    error_ = shrinkStyleFile(style.path, end, platform_, options_.checkpoint);
    out_.shrunk = error_ == err::None && !ec && before > end;
    return error_ == err::None;
}

// ENGLISH.FXT is not part of the style file: a failure here has its own messages and does not
// undo the save.
void SaveRun::saveNames() {
    BusyCursor busy(platform_);
    const fs::path fxt = findFileNoCase(s_.style.dataFolder(), "ENGLISH.FXT");
    std::error_code ec;
    if (!options_.backups->ensureBackup(fxt, ec)) {
        platform_.message("ENGLISH.FXT could not be copied to " + backupPathOf(fxt).string() +
                          ", so the car names were not saved.");
        return;
    }
    out_.namesSaved = options_.savers.carNames && options_.savers.carNames(s_, platform_);
    if (out_.namesSaved) s_.style.gCarNamesChanged = false;
}

SaveOutcome SaveRun::run() {
    StyleFileState& style = s_.style;
    const SaverSet& savers = options_.savers;
    const bool toStyle = writesStyleFile(style);

    begin("File Open");
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
    if (!file_.open(style.path, BinaryFile::Mode::ReadWrite)) return fail(s_.errors.pending());
    if (toStyle) {
        // Nothing is written before the original is safe in its .bak.
        std::error_code ec;
        if (!options_.backups->ensureBackup(style.path, ec)) return fail(err::PathFileAccess);
    }
    checkpoint("File Open");

    if (style.gSaveCarInfo.size() > 1 && !runSaver("Save Car Info", savers.carInfo))
        return fail(error_);
    if (style.gPagesChanged && !runSaver("Save Pages", savers.pages)) return fail(error_);
    if (style.gClutChanged && !runSaver("Save CLUT", savers.clut)) return fail(error_);
    if (style.gDeltasChanged) {
        if (!saveDeltasAndCut()) return fail(error_);
    } else {
        file_.flush();
        file_.close();
        if (s_.errors.hasPending()) return fail(s_.errors.pending());
    }
    if (toStyle) rememberFileState(style);

    if (style.gCarNamesChanged) saveNames();
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
