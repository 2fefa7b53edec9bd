#include "app/main_form.h"

#include "app/car_list_dock.h"
#include "app/details_form.h"
#include "app/export_notice.h"
#include "app/main_menus.h"
#include "app/main_tool_bar.h"
#include "app/page_board.h"
#include "app/paint_watch.h"
#include "base/runtime_error.h"
#include "base/work_dir.h"
#include "platform/qt/qt_platform.h"
#include "session/board_lookup.h"
#include "session/edits.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSettings>
#include <QStatusBar>

#include <array>
#include <utility>

namespace torquil {

namespace {

const QStringList kNeedSprite = {"mnuExportSprite",     "mnuImportSprite", "mnuExportSpriteAs",
                                 "mnuImportSpriteFrom", "mnuTranspCheck",  "mnuTranspCorrect",
                                 "mnuEditInPaint",      "exportsprite",    "importsprite"};
const QStringList kNeedCar = {"mnuEditCar", "carinfo"};
// Delta set commands need a selected sprite that has deltas.
const QStringList kNeedDeltas = {"mnuExportDeltas0",  "mnuExportDeltas1", "mnuImportDeltas",
                                 "mnuViewDeltas0",    "mnuViewDeltas1",   "exportdeltasdirty",
                                 "exportdeltasclean", "importdeltas"};

} // namespace

MainForm::MainForm(AppOptions options, QtPlatform& platform, QWidget* parent)
    : QMainWindow(parent), options_(std::move(options)), platform_(platform),
      session_(std::make_unique<StyleSession>(options_)) {
    setObjectName(QStringLiteral("mainFrm"));
    setWindowTitle(QString::fromLatin1(kProgramTitle));
    runDialog = [](QDialog& dialog) { return dialog.exec(); };
    buildWindow();
    connectCommands();
    buildFindingAids();
    platform_.setParentWindow(this);
    platform_.qtDesktop().onRefreshBoard = [this] { board_->refresh(); };
    // Nothing is open yet: only the open command and what needs no file.
    setCommandGroup(0, false);
    setCommandGroup(1, true);
    restoreWindowSettings();
}

MainForm::~MainForm() {
    platform_.qtDesktop().onRefreshBoard = nullptr;
    platform_.qtDesktop().onShowHelp = nullptr;
    platform_.messageSink().setHelpHandler(nullptr);
    // Child widgets outlive this body (QWidget deletes them later) but the session does not: the
    // car list's model, which reads the session at any layout pass, lets go of it now.
    if (carList_) carList_->setSession(nullptr);
}

void MainForm::buildWindow() {
    menus_ = std::make_unique<MainMenus>(menuBar());
    for (const char* name : {"mnuSprite", "mnuImport", "mnuExport", "mnuView", "mnuTransp",
                             "mnuCarInfo", "mnuFile", "mnuFileLoad", "mnuFileBuild", "mnuRecent"})
        menus_->menu(QString::fromLatin1(name))->setToolTipsVisible(true);

    // The platform's undo and redo keys, and Ctrl+Y and Ctrl+Shift+Z wherever redo has another.
    menus_->action(QStringLiteral("mnuUndo"))->setShortcuts(QKeySequence::Undo);
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    for (const QKeySequence& extra :
         {QKeySequence(QStringLiteral("Ctrl+Shift+Z")), QKeySequence(QStringLiteral("Ctrl+Y"))})
        if (!redoKeys.contains(extra)) redoKeys.append(extra);
    menus_->action(QStringLiteral("mnuRedo"))->setShortcuts(redoKeys);
    rebuildRecentMenu();
    setAcceptDrops(true);

    // Zoom lives in the Window menu after its two entries.
    QMenu* window = menus_->menu(QStringLiteral("mnuWindow"));
    window->addSeparator();
    QMenu* zoomMenu = window->addMenu(tr("&Zoom"));
    zoomMenu->setObjectName(QStringLiteral("mnuZoom"));
    zoomMenu->menuAction()->setObjectName(QStringLiteral("mnuZoom"));
    auto* zoomGroup = new QActionGroup(this);
    for (int z = 1; z <= 4; ++z) {
        QAction* a = zoomMenu->addAction(tr("%1x").arg(z));
        a->setObjectName(QStringLiteral("mnuZoom%1").arg(z));
        a->setCheckable(true);
        a->setShortcut(QKeySequence(QStringLiteral("Ctrl+%1").arg(z)));
        zoomGroup->addAction(a);
        connect(a, &QAction::triggered, this, [this, z] { setZoom(z); });
    }

    toolBar_ = new MainToolBar(this);
    addToolBar(Qt::TopToolBarArea, toolBar_);

    board_ = new PageBoard(this);
    board_->setSession(session_.get());
    setCentralWidget(board_);

    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("lblStatus"));
    status_->setMinimumWidth(200);
    selectionLabel_ = new QLabel(this);
    selectionLabel_->setObjectName(QStringLiteral("lblSelection"));
    zoomBox_ = new QComboBox(this);
    zoomBox_->setObjectName(QStringLiteral("cboZoom"));
    zoomBox_->setToolTip(tr("Zoom (Ctrl+wheel on the board)"));
    for (int z = 1; z <= 4; ++z) zoomBox_->addItem(tr("%1x").arg(z), z);
    statusBar()->addWidget(status_, 1);
    exportNotice_ = new ExportNotice(this);
    paintWatch_ = new PaintWatch(this);
    connect(paintWatch_, &PaintWatch::changed, this, &MainForm::offerPaintedPicture);
    statusBar()->addWidget(exportNotice_, 3); // a path needs the room more than the hover text
    statusBar()->addPermanentWidget(selectionLabel_);
    statusBar()->addPermanentWidget(zoomBox_);
    connect(zoomBox_, &QComboBox::activated, this,
            [this](int index) { setZoom(zoomBox_->itemData(index).toInt()); });
    connect(board_, &PageBoard::zoomChanged, this, [this, zoomMenu](int z) {
        zoomBox_->setCurrentIndex(z - 1);
        zoomMenu->actions().at(z - 1)->setChecked(true);
    });
    zoomMenu->actions().at(0)->setChecked(true);

    details_ = new DetailsForm(platform_.detailsLog(), this);
    details_->hide();
}

void MainForm::connectMenu(const char* name, void (MainForm::*handler)()) {
    QAction* action = menus_->action(QString::fromLatin1(name));
    connect(action, &QAction::triggered, this,
            [this, handler] { guarded([=, this] { (this->*handler)(); }); });
}

void MainForm::connectCommands() {
    connectMenu("mnuOpen", &MainForm::mnuOpen_Click);
    connectMenu("mnuLoadGC3", &MainForm::mnuLoadGC3_Click);
    connectMenu("mnuLoadBMP", &MainForm::mnuLoadBMP_Click);
    connectMenu("mnuBuildGC3", &MainForm::mnuBuildGC3_Click);
    connectMenu("mnuSaveBlock", &MainForm::mnuSaveBlock_Click);
    connectMenu("mnuExit", &MainForm::mnuExit_Click);
    connectMenu("mnuUndo", &MainForm::undo);
    connectMenu("mnuRedo", &MainForm::redo);
    connectMenu("mnuImportSprite", &MainForm::mnuImportSprite_Click);
    connectMenu("mnuImportDeltas", &MainForm::mnuImportDeltas_Click);
    connectMenu("mnuExportSprite", &MainForm::mnuExportSprite_Click);
    connectMenu("mnuExportSpriteAs", &MainForm::mnuExportSpriteAs_Click);
    connectMenu("mnuImportSpriteFrom", &MainForm::mnuImportSpriteFrom_Click);
    connectMenu("mnuTranspCheck", &MainForm::mnuTranspCheck_Click);
    connectMenu("mnuTranspCorrect", &MainForm::mnuTranspCorrect_Click);
    connectMenu("mnuFindCar", &MainForm::mnuFindCar_Click);
    connectMenu("mnuEditCar", &MainForm::mnuEditCar_Click);
    connectMenu("mnuEditInPaint", &MainForm::mnuEditInPaint_Click);
    connectMenu("mnuSettings", &MainForm::mnuSettings_Click);
    connectMenu("mnuFormExpand", &MainForm::mnuFormExpand_Click);
    connectMenu("mnuFormShrink", &MainForm::mnuFormShrink_Click);
    connectMenu("mnuDbgReadGC3", &MainForm::mnuDbgReadGC3_Click);
    connectMenu("mnudbgfxttxt", &MainForm::mnudbgfxttxt_Click);
    connectMenu("mnuWinDetails", &MainForm::mnuWinDetails_Click);
    connectMenu("mnuHelpContents", &MainForm::mnuHelpContents_Click);
    connectMenu("mnuHelpSearch", &MainForm::mnuHelpSearch_Click);
    connectMenu("mnuReadMe", &MainForm::mnuReadMe_Click);
    connectMenu("mnuAbout", &MainForm::mnuAbout_Click);
    for (int i = 0; i < 2; ++i) {
        connect(menus_->action(QStringLiteral("mnuExportDeltas%1").arg(i)), &QAction::triggered,
                this, [this, i] { guarded([=, this] { mnuExportDeltas_Click(i); }); });
        connect(menus_->action(QStringLiteral("mnuViewDeltas%1").arg(i)), &QAction::triggered, this,
                [this, i] { guarded([=, this] { mnuViewDeltas_Click(i); }); });
    }
    for (const char* name :
         {"mnuGenCarInfoFiles", "mnuGenSpriteInfoFiles", "mnuGenCLUTFiles", "mnuGenDeltaDump"}) {
        const QString control = QString::fromLatin1(name);
        connect(menus_->action(control), &QAction::toggled, this,
                [this, control](bool on) { setDumpFlag(control, on); });
    }
    connect(toolBar_, &MainToolBar::keyPressed, this, &MainForm::runKey);
    connect(board_, &PageBoard::pixelClicked, this, &MainForm::selectAt);
    connect(board_, &PageBoard::pixelDoubleClicked, this, [this](int page, int x, int y) {
        selectAt(page, x, y);
        if (commandEnabled(QStringLiteral("mnuEditCar"))) guarded([this] { mnuEditCar_Click(); });
    });
    connect(board_, &PageBoard::hovered, this, [this](int page, int x, int y) {
        if (page < 0) {
            status_->clear();
            return;
        }
        status_->setText(hoverText(page, x, y));
    });
}

void MainForm::runKey(const QString& key) {
    // The toolbar's keys and the commands they run.
    using Command = void (*)(MainForm&);
    static const std::array<std::pair<const char*, Command>, 12> commands{{
        {"open", [](MainForm& f) { f.mnuOpen_Click(); }},
        {"save", [](MainForm& f) { f.mnuSaveBlock_Click(); }},
        {"carinfo", [](MainForm& f) { f.mnuEditCar_Click(); }},
        {"find", [](MainForm& f) { f.mnuFindCar_Click(); }},
        {"exportsprite", [](MainForm& f) { f.mnuExportSprite_Click(); }},
        {"importsprite", [](MainForm& f) { f.mnuImportSprite_Click(); }},
        {"exportdeltasdirty", [](MainForm& f) { f.mnuExportDeltas_Click(0); }},
        {"exportdeltasclean", [](MainForm& f) { f.mnuExportDeltas_Click(1); }},
        {"importdeltas", [](MainForm& f) { f.mnuImportDeltas_Click(); }},
        {"loadgc3", [](MainForm& f) { f.mnuLoadGC3_Click(); }},
        {"buildgc3", [](MainForm& f) { f.mnuBuildGC3_Click(); }},
        {"loadbmp", [](MainForm& f) { f.mnuLoadBMP_Click(); }},
    }};
    // The pack builder is always on; every other key follows its command's group.
    if (!commandEnabled(key) && key != QLatin1String("buildgc3")) return;
    for (const auto& [name, command] : commands)
        if (key == QLatin1String(name)) return guarded([this, command] { command(*this); });
}

void MainForm::setCommandGroup(int group, bool enabled) {
    groups_.set(group, enabled);
    refreshCommands();
}

QString MainForm::unavailableReason(const QString&) const {
    return {};
}

bool MainForm::selectionAllows(const QString& control) const {
    if (control == QLatin1String("mnuUndo")) return session_->history.canUndo();
    if (control == QLatin1String("mnuRedo")) return session_->history.canRedo();
    if (kNeedSprite.contains(control)) return session_->selectedSprite() != nullptr;
    if (kNeedDeltas.contains(control)) {
        const SpriteRec* sprite = session_->selectedSprite();
        return sprite && sprite->kind.empty() && sprite->delta_count > 0;
    }
    if (kNeedCar.contains(control)) {
        const SpriteRec* sprite = session_->selectedSprite();
        return sprite && sprite->kind.empty() && session_->cars.find(sprite->ASN) != nullptr;
    }
    return true;
}

bool MainForm::commandEnabled(const QString& control) const {
    return groups_.isOn(control) && unavailableReason(control).isEmpty() &&
           selectionAllows(control);
}

void MainForm::refreshCommands() {
    for (auto it = menus_->actions().cbegin(); it != menus_->actions().cend(); ++it) {
        if (it.value()->isSeparator()) continue;
        it.value()->setEnabled(commandEnabled(it.key()));
        const QString reason = unavailableReason(it.key());
        if (!reason.isEmpty()) it.value()->setToolTip(reason);
    }
    for (const QString& key : MainToolBar::keys()) {
        QAction* button = toolBar_->button(key);
        button->setEnabled(commandEnabled(key));
        const QString reason = unavailableReason(key);
        if (!reason.isEmpty())
            button->setToolTip(button->text() + QStringLiteral(" \u2014 ") + reason);
    }
    refreshEditCommands();
    updateTitle();
}

void MainForm::selectAt(int page, int x, int y) {
    if (busy_) return;
    const auto hit = hitTest(*session_, page, x, y);
    // A miss (or a hit the tables no longer hold) leaves nothing selected.
    if (!hit || !selectOnBoard(*session_, hit->first, hit->second)) clearSelection(*session_);
    updateStatusForSelection();
    refreshCommands();
    board_->refresh();
}

void MainForm::updateStatusForSelection() {
    const SpriteRec* sprite = session_->selectedSprite();
    if (!sprite) {
        selectionLabel_->clear();
        return;
    }
    const int page = session_->selection.page;
    selectionLabel_->setText(tr("Selected: ") + QString::fromStdString(describeAt(
                                                    *session_, page, sprite->xo, sprite->yo)));
}

void MainForm::setZoom(int zoom) {
    board_->setZoom(zoom);
}

void MainForm::guarded(const std::function<void()>& command) {
    if (busy_) return;
    busy_ = true;
    try {
        command();
    } catch (const RuntimeError& e) {
        // Debug mode: the error stopped the command and reaches the top here.
        platform_.message(e.what(), Buttons::Ok, Icon::Critical);
    } catch (const std::exception& e) {
        platform_.message(std::string("Unexpected error: ") + e.what(), Buttons::Ok,
                          Icon::Critical);
    }
    busy_ = false;
    refreshCommands();
}

int MainForm::execDialog(QDialog& dialog) {
    return runDialog ? runDialog(dialog) : dialog.exec();
}

bool MainForm::askToSaveChanges() {
    if (!commandEnabled(QStringLiteral("mnuSaveBlock"))) return true;
    switch (platform_.message("Save your changes?", Buttons::YesNoCancel, Icon::Question)) {
    case Answer::Yes:
        mnuSaveBlock_Click();
        return true;
    case Answer::No:
        return true;
    default:
        return false;
    }
}

void MainForm::closeEvent(QCloseEvent* event) {
    // Form_QueryUnload: Cancel keeps the program running.
    bool keepRunning = false;
    if (!busy_) {
        busy_ = true;
        try {
            keepRunning = !askToSaveChanges();
        } catch (const std::exception& e) {
            platform_.message(e.what(), Buttons::Ok, Icon::Critical);
        }
        busy_ = false;
    } else {
        keepRunning = true; // a load or save is still running
    }
    if (keepRunning) {
        event->ignore();
        refreshCommands();
        return;
    }
    saveWindowSettings();
    formUnload();
    event->accept();
}

void MainForm::formUnload() {
    // The temporary files ("~*.*") of this run, in the program's directory.
    deleteTemporaryFiles(options_.workDir);
    details_->hide();
    platform_.workingForm().hide();
    for (QWidget* w : findChildren<QWidget*>())
        if (w->isWindow() && w->isVisible()) w->close();
}

void MainForm::restoreWindowSettings() {
    QSettings& s = platform_.settingsStore().qsettings();
    s.beginGroup(QStringLiteral("Window"));
    const QSize size = s.value(QStringLiteral("Size"), QSize(1120, 660)).toSize();
    const int zoom = s.value(QStringLiteral("Zoom"), 2).toInt();
    const bool maximized = s.value(QStringLiteral("Maximized"), false).toBool();
    const QByteArray geometry = s.value(QStringLiteral("Geometry")).toByteArray();
    const QByteArray state = s.value(QStringLiteral("State")).toByteArray();
    s.endGroup();
    resize(size.boundedTo(QSize(10000, 10000)).expandedTo(QSize(480, 360)));
    // The place and size of the window, and where the docks and the toolbar were and how big.
    if (!geometry.isEmpty()) restoreGeometry(geometry);
    if (!state.isEmpty()) restoreState(state);
    setZoom(zoom);
    if (maximized) setWindowState(windowState() | Qt::WindowMaximized);
}

void MainForm::saveWindowSettings() {
    QSettings& s = platform_.settingsStore().qsettings();
    s.beginGroup(QStringLiteral("Window"));
    s.setValue(QStringLiteral("Maximized"), isMaximized());
    if (!isMaximized()) s.setValue(QStringLiteral("Size"), size());
    s.setValue(QStringLiteral("Geometry"), saveGeometry());
    s.setValue(QStringLiteral("State"), saveState());
    s.setValue(QStringLiteral("Zoom"), board_->zoom());
    s.endGroup();
    s.sync();
}

} // namespace torquil
