// What helps the user find their way: the View menu with the car list and the fit zoom, moving
// the selection with the keyboard, the open file's full path, Find Car's text and the manual.

#include "app/car_list_dock.h"
#include "app/help_window.h"
#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/page_board.h"
#include "platform/qt/qt_platform.h"
#include "session/board_lookup.h"
#include "session/car_find.h"
#include "session/edits.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QStatusBar>

namespace torquil {

void MainForm::buildFindingAids() {
    // The View menu stands before the Window menu.
    auto* view = new QMenu(tr("&View"), menuBar());
    view->setObjectName(QStringLiteral("mnuBoardView"));
    view->menuAction()->setObjectName(QStringLiteral("mnuBoardView"));
    menuBar()->insertMenu(menus_->menu(QStringLiteral("mnuWindow"))->menuAction(), view);

    carList_ = new CarListDock(this);
    carList_->setSession(session_.get());
    addDockWidget(Qt::BottomDockWidgetArea, carList_);
    carList_->hide();
    QAction* list = carList_->toggleViewAction();
    list->setObjectName(QStringLiteral("mnuCarList"));
    list->setText(tr("Car &List"));
    list->setShortcut(QKeySequence(QStringLiteral("Ctrl+L")));
    view->addAction(list);

    QAction* fit = view->addAction(tr("&Fit Pages to Window"));
    fit->setObjectName(QStringLiteral("mnuFitZoom"));
    fit->setShortcut(QKeySequence(QStringLiteral("Ctrl+0")));
    connect(fit, &QAction::triggered, this, &MainForm::fitToWindow);

    pathLabel_ = new QLabel(this);
    pathLabel_->setObjectName(QStringLiteral("lblFilePath"));
    pathLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // After the hover label and the export notice.
    statusBar()->insertPermanentWidget(2, pathLabel_);

    connect(board_, &PageBoard::stepRequested, this, [this](int step) {
        (void)stepSelection(step); // at either end the selection stays
    });
    connect(board_, &PageBoard::activateRequested, this, [this] {
        if (commandEnabled(QStringLiteral("mnuEditCar"))) guarded([this] { mnuEditCar_Click(); });
    });
    connect(carList_, &CarListDock::carChosen, this, [this](int asn) {
        if (!busy_) (void)selectSprite(asn); // the list shows only cars that can be selected
    });
    // The list shows its own edit already: re-reading it would close an editor still open.
    connect(carList_, &CarListDock::carEdited, this, [this] {
        if (session_->style.anyChange()) setCommandGroup(2, true);
        updateStatusForSelection();
        board_->refresh();
    });

    // The car editor's Help buttons and Help > Contents open the manual in the program.
    QPointer<MainForm> self(this);
    platform_.qtDesktop().onShowHelp = [self](int context) {
        return self && self->showHelpTopic(context);
    };
    // The Help button of a question (the palette change after an import) opens its topic.
    platform_.messageSink().setHelpHandler([self](const Message& message) {
        return self && self->showHelpTopic(helpContextOfMessage(message.title));
    });
}

void MainForm::showOpenFile() {
    const bool open = session_->style.loaded;
    const QString path =
        open ? QDir::toNativeSeparators(QString::fromStdString(session_->style.path.string()))
             : QString();
    setWindowFilePath(path);
    pathLabel_->setText(path);
    pathLabel_->setToolTip(path);
    carList_->setSession(session_.get());
}

QString MainForm::hoverText(int page, int x, int y) const {
    const QString where = tr("x:%1 y:%2").arg(x).arg(y);
    const std::string what = describeAt(*session_, page, x, y);
    // The description names the page (BLK) itself.
    if (what.empty()) return tr("BLK:%1  ").arg(page) + where;
    return QString::fromStdString(what) + QStringLiteral("    ") + where;
}

void MainForm::fitToWindow() {
    setZoom(board_->fitZoom());
}

bool MainForm::stepSelection(int step) {
    if (busy_ || !session_->style.loaded || step == 0) return false;
    const SpriteTables& sprites = session_->sprites;
    const int pages = board_->pagesShown();
    int page = session_->pages.gBoardOffset / 256;
    int sib = step > 0 ? 1 : sprites.pageCount(page);
    if (session_->selection.any()) {
        page = session_->selection.page;
        sib = session_->selection.sib + (step > 0 ? 1 : -1);
    }
    // Past either end of a page the walk goes on to the next page with sprites.
    for (;;) {
        if (page < 0 || page >= pages) return false;
        if (sib < 1) {
            if (--page >= 0) sib = sprites.pageCount(page);
            continue;
        }
        if (sib > sprites.pageCount(page)) {
            ++page;
            sib = 1;
            continue;
        }
        break;
    }
    // The walk above stays on existing sprites.
    if (!selectOnBoard(*session_, page, sib)) return false;
    board_->ensurePageVisible(page);
    updateStatusForSelection();
    refreshCommands();
    board_->refresh();
    return true;
}

void MainForm::findCarByText(const QString& text) {
    const std::vector<int> matches = findCars(*session_, text.toLatin1().toStdString());
    if (matches.empty()) {
        platform_.message("No car matches \"" + text.toStdString() + "\".", Buttons::Ok,
                          Icon::Information, "Find Car");
        return;
    }
    const SpriteRec* current = session_->selectedSprite();
    (void)selectSprite(nextMatch(matches, current ? current->ASN : 0)); // a match is always there
}

bool MainForm::showHelpTopic(int context) {
    if (!help_) help_ = new HelpWindow(this);
    help_->show(); // laid out first, so that the anchor can be scrolled to
    if (!help_->showManual(helpAnchor(context))) {
        help_->hide();
        return false;
    }
    help_->raise();
    help_->activateWindow();
    return true;
}

} // namespace torquil
