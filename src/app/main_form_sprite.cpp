// The Sprite and Car Info menus and the window size entries.

#include "app/car_info_form.h"
#include "app/car_list_dock.h"
#include "app/delta_pic_form.h"
#include "app/export_notice.h"
#include "app/main_form.h"
#include "app/page_board.h"
#include "exchange/sprite_exchange.h"
#include "exchange/transparency.h"
#include "platform/qt/qt_platform.h"
#include "session/delta_count.h"
#include "session/delta_sets.h"
#include "session/edits.h"
#include "session/session_io.h"
#include "session/sprite_resize.h"
#include "sprites/sprite_info.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLineEdit>
#include <QScreen>
#include <QStatusBar>

namespace torquil {

QString MainForm::lastExportedFile() const {
    return exportNotice_->file();
}

void MainForm::showExported(const QString& what, const std::filesystem::path& file) {
    exportNotice_->showExport(what, QString::fromStdString(file.string()));
}

QString MainForm::askForFile(const FileRequest& request) {
    return chooseFile(this, platform_, QString::fromStdString(options_.workDir.string()), request,
                      [this](QFileDialog& dialog) { return execDialog(dialog); });
}

void MainForm::mnuExportSprite_Click() {
    const std::filesystem::path file = exportSprite(*session_, platform_);
    if (file.empty()) return;
    showExported(tr("Sprite"), file);
}

void MainForm::mnuImportSprite_Click() {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    importSpritePicture(session_->workPath(bmpFileName(*session_, *sprite)));
}

void MainForm::importSpritePicture(const std::filesystem::path& file) {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    // A picture of another size: say what a resize would do (new place, deltas that no longer
    // fit) and ask before anything changes.
    ResizeChoice choice;
    if (const auto size = pictureSize(file);
        size && (size->width != sprite->W || size->height != sprite->H) && sprite->kind.empty()) {
        const ResizePlan plan = planSpriteResize(*session_, *sprite, size->width, size->height);
        if (!plan.possible) {
            platform_.message(describeResize(plan, sprite->ASN) + "\rThe sprite was not resized.",
                              Buttons::Ok, Icon::Warning, "Resize Sprite");
            return;
        }
        if (platform_.message(describeResize(plan, sprite->ASN) + "\rResize the sprite?",
                              Buttons::YesNo, Icon::Question, "Resize Sprite") != Answer::Yes)
            return;
        choice = {true, true};
    }
    // A refused import may still have overwritten the CLUT: the dirty flags tell.
    const int asn = sprite->ASN;
    const bool resized = importSpriteResizing(*session_, platform_, file, choice) && choice.resize;
    markChanged();
    updateStatusForSelection();
    board_->refresh();
    if (resized) offerCollisionSize(asn);
}

void MainForm::mnuExportSpriteAs_Click() {
    if (!session_->selectedSprite()) return;
    const QString file = askForFile({tr("Export Sprite As"),
                                     FileKind::Sprite,
                                     true,
                                     QString::fromStdString(bmpFileName(*session_)),
                                     pictureFileFilters(),
                                     {}});
    if (file.isEmpty()) return;
    const std::filesystem::path path(file.toStdString());
    if (!exportSpriteTo(*session_, platform_, path)) return;
    showExported(tr("Sprite"), path);
}

void MainForm::mnuImportSpriteFrom_Click() {
    if (!session_->selectedSprite()) return;
    const QString file = askForFile(
        {tr("Import Sprite From"), FileKind::Sprite, false, {}, pictureFileFilters(), {}});
    if (file.isEmpty()) return;
    (void)importSpriteFrom(*session_, platform_, std::filesystem::path(file.toStdString()));
    markChanged(); // a refused import may still have overwritten the CLUT
}

QString MainForm::chooseDeltaSetFile(bool forSaving, const QString& suggested) {
    const QString title = forSaving ? tr("Export Delta Set") : tr("Import Delta Set");
    if (!askDeltaSetFile)
        return askForFile({title,
                           FileKind::DeltaSet,
                           forSaving,
                           forSaving ? suggested : QString(),
                           pictureFileFilters(),
                           {}});
    const QString folder = lastFolder(platform_, FileKind::DeltaSet,
                                      QString::fromStdString(options_.workDir.string()));
    const PictureFileAnswer answer =
        askDeltaSetFile(forSaving, QDir(folder).filePath(suggested), pictureFileFilters());
    // A file to read is taken as it is: its extension says what it holds.
    const QString file = forSaving ? pictureFileToWrite(answer.file, answer.filter) : answer.file;
    if (file.isEmpty() || (forSaving && !askReplace(platform_, file, title))) return {};
    rememberFolder(platform_, FileKind::DeltaSet, file);
    return file;
}

// index 0: dirty (each delta over the sprite), 1: clean (each delta on colour 0).
void MainForm::mnuExportDeltas_Click(int index) {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    const bool clean = index == 1;
    const QString suggested = QString::fromStdString(deltaSetFileName(*session_, *sprite, clean));
    const QString chosen = chooseDeltaSetFile(true, suggested);
    if (chosen.isEmpty()) return;
    const std::filesystem::path file(chosen.toStdString());
    if (!exportDeltaSet(*session_, platform_, file, clean)) return;
    showExported(tr("Delta set"), file);
}

void MainForm::mnuImportDeltas_Click() {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    const QString suggested = QString::fromStdString(deltaSetFileName(*session_, *sprite, false));
    const QString chosen = chooseDeltaSetFile(false, suggested);
    if (chosen.isEmpty()) return;
    const Answer kind =
        platform_.message("Is " + QFileInfo(chosen).fileName().toStdString() +
                              " a clean delta set?\rYes: each delta stands alone on colour 0.\r"
                              "No: each delta is drawn over the sprite.",
                          Buttons::YesNoCancel, Icon::Question, "Import Delta Set");
    if (kind == Answer::Cancel) return;
    importDeltaSetPicture(std::filesystem::path(chosen.toStdString()), kind == Answer::Yes);
}

void MainForm::importDeltaSetPicture(const std::filesystem::path& file, bool clean) {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    // A picture with another number of frames sets the delta count: asked first.
    DeltaCountChoice choice;
    if (const auto size = pictureSize(file); size && sprite->W > 0 && size->height == sprite->H &&
                                             size->width % sprite->W == 0 &&
                                             size->width / sprite->W != sprite->delta_count) {
        const DeltaCountPlan plan = planDeltaCount(*session_, sprite->ASN, size->width / sprite->W);
        if (platform_.message(describeDeltaCount(plan, sprite->ASN) +
                                  (plan.possible ? "\rChange the number of deltas?" : ""),
                              plan.possible ? Buttons::YesNo : Buttons::Ok, Icon::Question,
                              "Import Delta Set") != Answer::Yes)
            return;
        choice = {true, true};
    }
    const DeltaSetImport result = importDeltaSetResizing(*session_, platform_, file, clean, choice);
    markChanged();       // a refused import may still have overwritten the CLUT
    if (!result) return; // the refusal was shown
    statusBar()->showMessage(tr("Delta set imported: %n delta(s) changed.", nullptr, *result),
                             8000);
}

// index 0: each delta alone on colour 0, 1: each delta over the car.
void MainForm::mnuViewDeltas_Click(int index) {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    const DeltaViewFrames view = deltaViewFrames(*session_, *sprite, index == 1);
    if (view.frames.empty() || view.width == 0 || view.height == 0) {
        platform_.message("Sprite " + std::to_string(sprite->ASN) + " has no deltas.", Buttons::Ok,
                          Icon::Information);
        return;
    }
    std::vector<QImage> frames;
    for (const auto& rgb : view.frames)
        frames.push_back(QImage(reinterpret_cast<const uchar*>(rgb.data()), view.width, view.height,
                                view.width * 4, QImage::Format_RGB32)
                             .copy());
    const QString title = (index == 1 ? tr("Deltas (with car)") : tr("Deltas (plain)")) +
                          tr(" - sprite %1").arg(sprite->ASN);
    auto* form = new DeltaPicForm(frames, title, this);
    // Adding or removing a delta is one edit; the view opens again with the new frames.
    const auto reopen = [this, form, index] {
        markChanged();
        form->close();
        mnuViewDeltas_Click(index);
    };
    form->offerDeltaEdits(
        [this, reopen] {
            if (addDelta(*session_, platform_)) reopen();
        },
        [this, reopen](int frame) {
            const SpriteRec* shown = session_->selectedSprite();
            if (!shown) return;
            bool used = false;
            if (const CarEntry* car = session_->cars.find(shown->ASN))
                for (const DoorRec& door : car->doorList) used = used || door.delta == frame;
            if (used &&
                platform_.message("Delta " + std::to_string(frame) +
                                      " is shown by a door of the car. Remove it anyway?"
                                      "\rThe door then shows the last delta left.",
                                  Buttons::YesNo, Icon::Question, "Remove Delta") != Answer::Yes)
                return;
            if (removeDelta(*session_, platform_, frame, used)) reopen();
        });
    // The plain view hands out the clean delta set, the view with the car the dirty one.
    form->offerPaintEdit([this, index] { guarded([=, this] { editInPaint(true, index == 0); }); });
    form->show();
}

void MainForm::mnuTranspCheck_Click() {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    const TransparencyMask mask = transparencyTest(*session_, *sprite);
    if (mask.width < 2 || mask.height < 2) return;
    // The core's picture has a one-pixel frame; the form draws its own around the sprite.
    const QImage framed(reinterpret_cast<const uchar*>(mask.rgb.data()), mask.width, mask.height,
                        mask.width * 4, QImage::Format_RGB32);
    const QImage inner = framed.copy(1, 1, mask.width - 2, mask.height - 2);
    auto* form = new DeltaPicForm(inner, QString::fromStdString(mask.title),
                                  QString::fromStdString(mask.toolTip), this);
    form->show();
}

void MainForm::mnuTranspCorrect_Click() {
    // A refusal was already shown.
    const TransparencyResult fixed = transparencyCorrect(*session_, platform_);
    if (fixed && *fixed == TransparencyDone::Corrected) markChanged();
}

void MainForm::mnuFindCar_Click() {
    if (askSpriteNumber) {
        // A number without a sprite has said so (searchNSelect's message).
        if (const std::optional<int> asn = askSpriteNumber()) (void)selectSprite(*asn);
        return;
    }
    std::optional<QString> text;
    if (askFindText) {
        text = askFindText();
    } else {
        const SpriteRec* current = session_->selectedSprite();
        bool ok = false;
        const QString typed = QInputDialog::getText(
            this, tr("Find Car"),
            tr("Absolute sprite number (ASN), model (\"model 12\") or part of the name:"),
            QLineEdit::Normal,
            QString::number(current ? current->ASN : session_->sprites.firstCarSprite()), &ok);
        if (ok) text = typed;
    }
    if (text && !text->trimmed().isEmpty()) findCarByText(*text);
}

bool MainForm::selectSprite(int asn) {
    const bool selected = searchNSelect(*session_, platform_, asn) == SearchResult::Selected;
    if (selected) (void)carList_->showCar(asn); // a sprite that is no car has no row
    updateStatusForSelection();
    refreshCommands();
    board_->refresh();
    return selected;
}

void MainForm::mnuEditCar_Click() {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    const int asn = sprite->ASN;
    CarInfoForm form(*session_, platform_, asn, this);
    // The accepted form puts its fields, remaps, doors and name in through one editCar: one step.
    (void)execDialog(form); // accepted or not, the status shows what the car holds now
    markChanged();
    updateStatusForSelection();
}

void MainForm::mnuFormExpand_Click() {
    showMaximized();
}

void MainForm::mnuFormShrink_Click() {
    showNormal();
    // The frame around the board stays as it is; the board takes exactly one page.
    const QSize frame = size() - board_->viewport()->size();
    resize(frame + board_->viewportSizeFor(1));
}

} // namespace torquil
