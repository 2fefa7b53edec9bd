// The Edit menu and its keys on the sample level, the marks of unsaved changes, the car editor
// keeping what the user did not change, the recent files and files dropped on the window.

#include "gui_fixture.h"

#include "app/board_palette.h"

#include "app/car_info_form.h"
#include "app/load_form.h"
#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/page_board.h"
#include "style_builder.h"

#include <QAction>
#include <QDir>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QSettings>
#include <QUrl>
#include <QtTest>

using namespace torquil;
using torquil::testing::readFile;
using torquil::testing::WindowHarness;

namespace {

struct Harness : WindowHarness {
    Harness() {
        form->show();
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
    }
    QPoint windowPoint(const SpriteRec& r) const {
        PageBoard* board = form->board();
        board->showPage(r.page);
        const QPoint at = board->viewportPoint(r.page, r.xo + r.W / 2, r.yo + r.H / 2);
        return board->viewport()->mapTo(form.get(), at);
    }
    void select(const SpriteRec& r) {
        const QPoint at = form->board()->viewport()->mapFrom(form.get(), windowPoint(r));
        QTest::mouseClick(form->board()->viewport(), Qt::LeftButton, {}, at);
    }
    // Exports the selected sprite and paints its top-left pixel; the BMP's path.
    std::filesystem::path paintedExport(std::uint8_t value) {
        action("mnuExportSprite")->trigger();
        const std::filesystem::path bmp = form->lastExportedFile().toStdString();
        std::vector<std::uint8_t> bytes = readFile(bmp);
        const SpriteRec& r = *session().selectedSprite();
        // Rows are stored bottom-up, each padded to 4 bytes: the top row is the last.
        bytes[1078 + static_cast<std::size_t>((r.W + 3) / 4 * 4) * (r.H - 1)] = value;
        torquil::testing::writeFile(bmp, bytes);
        return bmp;
    }
    void key(int k, Qt::KeyboardModifiers mods) {
        // The progress form took the focus while it was up; keys go to the active window.
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        // Through the window, as the system delivers keys, so that shortcuts see them.
        QTest::keyClick(form->windowHandle(), static_cast<Qt::Key>(k), mods);
    }
    bool modified() const { return form->isWindowModified(); }
    int sendDrop(const QString& file, QPoint at) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file)});
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(form.get(), &enter);
        if (!enter.isAccepted()) return 0;
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(form.get(), &drop);
        return drop.isAccepted() ? 2 : 1;
    }
};

} // namespace

class UndoTest : public QObject {
    Q_OBJECT
private slots:
    void editMenuAndKeysTakeAnImportBackAndForth();
    void saveIsTheCleanPointOfTheHistory();
    void carEditorKeepsWhatTheUserDidNotChange();
    void recentFilesReopenWithTheirLoadOption();
    void droppedFilesOpenOrImport();
    void screenshots();
};

void UndoTest::editMenuAndKeysTakeAnImportBackAndForth() {
    Harness h;
    QVERIFY(!h.action("mnuUndo")->isEnabled() && !h.action("mnuRedo")->isEnabled());
    h.open("STYLE001.G24");
    QVERIFY(h.form->windowTitle().contains("STYLE001.G24[*]"));
    QVERIFY(!h.modified());
    const SpriteRec r = *h.firstSprite(1);
    h.select(r);
    const std::uint8_t old = h.session().pages.pixel(r.page, r.xo, r.yo);
    const std::uint32_t oldColour = h.session().image.at(r.page * 256 + r.xo, r.yo);
    const std::uint8_t painted = old == 5 ? 6 : 5;
    h.paintedExport(painted);
    h.action("mnuImportSprite")->trigger();
    QCOMPARE(h.session().pages.pixel(r.page, r.xo, r.yo), painted);
    const QString name = QString("Import Sprite %1").arg(r.ASN);
    QCOMPARE(h.action("mnuUndo")->text(), "&Undo " + name);
    QVERIFY(h.action("mnuUndo")->isEnabled() && !h.action("mnuRedo")->isEnabled());
    QVERIFY(h.modified() && h.enabled("mnuSaveBlock") && h.enabled("save"));

    // Ctrl+Z, then Ctrl+Shift+Z; Ctrl+Z again, then Ctrl+Y.
    h.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(h.session().pages.pixel(r.page, r.xo, r.yo), old);
    QCOMPARE(h.session().image.at(r.page * 256 + r.xo, r.yo), oldColour); // repainted
    QCOMPARE(h.action("mnuRedo")->text(), "&Redo " + name);
    QVERIFY(!h.action("mnuUndo")->isEnabled());
    QVERIFY(!h.modified() && !h.enabled("mnuSaveBlock"));
    h.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(h.session().pages.pixel(r.page, r.xo, r.yo), painted);
    QVERIFY(h.modified() && h.enabled("mnuSaveBlock"));
    h.key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(!h.modified());
    h.key(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(h.session().pages.pixel(r.page, r.xo, r.yo), painted);
    QVERIFY(h.modified());

    // The menu entries do the same.
    h.action("mnuUndo")->trigger();
    QCOMPARE(h.session().pages.pixel(r.page, r.xo, r.yo), old);
    h.action("mnuRedo")->trigger();
    QCOMPARE(h.session().pages.pixel(r.page, r.xo, r.yo), painted);

    // Another file opened: a new history.
    h.open("STYLE002.GRY");
    QVERIFY(!h.action("mnuUndo")->isEnabled());
    QCOMPARE(h.action("mnuUndo")->text(), QString("&Undo"));
}

void UndoTest::saveIsTheCleanPointOfTheHistory() {
    Harness h;
    h.open("STYLE001.G24");
    const SpriteRec r = *h.firstSprite(1);
    h.select(r);
    const auto style = h.sample.dir / "STYLE001.G24";
    const std::vector<std::uint8_t> original = readFile(style);
    h.paintedExport(9);
    h.action("mnuImportSprite")->trigger();
    h.action("mnuSaveBlock")->trigger();
    const std::vector<std::uint8_t> saved = readFile(style);
    QVERIFY(saved != original);
    QVERIFY(!h.modified() && !h.enabled("mnuSaveBlock"));
    QVERIFY(h.action("mnuUndo")->isEnabled()); // the history survives the save

    h.action("mnuUndo")->trigger(); // the file holds the import: undoing it is a change
    QVERIFY(h.modified() && h.enabled("mnuSaveBlock"));
    h.action("mnuRedo")->trigger();
    QVERIFY(!h.modified() && !h.enabled("mnuSaveBlock"));

    h.action("mnuUndo")->trigger();
    h.action("mnuSaveBlock")->trigger(); // the undo saved: the file is as it was
    QVERIFY(readFile(style) == original);
    QVERIFY(!h.modified());

    // A save that fails writes nothing and leaves the window modified; once the file can be
    // written again, the next save writes the edit.
    h.action("mnuRedo")->trigger();
    std::filesystem::permissions(style, std::filesystem::perms::owner_read);
    h.action("mnuSaveBlock")->trigger();
    QVERIFY(readFile(style) == original);
    QVERIFY(h.modified() && h.enabled("mnuSaveBlock"));
    std::filesystem::permissions(style, std::filesystem::perms::owner_read |
                                            std::filesystem::perms::owner_write);
    h.action("mnuSaveBlock")->trigger();
    QVERIFY(readFile(style) == saved);
    QVERIFY(!h.modified() && !h.enabled("mnuSaveBlock"));
}

void UndoTest::carEditorKeepsWhatTheUserDidNotChange() {
    Harness h;
    h.open("STYLE001.G24");
    const SpriteRec* car = h.firstSprite(0, true);
    QVERIFY(car);
    const int asn = car->ASN;
    h.select(*car);
    // Values that their 3-decimal texts cannot carry exactly.
    CarEntry& entry = *h.session().cars.find(asn);
    entry.info.g1_thrust = 983041;
    entry.info.tyre_adhesion_x = 58983;
    entry.info.value = {10, 15, 20, 25};
    const CarInfo before = entry.info;
    h.form->runDialog = [](QDialog& dialog) {
        auto* form = qobject_cast<CarInfoForm*>(&dialog);
        if (!form) return int(QDialog::Rejected);
        form->box(5)->setText(QString::number(form->box(5)->text().toInt() + 4)); // Max Speed
        form->box(19)->setText(form->box(19)->text()); // retyped as it stood: no change
        form->done(QDialog::Accepted);
        return int(QDialog::Accepted);
    };
    h.action("mnuEditCar")->trigger();
    CarInfo expected = before;
    expected.max_speed = static_cast<std::int16_t>(before.max_speed + 4);
    QVERIFY(h.session().cars.find(asn)->info == expected);
    QCOMPARE(h.action("mnuUndo")->text(), QString("&Undo Edit Car %1").arg(asn));
    QVERIFY(h.modified());

    h.action("mnuUndo")->trigger();
    QVERIFY(h.session().cars.find(asn)->info == before);
    QVERIFY(!h.modified());

    // A changed 16.16 box still converts its text.
    h.form->runDialog = [](QDialog& dialog) {
        auto* form = qobject_cast<CarInfoForm*>(&dialog);
        if (!form) return int(QDialog::Rejected);
        form->box(18)->setText("2.5"); // Mass
        form->done(QDialog::Accepted);
        return int(QDialog::Accepted);
    };
    h.action("mnuEditCar")->trigger();
    QCOMPARE(h.session().cars.find(asn)->info.rbp_mass, 163840);
    QCOMPARE(h.session().cars.find(asn)->info.g1_thrust, 983041);
    QVERIFY(!h.action("mnuRedo")->isEnabled()); // the new edit replaced the undone one
}

void UndoTest::recentFilesReopenWithTheirLoadOption() {
    Harness h;
    QVERIFY(h.form->recentFiles().isEmpty());
    h.open("STYLE001.G24", kLoadTiles);
    h.open("STYLE002.GRY");
    h.open("STYLE001.G24", kLoadTiles); // again: moves to the front, once
    const auto recent = h.form->recentFiles();
    QCOMPARE(recent.size(), 2);
    QCOMPARE(QFileInfo(recent[0].first).fileName(), QString("STYLE001.G24"));
    QCOMPARE(recent[0].second, int(kLoadTiles));
    QCOMPARE(QFileInfo(recent[1].first).fileName(), QString("STYLE002.GRY"));

    QMenu* menu = h.form->menus().menu("mnuRecent");
    QStringList texts;
    for (QAction* a : menu->actions())
        if (!a->isSeparator()) texts << a->text();
    // Each with its folder: every level's file has the same few names.
    const QString folder = QDir::toNativeSeparators(h.sample.gameDir());
    QCOMPARE(texts, QStringList({"&1 STYLE001.G24 [Tiles]  " + folder,
                                 "&2 STYLE002.GRY [Sprites]  " + folder, "&Clear List"}));

    // A change pending: the question comes first, and Cancel keeps the file.
    h.session().style.gPagesChanged = true;
    h.form->setCommandGroup(2, true);
    QVERIFY(h.modified());
    h.platform.answers = {Answer::Cancel};
    menu->actions().at(1)->trigger();
    QVERIFY(h.platform.saw("Save your changes?"));
    QCOMPARE(h.session().style.gStyleFileName, std::string("STYLE001.G24"));
    h.platform.answers = {Answer::No};
    menu->actions().at(1)->trigger();
    QCOMPARE(h.session().style.gStyleFileName, std::string("STYLE002.GRY"));

    // Kept in the settings store for the next run; the list holds at most 8.
    for (int i = 3; i <= 11; ++i) {
        const auto copy = h.sample.dir / ("STYLE1" + std::to_string(10 + i) + ".G24");
        std::filesystem::copy_file(h.sample.dir / "STYLE001.G24", copy);
        h.form->openStyle(QString::fromStdString(copy.string()), kLoadSprites);
    }
    QSettings stored(h.sample.settingsFile, QSettings::IniFormat);
    QCOMPARE(stored.beginReadArray("Recent"), 8);
    stored.setArrayIndex(0);
    QVERIFY(stored.value("Path").toString().endsWith("STYLE121.G24"));
    stored.endArray();
    QCOMPARE(h.form->recentFiles().size(), 8);
}

void UndoTest::droppedFilesOpenOrImport() {
    Harness h;
    QCOMPARE(h.sendDrop(h.sample.file("STYLE001.G24"), QPoint(300, 300)), 2);
    QCOMPARE(h.session().style.gStyleFileName, std::string("STYLE001.G24"));
    QCOMPARE(h.sendDrop(h.sample.file("ENGLISH.FXT"), QPoint(300, 300)), 0); // not taken

    // A BMP dropped on a sprite goes into that sprite, as one step of the history.
    const SpriteRec r = *h.firstSprite(1);
    h.select(r);
    const std::filesystem::path exported = h.paintedExport(11);
    const auto elsewhere = h.sample.dir / "edited.bmp";
    std::filesystem::copy_file(exported, elsewhere);
    std::filesystem::remove(exported);
    h.form->selectAt(-1, 0, 0);
    QCOMPARE(h.sendDrop(QString::fromStdString(elsewhere.string()), h.windowPoint(r)), 2);
    QCOMPARE(h.session().selectedSprite()->ASN, r.ASN);
    QCOMPARE(h.session().pages.pixel(r.page, r.xo, r.yo), std::uint8_t(11));
    QCOMPARE(h.action("mnuUndo")->text(), QString("&Undo Import Sprite %1").arg(r.ASN));

    // A BMP of another size is refused by the import's own checks.
    const SpriteRec* other = nullptr;
    for (int sib = 1; sib <= h.session().sprites.pageCount(0) && !other; ++sib) {
        const SpriteRec& s = h.session().sprites.pageSprites[0][sib];
        if (s.W != r.W || s.H != r.H) other = &s;
    }
    QVERIFY(other);
    const SpriteRec o = *other;
    h.sendDrop(QString::fromStdString(elsewhere.string()), h.windowPoint(o));
    QVERIFY(h.platform.texts().back().rfind("Imported sprite must be of the exact same size", 0) ==
            0);

    // Dropping a style file with unsaved changes asks first; Cancel keeps everything.
    h.platform.answers = {Answer::Cancel};
    h.sendDrop(h.sample.file("STYLE002.GRY"), QPoint(300, 300));
    QVERIFY(h.platform.saw("Save your changes?"));
    QCOMPARE(h.session().style.gStyleFileName, std::string("STYLE001.G24"));
    QVERIFY(h.modified());
}

// The Edit menu after an import and the recent files list, taken from the screen with the menus
// open (run under a display: scripts/screenshots).
void UndoTest::screenshots() {
    const QByteArray target = qgetenv("TORQUIL_SCREENSHOT_DIR");
    if (target.isEmpty()) QSKIP("TORQUIL_SCREENSHOT_DIR not set");
    // The pictures show the windows as the editor shows them: in the board's dark palette.
    applyBoardPalette(*qobject_cast<QApplication*>(QCoreApplication::instance()));
    Harness h;
    h.form->move(0, 0);
    h.open("STYLE002.GRY");
    h.open("STYLE001.G24", kLoadTiles);
    h.open("STYLE001.G24");
    const SpriteRec r = *h.firstSprite(1);
    h.select(r);
    h.paintedExport(5);
    h.action("mnuImportSprite")->trigger();
    h.form->activateWindow();
    QTest::qWait(300);

    auto shot = [&](const char* name) {
        QTest::qWait(500);
        const QRect frame = h.form->frameGeometry();
        const QPixmap picture = QGuiApplication::primaryScreen()->grabWindow(
            0, frame.x(), frame.y(), std::min(frame.width(), 760), std::min(frame.height(), 420));
        QVERIFY(picture.save(QString::fromLocal8Bit(target) + "/" + name));
    };
    QMenuBar* bar = h.form->menuBar();
    bar->setActiveAction(h.form->menus().menu("mnuEdit")->menuAction());
    shot("edit_menu.png");
    bar->setActiveAction(nullptr);
    h.form->menus().menu("mnuEdit")->hide();

    QMenu* file = h.form->menus().menu("mnuFile");
    QMenu* recent = h.form->menus().menu("mnuRecent");
    bar->setActiveAction(file->menuAction());
    QTest::qWait(300);
    file->setActiveAction(recent->menuAction());
    recent->popup(file->mapToGlobal(file->actionGeometry(recent->menuAction()).topRight()));
    shot("recent_files.png");
    recent->hide();
    file->hide();
}

QTEST_MAIN(UndoTest)
#include "undo_test.moc"
