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
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) return {};
    return readWholeFile(path).valueOr({});
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
    if (!writeCarPack(p.modStyle, p.origStyle, p.modFxt, p.origFxt, p.pack, platform_)) return;

    // What the pack holds: its changes to the originals it was made from.
    CarPackFile pack;
    if (!readCarPack(p.pack, pack, platform_)) return;
    const std::vector<std::uint8_t> origStyle = bytesOf(p.origStyle), origFxt = bytesOf(p.origFxt);
    const CarPackPreview preview = previewCarPack(pack.pack, *session_, origStyle, origFxt,
                                                  bytesOf(p.modStyle), bytesOf(p.modFxt));
    CarPackPreviewForm shown(preview, fileNameOf(p.pack), CarPackPreviewForm::Purpose::Built, this);
    (void)execDialog(shown); // a preview only: closed either way
}

void MainForm::mnuLoadGC3_Click() {
    LoadForm dialog(DialogMode::CarPack, session_->style, platform_, this);
    if (execDialog(dialog) != QDialog::Accepted || dialog.chosenPath().isEmpty()) return;
    (void)applyCarPackFile(dialog.chosenPath()); // a refused pack has shown its message
}

bool MainForm::applyCarPackFile(const QString& path) {
    if (!session_->style.loaded) {
        platform_.message(kOpenLevelFirst, Buttons::Ok, Icon::Information);
        return false;
    }
    // The pack is checked against the files on disk, and the level is read again from them.
    if (!askToSaveChanges()) return false;
    const fs::path packPath(path.toStdString());
    CarPackFile pack;
    if (!readCarPack(packPath, pack, platform_)) return false;
    const CarPackFiles files = levelFiles(session_->style);
    // Refused before the preview, with the applier's own message (another level, already
    // applied, changes that conflict with edits made since, a damaged pack).
    const Result<CarPackPlan, CarPackFailure> planned = planCarPack(pack, files);
    if (!planned) {
        platform_.message(planned.message(), Buttons::Ok, Icon::Warning);
        return false;
    }
    const CarPackPlan& plan = *planned;
    const CarPackPreview preview =
        previewCarPack(plan.packAsPlaced(pack.pack), *session_, plan.styleBefore, plan.fxtBefore,
                       plan.styleAfter, plan.fxtAfter);
    CarPackPreviewForm ask(preview, fileNameOf(packPath), CarPackPreviewForm::Purpose::Apply, this);
    if (execDialog(ask) != QDialog::Accepted) return false;
    // The apply itself goes through the one applier, which checks the files again (they may have
    // changed while the preview was open) and shows its outcome when it writes nothing.
    const CarPackApplied applied =
        applyCarPack(packPath, files, platform_, processBackups(), options_.links);
    if (!applied) return false; // the applier showed why
    const int loadOption = session_->style.loadOption;
    loadStyle(QString::fromStdString(files.style.string()), loadOption);
    platform_.detail("GC3 car pack applied:" + packPath.string());
    platform_.message(*applied, Buttons::Ok, Icon::Information);
    return true;
}

} // namespace torquil
