#include "app/car_info_form.h"
#include "app/qt_text.h"

#include "app/car_sprite_image.h"
#include "app/file_dialogs.h"
#include "base/runtime_error.h"
#include "cars/car_field_notes.h"
#include "cars/car_name_rules.h"
#include "cars/fixed_point.h"
#include "platform/platform.h"
#include "session/edits.h"
#include "session/session_io.h"
#include "sound/sound_preview.h"
#include "sprites/clut.h"

#include <QEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include <algorithm>
#include <filesystem>

namespace torquil {

namespace {

bool isRemapColourBox(int index) {
    return index >= 38 && index <= 40;
}

} // namespace

CarInfoForm::CarInfoForm(StyleSession& session, Platform& platform, int asn, QWidget* parent)
    : QDialog(parent), session_(session), platform_(platform), asn_(asn) {
    setObjectName("carInfoFrm");
    if (const CarEntry* entry = session_.cars.find(asn_)) {
        entry_ = *entry;
        known_ = true;
    }
    sprite_ = findSpriteByAsn(session_, asn_);
    if (sprite_) baseColours_ = spriteColours(session_, *sprite_);
    setWindowTitle("Car Info: " + fromGameText(entry_.name));

    buildForm();
    fillBoxes();
    showDoor(0);
    remapListClick(0);
}

CarInfoForm::~CarInfoForm() = default;

QLineEdit* CarInfoForm::box(int index) const {
    return index >= 0 && index < kCarFieldCount ? boxes_[static_cast<std::size_t>(index)] : nullptr;
}

QLabel* CarInfoForm::label(int index) const {
    return index >= 0 && index < kCarFieldCount ? labels_[static_cast<std::size_t>(index)]
                                                : nullptr;
}

QPushButton* CarInfoForm::helpButton(int page) const {
    return page >= 0 && page < PageCount ? helpButtons_[static_cast<std::size_t>(page)] : nullptr;
}

void CarInfoForm::setBoxText(int index, const std::string& text) {
    QLineEdit* edit = box(index);
    if (!edit) return;
    const bool wasFilling = filling_;
    filling_ = true;
    edit->setText(index == kNameBox ? fromGameText(text) : QString::fromStdString(text));
    lastGood_[static_cast<std::size_t>(index)] = edit->text();
    markField(index, {});
    filling_ = wasFilling;
}

bool CarInfoForm::refuseUnfit(int index, const QString& typed) {
    const std::string reason = doesNotFitReason(index, typed.toStdString());
    if (reason.empty()) return false;
    // Never wrapped: the box goes back to its last text the record can keep, and the field says
    // why, without a message box in the middle of the typing.
    const QString kept = lastGood_[static_cast<std::size_t>(index)];
    const bool wasFilling = filling_;
    filling_ = true;
    box(index)->setText(kept);
    filling_ = wasFilling;
    markField(index, QStringLiteral("refused"));
    fieldStatus_->setText(QString::fromStdString(std::string(carField(index)->caption)) +
                          QStringLiteral(": ") + typed.trimmed() + QStringLiteral(" is refused: ") +
                          QString::fromStdString(reason) + QStringLiteral("; the box keeps ") +
                          (kept.isEmpty() ? QStringLiteral("nothing") : kept));
    return true;
}

void CarInfoForm::fillBoxes() {
    for (int i = 0; i < kCarFieldCount; ++i) {
        const std::string text = fieldText(entry_, i, cursor_);
        setBoxText(i, text);
        filledText_[static_cast<std::size_t>(i)] = text;
    }
}

void CarInfoForm::txtBoxChange(int index) {
    if (filling_) return;
    QLineEdit* edit = box(index);
    if (index == kNameBox) {
        nameChanged_ = true; // the name is not checked
        return;
    }
    const QString typed = edit->text();
    const std::string text = typed.toStdString();
    const FieldTextState state = fieldTextState(index, text);
    if (state == FieldTextState::NotANumber) {
        refuseText(index, typed);
        return;
    }
    const FieldCheck check = clampFieldText(index, text);
    if (check.clamped) {
        // Putting the limit into the box runs this again with a text in range; the mark and the
        // report come after it.
        edit->setText(QString::fromStdString(check.text));
        reportClamp(index, typed, check);
        return;
    }
    if (check.isNumber && refuseUnfit(index, typed)) return;
    lastGood_[static_cast<std::size_t>(index)] = typed;
    markField(index, state == FieldTextState::Unfinished && !typed.trimmed().isEmpty()
                         ? QStringLiteral("unfinished")
                         : QString());
    if (!isRemapColourBox(index)) recordChanged_ = true;

    const CarField* field = carField(index);
    if (field->kind == FieldKind::Door) {
        // Door boxes go straight into the selected door record. A text that is not a number yet
        // ("-") leaves the door as it is until the typing is done.
        if (setFieldText(entry_, index, text, cursor_) == FieldStore::Stored) refreshDoorView();
    } else if (field->kind == FieldKind::Remap) {
        if (setFieldText(entry_, index, text, cursor_) == FieldStore::Stored &&
            isRemapColourBox(index))
            remapChanged_ = true;
        refreshRemap();
    }
}

void CarInfoForm::txtBoxLostFocus(int index) {
    QLineEdit* edit = box(index);
    if (!edit || edit->isReadOnly()) return;
    const std::string text = edit->text().toStdString();
    const std::string left = textOnLeave(text);
    if (left != text) edit->setText(QString::fromStdString(left));
}

bool CarInfoForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        for (int i = 0; i < kCarFieldCount; ++i)
            if (watched == boxes_[static_cast<std::size_t>(i)]) txtBoxLostFocus(i);
    } else if (event->type() == QEvent::FocusIn) {
        for (int i = 0; i < kCarFieldCount; ++i)
            if (watched == boxes_[static_cast<std::size_t>(i)]) showFieldInfo(i);
    }
    return QDialog::eventFilter(watched, event);
}

void CarInfoForm::cmdHelpClick(int page) {
    Desktop& desktop = platform_.desktop();
    if (!desktop.hasHelp()) {
        platform_.message(
            "Unable to display Help Contents. There is no Help associated with this project.",
            Buttons::Ok, Icon::Information);
        return;
    }
    if (!desktop.showHelp(helpContext(page)))
        platform_.message(errorDescription(err::FileNotFound), Buttons::Ok, Icon::Critical);
}

int CarInfoForm::soundNumberOfBox(int index) const {
    const std::optional<double> value = parseNumber(box(index)->text().toStdString());
    return value ? static_cast<int>(std::clamp<std::int64_t>(wholeNumber(*value), 0, 255)) : 0;
}

QString CarInfoForm::soundStateText() const {
    const std::filesystem::path sdt = sdtFilePath(session_), raw = rawFilePath(session_);
    std::error_code ec;
    if (!std::filesystem::is_regular_file(sdt, ec) || !std::filesystem::is_regular_file(raw, ec))
        return "No sound bank: " + QString::fromStdString(sdt.string()) + " and " +
               QString::fromStdString(raw.filename().string()) + " are needed to play the sounds.";
    if (!platform_.sound().hasOutput())
        return "No audio output device: the sounds cannot be heard on this computer. Save as WAV "
               "writes them to a file.";
    return {};
}

void CarInfoForm::refreshSoundState() {
    const QString text = soundStateText();
    soundState_->setText(text);
    soundState_->setVisible(!text.isEmpty());
}

void CarInfoForm::playSoundOfBox(int index, int repeat) {
    refreshSoundState();
    // A sound that cannot be played has shown its message; the form goes on either way.
    (void)playSound(session_, platform_, static_cast<std::int16_t>(soundNumberOfBox(index)), 1.0,
                    static_cast<std::int16_t>(repeat));
}

void CarInfoForm::saveSoundOfBox(int index, int repeat) {
    refreshSoundState();
    const int sound = soundNumberOfBox(index);
    const std::string name = "LEVEL" + std::to_string(session_.style.gMapNumber) + "_sound" +
                             std::to_string(sound) + ".wav";
    const QString dataFolder = QString::fromStdString(session_.style.dataFolder().string());
    // The dialog starts in the folder last used for sounds (the level's folder at first) and
    // asks before replacing a file.
    const QString path =
        askWavPath
            ? askWavPath(QString::fromStdString((session_.style.dataFolder() / name).string()))
            : chooseFile(this, platform_, dataFolder,
                         {"Save as WAV", FileKind::Sound, true, QString::fromStdString(name),
                          "WAV files (*.wav)", "wav"},
                         [](QFileDialog& dialog) { return dialog.exec(); });
    if (path.isEmpty()) return;
    const SoundResult written =
        writeSoundWav(session_, platform_, static_cast<std::int16_t>(sound), 1.0,
                      static_cast<std::int16_t>(repeat), std::filesystem::path(path.toStdString()));
    if (!written) return; // the failure was shown
    soundState_->setText("Sound " + QString::number(sound) + " written to " + path);
    soundState_->show();
}

void CarInfoForm::done(int result) {
    // A box that is not a number yet would be dropped: the form stays open and names it.
    if (refuseUnfinishedClose()) return;
    acceptEdits();
    QDialog::done(result);
}

void CarInfoForm::acceptEdits() {
    if (accepted_) return;
    accepted_ = true;
    timer1_->stop();
    const CarEntry* target = session_.cars.find(asn_);
    if (!target) return;

    CarEdit edit;
    CarEntry edited = *target;
    std::string notKept; // boxes whose text the record could not take, one line each
    if (recordChanged_) {
        // A box still showing the text it was filled with keeps its stored value exactly (a 16.16
        // value does not survive its 3-decimal text); a changed box is read back.
        for (int i = 0; i <= kValueBox; ++i) {
            const std::string text = box(i)->text().toStdString();
            if (text == filledText_[static_cast<std::size_t>(i)]) continue;
            const FieldStore stored = setFieldText(edited, i, textOnLeave(text));
            if (stored == FieldStore::Stored) continue;
            // Only a text left half typed ("-") gets here: the boxes refuse what cannot fit.
            const std::string why = stored == FieldStore::DoesNotFit ? doesNotFitReason(i, text)
                                                                     : std::string("not a number");
            notKept += "\r" + std::string(carField(i)->caption) + " \"" + text + "\": " + why;
        }
        edit.doors = entry_.doorList;
    }
    // The remap boxes write into the working copy as they change; their tables travel with a
    // changed record, and a remap-only edit is kept as well.
    if (recordChanged_ || remapChanged_) {
        edited.info.remap24 = entry_.info.remap24;
        edited.info.remap8 = entry_.info.remap8;
        edit.info = edited.info;
    }
    if (nameChanged_) {
        const std::string name = toGameText(box(kNameBox)->text());
        // A name typed back to what it was is no loss when the names cannot be saved.
        if (name != target->name || checkCarName(session_.names, edited.info.model, name))
            edit.name = name;
    }
    // A refused name (checkCarName) leaves the old one; the record is applied all the same.
    if (const Result<void> edited = editCar(session_, asn_, edit); !edited)
        notKept +=
            "\rModel Name \"" + box(kNameBox)->text().toStdString() + "\": " + edited.message();
    if (!notKept.empty())
        platform_.message("Car Info: " + fromGameText(entry_.name).toStdString() +
                              ": these values were not kept, the car keeps "
                              "its old ones:" +
                              notKept,
                          Buttons::Ok, Icon::Warning, "Car Info");
}

} // namespace torquil
