#pragma once
// "Save Changes": writes every changed part into the style file's content in the game's fixed
// order (car info, pages, CLUT, deltas), moves the sprite numbers record and cuts the file after
// a delta save, then builds ENGLISH.FXT for changed car names. The savers work on the file's
// content in memory; the two new files are then written as one transaction (commitFiles): both or
// neither, under both files' locks, each checked to be still the file the save read. The modder's
// original style file and ENGLISH.FXT are copied to ".bak" files before the program first writes
// them. The save refuses a file whose header does not add up to its length and names the system's
// cause of a failure. A save that writes nothing leaves every edit pending. A file whose new
// content equals its old content is left alone, .bak and all (SaveOutcome::nothingChanged).

#include "base/app_options.h"
#include "session/edits.h" // markAllChanged
#include "session/file_backups.h"
#include "session/shrink_style_file.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace torquil {

class BinaryFile;
class Platform;
class StyleSession;

// A saver writes its part into the open style file and returns 0 or a run-time error number.
using StyleSaver = std::function<int(StyleSession&, BinaryFile&, Platform&)>;
// The car names saver builds the new ENGLISH.FXT (the save writes it); true on success.
using NamesSaver = std::function<bool(StyleSession&, Platform&, std::vector<std::uint8_t>& fxt)>;

struct SaverSet {
    StyleSaver carInfo; // "Save Car Info"
    StyleSaver pages;   // "Save Pages"
    StyleSaver clut;    // "Save CLUT"
    StyleSaver deltas;  // "Save Deltas"
    NamesSaver carNames;
};

// The savers of every part of the program.
[[nodiscard]] SaverSet standardSavers();

struct SaveOptions {
    SaverSet savers = standardSavers();
    // What to do with a file that has other names (hard links); unset: the session's options.
    std::optional<LinkPolicy> links;
    BackupRegistry* backups = &processBackups();
    SaveCheckpoint checkpoint; // named points of the save, for tests that play a crash
    // Write (and back up) files whose new content equals the old too: a test of the writing.
    bool writeUnchanged = false;
};

enum class SaveResult {
    Saved,    // every change written
    Declined, // the file changed on disk and the user chose not to write over it
    Failed    // a step failed; the failure message was shown
};

struct SaveOutcome {
    SaveResult result = SaveResult::Saved;
    std::string failedStep;         // the step text quoted in the failure message
    int errorNumber = 0;            // the run-time error that stopped it
    std::vector<std::string> steps; // step texts in the order they ran
    bool styleWritten = false;      // a saver wrote into the style file
    bool shrunk = false;            // the file was cut through its "~" copy
    bool namesSaved = false;        // ENGLISH.FXT was rewritten
    // There were changes to save, but the new content of each file equals what the file holds:
    // no file (and no .bak) was written. Every command and the window tell the user so.
    bool nothingChanged = false;
    std::filesystem::path backup; // the style file's ".bak"
    std::string cause;            // the system's cause of a failed write ("disk full")

    // The window disables the save command until the next change after a save that went through.
    [[nodiscard]] bool disableSaveCommand() const { return result == SaveResult::Saved; }
};

// mnuSaveBlock_Click without the window: the real savers and this run's backups.
[[nodiscard]] SaveOutcome saveChanges(StyleSession& session, Platform& platform);
[[nodiscard]] SaveOutcome saveChanges(StyleSession& session, Platform& platform,
                                      const SaveOptions& options);

// The message of a failed save, lines joined with "\r", ending with where the backup is and, when
// the system gave one, its cause.
[[nodiscard]] std::string saveFailureMessage(const std::string& step,
                                             const std::filesystem::path& path,
                                             const std::filesystem::path& backup,
                                             const std::string& cause = {});

// Finishes or rolls back a save of the style file and its ENGLISH.FXT that was cut short, removes
// the side and lock files it left, and says what it found (one message each); a save still
// running in another run is named as such and left alone. Called by the load before it reads
// either file. Returns how many messages were shown.
[[nodiscard]] int reportInterruptedSaves(const std::filesystem::path& styleFile,
                                         Platform& platform);

// The question asked before a save splits a file from its other names (hard links).
[[nodiscard]] std::string hardLinkQuestion(const std::filesystem::path& path, std::uint64_t names);

// The question asked before writing over a style file that changed on disk since it was loaded.
[[nodiscard]] std::string changedOnDiskQuestion(const std::filesystem::path& path);

} // namespace torquil
