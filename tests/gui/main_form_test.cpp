// The main window on the sample level: command groups, opening files through
// the real dialog, the board, finding and editing cars, saving, and the questions on the way.

#include "gui_fixture.h"

#include "app/car_info_form.h"
#include "app/command_groups.h"
#include "app/delta_pic_form.h"
#include "app/help_window.h"
#include "app/load_form.h"
#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/main_tool_bar.h"
#include "app/page_board.h"
#include "app/picture_file_choice.h"
#include "exchange/png_codec.h"
#include "style_builder.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QSettings>
#include <QtTest>

using namespace torquil;
using torquil::testing::readFile;
using torquil::testing::SampleFolder;
using torquil::testing::ScriptedQtPlatform;

namespace {

const char* kCaption24 = "Torquil: STYLE001.G24 (Port Alder 24bit) [Sprites]";

// One window on the sample level with its own platform and settings, shown.
struct Harness : torquil::testing::WindowHarness {
    explicit Harness(bool debugMode = false) : WindowHarness(withDebugMode(debugMode)) {
        form->show();
    }
    static AppOptions withDebugMode(bool debugMode) {
        AppOptions options;
        options.debugMode = debugMode;
        return options;
    }
};

} // namespace

class MainFormTest : public QObject {
    Q_OBJECT
private slots:
    void commandGroupsSwitchTheirMembers();
    void beforeAnyFileOnlyOpenIsOnAndClosingAsksNothing();
    void openingTheSampleThroughTheDialogSetsCaptionCommandsAndBoard();
    void tilesAndEightBitFilesGetTheirCaptionAndCommands();
    void failedAndMissingLoadsLeaveTheRightState();
    void debugModeErrorIsShownNotThrown();
    void clickingTheBoardSelectsAndFindCarScrollsToTheSprite();
    void importedSpriteIsSavedIntoTheStyleFile();
    void carEditorChangesEnableSaveAndReachTheFile();
    void saveQuestionGuardsOpenAndClose();
    void transparencyCommandsShowTheMaskAndFix();
    void deltaSetCommandsViewExportAndImport();
    void readMeHelpAboutAndDebugEntries();
    void windowRemembersZoomAndShrinksToOnePage();
};

void MainFormTest::commandGroupsSwitchTheirMembers() {
    CommandGroups groups;
    groups.set(0, true);
    QVERIFY(groups.isOn("mnuOpen") && groups.isOn("save") && groups.isOn("mnuSprite"));
    QVERIFY(groups.isOn("mnuLoadBMP") && groups.isOn("loadbmp"));
    QVERIFY(groups.isOn("mnuBuildGC3") && groups.isOn("mnuLoadGC3") && groups.isOn("loadgc3"));
    groups.set(3, false);
    QVERIFY(!groups.isOn("mnuFindCar") && !groups.isOn("mnuCarInfo") && !groups.isOn("find"));
    QVERIFY(groups.isOn("mnuEditCar")); // group 5
    groups.set(10, false);
    groups.set(-1, false);
    QVERIFY(groups.isOn("mnuOpen") && groups.isOn("mnuEditCar"));
    groups.set(0, false);
    QVERIFY(!groups.isOn("open") && !groups.isOn("importsprite") && !groups.isOn("mnuViewDeltas1"));
    QVERIFY(groups.isOn("mnuExit") && groups.isOn("mnuAbout")); // in no group

    // The window applies the same switches to its menu entries and buttons.
    Harness h;
    h.form->setCommandGroup(2, true);
    QVERIFY(h.action("mnuSaveBlock")->isEnabled());
    QVERIFY(h.form->toolBar()->button("save")->isEnabled());
    h.form->setCommandGroup(2, false);
    QVERIFY(!h.action("mnuSaveBlock")->isEnabled());
    QVERIFY(!h.form->toolBar()->button("save")->isEnabled());
}

void MainFormTest::beforeAnyFileOnlyOpenIsOnAndClosingAsksNothing() {
    Harness h;
    QCOMPARE(h.form->windowTitle(), QStringLiteral("Torquil"));
    QVERIFY(h.action("mnuOpen")->isEnabled() && h.form->toolBar()->button("open")->isEnabled());
    for (const char* off : {"mnuSaveBlock", "mnuSprite", "mnuCarInfo", "mnuFindCar", "mnuEditCar",
                            "mnuLoadBMP", "mnuLoadGC3", "mnuBuildGC3"})
        QVERIFY2(!h.action(off)->isEnabled(), off);
    QVERIFY(h.action("mnuExit")->isEnabled() && h.action("mnuWinDetails")->isEnabled());
    QCOMPARE(h.form->board()->pagesShown(), 0);
    QVERIFY(h.form->close());
    QVERIFY(h.platform.shown.empty());
}

void MainFormTest::openingTheSampleThroughTheDialogSetsCaptionCommandsAndBoard() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    QCOMPARE(h.title(), QString::fromLatin1(kCaption24));
    QVERIFY2(h.platform.shown.empty(),
             h.platform.shown.empty() ? "" : h.platform.shown[0].text.c_str());
    for (const char* on : {"mnuOpen", "mnuSprite", "mnuCarInfo", "mnuFindCar", "mnuLoadBMP", "find",
                           "loadbmp", "mnuLoadGC3", "loadgc3", "mnuBuildGC3"})
        QVERIFY2(h.enabled(on), on);
    // Nothing changed yet, nothing selected, and no delta set commands.
    for (const char* off : {"mnuSaveBlock", "save", "mnuEditCar", "carinfo", "mnuExportSprite",
                            "exportsprite", "mnuExportDeltas0", "mnuViewDeltas1", "importdeltas"})
        QVERIFY2(!h.enabled(off), off);
    QVERIFY(h.platform.detailsLog().lines().contains("gNumBlockLoaded:3"));

    // The sprites are drawn in their colours, on the board as on the page image.
    PageBoard* board = h.form->board();
    QCOMPARE(board->pagesShown(), 4);
    const SpriteRec* sprite = h.firstSprite(0);
    QVERIFY(sprite);
    const QPoint at =
        board->viewportPoint(0, sprite->xo + sprite->W / 2, sprite->yo + sprite->H / 2);
    const QImage shown = board->viewport()->grab().toImage();
    const QRgb onBoard = shown.pixel(at) & 0xFFFFFF;
    const std::uint32_t inImage =
        h.form->session().image.at(sprite->xo + sprite->W / 2, sprite->yo + sprite->H / 2);
    QCOMPARE(onBoard, QRgb(inImage));
    int coloured = 0;
    for (std::uint32_t px : h.form->session().image.rgb)
        if (px != kDarkGrey && px != 0) ++coloured;
    QVERIFY(coloured > 5000);
}

void MainFormTest::tilesAndEightBitFilesGetTheirCaptionAndCommands() {
    Harness h;
    h.openThroughDialog("STYLE001.G24", kLoadTiles);
    QCOMPARE(h.title(), QStringLiteral("Torquil: STYLE001.G24 (Port Alder 24bit) [Tiles]"));
    QVERIFY(h.enabled("mnuSprite") && h.enabled("mnuLoadBMP"));
    QVERIFY(!h.enabled("mnuCarInfo") && !h.enabled("mnuFindCar") && !h.enabled("find"));
    QCOMPARE(h.form->session().style.gSeekCarInfo, std::int64_t(0));
    QVERIFY(h.form->board()->pagesShown() >= 1);

    h.openThroughDialog("STYLE002.GRY");
    QCOMPARE(h.title(), QStringLiteral("Torquil: STYLE002.GRY (Sierra Bay 8bit) [Sprites]"));
    QVERIFY(h.enabled("mnuCarInfo") && h.enabled("mnuFindCar"));
}

void MainFormTest::failedAndMissingLoadsLeaveTheRightState() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    StyleSession* loaded = &h.form->session();

    // A file that vanished: the message, and the open file stays open.
    const QString gone = h.sample.file("STYLE003.G24");
    h.form->openStyle(gone, kLoadSprites);
    QCOMPARE(h.platform.texts().back(),
             "Error: " + gone.toStdString() + " file error or not found.");
    QCOMPARE(&h.form->session(), loaded);
    QVERIFY(h.enabled("mnuFindCar"));

    // A truncated file: the load error names the step; the open file stays open.
    std::vector<std::uint8_t> bytes = readFile(h.sample.dir / "STYLE001.G24");
    torquil::testing::truncate(bytes, 2000);
    torquil::testing::writeFile(h.sample.dir / "STYLE009.G24", bytes);
    h.form->openStyle(h.sample.file("STYLE009.G24"), kLoadSprites);
    QVERIFY(h.platform.texts().back().rfind("ERROR: Load ", 0) == 0);
    QVERIFY(h.platform.texts().back().find("\rThere was a problem during the loading of the KRB "
                                           "STYLE file.\r") != std::string::npos);
    QCOMPARE(&h.form->session(), loaded);
    QVERIFY(h.enabled("mnuOpen") && h.enabled("mnuSprite") && h.enabled("mnuFindCar"));
    QCOMPARE(h.form->board()->pagesShown(), 4);
    QCOMPARE(h.title(), QString::fromLatin1(kCaption24));
    QVERIFY(h.form->menuBar()->isEnabled() && h.form->toolBar()->isEnabled());
}

void MainFormTest::debugModeErrorIsShownNotThrown() {
    Harness h(/*debugMode=*/true);
    torquil::testing::StyleSpec layout = torquil::testing::sampleSpec24();
    layout.sprites.back().page = 26; // a page number the 26 page lists cannot hold
    torquil::testing::writeFile(h.sample.dir / "STYLE001.G24",
                                torquil::testing::buildStyle(layout));
    h.form->openStyle(h.sample.file("STYLE001.G24"), kLoadSprites);
    QVERIFY(!h.platform.shown.empty());
    const Message& m = h.platform.shown.back();
    QCOMPARE(m.icon, Icon::Critical);
    QVERIFY2(m.text.rfind("Run-time error '", 0) == 0, m.text.c_str());
    QVERIFY(h.enabled("mnuOpen") && !h.enabled("mnuSprite"));
    QVERIFY(h.form->menuBar()->isEnabled());
}

void MainFormTest::clickingTheBoardSelectsAndFindCarScrollsToTheSprite() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    StyleSession& s = h.form->session();
    const SpriteRec* car = h.firstSprite(0, /*car=*/true);
    QVERIFY(car);
    h.click(*car);
    QCOMPARE(s.selection.page, 0);
    QVERIFY(s.selectedSprite() && s.selectedSprite()->ASN == car->ASN);
    QVERIFY(h.enabled("mnuEditCar") && h.enabled("carinfo"));
    QVERIFY(h.enabled("mnuExportSprite") && h.enabled("importsprite") &&
            h.enabled("mnuTranspCheck"));
    QVERIFY(h.form->statusLabel()->text().contains(QStringLiteral("ASN:%1").arg(car->ASN)) ||
            h.form->findChild<QLabel*>("lblSelection")
                ->text()
                .contains(QStringLiteral("ASN:%1").arg(car->ASN)));

    // The status bar tells what lies under the mouse.
    QTest::mouseMove(h.form->board()->viewport(),
                     h.form->board()->viewportPoint(0, car->xo + 1, car->yo + 1));
    // The description names the page itself: BLK appears once.
    const QString over = h.form->statusLabel()->text();
    QVERIFY2(over.startsWith(QStringLiteral("ASN:%1 BLK:0 ").arg(car->ASN)) &&
                 over.endsWith(QStringLiteral("    x:%1 y:%2").arg(car->xo + 1).arg(car->yo + 1)),
             qPrintable(over));

    // A sprite without a car record: sprite commands yes, car editor no.
    const SpriteRec* plain = h.firstSprite(2);
    QVERIFY(plain && !s.cars.find(plain->ASN));
    h.click(*plain);
    QCOMPARE(s.selection.page, 2);
    QVERIFY(h.enabled("mnuExportSprite") && !h.enabled("mnuEditCar"));

    // The gap between pages holds nothing: the selection goes.
    h.form->board()->showPage(0);
    QTest::mouseClick(h.form->board()->viewport(), Qt::LeftButton, {},
                      h.form->board()->viewportPoint(0, 0, 0) - QPoint(4, 0));
    QVERIFY(!s.selection.any());
    QVERIFY(!h.enabled("mnuExportSprite"));

    // Find Car: selects by number and brings the page to the left edge.
    h.form->askSpriteNumber = [asn = plain->ASN] { return std::optional<int>(asn); };
    h.form->setZoom(2); // wider than the window: the board must scroll
    h.form->board()->showPage(0);
    h.action("mnuFindCar")->trigger();
    QCOMPARE(s.selection.page, 2);
    QCOMPARE(int(s.pages.gBoardOffset), 512);
    QVERIFY(h.form->board()->horizontalScrollBar()->value() > 0);
    const int missing = s.sprites.spriteCount + 7;
    h.form->askSpriteNumber = [missing] { return std::optional<int>(missing); };
    h.form->runKey("find");
    QCOMPARE(h.platform.texts().back(), "ASN:" + std::to_string(missing) + " not found.");
    QCOMPARE(s.selection.page, 2);
}

void MainFormTest::importedSpriteIsSavedIntoTheStyleFile() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    const SpriteRec* sprite = h.firstSprite(2);
    QVERIFY(sprite);
    const SpriteRec r = *sprite;
    h.click(r);
    h.form->runKey("exportsprite");
    const std::filesystem::path bmp = h.form->lastExportedFile().toStdString();
    QCOMPARE(bmp.parent_path(), h.sample.work);

    // Paint the sprite's bottom-left pixel in the BMP (rows are stored bottom-up).
    std::vector<std::uint8_t> file = readFile(bmp);
    const std::uint8_t old = file[1078];
    const std::uint8_t painted = static_cast<std::uint8_t>(old == 77 ? 78 : 77);
    file[1078] = painted;
    torquil::testing::writeFile(bmp, file);
    QVERIFY(!h.enabled("mnuSaveBlock"));
    h.action("mnuImportSprite")->trigger();
    QVERIFY(h.enabled("mnuSaveBlock") && h.enabled("save"));

    const auto style = h.sample.dir / "STYLE001.G24";
    const std::int64_t at =
        h.form->session().style.gSeekGraphicsStart - 1 + 2 * 65536 + (r.yo + r.H - 1) * 256 + r.xo;
    QCOMPARE(readFile(style)[at], old);
    h.form->runKey("save");
    QCOMPARE(readFile(style)[at], painted);
    QVERIFY(!h.enabled("mnuSaveBlock"));

    // Reopened, the page holds the new pixel.
    h.openThroughDialog("STYLE001.G24");
    QCOMPARE(h.form->session().pages.pixel(2, r.xo, r.yo + r.H - 1), painted);
}

void MainFormTest::carEditorChangesEnableSaveAndReachTheFile() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    const SpriteRec* car = h.firstSprite(0, true);
    QVERIFY(car);
    const int asn = car->ASN;
    h.click(*car);
    const std::int32_t record = h.form->session().cars.find(asn)->fileSeek;
    h.form->runDialog = [](QDialog& dialog) {
        auto* form = qobject_cast<CarInfoForm*>(&dialog);
        if (!form) return int(QDialog::Rejected);
        form->box(0)->setText("31"); // width
        form->done(QDialog::Accepted);
        return int(QDialog::Accepted);
    };
    h.action("mnuEditCar")->trigger();
    QVERIFY(h.enabled("mnuSaveBlock"));
    h.action("mnuSaveBlock")->trigger();
    const auto bytes = readFile(h.sample.dir / "STYLE001.G24");
    QCOMPARE(int(bytes[record - 1]), 31); // width: the record's first field, low byte
    QVERIFY(!h.enabled("mnuSaveBlock"));
}

void MainFormTest::saveQuestionGuardsOpenAndClose() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    h.form->setCommandGroup(2, true); // as after any change
    int dialogs = 0;
    h.form->runDialog = [&dialogs](QDialog&) {
        ++dialogs;
        return int(QDialog::Rejected);
    };

    h.platform.answers = {Answer::Cancel};
    h.action("mnuOpen")->trigger();
    QCOMPARE(dialogs, 0);
    const Message& asked = h.platform.shown.back();
    QCOMPARE(asked.text, std::string("Save your changes?"));
    QCOMPARE(asked.buttons, Buttons::YesNoCancel);
    QCOMPARE(asked.icon, Icon::Question);

    h.platform.answers = {Answer::No};
    h.action("mnuOpen")->trigger();
    QCOMPARE(dialogs, 1);

    // Closing: Cancel keeps the window, No closes it and removes the temporary files.
    torquil::testing::writeFile(h.sample.work / "~TMP.TXT", {1, 2});
    h.platform.answers = {Answer::Cancel};
    QVERIFY(!h.form->close());
    QVERIFY(h.form->isVisible());
    QVERIFY(std::filesystem::exists(h.sample.work / "~TMP.TXT"));
    h.platform.answers = {Answer::No};
    QVERIFY(h.form->close());
    QVERIFY(!std::filesystem::exists(h.sample.work / "~TMP.TXT"));
}

void MainFormTest::transparencyCommandsShowTheMaskAndFix() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    const SpriteRec* car = h.firstSprite(0, true);
    QVERIFY(car);
    const SpriteRec r = *car;
    h.click(r);
    h.action("mnuTranspCheck")->trigger();
    QWidget* mask = h.form->findChild<QWidget*>("DeltaPicFrm");
    QVERIFY(mask && mask->isVisible());
    QCOMPARE(mask->windowTitle(), QStringLiteral("Transparency test..."));

    // Give the sprite's corners the background index 255: Fix moves it to 0 and lights Save.
    StyleSession& s = h.form->session();
    for (int y = 0; y < r.H; ++y)
        for (int x = 0; x < r.W; ++x)
            if (s.pages.pixel(0, r.xo + x, r.yo + y) == 0)
                s.pages.pixel(0, r.xo + x, r.yo + y) = 255;
    h.platform.answers = {Answer::Ok}; // overwrite the CLUT with the exchanged colours
    h.action("mnuTranspCorrect")->trigger();
    QCOMPARE(int(s.pages.pixel(0, r.xo + 2, r.yo + 2)), 0);
    QVERIFY(h.enabled("mnuSaveBlock"));

    h.platform.answers = {Answer::No}; // leave the 24-bit file's change unsaved
    h.openThroughDialog("STYLE002.GRY");
    QCOMPARE(h.platform.texts().back(), std::string("Save your changes?"));
    QVERIFY(!h.form->session().style.gIs24Bit);
    h.click(*h.firstSprite(0));
    h.action("mnuTranspCorrect")->trigger();
    QCOMPARE(h.platform.texts().back(),
             std::string("Sorry , Transparency Correction not supported on 8bit style files."));
}

void MainFormTest::deltaSetCommandsViewExportAndImport() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    StyleSession& s = h.form->session();
    // The first car on page 0 with deltas.
    const SpriteRec* car = nullptr;
    for (int sib = 1; sib <= s.sprites.pageCount(0) && !car; ++sib)
        if (s.sprites.pageSprites[0][sib].delta_count > 0) car = &s.sprites.pageSprites[0][sib];
    QVERIFY(car);
    const SpriteRec r = *car;
    for (const char* control : {"mnuViewDeltas0", "mnuExportDeltas1", "importdeltas"})
        QVERIFY2(!h.enabled(control), control); // nothing selected yet
    h.click(r);
    for (const char* control :
         {"mnuExportDeltas0", "mnuExportDeltas1", "mnuImportDeltas", "mnuViewDeltas0",
          "mnuViewDeltas1", "exportdeltasdirty", "exportdeltasclean", "importdeltas"})
        QVERIFY2(h.enabled(control), control);

    // View: one frame per delta, numbered in the strip, the first one enlarged.
    h.action("mnuViewDeltas1")->trigger();
    auto* view = h.form->findChild<DeltaPicForm*>("DeltaPicFrm");
    QVERIFY(view && view->isVisible());
    QCOMPARE(view->frameCount(), int(r.delta_count));
    QVERIFY(view->windowTitle().startsWith("Deltas (with car)"));
    view->close();

    // Export clean through the dialog: BMP is offered first, then PNG when the build has it; the
    // name is typed without an extension and the PNG filter chosen. The suggestion is named
    // after the car.
    const bool png = pngSupported();
    const auto typed = h.sample.work / "set";
    const auto file = h.sample.work / (png ? "set.png" : "set.bmp");
    QString suggested, offered;
    h.form->askDeltaSetFile = [&](bool forSaving, const QString& name, const QString& filters) {
        suggested = name;
        offered = filters;
        return forSaving ? PictureFileAnswer{QString::fromStdString(typed.string()), kPngFilter}
                         : PictureFileAnswer{QString::fromStdString(file.string()), kBitmapFilter};
    };
    std::vector<std::vector<RunLine>> runsBefore;
    for (const DeltaRec& d : s.deltas.myDeltas) runsBefore.push_back(d.runLine);
    const std::vector<std::uint8_t> pagesBefore(s.pages.gPixels.data(),
                                                s.pages.gPixels.data() + s.pages.gPixels.size());
    h.action("mnuExportDeltas1")->trigger();
    QVERIFY(suggested.endsWith("_deltas_clean.bmp"));
    QCOMPARE(offered, png ? QString("Bitmap (*.bmp);;PNG (*.png)") : QString("Bitmap (*.bmp)"));
    QVERIFY(std::filesystem::exists(file));
    QCOMPARE(h.form->lastExportedFile(), QString::fromStdString(file.string()));
    const auto written = readFile(file);
    QVERIFY(written.size() > 8);
    QCOMPARE(written[1] == 'P' && written[2] == 'N' && written[3] == 'G', png);

    // Import it back as a clean set (Yes): nothing differs, but the deltas are marked for saving.
    QVERIFY(!h.enabled("mnuSaveBlock"));
    h.platform.answers = {Answer::Yes};
    h.action("mnuImportDeltas")->trigger();
    QVERIFY(s.style.gDeltasChanged);
    QVERIFY(h.enabled("mnuSaveBlock"));
    for (std::size_t i = 0; i < runsBefore.size(); ++i)
        QVERIFY2(s.deltas.myDeltas[i].runLine == runsBefore[i], qPrintable(QString::number(i)));
    QVERIFY(std::equal(pagesBefore.begin(), pagesBefore.end(), s.pages.gPixels.data()));

    // The typed extension decides; without one, the chosen filter does.
    QCOMPARE(pictureFileToWrite("a.BMP", kPngFilter), QString("a.BMP"));
    QCOMPARE(pictureFileToWrite("a.png", kBitmapFilter), QString("a.png"));
    QCOMPARE(pictureFileToWrite("a.txt", kBitmapFilter), QString("a.txt.bmp"));
    QCOMPARE(pictureFileToWrite("a", kPngFilter), png ? QString("a.png") : QString("a.bmp"));
    QCOMPARE(pictureFileToWrite("", kPngFilter), QString());
    // Cancel at the clean-or-dirty question changes nothing.
    s.style.gDeltasChanged = false;
    h.platform.answers = {Answer::Cancel};
    h.form->toolBar()->button("importdeltas")->trigger();
    QVERIFY(!s.style.gDeltasChanged);
}

void MainFormTest::readMeHelpAboutAndDebugEntries() {
    Harness h;
    // Read Me and Help are shown in the program's help window (more in finding_way_test).
    torquil::testing::writeFile(h.sample.work / "readme.txt", {'h', 'i'});
    h.action("mnuReadMe")->trigger();
    QVERIFY(h.platform.openedFiles.empty());
    QVERIFY(h.platform.shown.empty());
    QVERIFY(h.form->helpWindow()->isVisible());
    std::filesystem::remove(h.sample.work / "readme.txt");
    const std::filesystem::path beside =
        std::filesystem::path(QCoreApplication::applicationDirPath().toStdString()) / "readme.txt";
    if (!std::filesystem::exists(beside)) {
        h.action("mnuReadMe")->trigger();
        QCOMPARE(h.platform.texts().back(),
                 std::string("Sorry, ") + beside.string() +
                     " not found.\rPlease manually view the readme.doc file in the TORQUIL "
                     "directory.");
    }
    h.action("mnuHelpContents")->trigger();
    QVERIFY(h.form->helpWindow()->isVisible());
    h.action("mnuAbout")->trigger();
    QCOMPARE(h.platform.shown.back().title, std::string("About Torquil"));
    h.form->runKey("buildgc3"); // no level open yet
    QCOMPARE(h.platform.texts().back(), std::string("Open the level of the car pack first."));
    h.action("mnuDbgReadGC3")->trigger(); // no test pack in the work directory yet
    QCOMPARE(h.platform.texts().back(), std::string("Error reading GC3 file."));

    // The dump check marks belong to the program: the next session has them too.
    h.action("mnuGenSpriteInfoFiles")->setChecked(true);
    h.action("mnuGenCarInfoFiles")->setChecked(true);
    h.action("mnuGenCarInfoFiles")->setChecked(false);
    h.openThroughDialog("STYLE001.G24");
    QVERIFY(h.form->session().options.dumps.spriteInfo);
    QVERIFY(!h.form->session().options.dumps.carInfo);

    h.action("mnuWinDetails")->trigger();
    QVERIFY(h.form->findChild<QWidget*>("detailsFrm")->isVisible());
}

void MainFormTest::windowRemembersZoomAndShrinksToOnePage() {
    SampleFolder sample;
    {
        ScriptedQtPlatform platform(sample.settingsFile);
        AppOptions options;
        options.workDir = sample.work;
        MainForm form(options, platform);
        form.show();
        QCOMPARE(form.board()->zoom(), 2); // the first start
        form.findChild<QAction*>("mnuZoom3")->trigger();
        QCOMPARE(form.board()->zoom(), 3);
        form.openStyle(sample.file("STYLE001.G24"), kLoadSprites);
        form.menus().action("mnuFormShrink")->trigger();
        QTRY_COMPARE(form.board()->viewport()->size(), form.board()->viewportSizeFor(1));
        QVERIFY(form.close());
    }
    QSettings stored(sample.settingsFile, QSettings::IniFormat);
    QCOMPARE(stored.value("Window/Zoom").toInt(), 3);
    ScriptedQtPlatform platform(sample.settingsFile);
    AppOptions options;
    options.workDir = sample.work;
    MainForm again(options, platform);
    QCOMPARE(again.board()->zoom(), 3);
}

QTEST_MAIN(MainFormTest)
#include "main_form_test.moc"
