#pragma once
// The window's file dialogs for files a modder exports and imports: each kind of file starts in
// the folder last used for that kind (kept in the settings), a picture's format follows its
// extension, and writing over an existing file is asked first.

#include <QString>

#include <functional>
#include <string>

class QFileDialog;
class QWidget;

namespace torquil {

class Platform;

// Kinds of files whose last folder is remembered apart.
enum class FileKind { Sprite, DeltaSet, Sound, Dump };

// The settings key of a kind's last folder, in the section "Folders": "Sprite", "DeltaSet", ...
inline constexpr const char* kFoldersSection = "Folders";
[[nodiscard]] std::string folderKey(FileKind kind);
// The folder last used for a kind; `fallback` when none was used yet or it no longer exists.
[[nodiscard]] QString lastFolder(Platform& platform, FileKind kind, const QString& fallback);
// Remembers the folder of `file` for its kind.
void rememberFolder(Platform& platform, FileKind kind, const QString& file);

// What to ask for: the dialog's title, the kind, reading or writing, the suggested file name
// (no folder: the dialog starts in the kind's last folder) and the name filters.
struct FileRequest {
    QString title;
    FileKind kind = FileKind::Sprite;
    bool forSaving = false;
    QString suggestedName;
    QString filters;
    // Added to a name typed without an extension; empty: a picture, whose extension follows the
    // chosen filter (pictureFileToWrite).
    QString defaultSuffix;
};

// Asks for a file: builds the dialog (its own overwrite question is off: `askReplace` asks
// instead, through the platform, so the question is the program's own), runs it through
// `run` (exec() in the window; a test drives it), and for a file to write adds the extension
// (the chosen picture filter's, or the default suffix) to a name typed without one. Empty when
// cancelled or when the user did not want the existing file replaced. The folder of the answer is
// remembered.
[[nodiscard]] QString chooseFile(QWidget* parent, Platform& platform, const QString& fallbackFolder,
                                 const FileRequest& request,
                                 const std::function<int(QFileDialog&)>& run);

// "<file> already exists.\rReplace it?" with Yes and No; true when the file does not exist or
// the user answered Yes.
[[nodiscard]] bool askReplace(Platform& platform, const QString& file, const QString& title);

} // namespace torquil
