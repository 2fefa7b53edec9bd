// The Sprite and Car Info menus and the window size entries.

#include "app/car_info_form.h"
#include "app/car_list_dock.h"
#include "app/delta_pic_form.h"
#include "app/main_form.h"
#include "app/page_board.h"
#include "exchange/sprite_exchange.h"
#include "exchange/transparency.h"
#include "platform/qt/qt_platform.h"
#include "sprites/sprite_info.h"

#include <QInputDialog>
#include <QLineEdit>
#include <QScreen>

namespace torquil {

void MainForm::mnuExportSprite_Click() {
    const std::filesystem::path file = exportSprite(*session_, platform_);
    if (file.empty()) return;
    platform_.message("Sprite exported to:\r" + file.string(), Buttons::Ok, Icon::Information);
}

void MainForm::mnuImportSprite_Click() {
    if (importSprite(*session_, platform_))
        markChanged();
    else
        board_->refresh();
}

// Delta sets are not part of this version: their entries stay disabled.
void MainForm::mnuExportDeltas_Click(int) {}
void MainForm::mnuImportDeltas_Click() {}
void MainForm::mnuViewDeltas_Click(int) {}

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
    if (transparencyCorrect(*session_, platform_) == TransparencyOutcome::Corrected) markChanged();
}

void MainForm::mnuFindCar_Click() {
    if (askSpriteNumber) {
        if (const std::optional<int> asn = askSpriteNumber()) selectSprite(*asn);
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
    if (selected) carList_->showCar(asn);
    updateStatusForSelection();
    refreshCommands();
    board_->refresh();
    return selected;
}

void MainForm::mnuEditCar_Click() {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    CarInfoForm form(*session_, platform_, sprite->ASN, this);
    execDialog(form);
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
