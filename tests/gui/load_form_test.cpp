// The open dialog: its three modes, the file list, the options frame, the remembered place,
// the read-only removal, and quickloading an exported sprite through the main window.

#include "gui_fixture.h"

#include "app/load_form.h"
#include "app/load_modes.h"
#include "app/main_form.h"
#include "app/page_board.h"
#include "app/sample_folder.h"
#include "exchange/bitmap_names.h"
#include "style/style_file.h"
#include "style_builder.h"

#include <QAction>
#include <QDir>
#include <QGroupBox>
#include <QLineEdit>
#include <QtTest>

using namespace torquil;
using torquil::testing::SampleFolder;
using torquil::testing::ScriptedQtPlatform;

class LoadFormTest : public QObject {
    Q_OBJECT
private slots:
    void modesHaveTheirCaptionsPatternsAndSections();
    void fileListFollowsThePatternIgnoringCase();
    void optionsFrameNamesTheChosenLevel();
    void settingsRoundTripPerMode();
    void unreachableRememberedFolderIsReported();
    void readOnlyStyleFileIsMadeWritable();
    void confirmingWithoutAFileOnlySavesSettings();
    void returnInThePathFieldOpensWhatIsTyped();
    void returnInThePathFieldOpensTheSelectedFile();
    void firstRunStartsInTheSampleFolder();
    void carPackModeChoosesThePack();
    void bitmapNamesTellTheSprite();
    void quickloadImportsAnExportedSprite();
};

void LoadFormTest::modesHaveTheirCaptionsPatternsAndSections() {
    StyleFileState style;
    style.gMapNumber = 1;
    style.loadOption = kLoadSprites;
    QCOMPARE(dialogCaption(DialogMode::Style, style), QStringLiteral("Load G24,GRY Style File"));
    QCOMPARE(dialogCaption(DialogMode::Bitmap, style),
             QStringLiteral("Load BMP Port Alder [Sprites]"));
    QCOMPARE(dialogCaption(DialogMode::CarPack, style), QStringLiteral("Load Car Pack File"));
    QCOMPARE(filePattern(DialogMode::Style, style), QStringLiteral("*.GRY;*.G24"));
    QCOMPARE(filePattern(DialogMode::Bitmap, style),
             QStringLiteral("KRBSPR1*.BMP;CAR1*.BMP;C_CAR1*.BMP"));
    QCOMPARE(filePattern(DialogMode::CarPack, style), QStringLiteral("*.GC3"));
    style.gMapNumber = 3;
    style.loadOption = kLoadTiles;
    QCOMPARE(dialogCaption(DialogMode::Bitmap, style),
             QStringLiteral("Load BMP Palm Reach [Tiles]"));
    QCOMPARE(filePattern(DialogMode::Bitmap, style), QStringLiteral("KRBTIL3*.BMP"));
    QCOMPARE(settingsSection(DialogMode::Style), QStringLiteral("Style"));
    QCOMPARE(settingsSection(DialogMode::Bitmap), QStringLiteral("BMP"));
    QCOMPARE(settingsSection(DialogMode::CarPack), QStringLiteral("GC3"));
}

void LoadFormTest::fileListFollowsThePatternIgnoringCase() {
    SampleFolder sample;
    for (const char* name : {"style003.g24", "notes.txt", "STYLE001.G24x", "old.gry.bak"})
        torquil::testing::writeFile(sample.dir / name, {0});
    std::filesystem::create_directories(sample.dir / "mods");
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    LoadForm form(DialogMode::Style, style, platform);
    QVERIFY(form.setDirectory(sample.gameDir()));
    QCOMPARE(form.fileNames(), QStringList({"STYLE001.G24", "STYLE002.GRY", "style003.g24"}));
    QVERIFY(form.folderNames().startsWith(".."));
    QVERIFY(form.folderNames().contains("audio") && form.folderNames().contains("mods"));
    QVERIFY(QDir(form.drive()).exists());

    // Into a folder and back up, as a double click on ".." does.
    QVERIFY(form.setDirectory(sample.gameDir() + "/mods"));
    QVERIFY(form.fileNames().isEmpty());
    QVERIFY(form.setDirectory(form.directory() + "/.."));
    QCOMPARE(form.directory(), sample.gameDir());
    QVERIFY(!form.setDirectory(sample.gameDir() + "/nowhere"));
    QCOMPARE(form.directory(), sample.gameDir());
}

void LoadFormTest::optionsFrameNamesTheChosenLevel() {
    SampleFolder sample;
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    LoadForm form(DialogMode::Style, style, platform);
    QVERIFY(form.setDirectory(sample.gameDir()));
    QCOMPARE(form.optionsCaption(), QStringLiteral("-Load Options:"));
    QVERIFY(!form.optionsEnabled());
    QVERIFY(form.selectFile("STYLE002.GRY"));
    QCOMPARE(form.optionsCaption(), QStringLiteral("Sierra Bay 8bit-Load Options:"));
    QVERIFY(form.optionsEnabled());
    QVERIFY(form.selectFile("STYLE001.G24"));
    QCOMPARE(form.optionsCaption(), QStringLiteral("Port Alder 24bit-Load Options:"));
    QVERIFY(form.findChild<QGroupBox*>("FrameG24Options")->isVisibleTo(&form));

    LoadForm bitmaps(DialogMode::Bitmap, style, platform);
    QVERIFY(!bitmaps.findChild<QGroupBox*>("FrameG24Options")->isVisibleTo(&bitmaps));
}

void LoadFormTest::settingsRoundTripPerMode() {
    SampleFolder sample;
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    {
        LoadForm form(DialogMode::Style, style, platform);
        QVERIFY(form.setDirectory(sample.gameDir()));
        QVERIFY(form.selectFile("STYLE002.GRY"));
        form.setLoadOption(kLoadTiles);
        form.confirm();
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(form.chosenPath(), sample.file("STYLE002.GRY"));
        QCOMPARE(form.loadOption(), int(kLoadTiles));
    }
    QCOMPARE(platform.settings().get("Style", "Dir"), sample.dir.string());
    QCOMPARE(platform.settings().get("Style", "File"), std::string("STYLE002.GRY"));
    QVERIFY(!platform.settings().get("Style", "Drive").empty());
    QCOMPARE(platform.settings().get("BMP", "Dir"), std::string());

    // A new platform on the same settings file: the dialog comes back where it was left.
    ScriptedQtPlatform later(sample.settingsFile);
    LoadForm again(DialogMode::Style, style, later);
    QCOMPARE(again.directory(), sample.gameDir());
    QCOMPARE(again.selectedFile(), QStringLiteral("STYLE002.GRY"));
    QCOMPARE(again.optionsCaption(), QStringLiteral("Sierra Bay 8bit-Load Options:"));
    LoadForm packs(DialogMode::CarPack, style, later);
    QCOMPARE(packs.directory(), QDir::currentPath());
    QVERIFY(later.shown.empty());
}

void LoadFormTest::unreachableRememberedFolderIsReported() {
    SampleFolder sample;
    ScriptedQtPlatform platform(sample.settingsFile);
    platform.settings().set("Style", "Dir", "/no/such/folder");
    StyleFileState style;
    LoadForm form(DialogMode::Style, style, platform);
    QCOMPARE(platform.texts(), std::vector<std::string>{
                                   "Unable to access previously used directory:/no/such/folder"});
    // It stays where a first run starts.
    QCOMPARE(form.directory(), QDir::cleanPath(LoadForm::firstRunFolder(DialogMode::Style)));
}

void LoadFormTest::readOnlyStyleFileIsMadeWritable() {
    SampleFolder sample;
    const auto file = sample.dir / "STYLE001.G24";
    namespace fs = std::filesystem;
    fs::permissions(file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    LoadForm form(DialogMode::Style, style, platform);
    QVERIFY(form.setDirectory(sample.gameDir()));
    QVERIFY(form.selectFile("STYLE001.G24"));
    form.confirm();
    QCOMPARE(platform.shown.size(), std::size_t(1));
    QCOMPARE(platform.shown[0].text, std::string("This file is set to be Read Only, this will be "
                                                 "removed so you can save changes."));
    QCOMPARE(platform.shown[0].icon, Icon::Information);
    QVERIFY((fs::status(file).permissions() & fs::perms::owner_write) != fs::perms::none);

    // A writable file says nothing.
    LoadForm again(DialogMode::Style, style, platform);
    again.confirm();
    QCOMPARE(platform.shown.size(), std::size_t(1));
}

void LoadFormTest::confirmingWithoutAFileOnlySavesSettings() {
    SampleFolder sample;
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    LoadForm form(DialogMode::Bitmap, style, platform);
    QVERIFY(form.setDirectory(sample.gameDir()));
    QVERIFY(form.fileNames().isEmpty()); // no exported sprites there
    form.confirm();
    QCOMPARE(form.result(), int(QDialog::Accepted));
    QVERIFY(form.chosenPath().isEmpty());
    QCOMPARE(platform.settings().get("BMP", "Dir"), sample.dir.string());
    QCOMPARE(platform.settings().get("BMP", "File"), std::string());
    QVERIFY(platform.shown.empty());
}

void LoadFormTest::returnInThePathFieldOpensWhatIsTyped() {
    SampleFolder sample;
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    LoadForm form(DialogMode::Style, style, platform);
    form.show();
    QLineEdit* path = form.pathField();
    auto type = [&](const QString& text) {
        path->setFocus();
        path->selectAll();
        QTest::keyClicks(path, text);
        QTest::keyClick(path, Qt::Key_Return);
    };

    // A folder is shown and the dialog stays open.
    type(QDir::toNativeSeparators(sample.gameDir()));
    QCOMPARE(form.directory(), sample.gameDir());
    QCOMPARE(path->text(), QDir::toNativeSeparators(sample.gameDir()));
    QVERIFY(form.isVisible());

    // A name that is not there is refused under the field.
    type("STYLE009.G24");
    QVERIFY(form.isVisible());
    QCOMPARE(form.pathState(),
             "There is no file or folder " +
                 QDir::toNativeSeparators(QDir(sample.gameDir()).filePath("STYLE009.G24")) + ".");
    QVERIFY(form.chosenPath().isEmpty());

    // A typed file is opened.
    type(QDir::toNativeSeparators(QDir(sample.gameDir()).filePath("STYLE001.G24")));
    QCOMPARE(form.result(), int(QDialog::Accepted));
    QVERIFY(!form.isVisible());
    QCOMPARE(form.chosenPath(), QDir(sample.gameDir()).filePath("STYLE001.G24"));
    QVERIFY(platform.shown.empty());
}

void LoadFormTest::returnInThePathFieldOpensTheSelectedFile() {
    SampleFolder sample;
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    LoadForm form(DialogMode::Style, style, platform);
    form.show();
    QVERIFY(form.setDirectory(sample.gameDir()));
    // Nothing selected: Return says what to do and does not close the dialog.
    QTest::keyClick(form.pathField(), Qt::Key_Return);
    QVERIFY(form.isVisible());
    QCOMPARE(form.pathState(), QString("Choose a file in the list or type its name."));
    QVERIFY(form.selectFile("STYLE002.GRY"));
    QTest::keyClick(form.pathField(), Qt::Key_Return);
    QCOMPARE(form.result(), int(QDialog::Accepted));
    QCOMPARE(form.chosenPath(), QDir(sample.gameDir()).filePath("STYLE002.GRY"));
}

void LoadFormTest::firstRunStartsInTheSampleFolder() {
    QTemporaryDir temp;
    const QDir root(temp.path());
    QVERIFY(root.mkpath("bin") && root.mkpath("share/torquil/samples") && root.mkpath("cwd"));
    const QString app = root.filePath("bin"), cwd = root.filePath("cwd");
    QVERIFY(sampleFolderBeside(app, cwd).isEmpty());
    torquil::testing::writeFile((root.filePath("share/torquil/samples/STYLE001.G24")).toStdString(),
                                {'x'});
    QCOMPARE(sampleFolderBeside(app, cwd), root.filePath("share/torquil/samples"));

    // With nothing remembered, the style dialog starts where the sample is found (or in the
    // current folder when it is not); other modes start in the current folder.
    SampleFolder sample;
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    LoadForm form(DialogMode::Style, style, platform);
    QCOMPARE(form.directory(), QDir::cleanPath(LoadForm::firstRunFolder(DialogMode::Style)));
    QCOMPARE(LoadForm::firstRunFolder(DialogMode::CarPack), QDir::currentPath());
}

void LoadFormTest::carPackModeChoosesThePack() {
    SampleFolder sample;
    torquil::testing::writeFile(sample.dir / "cars.gc3", {'G', 'C', '3'});
    ScriptedQtPlatform platform(sample.settingsFile);
    StyleFileState style;
    LoadForm form(DialogMode::CarPack, style, platform);
    QCOMPARE(form.windowTitle(), QStringLiteral("Load Car Pack File"));
    QVERIFY(form.setDirectory(sample.gameDir()));
    QVERIFY(form.selectFile("cars.gc3"));
    form.confirm();
    QVERIFY(platform.shown.empty());
    QCOMPARE(form.chosenPath(), QDir(sample.gameDir()).filePath("cars.gc3"));
    QCOMPARE(platform.settings().get("GC3", "File"), std::string("cars.gc3"));
}

void LoadFormTest::bitmapNamesTellTheSprite() {
    auto t = bitmapTarget("KRBSPR1_57.bmp", 1);
    QVERIFY(t && t->kind == BitmapTarget::Sprite && t->number == 57);
    t = bitmapTarget("krbtil2_200.BMP", 2);
    QVERIFY(t && t->kind == BitmapTarget::Tile && t->number == 200);
    t = bitmapTarget("CAR1_12.bmp", 1);
    QVERIFY(t && t->kind == BitmapTarget::Car && t->number == 12);
    QVERIFY(!bitmapTarget("KRBSPR2_57.bmp", 1)); // another level's sprite
    QVERIFY(!bitmapTarget("KRBSPR1_.bmp", 1));
    QVERIFY(!bitmapTarget("picture.bmp", 1));
}

void LoadFormTest::quickloadImportsAnExportedSprite() {
    SampleFolder sample;
    ScriptedQtPlatform platform(sample.settingsFile);
    AppOptions options;
    options.workDir = sample.work;
    MainForm form(options, platform);
    form.show();
    form.openStyle(sample.file("STYLE001.G24"), kLoadSprites);
    StyleSession& s = form.session();
    const SpriteRec sprite = s.sprites.pageSprites[3][1];
    s.selection.page = 3;
    s.selection.sib = 1;
    form.runKey("exportsprite");
    const QString exported = form.lastExportedFile();
    // Moved elsewhere and edited: the top-left pixel (the last row of the file) becomes 201.
    const auto moved = sample.dir / QFileInfo(exported).fileName().toStdString();
    std::filesystem::rename(exported.toStdString(), moved);
    auto bytes = torquil::testing::readFile(moved);
    const std::size_t topRow = 1078 + std::size_t((sprite.W + 3) / 4 * 4) * (sprite.H - 1);
    bytes[topRow] = 201;
    torquil::testing::writeFile(moved, bytes);
    s.selection.clear();

    form.runDialog = [&](QDialog& dialog) {
        auto* load = qobject_cast<LoadForm*>(&dialog);
        if (!load || load->mode() != DialogMode::Bitmap) return int(QDialog::Rejected);
        if (!load->setDirectory(sample.gameDir())) return 0;
        if (!load->selectFile(QString::fromStdString(moved.filename().string()))) return 0;
        load->confirm();
        return load->result();
    };
    form.runKey("loadbmp");
    QCOMPARE(form.session().pages.pixel(3, sprite.xo, sprite.yo), std::uint8_t(201));
    QCOMPARE(form.session().selectedSprite()->ASN, sprite.ASN);
    QVERIFY(form.commandEnabled("mnuSaveBlock"));
}

QTEST_MAIN(LoadFormTest)
#include "load_form_test.moc"
