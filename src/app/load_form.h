#pragma once
// loadfrm: the program's own file dialog with its drive, directory and file lists, the load
// options of a style file, and the remembered drive, directory and file of each mode.

#include "app/load_modes.h"

#include <QDialog>

class QComboBox;
class QGroupBox;
class QLabel;
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

    DialogMode mode() const { return mode_; }
    // After confirming: the chosen file's full path; empty when confirmed without a file.
    QString chosenPath() const { return chosenPath_; }
    int loadOption() const;

    // The lists, as the user works them.
    bool setDirectory(const QString& dir); // Dir1_Change: false when it cannot be read
    QString directory() const { return dir_; }
    QString drive() const;
    QStringList fileNames() const;
    QStringList folderNames() const;
    bool selectFile(const QString& name); // File1_Click
    QString selectedFile() const;
    void setLoadOption(int option);
    QString optionsCaption() const;
    bool optionsEnabled() const;
    void confirm(); // cmdOK_Click

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

    QComboBox* drives_ = nullptr; // Drive1
    QLabel* path_ = nullptr;
    QListWidget* folders_ = nullptr;  // Dir1
    QListWidget* files_ = nullptr;    // File1
    QGroupBox* options_ = nullptr;    // FrameG24Options
    QRadioButton* sprites_ = nullptr; // butt_loadOpts(0)
    QRadioButton* tiles_ = nullptr;   // butt_loadOpts(1)
    QPushButton* ok_ = nullptr;       // cmdOK
};

} // namespace torquil
