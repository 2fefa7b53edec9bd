// The car info editor's sound page: the list of the level's sound bank, replacing a sound with a
// recording, and the undo and redo of replacements (the bank is saved at once).

#include "app/car_info_form.h"

#include "platform/platform.h"
#include "session/session_io.h"
#include "session/sound_edits.h"
#include "session/style_session.h"
#include "sound/sound_file_reader.h"

#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace torquil {

QWidget* CarInfoForm::buildSoundBankBox(QWidget* parent) {
    auto* box = new QGroupBox("Sounds of the level's bank", parent);
    auto* layout = new QVBoxLayout(box);
    soundList_ = new QTreeWidget(box);
    soundList_->setObjectName("lstSounds");
    soundList_->setRootIsDecorated(false);
    soundList_->setHeaderLabels({"Sound", "Samples", "Rate", "Seconds"});
    soundList_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    layout->addWidget(soundList_, 1);

    auto* buttons = new QHBoxLayout;
    auto add = [&](const char* name, const QString& caption, const QString& tip) {
        auto* button = new QPushButton(caption, box);
        button->setObjectName(name);
        button->setAutoDefault(false);
        button->setToolTip(tip);
        buttons->addWidget(button);
        return button;
    };
    QPushButton* play = add("cmdPlayListed", "Play", "Plays the sound selected in the list");
    QPushButton* replace =
        add("cmdReplaceListed", "Replace from File...",
            "Replaces the selected sound with a recording (WAV, FLAC, Ogg) and saves the bank");
    cmdUndoSound_ = add("cmdUndoSound", "Undo Replace", "Takes the last replacement back");
    cmdRedoSound_ = add("cmdRedoSound", "Redo Replace", "Does the replacement taken back again");
    buttons->addStretch(1);
    layout->addLayout(buttons);
    if (!soundFilesSupported()) {
        for (QPushButton* off : {replace, cmdUndoSound_, cmdRedoSound_}) {
            off->setEnabled(false);
            off->setToolTip(QString::fromStdString(soundFilesOffReason()));
        }
    }

    connect(soundList_, &QTreeWidget::itemDoubleClicked, this, [this] {
        // A sound that cannot be played has shown its message.
        if (listedSound() >= 0)
            (void)playSound(session_, platform_, std::int16_t(listedSound()), 1.0, 1);
    });
    connect(play, &QPushButton::clicked, this, [this] {
        refreshSoundState();
        // A sound that cannot be played has shown its message.
        if (listedSound() >= 0)
            (void)playSound(session_, platform_, std::int16_t(listedSound()), 1.0, 1);
    });
    connect(replace, &QPushButton::clicked, this, [this] {
        if (listedSound() >= 0) replaceSound(listedSound());
    });
    connect(cmdUndoSound_, &QPushButton::clicked, this, [this] { undoOrRedoSoundReplace(true); });
    connect(cmdRedoSound_, &QPushButton::clicked, this, [this] { undoOrRedoSoundReplace(false); });
    refreshSoundList();
    return box;
}

void CarInfoForm::refreshSoundList() {
    const int selected = listedSound();
    soundList_->clear();
    SoundTable table;
    if (loadSDT(session_, table)) {
        // Index 0 is the table's empty record; the file's records are sounds 1 and up.
        for (int n = 1; n <= table.lastIndex(); ++n) {
            const SdtRecord& r = table.SDT[static_cast<std::size_t>(n)];
            auto* item = new QTreeWidgetItem(soundList_);
            item->setText(0, QString::number(n));
            item->setText(1, QString::number(r.length));
            item->setText(2, QString::number(r.rate));
            item->setText(3, r.rate > 0 ? QString::number(double(r.length) / r.rate, 'f', 2)
                                        : QString("-"));
            if (n == selected) soundList_->setCurrentItem(item);
        }
    }
    const SoundHistory& history = session_.soundHistory;
    const bool on = soundFilesSupported();
    cmdUndoSound_->setEnabled(on && history.canUndo());
    cmdRedoSound_->setEnabled(on && history.canRedo());
    cmdUndoSound_->setText(history.canUndo() ? "Undo " + QString::fromStdString(history.undoName())
                                             : QString("Undo Replace"));
    cmdRedoSound_->setText(history.canRedo() ? "Redo " + QString::fromStdString(history.redoName())
                                             : QString("Redo Replace"));
}

int CarInfoForm::listedSound() const {
    const QTreeWidgetItem* item = soundList_ ? soundList_->currentItem() : nullptr;
    return item ? item->text(0).toInt() : -1;
}

void CarInfoForm::replaceSound(int sound) {
    if (!soundFilesSupported()) {
        platform_.message(soundFilesOffReason());
        return;
    }
    const QString path =
        askRecordingPath ? askRecordingPath()
                         : QFileDialog::getOpenFileName(
                               this, QString("Replace Sound %1 with a Recording").arg(sound),
                               QString::fromStdString(session_.style.dataFolder().string()),
                               "Recordings (*.wav *.flac *.ogg *.oga *.aif *.aiff);;All files (*)");
    if (path.isEmpty()) return;
    const SoundResult outcome =
        importSound(session_, platform_, sound, std::filesystem::path(path.toStdString()));
    if (!outcome && outcome.error().refusal == SoundRefusal::NoBank)
        refreshSoundState(); // says which files are missing
    if (outcome) {
        const SdtRecord& after = session_.soundHistory.steps.back().after;
        soundState_->setText(QString("Sound %1 replaced with %2: %3 samples at %4 per second. The "
                                     "sound bank is saved (its .bak copies are kept).")
                                 .arg(sound)
                                 .arg(path)
                                 .arg(after.length)
                                 .arg(after.rate));
        soundState_->show();
    }
    refreshSoundList();
}

void CarInfoForm::undoOrRedoSoundReplace(bool undo) {
    const std::string name =
        undo ? session_.soundHistory.undoName() : session_.soundHistory.redoName();
    const bool done =
        undo ? undoSoundImport(session_, platform_) : redoSoundImport(session_, platform_);
    if (done) {
        soundState_->setText(QString::fromStdString((undo ? "Undone: " : "Redone: ") + name +
                                                    ". The sound bank is saved."));
        soundState_->show();
    }
    refreshSoundList();
}

} // namespace torquil
