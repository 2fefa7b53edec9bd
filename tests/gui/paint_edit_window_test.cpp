// Edit in Paint Program through a stand-in paint program: a shell script that saves the picture
// the way paint programs do (a new file renamed over the old one), from a picture the test
// prepared under the same name. The window offers each new version; taking it is one undo step.

#include "gui_fixture.h"

#include "app/board_palette.h"

#include "app/car_info_form.h"
#include "app/delta_pic_form.h"
#include "app/main_form.h"
#include "app/paint_watch.h"
#include "app/settings_form.h"
#include "exchange/png_codec.h"
#include "session/paint_edit.h"
#include "session/picture_file.h"
#include "session/session_io.h"
#include "sound/sound_file_reader.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTabWidget>
#include <QTimer>
#include <QtTest>

using namespace torquil;
using torquil::testing::WindowHarness;
namespace fs = std::filesystem;

namespace {

// The stand-in paint program: copies "<its folder>/<the picture's name>" over the picture.
struct StandInPainter {
    QTemporaryDir dir;
    fs::path folder{dir.path().toStdString()};
    QString script = dir.filePath(QStringLiteral("painter.sh"));

    explicit StandInPainter(WindowHarness& h) {
        QFile file(script);
        if (!file.open(QIODevice::WriteOnly)) return;
        file.write("#!/bin/sh\n"
                   "here=$(dirname \"$0\")\n"
                   "name=$(basename \"$1\")\n"
                   "cp \"$here/$name\" \"$1.saving\" && mv \"$1.saving\" \"$1\"\n");
        file.close();
        file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
        QSettings& s = h.platform.settingsStore().qsettings();
        s.setValue(QStringLiteral("%1/%2").arg(QLatin1String(kPaintSection),
                                               QLatin1String(kPaintProgramKey)),
                   script);
    }
    // What the painter saves for the picture `target`: w x h pixels of the value `colour`.
    void prepare(WindowHarness& h, const PaintTarget& target, int w, int ht, std::uint8_t colour) {
        const SpriteRec& r = *h.session().selectedSprite();
        const std::vector<std::uint8_t> pixels(static_cast<std::size_t>(w) * ht, colour);
        QVERIFY(writePicture(h.session(), h.platform, folder / target.file.filename(), pixels,
                             r.clut, w, ht));
    }
};

// The open offer for a picture; nullptr while there is none.
QMessageBox* offerFor(WindowHarness& h, const PaintTarget& target) {
    const QString file = QDir::cleanPath(QString::fromStdString(target.file.string()));
    for (QMessageBox* box : h.form->findChildren<QMessageBox*>(QStringLiteral("paintOffer")))
        if (box->isVisible() && box->property("paintFile").toString() == file) return box;
    return nullptr;
}

// The first car sprite (with deltas when asked), selected.
SpriteRec selectCar(WindowHarness& h, bool withDeltas) {
    StyleSession& s = h.session();
    for (int page = 0; page < kMaxPages; ++page)
        for (int sib = 1; sib <= s.sprites.pageCount(page); ++sib) {
            const SpriteRec& r = s.sprites.pageSprites[page][sib];
            if (s.cars.find(r.ASN) && (!withDeltas || r.delta_count > 0)) {
                (void)h.form->selectSprite(r.ASN); // a loaded car on a page is always found
                return r;
            }
        }
    return {};
}

PaintTarget spriteTarget(WindowHarness& h, const SpriteRec& r) {
    return paintTarget(h.session(), r, false, false, pngSupported());
}

} // namespace

class PaintEditWindowTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void aSavedVersionIsOfferedAndTakingItIsUndoable();
    void anotherSizeAsksToResizeAndOffersTheCollisionSize();
    void severalSpritesAreWatchedAtOnce();
    void theDeltaViewEditsTheDeltaSet();
    void screenshots();
};

void PaintEditWindowTest::init() {
#ifdef Q_OS_WIN
    QSKIP("the stand-in paint program is a shell script");
#endif
}

void PaintEditWindowTest::aSavedVersionIsOfferedAndTakingItIsUndoable() {
    WindowHarness h;
    h.open("STYLE001.G24");
    StandInPainter painter(h);
    const SpriteRec r = selectCar(h, false);
    QVERIFY(r.ASN > 0);
    const std::vector<std::uint8_t> before = spritePixels(h.session(), r);
    const PaintTarget target = spriteTarget(h, r);
    painter.prepare(h, target, r.W, r.H, 5);
    QVERIFY(h.enabled("mnuEditInPaint"));
    QCOMPARE(SettingsForm(h.platform.settingsStore().qsettings()).paintProgram()->text(),
             painter.script);
    h.platform.shown.clear();
    h.action("mnuEditInPaint")->trigger();
    QVERIFY(h.platform.shown.empty());
    QVERIFY(h.form->paintWatch()->files().contains(
        QDir::cleanPath(QString::fromStdString(target.file.string()))));

    QTRY_VERIFY_WITH_TIMEOUT(offerFor(h, target) != nullptr, 10000);
    QMessageBox* offer = offerFor(h, target);
    QCOMPARE(offer->text(), QString("Import the changed picture of sprite %1?").arg(r.ASN));
    QVERIFY(!offer->isModal());
    // Asked for again before answering: the changed picture is not overwritten unasked.
    h.platform.answers = {Answer::No};
    h.action("mnuEditInPaint")->trigger();
    QVERIFY(h.platform.texts().back().find(
                " has changes that were not imported.\rWrite it again") != std::string::npos);
    QVERIFY(h.form->paintWatch()->hasNewVersion(offer->property("paintFile").toString()));
    offer->button(QMessageBox::Yes)->click();
    const SpriteRec& now = *h.session().selectedSprite();
    QCOMPARE(int(now.ASN), int(r.ASN));
    const std::vector<std::uint8_t> after = spritePixels(h.session(), now);
    QCOMPARE(after, std::vector<std::uint8_t>(before.size(), 5));
    QVERIFY(h.action("mnuUndo")->text().endsWith(QString::number(r.ASN)));

    h.action("mnuUndo")->trigger();
    QCOMPARE(spritePixels(h.session(), *h.session().selectedSprite()), before);
    QVERIFY(!h.session().history.canUndo());
    // The taken version is not offered again.
    QTest::qWait(600);
    QVERIFY(offerFor(h, target) == nullptr);

    QString why;
    QVERIFY(!openInPaintProgram(QStringLiteral("/nonexistent/painter"), "x.png", why));
    QCOMPARE(why, QString("The paint program could not be started: /nonexistent/painter"));
}

void PaintEditWindowTest::anotherSizeAsksToResizeAndOffersTheCollisionSize() {
    WindowHarness h;
    h.open("STYLE001.G24");
    StandInPainter painter(h);
    const SpriteRec r = selectCar(h, false);
    const CarInfo info = h.session().cars.find(r.ASN)->info;
    const PaintTarget target = spriteTarget(h, r);
    painter.prepare(h, target, r.W + 6, r.H + 4, 9);
    h.action("mnuEditInPaint")->trigger();
    QTRY_VERIFY_WITH_TIMEOUT(offerFor(h, target) != nullptr, 10000);
    h.platform.answers = {Answer::Yes, Answer::Yes}; // resize, then the collision size
    offerFor(h, target)->button(QMessageBox::Yes)->click();

    const std::vector<std::string> asked = h.platform.texts();
    QVERIFY(asked.size() >= 2);
    QVERIFY(asked[asked.size() - 2].find("the picture is " + std::to_string(r.W + 6) + " x " +
                                         std::to_string(r.H + 4)) != std::string::npos);
    QCOMPARE(asked.back(), "The car's collision size is " + std::to_string(info.width) + " x " +
                               std::to_string(info.height) + "; the sprite is now " +
                               std::to_string(r.W + 6) + " x " + std::to_string(r.H + 4) +
                               ".\rSet the collision size to " + std::to_string(r.W + 6) + " x " +
                               std::to_string(r.H + 4) + "?");
    QCOMPARE(int(h.session().selectedSprite()->W), r.W + 6);
    QCOMPARE(int(h.session().cars.find(r.ASN)->info.width), r.W + 6);
    QCOMPARE(int(h.session().cars.find(r.ASN)->info.height), r.H + 4);

    // Two steps: the collision size first, then the resize.
    h.action("mnuUndo")->trigger();
    QCOMPARE(h.session().cars.find(r.ASN)->info.width, info.width);
    QCOMPARE(int(h.session().selectedSprite()->W), r.W + 6);
    QCOMPARE(h.action("mnuUndo")->text(), QString("&Undo Resize Sprite %1").arg(r.ASN));
    h.action("mnuUndo")->trigger();
    QCOMPARE(int(h.session().selectedSprite()->W), int(r.W));
}

void PaintEditWindowTest::severalSpritesAreWatchedAtOnce() {
    WindowHarness h;
    h.open("STYLE001.G24");
    StandInPainter painter(h);
    const SpriteRec first = *h.firstSprite(0);
    const SpriteRec second = h.session().sprites.pageSprites[0][2];
    QVERIFY(h.form->selectSprite(first.ASN));
    const PaintTarget a = spriteTarget(h, first);
    painter.prepare(h, a, first.W, first.H, 11);
    h.action("mnuEditInPaint")->trigger();
    QVERIFY(h.form->selectSprite(second.ASN));
    const PaintTarget b = spriteTarget(h, second);
    painter.prepare(h, b, second.W, second.H, 12);
    h.action("mnuEditInPaint")->trigger();
    QCOMPARE(h.form->paintWatch()->files().size(), 2);

    QTRY_VERIFY_WITH_TIMEOUT(offerFor(h, a) && offerFor(h, b), 10000);
    // Each offer imports into its own sprite, whichever is selected.
    offerFor(h, a)->button(QMessageBox::Yes)->click();
    offerFor(h, b)->button(QMessageBox::Yes)->click();
    QCOMPARE(spritePixels(h.session(), h.session().sprites.pageSprites[0][1]),
             std::vector<std::uint8_t>(std::size_t(first.W) * first.H, 11));
    QCOMPARE(spritePixels(h.session(), h.session().sprites.pageSprites[0][2]),
             std::vector<std::uint8_t>(std::size_t(second.W) * second.H, 12));
    QCOMPARE(h.session().history.size(), std::size_t(2));

    // Opening another file forgets the pictures of the old one.
    h.open("STYLE001.G24");
    QVERIFY(h.form->paintWatch()->files().isEmpty());
}

void PaintEditWindowTest::theDeltaViewEditsTheDeltaSet() {
    WindowHarness h;
    h.open("STYLE001.G24");
    StandInPainter painter(h);
    const SpriteRec r = selectCar(h, true);
    QVERIFY(r.delta_count > 0);
    const PaintTarget target = paintTarget(h.session(), r, true, true, pngSupported());
    // One frame more, every frame empty (colour 0 is no delta pixel in a clean set).
    painter.prepare(h, target, r.W * (r.delta_count + 1), r.H, 0);
    h.action("mnuViewDeltas0")->trigger();
    auto* view = h.form->findChild<DeltaPicForm*>();
    QVERIFY(view);
    auto* button = view->findChild<QPushButton*>(QStringLiteral("editInPaint"));
    QVERIFY(button);
    button->click();
    QTRY_VERIFY_WITH_TIMEOUT(offerFor(h, target) != nullptr, 10000);
    QCOMPARE(offerFor(h, target)->text().section('\n', 0, 0),
             QString("Import the changed delta set of sprite %1?").arg(r.ASN));
    h.platform.answers = {Answer::Yes}; // the number of deltas
    offerFor(h, target)->button(QMessageBox::Yes)->click();
    QCOMPARE(int(h.session().selectedSprite()->delta_count), r.delta_count + 1);
    h.action("mnuUndo")->trigger();
    QCOMPARE(int(h.session().selectedSprite()->delta_count), int(r.delta_count));
}

// The walk-through's pictures: the offer, the resize and collision size questions as the window
// shows them, and the Sound page after a new horn (scripts/screenshots).
void PaintEditWindowTest::screenshots() {
    const QByteArray folder = qgetenv("TORQUIL_SCREENSHOT_DIR");
    if (folder.isEmpty()) QSKIP("TORQUIL_SCREENSHOT_DIR not set");
    // The pictures show the windows as the editor shows them: in the board's dark palette.
    applyBoardPalette(*qobject_cast<QApplication*>(QCoreApplication::instance()));
    const QString out = QString::fromLocal8Bit(folder) + "/";
    WindowHarness h;
    h.form->resize(900, 600);
    h.form->show();
    h.open("STYLE001.G24");
    StandInPainter painter(h);
    const SpriteRec r = selectCar(h, false);
    const PaintTarget target = spriteTarget(h, r);
    painter.prepare(h, target, r.W + 6, r.H + 4, 9);
    h.action("mnuEditInPaint")->trigger();
    QTRY_VERIFY_WITH_TIMEOUT(offerFor(h, target) != nullptr, 10000);
    QTest::qWait(300);
    QVERIFY(offerFor(h, target)->grab().save(out + "paint_offer.png"));

    // The questions as real message boxes: each is grabbed, then answered Yes.
    h.platform.messageSink().setHook([](const Message&) { return std::optional<Answer>{}; });
    QStringList names = {"resize_question.png", "collision_size.png"};
    QTimer answerer;
    connect(&answerer, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || names.isEmpty()) return;
        box->grab().save(out + names.takeFirst());
        box->button(QMessageBox::Yes)->click();
    });
    answerer.start(400);
    offerFor(h, target)->button(QMessageBox::Yes)->click();
    answerer.stop();
    QVERIFY(names.isEmpty());
    QCOMPARE(int(h.session().selectedSprite()->W), r.W + 6);

    // A new horn: sound 5 of the bank, recorded, put in as sound 3.
    if (!soundFilesSupported()) QSKIP("this build reads no recordings");
    const fs::path recording = h.sample.work / "horn.wav";
    QVERIFY(
        writeSoundWav(h.session(), h.platform, 5, 1.0, 1, recording, SoundReading::AsStored).ok());
    h.platform.messageSink().setHook([](const Message& m) {
        return std::optional<Answer>{m.buttons == Buttons::Ok ? Answer::Ok : Answer::Yes};
    });
    CarInfoForm form(h.session(), h.platform, r.ASN);
    form.askRecordingPath = [&] { return QString::fromStdString(recording.string()); };
    form.show();
    form.tabs()->setCurrentIndex(CarInfoForm::SoundPage);
    form.box(33)->setText("3");
    form.findChild<QPushButton*>("cmdReplaceSound_1")->click();
    QTest::qWait(300);
    QVERIFY(form.grab().save(out + "horn_replaced.png"));
}

QTEST_MAIN(PaintEditWindowTest)
#include "paint_edit_window_test.moc"
