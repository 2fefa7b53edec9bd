// Finding one's way in the main window on the sample level: the open file's path, the car list
// and its edits, Find Car by name or model, moving the selection with the keys, the fit zoom,
// the hover label, the remap bars, the sound page's state and the manual.

#include "gui_fixture.h"

#include "app/board_palette.h"

#include "app/car_info_form.h"
#include "app/car_list_dock.h"
#include "app/car_list_model.h"
#include "app/help_window.h"
#include "app/load_form.h"
#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/page_board.h"
#include "app/remap_bar.h"
#include "style_builder.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QTabWidget>
#include <QTableView>
#include <QTextBrowser>
#include <QtTest>

#include <filesystem>

using namespace torquil;
using torquil::testing::WindowHarness;

namespace {

struct Harness : WindowHarness {
    Harness() {
        form->resize(1100, 700);
        form->show();
    }
    CarListModel* model() { return form->carList()->model(); }
    QSortFilterProxyModel* proxy() { return form->carList()->proxy(); }
    // The list's cell of a car and a field column, through the sorting and filtering proxy.
    QModelIndex cell(int asn, int fieldIndex) {
        return proxy()->mapFromSource(
            model()->index(model()->rowOf(asn), CarListModel::columnOf(fieldIndex)));
    }
    int firstCar() { return model()->asnAt(0); }
};

std::string lowered(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

} // namespace

class FindingWayTest : public QObject {
    Q_OBJECT
private slots:
    void captionStaysAndThePathIsShownAndOpenedFrom();
    void carListShowsSortsAndFiltersEveryCar();
    void carListEditsGoThroughTheEditorsLimits();
    void carListNameEditNamesTheModelAndRowsSelectOnTheBoard();
    void findCarTakesANameOrAModel();
    void arrowKeysMoveTheSelectionFromSpriteToSprite();
    void fitZoomPicksTheLargestZoomThatShowsAWholePage();
    void hoverLabelNamesThePageOnceAndTilePagesCountTiles();
    void remapBarsDragHueLightnessAndSaturation();
    void soundPageSaysWhatIsMissingAndSavesAWav();
    void helpOpensTheManualAtThePagesTopic();
    void screenshots();
};

void FindingWayTest::captionStaysAndThePathIsShownAndOpenedFrom() {
    Harness h;
    h.open();
    // Qt shows "[*]" only while there are unsaved changes; nothing is changed yet.
    QVERIFY(!h.form->isWindowModified());
    QCOMPARE(h.form->windowTitle().remove("[*]"),
             QString("Torquil: STYLE001.G24 (Port Alder 24bit) [Sprites]"));
    const QString full = QDir::toNativeSeparators(h.sample.file("STYLE001.G24"));
    QCOMPARE(h.form->windowFilePath(), full);
    QCOMPARE(h.form->pathLabel()->text(), full);

    // The dialog remembers another folder, but starts beside the open file.
    h.platform.settings().set("Style", "Dir", h.sample.work.string());
    LoadForm dialog(DialogMode::Style, h.session().style, h.platform);
    QCOMPARE(QDir(dialog.directory()).canonicalPath(), QDir(h.sample.gameDir()).canonicalPath());
    QCOMPARE(dialog.selectedFile(), QString("STYLE001.G24"));
    // Nothing open: the remembered folder.
    StyleFileState closed;
    LoadForm fresh(DialogMode::Style, closed, h.platform);
    QCOMPARE(QDir(fresh.directory()).canonicalPath(),
             QDir(QString::fromStdString(h.sample.work.string())).canonicalPath());
}

void FindingWayTest::carListShowsSortsAndFiltersEveryCar() {
    Harness h;
    h.action("mnuCarList")->trigger();
    QVERIFY(h.form->carList()->isVisible());
    QCOMPARE(h.model()->rowCount(), 0);
    h.open();
    const StyleSession& s = h.session();
    QCOMPARE(h.model()->rowCount(), s.cars.count);
    QCOMPARE(h.model()->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), QString("ASN"));
    QCOMPARE(h.model()->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), QString("Name"));
    QCOMPARE(h.model()->headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(),
             QString("Model"));
    QCOMPARE(h.model()->headerData(3, Qt::Horizontal, Qt::DisplayRole).toString(), QString("Type"));

    // Sorted by name: in alphabetical order whatever the case.
    QTableView* table = h.form->carList()->table();
    table->sortByColumn(CarListModel::kNameColumn, Qt::AscendingOrder);
    for (int row = 1; row < h.proxy()->rowCount(); ++row) {
        const QString a = h.proxy()->index(row - 1, 1).data().toString().toLower();
        const QString b = h.proxy()->index(row, 1).data().toString().toLower();
        QVERIFY2(a <= b, qPrintable(a + " > " + b));
    }
    // Sorted by width: numbers, not texts.
    const int widthColumn = CarListModel::columnOf(0);
    table->sortByColumn(widthColumn, Qt::DescendingOrder);
    for (int row = 1; row < h.proxy()->rowCount(); ++row)
        QVERIFY(h.proxy()->index(row - 1, widthColumn).data().toString().toInt() >=
                h.proxy()->index(row, widthColumn).data().toString().toInt());

    // Filtered by a part of the name, in any case.
    const std::string name = h.session().cars.find(h.firstCar())->name;
    const QString part = QString::fromStdString(name.substr(0, 3)).toUpper();
    QTest::keyClicks(h.form->carList()->filterBox(), part);
    QVERIFY(h.proxy()->rowCount() >= 1);
    QVERIFY(h.proxy()->rowCount() < h.model()->rowCount());
    for (int row = 0; row < h.proxy()->rowCount(); ++row)
        QVERIFY(h.proxy()->index(row, 1).data().toString().contains(part, Qt::CaseInsensitive));
    h.form->carList()->filterBox()->clear();
    QCOMPARE(h.proxy()->rowCount(), h.model()->rowCount());
}

void FindingWayTest::carListEditsGoThroughTheEditorsLimits() {
    Harness h;
    h.open();
    const int asn = h.firstCar();
    QVERIFY(asn > 0);
    QVERIFY(!h.form->commandEnabled("mnuSaveBlock"));

    // Typing into a cell as a user would: the width is clamped to 255 and reported.
    h.action("mnuCarList")->trigger();
    QTableView* table = h.form->carList()->table();
    table->setCurrentIndex(h.cell(asn, 0));
    table->edit(h.cell(asn, 0));
    auto* editor = table->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, "300");
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents(); // the view commits the editor's text through a queued call
    const CarEntry* car = h.session().cars.find(asn);
    QCOMPARE(int(car->info.width), 255);
    QCOMPARE(h.cell(asn, 0).data().toString(), QString("255"));
    QCOMPARE(h.form->carList()->reportLabel()->text(), QString("Width: txtbox valve set to H val"));
    QCOMPARE(h.session().style.gSaveCarInfo.back(), std::int16_t(asn));
    QVERIFY(h.form->commandEnabled("mnuSaveBlock"));

    // 16.16 and the one value box, as the editor stores them.
    QVERIFY(h.proxy()->setData(h.cell(asn, 18), "2.5"));
    QCOMPARE(car->info.rbp_mass, 163840);
    QCOMPARE(h.cell(asn, 18).data().toString(), QString("2.500")); // as the editor shows it
    QVERIFY(h.proxy()->setData(h.cell(asn, 37), "-4"));
    QCOMPARE(car->info.value, (std::array<std::int16_t, 4>{0, 0, 0, 0}));
    QCOMPARE(h.form->carList()->reportLabel()->text(), QString("Value: txtbox valve set to L val"));
    // Not a number: refused, nothing changes.
    const std::size_t queued = h.session().style.gSaveCarInfo.size();
    QVERIFY(!h.proxy()->setData(h.cell(asn, 9), "grippy"));
    QCOMPARE(h.session().style.gSaveCarInfo.size(), queued);
    QVERIFY(h.form->carList()->reportLabel()->text().contains("not a number"));
    // The centre of mass is the signed offset the game reads; a number one byte cannot hold is
    // refused with the value the game would read.
    QVERIFY(h.proxy()->setData(h.cell(asn, 16), "-6"));
    QCOMPARE(int(car->info.cy), -6);
    QCOMPARE(h.cell(asn, 16).data().toString(), QString("-6"));
    QVERIFY(!h.proxy()->setData(h.cell(asn, 15), "200"));
    QCOMPARE(h.form->carList()->reportLabel()->text(),
             QString("CG_X: \"200\" refused: the game reads cx as one signed byte (-128 to 127): "
                     "200 would be read as -56. Nothing changed."));

    // The save writes what the list changed.
    h.action("mnuSaveBlock")->trigger();
    const auto bytes = torquil::testing::readFile(h.sample.dir / "STYLE001.G24");
    QCOMPARE(int(bytes[static_cast<std::size_t>(car->fileSeek - 1)]), 255);
    QCOMPARE(int(bytes[static_cast<std::size_t>(car->fileSeek - 1 + 119)]), 0xFA); // cy = -6
}

void FindingWayTest::carListNameEditNamesTheModelAndRowsSelectOnTheBoard() {
    Harness h;
    h.open();
    const int asn = h.firstCar();
    const int model = h.session().cars.find(asn)->info.model;
    QVERIFY(h.proxy()->setData(h.cell(asn, 42), "Quickfoot"));
    QCOMPARE(h.session().names.names[static_cast<std::size_t>(model)], std::string("Quickfoot"));
    QVERIFY(h.session().style.gCarNamesChanged);
    for (int other = 1; other <= h.session().cars.highest; ++other)
        if (const CarEntry* c = h.session().cars.find(other); c && c->info.model == model)
            QCOMPARE(h.cell(other, 42).data().toString(), QString("Quickfoot"));

    // Choosing a row selects that car on the board, and the board's selection moves the row.
    QTableView* table = h.form->carList()->table();
    const int second = h.model()->asnAt(1);
    table->setCurrentIndex(h.cell(second, 12));
    QVERIFY(h.session().selectedSprite());
    QCOMPARE(h.session().selectedSprite()->ASN, second);
    QVERIFY(h.form->selectSprite(asn));
    QCOMPARE(h.model()->asnAt(h.proxy()->mapToSource(table->currentIndex()).row()), asn);
}

void FindingWayTest::findCarTakesANameOrAModel() {
    Harness h;
    h.open();
    StyleSession& s = h.session();
    const int asn = h.firstCar();
    const CarEntry* car = s.cars.find(asn);
    QString query = QString::fromStdString(lowered(car->name));
    h.form->askFindText = [&query] { return std::optional<QString>(query); };
    h.action("mnuFindCar")->trigger();
    QVERIFY(s.selectedSprite());
    QCOMPARE(s.selectedSprite()->ASN, asn);

    query = QStringLiteral("model %1").arg(car->info.model);
    h.form->selectSprite(h.model()->asnAt(h.model()->rowCount() - 1)); // start after it
    h.action("mnuFindCar")->trigger();
    QCOMPARE(s.cars.find(s.selectedSprite()->ASN)->info.model, car->info.model);

    query = QStringLiteral("no such car anywhere");
    h.action("mnuFindCar")->trigger();
    QCOMPARE(h.platform.texts().back(), std::string("No car matches \"no such car anywhere\"."));
}

void FindingWayTest::arrowKeysMoveTheSelectionFromSpriteToSprite() {
    Harness h;
    h.open();
    StyleSession& s = h.session();
    PageBoard* board = h.form->board();
    board->setFocus();
    QTest::keyClick(board, Qt::Key_Right);
    QCOMPARE(s.selection.page, 0);
    QCOMPARE(s.selection.sib, 1);
    QTest::keyClick(board, Qt::Key_Down);
    QCOMPARE(s.selection.sib, 2);
    QTest::keyClick(board, Qt::Key_Left);
    QCOMPARE(s.selection.sib, 1);
    QTest::keyClick(board, Qt::Key_Up); // before the first: stays
    QCOMPARE(s.selection.sib, 1);
    QCOMPARE(s.selection.page, 0);
    QVERIFY(!h.form->findChild<QLabel*>("lblSelection")->text().isEmpty());

    // Past the page's last sprite the walk goes on to the next page, and back.
    s.selection.sib = s.sprites.pageCount(0);
    QTest::keyClick(board, Qt::Key_Right);
    QCOMPARE(s.selection.page, 1);
    QCOMPARE(s.selection.sib, 1);
    QTest::keyClick(board, Qt::Key_Left);
    QCOMPARE(s.selection.page, 0);
    QCOMPARE(s.selection.sib, s.sprites.pageCount(0));
    // Enter edits the selected car.
    QVERIFY(h.form->selectSprite(h.firstCar()));
    int edited = 0;
    h.form->runDialog = [&edited](QDialog& dialog) {
        if (auto* editor = qobject_cast<CarInfoForm*>(&dialog)) edited = editor->asn();
        return int(QDialog::Accepted);
    };
    QTest::keyClick(board, Qt::Key_Return);
    QCOMPARE(edited, h.firstCar());
    // Page keys still scroll without touching the selection.
    const int selectedPage = s.selection.page;
    board->showPage(0);
    QTest::keyClick(board, Qt::Key_PageDown);
    QCOMPARE(s.pages.gBoardOffset, std::int16_t(256));
    QCOMPARE(s.selection.page, selectedPage);
}

void FindingWayTest::fitZoomPicksTheLargestZoomThatShowsAWholePage() {
    Harness h;
    h.open();
    PageBoard* board = h.form->board();
    auto fits = [board](int zoom) {
        BoardGeometry g;
        g.zoom = zoom;
        return g.contentHeight() <= board->viewport()->height() &&
               g.contentWidth(1) <= board->viewport()->width() + 40;
    };
    for (QSize size : {QSize(1400, 1060), QSize(900, 700), QSize(560, 420)}) {
        h.form->resize(size);
        QApplication::processEvents();
        h.action("mnuFitZoom")->trigger();
        QApplication::processEvents();
        const int zoom = board->zoom();
        QVERIFY2(
            zoom == 1 || fits(zoom),
            qPrintable(QString("zoom %1 at %2x%3").arg(zoom).arg(size.width()).arg(size.height())));
        if (zoom < 4) QVERIFY(!fits(zoom + 1));
    }
    QCOMPARE(h.action("mnuFitZoom")->shortcut(), QKeySequence("Ctrl+0"));
    h.form->resize(1400, 1060);
    QApplication::processEvents();
    h.form->fitToWindow();
    QVERIFY(board->zoom() >= 3);
}

void FindingWayTest::hoverLabelNamesThePageOnceAndTilePagesCountTiles() {
    Harness h;
    h.open();
    const SpriteRec& r = h.session().sprites.pageSprites[0][1];
    emit h.form->board()->hovered(0, r.xo + 1, r.yo + 1);
    const QString over = h.form->statusLabel()->text();
    QCOMPARE(over.count("BLK:"), 1);
    QVERIFY(over.contains(QStringLiteral("x:%1 y:%2").arg(r.xo + 1).arg(r.yo + 1)));
    emit h.form->board()->hovered(0, 255, 255); // nothing there in the sample's first page corner
    QCOMPARE(h.form->statusLabel()->text().count("BLK:"), 1);

    QVERIFY(h.form->board()->pageLabel(0).endsWith(" sprites"));
    // The tiles option: the ruler over the pages counts tiles.
    h.open("STYLE001.G24", kLoadTiles);
    QCOMPARE(h.session().style.loadOption, int(kLoadTiles));
    QCOMPARE(h.form->board()->pageLabel(0),
             QStringLiteral("Page 0  ·  %1 tiles").arg(h.session().sprites.pageCount(0)));
}

void FindingWayTest::remapBarsDragHueLightnessAndSaturation() {
    Harness h;
    h.open();
    const int asn = h.firstCar();
    CarInfoForm form(h.session(), h.platform, asn);
    form.resize(700, 480);
    form.show();
    form.tabs()->setCurrentIndex(CarInfoForm::RemapPage);
    auto* bar = form.findChild<RemapBar*>("ImageBar");
    QVERIFY(bar && bar->isVisible());
    const int w = bar->width();
    // Hue: press at the scale's middle gives half the circle; drag to the right end, 359 or 0.
    const int hueY = 2 + 12 + 4, lightY = hueY + 32, satY = hueY + 64;
    const int middle = (14 + 6 + w - 6) / 2;
    QTest::mousePress(bar, Qt::LeftButton, {}, QPoint(middle, hueY));
    QCOMPARE(form.box(38)->text(), QString::number(bar->valueAt(0, middle)));
    QVERIFY(std::abs(form.box(38)->text().toInt() - 180) <= 2);
    QMouseEvent move(QEvent::MouseMove, QPointF(w - 30, hueY),
                     bar->mapToGlobal(QPointF(w - 30, hueY)), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(bar, &move);
    QTest::mouseRelease(bar, Qt::LeftButton, {}, QPoint(w - 30, hueY));
    QCOMPARE(form.workingEntry().info.remap24[0][0], std::int16_t(bar->valueAt(0, w - 30)));
    // Lightness at the left end, saturation at the right end.
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(0, lightY));
    QCOMPARE(form.box(39)->text(), QString("-100"));
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(w, satY));
    QCOMPARE(form.box(40)->text(), QString("100"));
    QCOMPARE(form.workingEntry().info.remap24[0][2], std::int16_t(100));
    form.done(QDialog::Accepted);
    QCOMPARE(h.session().cars.find(asn)->info.remap24[0][1], std::int16_t(-100));
    QCOMPARE(h.session().style.gSaveCarInfo.back(), std::int16_t(asn));
}

void FindingWayTest::soundPageSaysWhatIsMissingAndSavesAWav() {
    Harness h;
    h.open();
    h.platform.qtSound().outputOverride = false;
    const int asn = h.firstCar();
    {
        CarInfoForm form(h.session(), h.platform, asn);
        QVERIFY(form.soundStateText().startsWith("No audio output device"));
        form.box(33)->setText("2");
        const std::filesystem::path wav = h.sample.work / "horn.wav";
        form.askWavPath = [&wav](const QString& suggested) {
            return suggested.endsWith(".wav") ? QString::fromStdString(wav.string()) : QString();
        };
        form.findChild<QPushButton*>("cmdSaveWav_1")->click();
        QVERIFY(std::filesystem::file_size(wav) > 44);
        QVERIFY(form.soundStateLabel()->text().contains("horn.wav"));
    }
    h.platform.qtSound().outputOverride = true;
    std::filesystem::remove_all(h.sample.dir / "audio");
    std::filesystem::remove_all(h.sample.dir / "AUDIO");
    CarInfoForm form(h.session(), h.platform, asn);
    QVERIFY(form.soundStateText().startsWith("No sound bank: "));
    QVERIFY(!form.soundStateLabel()->isHidden());
}

void FindingWayTest::helpOpensTheManualAtThePagesTopic() {
    Harness h;
    h.action("mnuHelpContents")->trigger();
    HelpWindow* help = h.form->helpWindow();
    QVERIFY(help && help->isVisible());
    QCOMPARE(help->anchor(), QString("contents"));
    QVERIFY(help->browser()->toPlainText().contains("Torquil manual"));
    QVERIFY(h.platform.shown.empty()); // no "no help" message any more

    // Every editor page's Help button opens its own section, which the manual has.
    h.open();
    CarInfoForm form(h.session(), h.platform, h.firstCar());
    for (int page = 0; page < CarInfoForm::PageCount; ++page) {
        form.helpButton(page)->click();
        const QString anchor = helpAnchor(CarInfoForm::helpContext(page));
        QCOMPARE(help->anchor(), anchor);
        QVERIFY2(help->browser()->document()->toHtml().contains(anchor), qPrintable(anchor));
    }
    QCOMPARE(help->anchor(), QString("editor-remap"));
    QVERIFY(help->browser()->verticalScrollBar()->value() > 0); // scrolled down to the section
    QVERIFY(h.platform.shown.empty());

    // Read Me: the text file in the same window, no outside program.
    torquil::testing::writeFile(h.sample.work / "readme.txt", {'H', 'e', 'l', 'l', 'o'});
    h.action("mnuReadMe")->trigger();
    QCOMPARE(help->browser()->toPlainText(), QString("Hello"));
    QVERIFY(h.platform.openedFiles.empty());
}

// With TORQUIL_SCREENSHOT_DIR set: the main window with the car list, and the manual.
void FindingWayTest::screenshots() {
    const QByteArray target = qgetenv("TORQUIL_SCREENSHOT_DIR");
    if (target.isEmpty()) QSKIP("TORQUIL_SCREENSHOT_DIR not set");
    // The pictures show the windows as the editor shows them: in the board's dark palette.
    applyBoardPalette(*qobject_cast<QApplication*>(QCoreApplication::instance()));
    const QString dir = QString::fromUtf8(target);
    Harness h;
    h.form->resize(1280, 860);
    h.open();
    h.form->setZoom(2);
    h.action("mnuCarList")->trigger();
    h.form->carList()->table()->sortByColumn(CarListModel::columnOf(4), Qt::DescendingOrder);
    h.form->selectSprite(h.proxy()->index(0, 0).data().toInt());
    QVERIFY(QTest::qWaitForWindowExposed(h.form.get()));
    QTest::qWait(100);
    QVERIFY(h.form->grab().save(dir + "/car_list.png"));

    h.form->showHelpTopic(CarInfoForm::helpContext(CarInfoForm::RemapPage));
    HelpWindow* help = h.form->helpWindow();
    help->resize(820, 680);
    help->showManual("car-list");
    QVERIFY(QTest::qWaitForWindowExposed(help));
    QTest::qWait(100);
    QVERIFY(help->grab().save(dir + "/manual.png"));
}

QTEST_MAIN(FindingWayTest)
#include "finding_way_test.moc"
