#pragma once
// loadfrm: the program's own file dialog with its drive, directory and file lists, the load
// options of a style file, and the remembered drive, directory and file of each mode.

#include "app/load_modes.h"

#include <QDialog>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QRadioButton;

namespace torquil {

class Platform;
struct StyleFileState;

class LoadForm : public QDialog {
    Q_OBJECT
public:
    // `style` is the open style (the bitmap mode's caption and patterns come from it).
    LoadForm(DialogMode mode, const StyleFileState& style, Platform& platform,
             QWidget* parent = nullptr);

    [[nodiscard]] DialogMode mode() const { return mode_; }
    // After confirming: the chosen file's full path; empty when confirmed without a file.
    [[nodiscard]] QString chosenPath() const { return chosenPath_; }
    [[nodiscard]] int loadOption() const;

    // The lists, as the user works them.
    [[nodiscard]] bool
    setDirectory(const QString& dir); // Dir1_Change: false when it cannot be read
    [[nodiscard]] QString directory() const { return dir_; }
    [[nodiscard]] QString drive() const;
    [[nodiscard]] QStringList fileNames() const;
    [[nodiscard]] QStringList folderNames() const;
    [[nodiscard]] bool selectFile(const QString& name); // File1_Click
    [[nodiscard]] QString selectedFile() const;
    void setLoadOption(int option);
    [[nodiscard]] QString optionsCaption() const;
    [[nodiscard]] bool optionsEnabled() const;
    void confirm(); // cmdOK_Click
    // The path field: shows the folder; Return there opens what is typed (a folder is shown, a
    // file is selected and confirmed; a relative path is taken from the shown folder) or, when
    // the field still names the shown folder, the selected file. False when nothing was opened
    // or shown (the line under the field says why).
    [[nodiscard]] bool openTypedPath();
    [[nodiscard]] QLineEdit* pathField() const { return pathEdit_; }
    [[nodiscard]] QString pathState() const;

    // The folder a mode starts in when nothing is remembered: the bundled sample level's folder
    // for style files when it is found beside the program, else the current folder.
    [[nodiscard]] static QString firstRunFolder(DialogMode mode);

protected:
    [[nodiscard]] bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildWidgets();
    void fillDrives();
    void syncDriveToDirectory();
    void fillLists();
    void onDriveChosen(int index); // Drive1_Change
    void onFolderActivated(QListWidgetItem* item);
    void onFileChosen(); // File1_Click
    void getRegSettings();
    void saveRegSettings();

    DialogMode mode_;
    const StyleFileState& style_;
    Platform& platform_;
    QString pattern_;
    QString dir_;
    QString chosenPath_;

    QComboBox* drives_ = nullptr;     // Drive1
    QLineEdit* pathEdit_ = nullptr;   // the shown folder, or a path the user types
    QLabel* pathState_ = nullptr;     // why a typed path was not opened
    QListWidget* folders_ = nullptr;  // Dir1
    QListWidget* files_ = nullptr;    // File1
    QGroupBox* options_ = nullptr;    // FrameG24Options
    QRadioButton* sprites_ = nullptr; // butt_loadOpts(0)
    QRadioButton* tiles_ = nullptr;   // butt_loadOpts(1)
    QPushButton* ok_ = nullptr;       // cmdOK
};

} // namespace torquil
