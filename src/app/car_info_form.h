#pragma once
// carInfoFrm: edits one car's info record, its name, its colour remaps and its doors on a copy of
// the car's entry. Every way of closing the form (Cancel included) accepts the edits: changed
// records are copied back and queued in gSaveCarInfo, a changed name goes into the car names.

#include "cars/car_fields.h"
#include "cars/car_info.h"
#include "cars/remap_colours.h"

#include <QDialog>

#include <array>
#include <functional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QScrollBar;
class QTabWidget;
class QTimer;
class QGroupBox;
class QTreeWidget;

namespace torquil {

class DoorView;
class Platform;
class RemapBar;
class RemapPreview;
class StyleSession;
struct SpriteRec;

class CarInfoForm : public QDialog {
    Q_OBJECT
public:
    // The pages of SSTab1, in order.
    enum Page {
        SpritePage,
        DoorsPage,
        SpecsPage,
        PhysicsPage,
        SteerPage,
        BrakePage,
        SoundPage,
        RemapPage,
        PageCount
    };

    CarInfoForm(StyleSession& session, Platform& platform, int asn, QWidget* parent = nullptr);
    ~CarInfoForm() override;

    [[nodiscard]] int asn() const { return asn_; }
    [[nodiscard]] bool recordChanged() const { return recordChanged_; }
    [[nodiscard]] bool nameChanged() const { return nameChanged_; }
    // The form's working copy of the car's entry.
    [[nodiscard]] const CarEntry& workingEntry() const { return entry_; }

    [[nodiscard]] QLineEdit* box(int index) const;
    [[nodiscard]] QLabel* label(int index) const;
    [[nodiscard]] QTabWidget* tabs() const { return tabs_; }
    [[nodiscard]] QPushButton* helpButton(int page) const;
    [[nodiscard]] int selectedDoor() const { return cursor_.door; }

    // Why the sound page cannot be heard (no sound bank, no audio device); empty when it can.
    [[nodiscard]] QString soundStateText() const;
    [[nodiscard]] QLabel* soundStateLabel() const { return soundState_; }
    // Asks where Save as WAV writes (a file dialog unless replaced); empty: cancelled.
    std::function<QString(const QString& suggested)> askWavPath;
    // Asks for the recording that replaces a sound (a file dialog unless replaced); empty:
    // cancelled.
    std::function<QString()> askRecordingPath;
    // The sound page's list of the bank: one row per sound, its number in column 0.
    [[nodiscard]] QTreeWidget* soundList() const { return soundList_; }

    // The line under the pages that describes the focused box and reports its clamps and
    // refusals (the limits' reports are shown here, never in a message box).
    [[nodiscard]] QLabel* fieldStatus() const { return fieldStatus_; }
    // How a box is marked: "" (fine), "clamped" (its value was set to a limit), "refused" (text
    // that is not a number was taken back) or "unfinished" (not a number yet).
    [[nodiscard]] QString fieldMark(int index) const;
    // The boxes whose text is not a number yet; closing the form waits until there are none.
    [[nodiscard]] std::vector<int> unfinishedBoxes() const;

    // The help context number each page's help button carries.
    [[nodiscard]] static int helpContext(int page) { return 100 + page; }

    void done(int result) override;

protected:
    [[nodiscard]] bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Building the pages (car_info_form_layout.cpp).
    void buildForm();
    [[nodiscard]] QWidget* buildFieldPage(Page page, std::initializer_list<int> indexes);
    [[nodiscard]] QWidget* buildDoorsPage();
    [[nodiscard]] QWidget* buildSoundPage();
    [[nodiscard]] QWidget* buildRemapPage();
    [[nodiscard]] QLineEdit* makeBox(int index, QWidget* parent);
    [[nodiscard]] QLabel* makeLabel(int index, QWidget* parent);
    [[nodiscard]] QPushButton* makeHelpButton(Page page, QWidget* parent);

    // Events of the boxes and buttons (car_info_form.cpp).
    void fillBoxes();
    void setBoxText(int index, const std::string& text); // without counting as an edit
    // A number inside the box's limits that its record field cannot hold (cx = 200): says why,
    // with the value the game would read, and puts back the box's last good text.
    [[nodiscard]] bool refuseUnfit(int index, const QString& typed);
    void txtBoxChange(int index);
    void txtBoxLostFocus(int index);

    // Limits as the user types (car_info_form_limits.cpp).
    void markField(int index, const QString& mark);
    void showFieldInfo(int index);
    void reportClamp(int index, const QString& typed, const FieldCheck& check);
    void refuseText(int index, const QString& typed);
    [[nodiscard]] QString fieldToolTip(int index) const;
    [[nodiscard]] bool refuseUnfinishedClose();
    void cmdHelpClick(int page);
    void acceptEdits();
    void playSoundOfBox(int index, int repeat);
    void saveSoundOfBox(int index, int repeat);
    [[nodiscard]] int soundNumberOfBox(int index) const;
    void refreshSoundState();

    // The sound page's list of the bank and sound replacement (car_info_form_sound.cpp).
    [[nodiscard]] QWidget* buildSoundBankBox(QWidget* parent);
    void refreshSoundList();
    [[nodiscard]] int listedSound() const; // the sound selected in the list, -1 when none
    void replaceSound(int sound);
    void undoOrRedoSoundReplace(bool undo);

    // The door page (car_info_form_doors.cpp).
    void showDoor(int door);
    void doorMovedTo(int rpx, int rpy);
    void timerTick();
    void refreshDoorView();

    // The remap page (car_info_form_remap.cpp).
    void remapListClick(int row);
    void refreshRemap();

    StyleSession& session_;
    Platform& platform_;
    int asn_;
    bool known_ = false; // the car's entry is in the table
    CarEntry entry_;     // the working copy
    FieldCursor cursor_; // selected remap and door
    const SpriteRec* sprite_ = nullptr;
    ClutColours baseColours_{};
    bool recordChanged_ = false;
    bool nameChanged_ = false;
    bool remapChanged_ = false;
    bool filling_ = false; // boxes being filled by the form itself
    bool accepted_ = false;
    std::array<std::string, kCarFieldCount> filledText_; // each box's text when the form opened
    std::array<QString, kCarFieldCount> lastGood_;       // each box's last text that was taken

    QTabWidget* tabs_ = nullptr;
    QLabel* soundState_ = nullptr;
    QTreeWidget* soundList_ = nullptr;
    QPushButton* cmdUndoSound_ = nullptr;
    QPushButton* cmdRedoSound_ = nullptr;
    std::array<QLineEdit*, kCarFieldCount> boxes_{};
    std::array<QLabel*, kCarFieldCount> labels_{};
    std::array<QPushButton*, PageCount> helpButtons_{};
    QPushButton* cmdCancel_ = nullptr;
    QLabel* fieldStatus_ = nullptr;

    DoorView* pictDoors_ = nullptr;
    QScrollBar* doorScroll_ = nullptr;
    QLineEdit* txtBoxD_ = nullptr;
    QTimer* timer1_ = nullptr;
    QGroupBox* doorFrame_ = nullptr;

    QListWidget* remapList_ = nullptr;
    RemapPreview* remapPic_ = nullptr;
    RemapBar* imageBar_ = nullptr;
    QLabel* remapInUse_ = nullptr;
    std::array<QLabel*, 3> colorationLabels_{};
};

} // namespace torquil
