// Car packs through the window on the sample level: edit a car, its name and a sprite, save,
// build a pack from the .bak originals, put the originals back, apply the pack through the open
// dialog's car pack mode, and the refusals. Set TORQUIL_SCREENSHOT_DIR to also write pictures of
// the build dialog and the preview there.

#include "gui_fixture.h"

#include "app/board_palette.h"

#include "app/build_car_pack_form.h"
#include "app/car_info_form.h"
#include "app/car_pack_preview_form.h"
#include "app/load_form.h"
#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/main_tool_bar.h"
#include "app/page_board.h"
#include "session/car_pack_preview.h"
#include "session/edits.h"
#include "session/style_session.h"
#include "style_builder.h"

#include <QAction>
#include <QLineEdit>
#include <QRegularExpression>
#include <QtTest>

using namespace torquil;
using torquil::testing::readFile;
using torquil::testing::SampleFolder;
using torquil::testing::ScriptedQtPlatform;
namespace fs = std::filesystem;

namespace {

struct Harness : torquil::testing::WindowHarness {
    fs::path style = sample.dir / "STYLE001.G24";
    fs::path fxt = sample.dir / "ENGLISH.FXT";
    fs::path pack = sample.dir / "MINE.GC3";
    QStringList previewLines; // of the last preview shown
    QString previewHeadline;
    QList<QImage> previewPictures; // before, after of each repainted sprite

    Harness() { form->show(); }

    const SpriteRec* firstCarSprite() {
        StyleSession& s = form->session();
        for (int page = 0; page <= s.pages.gNumBlockLoaded; ++page)
            for (int sib = 1; sib <= s.sprites.pageCount(page); ++sib)
                if (s.cars.find(s.sprites.pageSprites[page][sib].ASN))
                    return &s.sprites.pageSprites[page][sib];
        return nullptr;
    }
    // Keeps what a preview window lists and answers it.
    int answerPreview(QDialog& dialog, bool apply) {
        auto* preview = qobject_cast<CarPackPreviewForm*>(&dialog);
        if (!preview) return int(QDialog::Rejected);
        previewLines = preview->listedLines();
        previewHeadline = preview->headline();
        previewPictures = preview->spritePictures();
        if (!apply) return int(QDialog::Rejected);
        preview->confirm();
        return preview->result();
    }
    // "Load GC3 Car Pack" from the toolbar, the pack chosen in the open dialog.
    void applyThroughDialog(const fs::path& chosen, bool apply = true) {
        const QString dir = QString::fromStdString(chosen.parent_path().string());
        const QString name = QString::fromStdString(chosen.filename().string());
        form->runDialog = [this, dir, name, apply](QDialog& dialog) {
            if (auto* load = qobject_cast<LoadForm*>(&dialog)) {
                load->setDirectory(dir);
                load->selectFile(name);
                load->confirm();
                return load->result();
            }
            return answerPreview(dialog, apply);
        };
        form->runKey("loadgc3");
    }
    bool saw(const std::string& part) const {
        for (const std::string& t : platform.texts())
            if (t.find(part) != std::string::npos) return true;
        return false;
    }
};

} // namespace

class CarPackTest : public QObject {
    Q_OBJECT
private slots:
    void editedLevelRoundTripsThroughBuildAndApply();
    void packsThatDoNotBelongAreRefused();
    void withoutBakCopiesTheOriginalsMustBeChosen();
    void screenshots();
};

void CarPackTest::editedLevelRoundTripsThroughBuildAndApply() {
    Harness h;
    const auto originalStyle = readFile(h.style);
    const auto originalFxt = readFile(h.fxt);
    h.openThroughDialog("STYLE001.G24");
    QVERIFY(h.form->commandEnabled("mnuBuildGC3") && h.form->commandEnabled("loadgc3"));
    const SpriteRec* car = h.firstCarSprite();
    QVERIFY(car);
    const SpriteRec r = *car;
    h.click(r);

    // The car's width and name in the editor, its picture through export and import.
    h.form->runDialog = [](QDialog& dialog) {
        auto* editor = qobject_cast<CarInfoForm*>(&dialog);
        if (!editor) return int(QDialog::Rejected);
        editor->box(0)->setText("31");
        editor->box(42)->setText("Packed Car");
        editor->done(QDialog::Accepted);
        return int(QDialog::Accepted);
    };
    h.action("mnuEditCar")->trigger();
    h.form->runKey("exportsprite");
    const fs::path bmp = h.form->lastExportedFile().toStdString();
    auto picture = readFile(bmp);
    for (int x = 0; x < 4; ++x)
        picture[1078 + x] = static_cast<std::uint8_t>(picture[1078 + x] ^ 2);
    torquil::testing::writeFile(bmp, picture);
    h.action("mnuImportSprite")->trigger();

    // Build asks to save first; the originals default to the .bak copies the save kept.
    h.platform.answers = {Answer::Yes};
    QString defaultOriginal;
    h.form->runDialog = [&](QDialog& dialog) {
        if (auto* build = qobject_cast<BuildCarPackForm*>(&dialog)) {
            defaultOriginal = build->edit(BuildCarPackForm::OrigStyle)->text();
            build->edit(BuildCarPackForm::Pack)->setText(QString::fromStdString(h.pack.string()));
            build->confirm();
            return build->result();
        }
        return h.answerPreview(dialog, false);
    };
    h.action("mnuBuildGC3")->trigger();
    QVERIFY(h.platform.saw("Save your changes?"));
    QCOMPARE(defaultOriginal, QString::fromStdString(h.style.string() + ".bak"));
    QVERIFY(fs::exists(h.pack));
    const auto editedStyle = readFile(h.style);
    const auto editedFxt = readFile(h.fxt);
    QVERIFY(editedStyle != originalStyle && editedFxt != originalFxt);
    QCOMPARE(h.previewHeadline, QStringLiteral("Car pack for level 1 (Port Alder)"));
    const QString asn = QString::number(r.ASN);
    // Each car by name and model, each field by its caption with the old and the new value.
    const QString carLine = "  Packed Car (model " +
                            QString::number(h.form->session().cars.find(r.ASN)->info.model) +
                            ", ASN " + asn + ")";
    QVERIFY2(h.previewLines.contains(carLine), qPrintable(h.previewLines.join('\n')));
    QVERIFY2(!h.previewLines.filter(QRegularExpression("^    Width: \\d+ -> 31$")).isEmpty(),
             qPrintable(h.previewLines.join('\n')));
    QVERIFY(h.previewLines.contains("Car names:"));
    QVERIFY(h.previewLines.contains("  page " + QString::number(r.page) + ", ASN " + asn +
                                    " (Packed Car): 4 pixels"));
    // The repainted sprite as two pictures side by side: its size, differing in 4 pixels.
    QCOMPARE(h.previewPictures.size(), 2);
    const QImage& before = h.previewPictures[0];
    const QImage& after = h.previewPictures[1];
    QCOMPARE(before.size(), QSize(r.W, r.H));
    QCOMPARE(after.size(), before.size());
    int differing = 0;
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            differing += before.pixel(x, y) != after.pixel(x, y) ? 1 : 0;
    QCOMPARE(differing, 4);

    // Another modder's untouched level gets the pack, and says what it wrote.
    torquil::testing::writeFile(h.style, readFile(h.style.string() + ".bak"));
    torquil::testing::writeFile(h.fxt, readFile(h.fxt.string() + ".bak"));
    h.openThroughDialog("STYLE001.G24");
    h.platform.shown.clear();
    h.applyThroughDialog(h.pack);
    QCOMPARE(h.platform.texts(),
             std::vector<std::string>{"GC3 car pack MINE.GC3 applied to:\r  " + h.style.string() +
                                      " (as it was: " + h.style.string() + ".bak)\r  " +
                                      h.fxt.string() + " (as it was: " + h.fxt.string() + ".bak)"});
    QCOMPARE(readFile(h.style), editedStyle);
    QCOMPARE(readFile(h.fxt), editedFxt);
    QVERIFY(h.previewLines.contains(carLine));
    // The level was read again: the window shows the car as the pack left it.
    QCOMPARE(h.form->session().cars.find(r.ASN)->info.width, std::int16_t{31});
    QCOMPARE(h.form->session().cars.find(r.ASN)->name, std::string("Packed Car"));

    // A second time is refused without a preview: the pack's trailer names the files it makes.
    const auto bakStyle = readFile(h.style.string() + ".bak");
    h.previewLines.clear();
    h.platform.shown.clear();
    h.applyThroughDialog(h.pack);
    QCOMPARE(h.platform.texts(), std::vector<std::string>{
                                     "This GC3 car pack is already applied to " + h.style.string() +
                                     " and " + h.fxt.string() + ": nothing was written."});
    QVERIFY(h.previewLines.isEmpty());
    QCOMPARE(readFile(h.style), editedStyle);
    QCOMPARE(readFile(h.fxt), editedFxt);
    QCOMPARE(readFile(h.style.string() + ".bak"), bakStyle);

    // Packs stack: the originals with another car edited in the window take the pack too.
    torquil::testing::writeFile(h.style, readFile(h.style.string() + ".bak"));
    torquil::testing::writeFile(h.fxt, readFile(h.fxt.string() + ".bak"));
    h.openThroughDialog("STYLE001.G24");
    // The width of another car, through the car editor, saved.
    StyleSession& level = h.form->session();
    const SpriteRec* otherSprite = nullptr;
    for (int page = 0; page <= level.pages.gNumBlockLoaded && !otherSprite; ++page)
        for (int sib = 1; sib <= level.sprites.pageCount(page) && !otherSprite; ++sib) {
            const SpriteRec& sprite = level.sprites.pageSprites[page][sib];
            if (sprite.ASN != r.ASN && level.cars.find(sprite.ASN)) otherSprite = &sprite;
        }
    QVERIFY(otherSprite);
    const int other = otherSprite->ASN;
    h.click(*otherSprite);
    h.form->runDialog = [](QDialog& dialog) {
        auto* editor = qobject_cast<CarInfoForm*>(&dialog);
        if (!editor) return int(QDialog::Rejected);
        editor->box(0)->setText("77");
        editor->done(QDialog::Accepted);
        return int(QDialog::Accepted);
    };
    h.action("mnuEditCar")->trigger();
    h.form->runKey("save");
    QCOMPARE(h.form->session().cars.find(other)->info.width, std::int16_t{77});
    h.platform.shown.clear();
    h.applyThroughDialog(h.pack);
    QVERIFY2(h.platform.texts().size() == 1 &&
                 h.platform.texts()[0].rfind("GC3 car pack MINE.GC3 applied to:", 0) == 0,
             h.platform.texts().empty() ? "" : h.platform.texts().back().c_str());
    QCOMPARE(h.form->session().cars.find(r.ASN)->info.width, std::int16_t{31});
    QCOMPARE(h.form->session().cars.find(r.ASN)->name, std::string("Packed Car"));
    QCOMPARE(h.form->session().cars.find(other)->info.width, std::int16_t{77});
}

void CarPackTest::packsThatDoNotBelongAreRefused() {
    Harness h;
    // A pack of level 1 made outside the window.
    const fs::path changed = h.sample.dir / "changed";
    fs::create_directories(changed);
    auto bytes = readFile(h.style);
    bytes[100] ^= 1;
    torquil::testing::writeFile(changed / "STYLE001.G24", bytes);
    QVERIFY(writeGC3(changed / "STYLE001.G24", h.style, h.fxt, h.fxt, h.pack, h.platform));
    const auto gry = readFile(h.sample.dir / "STYLE002.GRY");

    h.openThroughDialog("STYLE002.GRY");
    h.platform.shown.clear();
    h.applyThroughDialog(h.pack);
    QVERIFY(h.saw("is for level 1 (Port Alder), but STYLE002.GRY is level 2 (Sierra Bay)"));
    QVERIFY(h.previewLines.isEmpty());
    QCOMPARE(readFile(h.sample.dir / "STYLE002.GRY"), gry);

    const fs::path damaged = h.sample.dir / "BROKEN.GC3";
    auto packBytes = readFile(h.pack);
    torquil::testing::putI32(packBytes, kGc3HeaderSize + 4, 1 << 30); // the first run's length
    torquil::testing::writeFile(damaged, packBytes);
    h.openThroughDialog("STYLE001.G24");
    const auto style = readFile(h.style);
    h.applyThroughDialog(damaged);
    QCOMPARE(h.platform.texts().back().substr(0, 24), std::string("Error reading GC3 file.\r"));

    // Cancelled at the preview: nothing changes either.
    h.applyThroughDialog(h.pack, /*apply=*/false);
    QVERIFY(!h.previewLines.isEmpty());
    QCOMPARE(readFile(h.style), style);
    QVERIFY(!fs::exists(h.style.string() + ".bak"));

    // The style file on the disk changed since the pack was made, in the byte the pack changes:
    // refused before the preview, the conflict named.
    auto differs = style;
    differs[100] ^= 2;
    torquil::testing::writeFile(h.style, differs);
    const auto fxt = readFile(h.fxt);
    h.previewLines.clear();
    h.platform.shown.clear();
    h.applyThroughDialog(h.pack);
    QCOMPARE(h.platform.texts(),
             std::vector<std::string>{"This GC3 car pack changes what was changed since it was "
                                      "made in STYLE001.G24 or ENGLISH.FXT:\r  the tiles\r"
                                      "Nothing was changed."});
    QVERIFY(h.previewLines.isEmpty());
    QCOMPARE(readFile(h.style), differs);
    QCOMPARE(readFile(h.fxt), fxt);
    QVERIFY(!fs::exists(h.style.string() + ".bak"));
    QVERIFY(!fs::exists(h.fxt.string() + ".bak"));
}

void CarPackTest::withoutBakCopiesTheOriginalsMustBeChosen() {
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    h.platform.shown.clear();
    bool accepted = true;
    BuildCarPackForm::Paths defaults;
    h.form->runDialog = [&](QDialog& dialog) {
        auto* build = qobject_cast<BuildCarPackForm*>(&dialog);
        if (!build) return int(QDialog::Rejected);
        defaults = build->paths();
        build->confirm();
        accepted = build->result() == QDialog::Accepted;
        return int(QDialog::Rejected);
    };
    h.action("mnuBuildGC3")->trigger();
    QCOMPARE(defaults.modStyle, h.style);
    QCOMPARE(defaults.modFxt, h.fxt);
    QVERIFY(defaults.origStyle.empty() && defaults.origFxt.empty());
    QCOMPARE(defaults.pack, h.sample.dir / "STYLE001_CARS.GC3");
    QVERIFY(!accepted);
    QCOMPARE(h.platform.texts(),
             std::vector<std::string>{"Please choose the original style file."});
    QVERIFY(!fs::exists(defaults.pack));
}

void CarPackTest::screenshots() {
    const QByteArray target = qgetenv("TORQUIL_SCREENSHOT_DIR");
    if (target.isEmpty()) QSKIP("TORQUIL_SCREENSHOT_DIR not set");
    // The pictures show the windows as the editor shows them: in the board's dark palette.
    applyBoardPalette(*qobject_cast<QApplication*>(QCoreApplication::instance()));
    Harness h;
    h.openThroughDialog("STYLE001.G24");
    const SpriteRec r = *h.firstCarSprite();
    StyleSession& s = h.form->session();
    CarInfo info = s.cars.find(r.ASN)->info;
    info.max_speed = static_cast<std::int16_t>(info.max_speed + 10);
    info.grip = static_cast<std::int16_t>(info.grip + 1);
    QVERIFY(editCar(s, r.ASN, CarEdit{info, std::nullopt, std::string("Night Racer")}));
    // Pixels and a colour as a paint program would change them.
    for (int x = 0; x < 6; ++x) s.pages.pixel(r.page, r.xo + x, r.yo + 2) ^= 3;
    s.style.gPagesChanged = true;
    s.colours.entry(r.clut, 7)[1] ^= 0x20;
    s.style.gClutChanged = true;
    h.form->setCommandGroup(2, true);

    h.platform.answers = {Answer::Yes};
    h.form->runDialog = [&](QDialog& dialog) {
        dialog.show();
        if (!QTest::qWaitForWindowExposed(&dialog)) return int(QDialog::Rejected);
        QTest::qWait(50);
        if (auto* build = qobject_cast<BuildCarPackForm*>(&dialog)) {
            build->grab().save(QString::fromUtf8(target) + "/car_pack_build.png");
            build->confirm();
            return build->result();
        }
        dialog.grab().save(QString::fromUtf8(target) + "/car_pack_preview.png");
        return int(QDialog::Rejected);
    };
    h.action("mnuBuildGC3")->trigger();
    QVERIFY(fs::exists(fs::path(target.toStdString()) / "car_pack_preview.png"));
}

QTEST_MAIN(CarPackTest)
#include "car_pack_test.moc"
