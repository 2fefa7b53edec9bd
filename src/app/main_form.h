#pragma once
// mainFrm: the page board with the menus and toolbar of every command. The form coordinates:
// the work is done by the core on the session, which is replaced whole on every load.

#include "app/command_groups.h"
#include "app/file_dialogs.h"
#include "app/picture_file_choice.h"
#include "session/edits.h"
#include "session/session_io.h"

#include <QMainWindow>
#include <QPointer>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>

class QComboBox;
class QDragEnterEvent;
class QDragMoveEvent;
class QDropEvent;
class QMimeData;
class QDialog;
class QLabel;
class QMessageBox;

namespace torquil {

class CarListDock;
class ExportNotice;
class DetailsForm;
class HelpWindow;
class MainMenus;
class MainToolBar;
class PageBoard;
class PaintWatch;
class QtPlatform;

class MainForm : public QMainWindow {
    Q_OBJECT
public:
    MainForm(AppOptions options, QtPlatform& platform, QWidget* parent = nullptr);
    ~MainForm() override;

    StyleSession& session() { return *session_; }
    const AppOptions& options() const { return options_; }
    PageBoard* board() const { return board_; }
    DetailsForm* detailsForm() const { return details_; }
    const MainMenus& menus() const { return *menus_; }
    MainToolBar* toolBar() const { return toolBar_; }
    QLabel* statusLabel() const { return status_; }
    QLabel* pathLabel() const { return pathLabel_; }
    CarListDock* carList() const { return carList_; }
    HelpWindow* helpWindow() const { return help_; }
    // The status bar's word after an export (where the file went, "Open Folder").
    ExportNotice* exportNotice() const { return exportNotice_; }
    // The file the last export wrote; empty before the first.
    QString lastExportedFile() const;

    // Switches a command group (0: groups 1 to 9; above 9: nothing).
    void setCommandGroup(int group, bool enabled);
    // Whether a menu control or toolbar key is enabled right now.
    bool commandEnabled(const QString& control) const;

    // Runs the command of a toolbar key ("open", "save", ..., also "buildgc3").
    void runKey(const QString& key);
    // Loads a style file into a new session (what the open dialog starts); errors that escape
    // the core are shown, never thrown.
    void openStyle(const QString& path, int loadOption);
    // Selects the sprite under a page pixel (none: clears the selection).
    void selectAt(int page, int x, int y);
    // Selects a sprite by its absolute number and scrolls to it (Find Car without the question).
    bool selectSprite(int asn);
    // Shows what the car pack changes in the open level, asks, applies it and reloads the level;
    // refuses a pack of another level, a damaged one, one that does not fit or is applied already.
    // True when it was applied.
    bool applyCarPackFile(const QString& path);
    // "Save your changes?" when the save command is enabled; false when the user cancelled.
    bool askToSaveChanges();
    void setZoom(int zoom);
    // The largest zoom at which a whole page fits the board, then applied.
    void fitToWindow();
    // Moves the selection to the next (step 1) or previous (step -1) sprite, page after page.
    bool stepSelection(int step);
    // Opens the manual at a help context's topic (0: contents, 100 + page: the car editor).
    bool showHelpTopic(int context);

    // The pictures out in a paint program, watched for new versions.
    PaintWatch* paintWatch() const { return paintWatch_; }
    // Sprite > Edit in Paint Program: the selected sprite (or its delta set, clean or drawn over
    // the sprite) written as a picture, opened in the paint program and watched.
    void editInPaint(bool deltaSet = false, bool clean = false);

    // Edit menu: takes back the last edit or does the next undone one again.
    void undo();
    void redo();
    // The File menu's recent style files, newest first: path and load option.
    QList<QPair<QString, int>> recentFiles() const;
    // What a drop of these files on the window would do; the drop itself (a style file opens,
    // a bitmap dropped on a sprite of the board is imported into it).
    bool acceptsDrop(const QMimeData* data) const;
    void dropFiles(const QMimeData* data, QPoint windowPos);

    // How modal dialogs run: exec() unless replaced (tests drive the dialog instead).
    std::function<int(QDialog&)> runDialog;
    // Asks for an absolute sprite number; nothing when cancelled.
    std::function<std::optional<int>()> askSpriteNumber;
    // Asks Find Car's text (ASN, "model N" or a part of a name); nothing when cancelled.
    std::function<std::optional<QString>()> askFindText;
    // Stands in for the file dialog of a delta set picture to write (forSaving) or read, which
    // offers `filters` (pictureFileFilters) and starts at `suggested`.
    std::function<PictureFileAnswer(bool forSaving, const QString& suggested,
                                    const QString& filters)>
        askDeltaSetFile;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // Building the window (main_form.cpp).
    void buildWindow();
    void connectCommands();
    void connectMenu(const char* name, void (MainForm::*handler)());
    void refreshCommands();
    QString unavailableReason(const QString& control) const;
    bool selectionAllows(const QString& control) const;
    void updateStatusForSelection();
    void restoreWindowSettings();
    void saveWindowSettings();
    void formUnload();
    // Runs a command; a run-time error that escaped the core (debug mode) is shown here.
    void guarded(const std::function<void()>& command);
    int execDialog(QDialog& dialog);

    // File commands (main_form_file.cpp).
    void mnuOpen_Click();
    void mnuLoadBMP_Click();
    void mnuLoadGC3_Click();
    void mnuBuildGC3_Click(); // main_form_car_pack.cpp
    void mnuSaveBlock_Click();
    void mnuExit_Click();
    void loadStyle(const QString& path, int loadOption);
    void afterLoad(bool loaded);
    void markChanged();

    // Edit menu, unsaved-changes marks, recent files (main_form_edit.cpp).
    void refreshEditCommands();
    void updateTitle();
    void rememberRecent(const QString& path, int loadOption);
    void rebuildRecentMenu();
    void openRecent(const QString& path, int loadOption);

    // Sprite and car commands (main_form_sprite.cpp).
    void mnuExportSprite_Click();
    void mnuImportSprite_Click();
    void mnuExportDeltas_Click(int index);
    void mnuImportDeltas_Click();
    void mnuViewDeltas_Click(int index);
    // The delta set picture to write (forSaving) or read: the dialog's answer, with the chosen
    // filter's extension added to a name typed without one; empty when cancelled.
    QString chooseDeltaSetFile(bool forSaving, const QString& suggested);
    void mnuExportSpriteAs_Click();
    void mnuImportSpriteFrom_Click();
    // A file dialog run through runDialog, starting in the kind's last folder (the program's
    // directory at first); empty when cancelled.
    QString askForFile(const FileRequest& request);
    void showExported(const QString& what, const std::filesystem::path& file);
    void mnuTranspCheck_Click();
    void mnuTranspCorrect_Click();
    void mnuFindCar_Click();
    void mnuEditCar_Click();
    void mnuFormExpand_Click();
    void mnuFormShrink_Click();
    void importBitmapFile(const QString& path);
    // The sprite import of a picture of any size into the selected sprite: a size of its own asks
    // the resize question first, and a resized car is offered its new collision size.
    void importSpritePicture(const std::filesystem::path& file);
    // The delta set import of a picture into the selected sprite; another number of frames asks
    // the delta count question first.
    void importDeltaSetPicture(const std::filesystem::path& file, bool clean);
    // After a resize: the car's collision size (its record's width and height) set to the
    // sprite's new size when the user says so; a step of its own.
    void offerCollisionSize(int asn);

    // Edit in Paint Program and the offers of changed pictures (main_form_paint.cpp).
    void mnuEditInPaint_Click();
    void mnuSettings_Click();
    void offerPaintedPicture(const QString& file);
    void takePaintedPicture(const QString& file);
    void forgetPaintEdits();

    // The car list, fit zoom, keyboard selection, file path and help window
    // (main_form_view.cpp).
    void buildFindingAids();
    void showOpenFile();
    QString hoverText(int page, int x, int y) const;
    void findCarByText(const QString& text);

    // Help and debug commands (main_form_help.cpp).
    void mnuHelpContents_Click();
    void mnuHelpSearch_Click();
    void mnuReadMe_Click();
    void mnuAbout_Click();
    void mnuWinDetails_Click();
    void mnuDbgReadGC3_Click();
    void mnudbgfxttxt_Click();
    void setDumpFlag(const QString& control, bool on);

    AppOptions options_;
    QtPlatform& platform_;
    std::unique_ptr<StyleSession> session_;
    CommandGroups groups_;
    bool busy_ = false; // a command is running (its events must not start another)

    std::unique_ptr<MainMenus> menus_;
    MainToolBar* toolBar_ = nullptr;
    PageBoard* board_ = nullptr;
    DetailsForm* details_ = nullptr;
    QLabel* status_ = nullptr;
    QLabel* selectionLabel_ = nullptr;
    QComboBox* zoomBox_ = nullptr;
    QLabel* pathLabel_ = nullptr;
    CarListDock* carList_ = nullptr;
    HelpWindow* help_ = nullptr;
    ExportNotice* exportNotice_ = nullptr;
    PaintWatch* paintWatch_ = nullptr;
    std::map<QString, QPointer<QMessageBox>> paintOffers_; // open offers by picture file
};

} // namespace torquil
