// Edit in Paint Program: a sprite or a delta set written as a picture, opened in the paint
// program, watched, and each saved version offered for import (one undo step each). Also the
// collision size offered after a resize, and Edit > Settings.

#include "app/main_form.h"
#include "app/paint_watch.h"
#include "app/settings_form.h"
#include "exchange/png_codec.h"
#include "platform/qt/qt_platform.h"
#include "session/edits.h"
#include "session/paint_edit.h"
#include "session/style_session.h"
#include "sprites/sprite_info.h"

#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>

namespace torquil {

namespace {

QString nativePath(const std::filesystem::path& file) {
    return QDir::toNativeSeparators(QString::fromStdString(file.string()));
}

std::string sizeText(int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

// The sprite with this number in the session; nullptr when there is none.
const SpriteRec* spriteByNumber(const StyleSession& session, int asn) {
    const auto place = findSprite(session.sprites, kMaxPages - 1, asn);
    if (!place) return nullptr;
    return &session.sprites.pageSprites[place->first][place->second];
}

} // namespace

void MainForm::mnuEditInPaint_Click() {
    editInPaint(false, false);
}

void MainForm::editInPaint(bool deltaSet, bool clean) {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) return;
    const PaintTarget target = paintTarget(*session_, *sprite, deltaSet, clean, pngSupported());
    const QString file = QDir::cleanPath(QString::fromStdString(target.file.string()));
    // A picture already out with changes not taken yet is not overwritten unasked.
    if (paintWatch_->hasNewVersion(file)) {
        const Answer answer = platform_.message(
            nativePath(target.file).toStdString() +
                " has changes that were not imported.\rWrite it again from the sprite as it is "
                "now?\rNo: open it as it is.",
            Buttons::YesNoCancel, Icon::Question, "Edit in Paint Program");
        if (answer == Answer::Cancel) return;
        if (answer == Answer::Yes) {
            if (!writePaintPicture(*session_, platform_, target)) return;
            paintWatch_->watch(target);
        }
        // No: still watched from the version last offered, so its changes are offered later.
    } else {
        if (!writePaintPicture(*session_, platform_, target)) return;
        paintWatch_->watch(target);
    }
    QString why;
    if (!openInPaintProgram(storedPaintProgram(platform_.settingsStore().qsettings()), file, why)) {
        // Still watched: the picture can be opened by hand.
        platform_.message(why.toStdString() + "\rThe picture is " +
                              nativePath(target.file).toStdString(),
                          Buttons::Ok, Icon::Warning, "Edit in Paint Program");
        return;
    }
    statusBar()->showMessage(
        tr("%1 is open in the paint program; each saved version is offered for import.")
            .arg(nativePath(target.file)),
        10000);
}

void MainForm::offerPaintedPicture(const QString& file) {
    const PaintTarget* target = paintWatch_->target(file);
    if (!target) return;
    // An offer still open takes the newest version when answered: no second one.
    if (auto open = paintOffers_.find(file); open != paintOffers_.end() && open->second) return;
    const SpriteRec* sprite = spriteByNumber(*session_, target->asn);
    if (!sprite) return;
    const PaintedVersion now = paintedVersion(target->file);
    const PaintReturn judged =
        judgePaintedFile(*sprite, target->deltaSet, now, {}, pictureSize(target->file));
    if (judged == PaintReturn::Missing || judged == PaintReturn::Unchanged) return;
    QString text = target->deltaSet
                       ? tr("Import the changed delta set of sprite %1?").arg(target->asn)
                       : tr("Import the changed picture of sprite %1?").arg(target->asn);
    if (judged == PaintReturn::OtherSize)
        text += tr("\nThe picture has another size: the sprite would be resized.");
    if (judged == PaintReturn::OtherDeltaCount)
        text +=
            tr("\nThe picture has another number of frames: the number of deltas would change.");
    auto* box = new QMessageBox(QMessageBox::Question, tr("Edit in Paint Program"), text,
                                QMessageBox::Yes | QMessageBox::No, this);
    box->setObjectName(QStringLiteral("paintOffer"));
    box->setProperty("paintFile", file);
    box->setInformativeText(QDir::toNativeSeparators(file));
    box->setWindowModality(Qt::NonModal);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QMessageBox::finished, this, [this, box, file] {
        const bool take = box->clickedButton() == box->button(QMessageBox::Yes);
        paintOffers_.erase(file);
        if (take)
            takePaintedPicture(file);
        else
            paintWatch_->settle(file); // this version is not offered again
    });
    paintOffers_[file] = box;
    box->show();
}

void MainForm::takePaintedPicture(const QString& file) {
    const PaintTarget* watched = paintWatch_->target(file);
    if (!watched) return;
    const PaintTarget target = *watched;
    paintWatch_->settle(file);
    if (busy_) {
        platform_.message("Another command is still running.\rThe picture of sprite " +
                              std::to_string(target.asn) + " was not imported.",
                          Buttons::Ok, Icon::Information, "Edit in Paint Program");
        return;
    }
    guarded([this, target] {
        if (!selectSprite(target.asn)) return;
        if (target.deltaSet)
            importDeltaSetPicture(target.file, target.clean);
        else
            importSpritePicture(target.file);
    });
}

void MainForm::forgetPaintEdits() {
    paintWatch_->clear();
    for (auto& [file, box] : paintOffers_)
        if (box) box->deleteLater();
    paintOffers_.clear();
}

void MainForm::offerCollisionSize(int asn) {
    const CarEntry* car = session_->cars.find(asn);
    const SpriteRec* sprite = spriteByNumber(*session_, asn);
    if (!car || !sprite) return;
    if (car->info.width == sprite->W && car->info.height == sprite->H) return;
    if (platform_.message("The car's collision size is " +
                              sizeText(car->info.width, car->info.height) + "; the sprite is now " +
                              sizeText(sprite->W, sprite->H) + ".\rSet the collision size to " +
                              sizeText(sprite->W, sprite->H) + "?",
                          Buttons::YesNo, Icon::Question, "Resize Sprite") != Answer::Yes)
        return;
    CarInfo info = car->info;
    info.width = static_cast<std::int16_t>(sprite->W);
    info.height = static_cast<std::int16_t>(sprite->H);
    // A step of its own after the resize: undo takes the collision size back first.
    (void)editCar(*session_, asn, CarEdit{info, std::nullopt, std::nullopt});
    markChanged();
    updateStatusForSelection();
}

void MainForm::mnuSettings_Click() {
    SettingsForm form(platform_.settingsStore().qsettings(), this);
    execDialog(form);
}

} // namespace torquil
