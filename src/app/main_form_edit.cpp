// The Edit menu (undo and redo of the session's history), the marks of unsaved changes in the
// caption, the File menu's recent style files, and files dropped on the window.

#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/page_board.h"
#include "platform/qt/qt_platform.h"
#include "session/edits.h"

#include <QAction>
#include <QDir>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSettings>
#include <QUrl>

#include <algorithm>
#include <filesystem>

namespace torquil {

namespace {

constexpr int kMaxRecentFiles = 8;
const QString kRecentGroup = QStringLiteral("Recent");

bool isStyleFile(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("g24") || suffix == QLatin1String("gry");
}

// Pictures the sprite import reads.
bool isSpritePicture(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("bmp") || suffix == QLatin1String("png");
}

// The first local file of a drag, or an empty string.
QString droppedFile(const QMimeData* data) {
    if (!data || !data->hasUrls()) return {};
    for (const QUrl& url : data->urls())
        if (url.isLocalFile()) return url.toLocalFile();
    return {};
}

QString optionName(int loadOption) {
    return loadOption == kLoadTiles ? QStringLiteral("Tiles") : QStringLiteral("Sprites");
}

} // namespace

void MainForm::undo() {
    const EditStep* step = session_->history.undo(*session_);
    if (!step) return;
    status_->setText(tr("Undone: %1").arg(QString::fromStdString(step->name())));
    setCommandGroup(2, session_->style.anyChange());
    updateStatusForSelection();
    board_->refresh();
}

void MainForm::redo() {
    const EditStep* step = session_->history.redo(*session_);
    if (!step) return;
    status_->setText(tr("Redone: %1").arg(QString::fromStdString(step->name())));
    setCommandGroup(2, session_->style.anyChange());
    updateStatusForSelection();
    board_->refresh();
}

void MainForm::refreshEditCommands() {
    const EditHistory& history = session_->history;
    QAction* undoAction = menus_->action(QStringLiteral("mnuUndo"));
    QAction* redoAction = menus_->action(QStringLiteral("mnuRedo"));
    undoAction->setText(history.canUndo()
                            ? tr("&Undo %1").arg(QString::fromStdString(history.undoName()))
                            : tr("&Undo"));
    redoAction->setText(history.canRedo()
                            ? tr("&Redo %1").arg(QString::fromStdString(history.redoName()))
                            : tr("&Redo"));
}

void MainForm::updateTitle() {
    if (!session_->style.loaded) {
        if (windowTitle() != QString::fromLatin1(kProgramTitle)) {
            setWindowModified(false);
            setWindowTitle(QString::fromLatin1(kProgramTitle));
        }
        return;
    }
    // Qt shows "[*]" as "*" while the window is modified and hides it otherwise; it stands right
    // after the file's name.
    QString title = QString::fromStdString(session_->caption);
    const QString name = QString::fromStdString(session_->style.gStyleFileName);
    const qsizetype at = name.isEmpty() ? -1 : title.indexOf(name);
    if (at >= 0)
        title.insert(at + name.size(), QStringLiteral("[*]"));
    else
        title += QStringLiteral("[*]");
    if (windowTitle() != title) setWindowTitle(title);
    setWindowModified(commandEnabled(QStringLiteral("mnuSaveBlock")));
}

QList<QPair<QString, int>> MainForm::recentFiles() const {
    QSettings& s = platform_.settingsStore().qsettings();
    QList<QPair<QString, int>> files;
    const int count = s.beginReadArray(kRecentGroup);
    for (int i = 0; i < count && files.size() < kMaxRecentFiles; ++i) {
        s.setArrayIndex(i);
        const QString path = s.value(QStringLiteral("Path")).toString();
        const int option = s.value(QStringLiteral("Option"), int(kLoadSprites)).toInt();
        if (!path.isEmpty())
            files.append({path, option == kLoadTiles ? int(kLoadTiles) : int(kLoadSprites)});
    }
    s.endArray();
    return files;
}

void MainForm::rememberRecent(const QString& path, int loadOption) {
    QList<QPair<QString, int>> files = recentFiles();
    const QString clean = QFileInfo(path).absoluteFilePath();
    files.erase(std::remove_if(
                    files.begin(), files.end(),
                    [&](const auto& f) { return QFileInfo(f.first).absoluteFilePath() == clean; }),
                files.end());
    files.prepend({clean, loadOption});
    while (files.size() > kMaxRecentFiles) files.removeLast();
    QSettings& s = platform_.settingsStore().qsettings();
    s.remove(kRecentGroup);
    s.beginWriteArray(kRecentGroup, static_cast<int>(files.size()));
    for (int i = 0; i < files.size(); ++i) {
        s.setArrayIndex(i);
        s.setValue(QStringLiteral("Path"), files[i].first);
        s.setValue(QStringLiteral("Option"), files[i].second);
    }
    s.endArray();
    s.sync();
    rebuildRecentMenu();
}

void MainForm::rebuildRecentMenu() {
    QMenu* menu = menus_->menu(QStringLiteral("mnuRecent"));
    menu->clear();
    const auto files = recentFiles();
    for (int i = 0; i < files.size(); ++i) {
        const QString path = files[i].first;
        const int option = files[i].second;
        // Every level's file is STYLE001.G24 or the like: the folder tells them apart.
        const QString folder = QDir::toNativeSeparators(QFileInfo(path).absolutePath());
        QAction* a =
            menu->addAction(QStringLiteral("&%1 %2 [%3]  %4")
                                .arg(i + 1)
                                .arg(QFileInfo(path).fileName(), optionName(option),
                                     menu->fontMetrics()
                                         .elidedText(folder, Qt::ElideMiddle, 360)
                                         .replace(QLatin1Char('&'), QStringLiteral("&&"))));
        a->setObjectName(QStringLiteral("mnuRecent%1").arg(i));
        a->setToolTip(path);
        a->setStatusTip(path);
        connect(a, &QAction::triggered, this,
                [this, path, option] { guarded([=, this] { openRecent(path, option); }); });
    }
    if (files.isEmpty()) {
        QAction* none = menu->addAction(tr("(no recent files)"));
        none->setObjectName(QStringLiteral("mnuRecentNone"));
        none->setEnabled(false);
        return;
    }
    menu->addSeparator();
    QAction* clear = menu->addAction(tr("&Clear List"));
    clear->setObjectName(QStringLiteral("mnuRecentClear"));
    connect(clear, &QAction::triggered, this, [this] {
        platform_.settingsStore().qsettings().remove(kRecentGroup);
        rebuildRecentMenu();
    });
}

void MainForm::openRecent(const QString& path, int loadOption) {
    if (!askToSaveChanges()) return;
    if (!QFileInfo::exists(path)) {
        platform_.message("The file " + path.toStdString() + " no longer exists.", Buttons::Ok,
                          Icon::Warning);
        return;
    }
    loadStyle(path, loadOption);
}

bool MainForm::acceptsDrop(const QMimeData* data) const {
    const QString file = droppedFile(data);
    if (file.isEmpty() || busy_) return false;
    if (isStyleFile(file)) return commandEnabled(QStringLiteral("mnuOpen"));
    return isSpritePicture(file) && commandEnabled(QStringLiteral("mnuSprite"));
}

void MainForm::dropFiles(const QMimeData* data, QPoint windowPos) {
    if (!acceptsDrop(data)) return;
    const QString file = droppedFile(data);
    if (isStyleFile(file)) {
        int option = kLoadSprites;
        for (const auto& recent : recentFiles())
            if (QFileInfo(recent.first) == QFileInfo(file)) option = recent.second;
        guarded([=, this] { openRecent(file, option); });
        return;
    }
    // A picture goes into the sprite it was dropped on.
    const QPoint viewportPos = board_->viewport()->mapFrom(this, windowPos);
    const auto at = board_->pagePointAt(viewportPos);
    if (!at) return;
    selectAt(at->page, at->x, at->y);
    if (!session_->selectedSprite()) {
        platform_.message("Drop the picture on a sprite of the board to import it.", Buttons::Ok,
                          Icon::Information);
        return;
    }
    guarded([=, this] {
        (void)importSpriteFrom(*session_, platform_, std::filesystem::path(file.toStdString()));
        markChanged();
    });
}

void MainForm::dragEnterEvent(QDragEnterEvent* event) {
    if (acceptsDrop(event->mimeData())) event->acceptProposedAction();
}

void MainForm::dragMoveEvent(QDragMoveEvent* event) {
    if (acceptsDrop(event->mimeData())) event->acceptProposedAction();
}

void MainForm::dropEvent(QDropEvent* event) {
    if (!acceptsDrop(event->mimeData())) return;
    event->acceptProposedAction();
    dropFiles(event->mimeData(), event->position().toPoint());
}

} // namespace torquil
