// The car pack commands: File > Build > "GC3 Car Pack" writes a pack of the open level's saved
// changes and shows what it holds; "Load GC3 Car Pack" shows what a pack changes in the open
// level, asks, applies it and reloads the level.

#include "app/build_car_pack_form.h"
#include "app/car_pack_preview_form.h"
#include "app/load_form.h"
#include "app/main_form.h"
#include "base/binary_file.h"
#include "platform/qt/qt_platform.h"
#include "session/car_pack.h"
#include "session/car_pack_preview.h"
#include "session/file_backups.h"

#include <QFileInfo>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr const char* kOpenLevelFirst = "Open the level of the car pack first.";

// The bytes of a file, empty when there is none.
std::vector<std::uint8_t> bytesOf(const fs::path& path) {
    std::vector<std::uint8_t> bytes;
    std::error_code ec;
    if (fs::is_regular_file(path, ec) && !readWholeFile(path, bytes)) bytes.clear();
    return bytes;
}

QString fileNameOf(const fs::path& path) {
    return QString::fromStdString(path.filename().string());
}

} // namespace

void MainForm::mnuBuildGC3_Click() {
    if (!session_->style.loaded) {
        platform_.message(kOpenLevelFirst, Buttons::Ok, Icon::Information);
        return;
    }
    // The pack is made from the files on disk: unsaved changes would be missing from it.
    if (!askToSaveChanges()) return;
    const CarPackFiles level = levelFiles(session_->style);
    const CarPackFiles originals = levelBackups(session_->style);
    BuildCarPackForm form(
        {level.style, level.fxt, originals.style, originals.fxt, defaultPackPath(level.style)},
        platform_, this);
    if (execDialog(form) != QDialog::Accepted) return;
    const BuildCarPackForm::Paths p = form.paths();
    if (!writeGC3(p.modStyle, p.origStyle, p.modFxt, p.origFxt, p.pack, platform_)) return;

    Gc3Pack pack;
    if (!readCarPack(p.pack, pack, platform_)) return;
    CarPackPreview preview;
    std::string why;
    if (!previewCarPack(pack, *session_, bytesOf(p.origStyle), bytesOf(p.origFxt), preview, why)) {
        platform_.message("GC3 file written:\r" + p.pack.string() + "\r" + why, Buttons::Ok,
                          Icon::Information);
        return;
    }
    CarPackPreviewForm shown(preview, fileNameOf(p.pack), CarPackPreviewForm::Purpose::Built, this);
    execDialog(shown);
}

void MainForm::mnuLoadGC3_Click() {
    LoadForm dialog(DialogMode::CarPack, session_->style, platform_, this);
    if (execDialog(dialog) != QDialog::Accepted || dialog.chosenPath().isEmpty()) return;
    applyCarPackFile(dialog.chosenPath());
}

bool MainForm::applyCarPackFile(const QString& path) {
    if (!session_->style.loaded) {
        platform_.message(kOpenLevelFirst, Buttons::Ok, Icon::Information);
        return false;
    }
    // The pack is checked against the files on disk, and the level is read again from them.
    if (!askToSaveChanges()) return false;
    const fs::path packPath(path.toStdString());
    Gc3Pack pack;
    std::optional<Gc3Trailer> trailer;
    if (!readCarPack(packPath, pack, platform_, &trailer)) return false;
    const CarPackFiles files = levelFiles(session_->style);
    const std::vector<std::uint8_t> style = bytesOf(files.style), fxt = bytesOf(files.fxt);
    // Refused before the preview, with the GC3 applier's message (another level, already
    // applied, files it was not made against, a damaged pack).
    if (const std::string refusal = carPackRefusal(pack, trailer, files, style, fxt);
        !refusal.empty()) {
        platform_.message(refusal, Buttons::Ok, Icon::Warning);
        return false;
    }
    CarPackPreview preview;
    std::string why;
    if (!previewCarPack(pack, *session_, style, fxt, preview, why)) {
        platform_.message("This GC3 car pack does not fit the open level: " + why + ".",
                          Buttons::Ok, Icon::Warning);
        return false;
    }
    CarPackPreviewForm ask(preview, fileNameOf(packPath), CarPackPreviewForm::Purpose::Apply, this);
    if (execDialog(ask) != QDialog::Accepted) return false;
    // The apply itself goes through the GC3 applier, which checks the files again (they may have
    // changed while the preview was open) and shows its outcome when it writes nothing.
    if (applyCarPack(packPath, files, platform_, processBackups()) != ApplyResult::Applied)
        return false;
    const int loadOption = session_->style.loadOption;
    loadStyle(QString::fromStdString(files.style.string()), loadOption);
    platform_.detail("GC3 car pack applied:" + packPath.string());
    return true;
}

} // namespace torquil
