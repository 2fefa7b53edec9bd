// The car editor's sound page on the sample level: the list of the bank, replacing the horn with
// a recording, and undo and redo of it.
#include "fake_platform.h"
#include "sample_level.h"
#include "session/file_backups.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "sound/sound_file_reader.h"
#include "style_builder.h"

#include "app/car_info_form.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

using namespace torquil;
namespace tb = torquil::testing;

class SoundPageTest : public QObject {
    Q_OBJECT

private slots:
    void replacingTheHornSavesTheBankAndUndoTakesItBack();
};

void SoundPageTest::replacingTheHornSavesTheBankAndUndoTakesItBack() {
    processBackups().reset();
    QTemporaryDir temp;
    QVERIFY(temp.isValid());
    const std::filesystem::path dir = temp.path().toStdString();
    tb::writeSampleLevel(dir);
    AppOptions options;
    options.workDir = dir;
    StyleSession session(options);
    tb::FakePlatform platform;
    prepareStyle(session.style, dir / "STYLE001.G24", kLoadSprites);
    QVERIFY(initHeader(session, platform, standardLoaders()));
    const auto sdt = dir / "audio" / "LEVEL001.SDT";
    const auto oldSdt = tb::readFile(sdt);
    const int records = static_cast<int>(oldSdt.size() / 12);

    // The recording: sound 5 of the bank as the game reads it.
    const auto recording = dir / "horn.wav";
    QVERIFY(writeSoundWav(session, platform, 5, 1.0, 1, recording, SoundReading::AsStored).ok());

    int asn = 0;
    for (int a = 1; a <= session.cars.highest && !asn; ++a)
        if (session.cars.find(a)) asn = a;
    CarInfoForm form(session, platform, asn);
    form.askRecordingPath = [&] { return QString::fromStdString(recording.string()); };
    form.show();
    form.tabs()->setCurrentIndex(CarInfoForm::SoundPage);
    QCOMPARE(form.soundList()->topLevelItemCount(), records);
    QCOMPARE(form.soundList()->topLevelItem(4)->text(1),
             QString::number(tb::getI32(oldSdt, 4 * 12 + 4)));

    form.box(33)->setText("3");
    auto* replace = form.findChild<QPushButton*>("cmdReplaceSound_1");
    auto* undo = form.findChild<QPushButton*>("cmdUndoSound");
    auto* redo = form.findChild<QPushButton*>("cmdRedoSound");
    QVERIFY(replace && undo && redo);
    if (!soundFilesSupported()) {
        QVERIFY(!undo->isEnabled());
        QVERIFY(replace->toolTip().isEmpty() == false);
        return;
    }
    QVERIFY(!undo->isEnabled());
    QTest::mouseClick(replace, Qt::LeftButton);
    QVERIFY2(platform.shownMessages.empty(),
             platform.shownMessages.empty() ? "" : platform.shownMessages[0].text.c_str());
    const auto newSdt = tb::readFile(sdt);
    QCOMPARE(tb::getI32(newSdt, 2 * 12 + 4), tb::getI32(oldSdt, 4 * 12 + 4)); // sound 5's length
    QCOMPARE(form.soundList()->topLevelItem(2)->text(1),
             QString::number(tb::getI32(oldSdt, 4 * 12 + 4)));
    QVERIFY(undo->isEnabled());
    QCOMPARE(undo->text(), QString("Undo Replace Sound 3"));
    QVERIFY(std::filesystem::exists(backupPathOf(sdt)));

    QTest::mouseClick(undo, Qt::LeftButton);
    QCOMPARE(tb::readFile(sdt), oldSdt);
    QVERIFY(!undo->isEnabled());
    QVERIFY(redo->isEnabled());
    QTest::mouseClick(redo, Qt::LeftButton);
    QCOMPARE(tb::readFile(sdt), newSdt);
    processBackups().reset();
}

QTEST_MAIN(SoundPageTest)
#include "sound_page_test.moc"
