// Export Sprite As, Import Sprite From and the delta set dialogs: the file dialog each starts
// in the kind's last folder, the overwrite question, and the status bar's word after an export;
// and what else the window keeps for the next run (where the docks were).

#include "gui_fixture.h"

#include "app/board_palette.h"
#include "app/car_info_form.h"
#include "app/car_list_dock.h"
#include "app/export_notice.h"
#include "app/file_dialogs.h"
#include "exchange/png_codec.h"

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>

#include <fstream>

using namespace torquil;
using namespace torquil::testing;

namespace {

std::vector<std::uint8_t> readAll(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// What the window's file dialog was asked, and the answer a test gives it.
struct DialogScript {
    QString title, startFolder, suggested;
    QFileDialog::AcceptMode mode = QFileDialog::AcceptOpen;
    QString answer, filter; // the file typed and the filter chosen; empty answer: Cancel
    int runs = 0;

    void install(MainForm& form) {
        form.runDialog = [this](QDialog& dialog) {
            auto* files = qobject_cast<QFileDialog*>(&dialog);
            if (!files) return int(QDialog::Rejected);
            ++runs;
            title = files->windowTitle();
            startFolder = files->directory().absolutePath();
            suggested = files->selectedFiles().value(0);
            mode = files->acceptMode();
            if (answer.isEmpty()) return int(QDialog::Rejected);
            if (!filter.isEmpty()) files->selectNameFilter(filter);
            files->selectFile(answer);
            return int(QDialog::Accepted);
        };
    }
};

} // namespace

class FileDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void exportSpriteAsWritesTheChosenFileAndSaysWhere();
    void exportAsAsksBeforeReplacingAFile();
    void importSpriteFromReadsTheChosenPicture();
    void fixedNameExportSaysWhereWithoutAMessageBox();
    void deltaSetDialogsRememberTheirOwnFolder();
    void dumpsSayWhereTheyWent();
    void dockLayoutIsKeptForTheNextRun();
    void dialogsTakeTheBoardsDarkPalette(); // changes the application: runs last but one
    void screenshots();
};

void FileDialogsTest::exportSpriteAsWritesTheChosenFileAndSaysWhere() {
    WindowHarness h;
    h.open();
    h.click(*h.firstSprite(0, true));
    QVERIFY(h.enabled("mnuExportSpriteAs"));
    const auto folder = h.sample.dir / "paint";
    std::filesystem::create_directories(folder);

    DialogScript script;
    script.answer = QString::fromStdString((folder / "mine").string()); // no extension typed
    script.filter = QString::fromLatin1(pngSupported() ? kPngFilter : kBitmapFilter);
    script.install(*h.form);
    h.action("mnuExportSpriteAs")->trigger();

    QCOMPARE(script.title, QString("Export Sprite As"));
    QCOMPARE(script.mode, QFileDialog::AcceptSave);
    // The first time it starts in the program's directory, suggesting the sprite's own name.
    QCOMPARE(script.startFolder, QString::fromStdString(h.sample.work.string()));
    QCOMPARE(QFileInfo(script.suggested).fileName(),
             QString::fromStdString(bmpFileName(h.session())));
    const auto written = folder / (pngSupported() ? "mine.png" : "mine.bmp");
    QVERIFY(std::filesystem::exists(written));
    QVERIFY(h.platform.shown.empty()); // no message box

    // The status bar says where it went; Open Folder opens that folder.
    ExportNotice* notice = h.form->exportNotice();
    QVERIFY(!notice->isHidden());
    QCOMPARE(notice->text(), "Sprite exported to " + QDir::toNativeSeparators(
                                                         QString::fromStdString(written.string())));
    QString opened;
    notice->openFolder = [&](const QString& f) { opened = f; };
    QTest::mouseClick(notice->openFolderButton(), Qt::LeftButton);
    QCOMPARE(opened, QString::fromStdString(folder.string()));

    // The next dialog for a sprite starts where this one ended.
    script.answer.clear();
    h.action("mnuExportSpriteAs")->trigger();
    QCOMPARE(script.startFolder, QString::fromStdString(folder.string()));
    QCOMPARE(h.platform.settings().get(kFoldersSection, folderKey(FileKind::Sprite)),
             folder.string());
}

void FileDialogsTest::exportAsAsksBeforeReplacingAFile() {
    WindowHarness h;
    h.open();
    h.click(*h.firstSprite(0, true));
    const auto target = h.sample.dir / "old.bmp";
    { std::ofstream(target, std::ios::binary) << "keep me"; }

    DialogScript script;
    script.answer = QString::fromStdString(target.string());
    script.install(*h.form);
    h.platform.answers = {Answer::No};
    h.action("mnuExportSpriteAs")->trigger();
    QCOMPARE(h.platform.texts(),
             std::vector<std::string>{
                 QDir::toNativeSeparators(QString::fromStdString(target.string())).toStdString() +
                 " already exists.\rReplace it?"});
    QCOMPARE(h.platform.shown.back().title, std::string("Export Sprite As"));
    QCOMPARE(readAll(target).size(), std::size_t{7}); // untouched
    QVERIFY(h.form->lastExportedFile().isEmpty());

    h.platform.answers = {Answer::Yes};
    h.action("mnuExportSpriteAs")->trigger();
    const auto bytes = readAll(target);
    QVERIFY(bytes.size() > 1078);
    QCOMPARE(bytes[0], std::uint8_t('B'));
    QCOMPARE(h.form->lastExportedFile(), QString::fromStdString(target.string()));
}

void FileDialogsTest::importSpriteFromReadsTheChosenPicture() {
    WindowHarness h;
    h.open();
    const SpriteRec r = *h.firstSprite(0, true);
    h.click(r);
    const auto picture = h.sample.dir / "repainted.bmp";
    DialogScript script;
    script.answer = QString::fromStdString(picture.string());
    script.install(*h.form);
    h.action("mnuExportSpriteAs")->trigger();
    QVERIFY(std::filesystem::exists(picture));

    // Repaint the top-left pixel (the last row of the file) and import it from where it is.
    std::vector<std::uint8_t> bytes = readAll(picture);
    const std::size_t row = (static_cast<std::size_t>(r.W) + 3) / 4 * 4;
    const std::size_t topLeft = 1078 + row * static_cast<std::size_t>(r.H - 1);
    const std::uint8_t painted = bytes[topLeft] == 7 ? 8 : 7;
    bytes[topLeft] = painted;
    std::ofstream(picture, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));

    h.action("mnuImportSpriteFrom")->trigger();
    QCOMPARE(script.title, QString("Import Sprite From"));
    QCOMPARE(script.mode, QFileDialog::AcceptOpen);
    QCOMPARE(script.startFolder, QString::fromStdString(h.sample.dir.string()));
    StyleSession& s = h.session();
    QCOMPARE(s.pages.pixel(r.page, r.xo, r.yo), painted);
    QVERIFY(h.title().contains('*'));
    QVERIFY(h.enabled("mnuUndo"));
}

void FileDialogsTest::fixedNameExportSaysWhereWithoutAMessageBox() {
    WindowHarness h;
    h.open();
    h.click(*h.firstSprite(0, true));
    h.action("mnuExportSprite")->trigger();
    const auto file = h.sample.work / bmpFileName(h.session());
    QVERIFY(std::filesystem::exists(file));
    QCOMPARE(h.form->lastExportedFile(), QString::fromStdString(file.string()));
    QVERIFY(h.form->exportNotice()->text().startsWith("Sprite exported to "));
    QVERIFY(h.platform.shown.empty());
}

void FileDialogsTest::deltaSetDialogsRememberTheirOwnFolder() {
    WindowHarness h;
    h.open();
    StyleSession& s = h.session();
    const SpriteRec* withDeltas = nullptr;
    for (int page = 0; page < 26 && !withDeltas; ++page)
        for (int sib = 1; sib <= s.sprites.pageCount(page); ++sib)
            if (s.sprites.pageSprites[page][sib].delta_count > 0) {
                withDeltas = &s.sprites.pageSprites[page][sib];
                break;
            }
    QVERIFY(withDeltas);
    h.click(*withDeltas);
    const auto folder = h.sample.dir / "deltas";
    std::filesystem::create_directories(folder);
    DialogScript script;
    script.answer = QString::fromStdString((folder / "set.bmp").string());
    script.install(*h.form);
    h.action("mnuExportDeltas0")->trigger();
    QCOMPARE(script.title, QString("Export Delta Set"));
    QVERIFY(script.suggested.endsWith("_deltas.bmp"));
    QCOMPARE(h.form->lastExportedFile(), script.answer);
    QVERIFY(h.form->exportNotice()->text().startsWith("Delta set exported to "));

    // Delta sets have their folder, sprites keep theirs (still the program's directory).
    script.answer.clear();
    h.action("mnuImportDeltas")->trigger();
    QCOMPARE(script.title, QString("Import Delta Set"));
    QCOMPARE(script.startFolder, QString::fromStdString(folder.string()));
    h.action("mnuExportSpriteAs")->trigger();
    QCOMPARE(script.startFolder, QString::fromStdString(h.sample.work.string()));
}

void FileDialogsTest::dumpsSayWhereTheyWent() {
    WindowHarness h;
    h.action("mnuGenCarInfoFiles")->setChecked(true);
    h.open();
    ExportNotice* notice = h.form->exportNotice();
    QCOMPARE(notice->text(),
             "Dump files written to " +
                 QDir::toNativeSeparators(QString::fromStdString(h.sample.work.string())));
    QCOMPARE(notice->folder(), QString::fromStdString(h.sample.work.string()));
    QVERIFY(std::filesystem::exists(h.sample.work / "CARINFO1.txt"));
}

void FileDialogsTest::dockLayoutIsKeptForTheNextRun() {
    WindowHarness h;
    h.form->show();
    h.form->addDockWidget(Qt::RightDockWidgetArea, h.form->carList());
    h.form->carList()->show();
    h.form->resize(900, 640);
    QVERIFY(h.form->close());
    h.form.reset();

    AppOptions options;
    options.workDir = h.sample.work;
    MainForm next(options, h.platform);
    next.show();
    QCOMPARE(next.dockWidgetArea(next.carList()), Qt::RightDockWidgetArea);
    QVERIFY(next.carList()->isVisible());
    QCOMPARE(next.size(), QSize(900, 640));
}

void FileDialogsTest::dialogsTakeTheBoardsDarkPalette() {
    applyBoardPalette(*qApp);
    QCOMPARE(QApplication::style()->name(), QString("fusion"));
    const QColor window = boardPalette().color(QPalette::Window);
    QVERIFY(window.lightness() < 80);
    WindowHarness h;
    h.open();
    LoadForm open(DialogMode::Style, h.session().style, h.platform);
    QFileDialog files(h.form.get());
    CarInfoForm editor(h.session(), h.platform, h.firstSprite(0, true)->ASN);
    for (QWidget* dialog : std::initializer_list<QWidget*>{&open, &files, &editor, h.form.get()}) {
        QCOMPARE(dialog->palette().color(QPalette::Window), window);
        QCOMPARE(dialog->palette().color(QPalette::Base), boardPalette().color(QPalette::Base));
    }
}

// With TORQUIL_SCREENSHOT_DIR set: the status bar after an export, the car editor with a clamped
// value, the open dialog with its path field and the Export Sprite As dialog, in the board's
// colours.
void FileDialogsTest::screenshots() {
    const QByteArray target = qgetenv("TORQUIL_SCREENSHOT_DIR");
    if (target.isEmpty()) QSKIP("TORQUIL_SCREENSHOT_DIR not set");
    // The pictures show the windows as the editor shows them: in the board's dark palette.
    applyBoardPalette(*qobject_cast<QApplication*>(QCoreApplication::instance()));
    const QString dir = QString::fromUtf8(target);
    applyBoardPalette(*qApp);
    WindowHarness h;
    h.form->resize(1100, 700);
    h.form->show();
    h.open();
    const SpriteRec car = *h.firstSprite(0, true);
    h.click(car);
    h.action("mnuExportSprite")->trigger();
    QVERIFY(QTest::qWaitForWindowExposed(h.form.get()));
    QTest::qWait(100);
    QVERIFY(h.form->grab().save(dir + "/export_notice.png"));

    CarInfoForm editor(h.session(), h.platform, car.ASN, h.form.get());
    editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&editor));
    editor.box(0)->setFocus();
    editor.box(0)->selectAll();
    QTest::keyClicks(editor.box(0), "300");
    QTest::qWait(100);
    QVERIFY(editor.grab().save(dir + "/car_editor_limits.png"));
    editor.hide();

    LoadForm open(DialogMode::Style, h.session().style, h.platform, h.form.get());
    open.show();
    QVERIFY(QTest::qWaitForWindowExposed(&open));
    QTest::qWait(100);
    QVERIFY(open.grab().save(dir + "/open_dialog.png"));
    open.hide();

    QFileDialog save(h.form.get(), "Export Sprite As", h.sample.gameDir(), pictureFileFilters());
    save.setOption(QFileDialog::DontUseNativeDialog);
    save.setAcceptMode(QFileDialog::AcceptSave);
    save.selectFile(QString::fromStdString(bmpFileName(h.session())));
    save.show();
    QVERIFY(QTest::qWaitForWindowExposed(&save));
    QTest::qWait(100);
    QVERIFY(save.grab().save(dir + "/export_sprite_as.png"));
}

QTEST_MAIN(FileDialogsTest)
#include "file_dialogs_test.moc"
