// The File menu: open, load a bitmap, save and exit (the car pack entries: main_form_car_pack).

#include "app/car_list_dock.h"
#include "app/export_notice.h"
#include "app/load_form.h"
#include "app/main_form.h"
#include "app/main_tool_bar.h"
#include "app/page_board.h"
#include "base/runtime_error.h"
#include "exchange/bmp.h"
#include "exchange/sprite_exchange.h"
#include "platform/qt/qt_platform.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/session_io.h"
#include "sprites/sprite_info.h"

#include <QDir>
#include <QFileInfo>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

#include <filesystem>

namespace torquil {

namespace fs = std::filesystem;

void MainForm::mnuOpen_Click() {
    if (!askToSaveChanges()) return;
    LoadForm dialog(DialogMode::Style, session_->style, platform_, this);
    if (execDialog(dialog) != QDialog::Accepted || dialog.chosenPath().isEmpty()) return;
    loadStyle(dialog.chosenPath(), dialog.loadOption());
}

void MainForm::openStyle(const QString& path, int loadOption) {
    guarded([&] { loadStyle(path, loadOption); });
}

void MainForm::loadStyle(const QString& path, int loadOption) {
    auto fresh = std::make_unique<StyleSession>(options_);
    prepareStyle(fresh->style, fs::path(path.toStdString()), loadOption);

    // The board shows the new pages as they arrive; the menus wait for the load to end.
    const bool wasBusy = busy_;
    busy_ = true;
    board_->setSession(fresh.get());
    board_->setLoading(true);
    menuBar()->setEnabled(false);
    toolBar()->setEnabled(false);
    auto restore = [this, wasBusy] {
        board_->setLoading(false);
        menuBar()->setEnabled(true);
        toolBar()->setEnabled(true);
        busy_ = wasBusy;
    };

    LoadOutcome outcome = LoadOutcome::Failed;
    try {
        outcome = initHeader(*fresh, platform_, standardLoaders());
    } catch (...) {
        // Debug mode: the load stopped where the error was raised; what was open stays open.
        restore();
        board_->setSession(session_.get());
        board_->refresh();
        throw;
    }
    restore();
    if (outcome != LoadOutcome::Loaded) {
        // A file that did not load leaves the open one, its edits and its history as they were.
        board_->setSession(session_.get());
        board_->refresh();
        return;
    }
    session_ = std::move(fresh);
    afterLoad(true);
    rememberRecent(path, loadOption);
}

void MainForm::afterLoad(bool loaded) {
    forgetPaintEdits(); // the pictures out for painting were of the sprites of the old session
    board_->setSession(session_.get());
    setCommandGroup(0, false);
    setCommandGroup(1, true);
    if (loaded) {
        const bool sprites = session_->style.loadOption == kLoadSprites;
        setCommandGroup(3, sprites); // the car commands need the car info
        setCommandGroup(4, true);
        setCommandGroup(5, sprites);
        setCommandGroup(6, true);
        setCommandGroup(7, true); // build a car pack
        setCommandGroup(8, true);
        setCommandGroup(9, true); // apply a car pack
        updateTitle();
        const DumpFlags& dumps = options_.dumps;
        if (dumps.carInfo || dumps.spriteInfo || dumps.clut || dumps.delta) {
            const QString folder = QString::fromStdString(options_.workDir.string());
            exportNotice_->showWritten(
                tr("Dump files written to %1").arg(QDir::toNativeSeparators(folder)), folder);
        }
    }
    showOpenFile();
    updateStatusForSelection();
    board_->refresh();
}

void MainForm::markChanged() {
    // The save command follows the dirty flags: an edit sets them, an undo may clear them.
    setCommandGroup(2, session_->style.anyChange());
    carList_->refresh();
    board_->refresh();
}

void MainForm::mnuLoadBMP_Click() {
    LoadForm dialog(DialogMode::Bitmap, session_->style, platform_, this);
    if (execDialog(dialog) != QDialog::Accepted || dialog.chosenPath().isEmpty()) return;
    importBitmapFile(dialog.chosenPath());
}

void MainForm::importBitmapFile(const QString& path) {
    // A refused picture may still have overwritten the CLUT: the save command follows the flags.
    (void)importSpriteNamedBy(*session_, platform_, fs::path(path.toStdString()));
    board_->refresh();
    updateStatusForSelection();
    markChanged();
}

void MainForm::mnuSaveBlock_Click() {
    const SaveOutcome outcome = saveChanges(*session_, platform_);
    // The history remembers where the file was saved; a save that wrote nothing keeps every edit
    // pending (and its flags set), so the next save writes them all.
    if (outcome.result == SaveResult::Saved) session_->history.markSaved(session_->style);
    if (outcome.disableSaveCommand()) setCommandGroup(2, false);
    if (outcome.nothingChanged)
        statusBar()->showMessage(tr("Nothing changed: the files already hold these values, "
                                    "nothing was written."),
                                 8000);
    board_->refresh();
}

void MainForm::mnuExit_Click() {
    // Through the main form's unload, once this command has returned.
    QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
}

} // namespace torquil
