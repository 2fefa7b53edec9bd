// The Qt platform: real message boxes, the settings file, the progress form, the details window
// and the length of WAV files.

#include "app/details_form.h"
#include "platform/qt/qt_platform.h"
#include "platform/qt/wav_length.h"
#include "style_builder.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <cstring>

using namespace torquil;

namespace {

// Answers the next message box that opens by pressing `button`, after noting what it shows.
struct BoxWatcher {
    QString title, text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    void pressWhenShown(QMessageBox::StandardButton button) {
        QTimer::singleShot(0, [this, button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box) return pressWhenShown(button);
            title = box->windowTitle();
            text = box->text();
            icon = box->icon();
            buttons = box->standardButtons();
            box->button(button)->click();
        });
    }
};

std::vector<std::uint8_t> wavFile(std::uint32_t rate, std::uint16_t bits, std::uint32_t dataBytes,
                                  bool extraChunk) {
    std::vector<std::uint8_t> f(44 + (extraChunk ? 12 : 0) + dataBytes, 0x80);
    auto put32 = [&](std::size_t at, std::uint32_t v) {
        for (int i = 0; i < 4; ++i) f[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
    };
    auto put16 = [&](std::size_t at, std::uint16_t v) {
        f[at] = v & 0xFF;
        f[at + 1] = v >> 8;
    };
    std::memcpy(f.data(), "RIFF", 4);
    put32(4, static_cast<std::uint32_t>(f.size() - 8));
    std::memcpy(f.data() + 8, "WAVEfmt ", 8);
    put32(16, 16);
    put16(20, 1);
    put16(22, 1);
    put32(24, rate);
    put32(28, rate * bits / 8);
    put16(32, bits / 8);
    put16(34, bits);
    std::size_t at = 36;
    if (extraChunk) {
        std::memcpy(f.data() + at, "LIST", 4);
        put32(at + 4, 4);
        at += 12;
    }
    std::memcpy(f.data() + at, "data", 4);
    put32(at + 4, dataBytes);
    return f;
}

} // namespace

class PlatformTest : public QObject {
    Q_OBJECT
private slots:
    void messageBoxesShowTheCoreMessage();
    void hookAnswersOnlyWithOfferedButtons();
    void settingsGoToTheirSectionAndKey();
    void progressFormStopsAndGrows();
    void detailsWindowCopiesSavesAndClears();
    void wavLengthComesFromItsChunks();
};

void PlatformTest::messageBoxesShowTheCoreMessage() {
    QtPlatform platform;
    BoxWatcher watch;
    watch.pressWhenShown(QMessageBox::No);
    QCOMPARE(platform.message("Save your changes?", Buttons::YesNoCancel, Icon::Question),
             Answer::No);
    QCOMPARE(watch.title, QStringLiteral("Torquil"));
    QCOMPARE(watch.icon, QMessageBox::Question);
    QCOMPARE(watch.buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);

    watch.pressWhenShown(QMessageBox::Cancel);
    QCOMPARE(platform.message("Warning: one.\rTwo", Buttons::OkCancel, Icon::Warning,
                              "Import G24 Palette"),
             Answer::Cancel);
    QCOMPARE(watch.title, QStringLiteral("Import G24 Palette"));
    QCOMPARE(watch.text, QStringLiteral("Warning: one.\nTwo"));
    QCOMPARE(watch.icon, QMessageBox::Warning);

    watch.pressWhenShown(QMessageBox::Ok);
    QCOMPARE(platform.message("ERROR: Save Pages", Buttons::Ok, Icon::Critical), Answer::Ok);
    QCOMPARE(watch.icon, QMessageBox::Critical);
    QCOMPARE(watch.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(displayText("a\r\nb\rc"), QStringLiteral("a\nb\nc"));
}

void PlatformTest::hookAnswersOnlyWithOfferedButtons() {
    QtPlatform platform;
    std::vector<Message> seen;
    Answer next = Answer::Yes;
    platform.messageSink().setHook([&](const Message& m) -> std::optional<Answer> {
        seen.push_back(m);
        return next;
    });
    QCOMPARE(platform.message("q", Buttons::YesNo), Answer::Yes);
    QCOMPARE(platform.message("q", Buttons::OkCancel), Answer::Cancel); // Yes is not offered
    next = Answer::No;
    QCOMPARE(platform.message("q", Buttons::Ok), Answer::Ok);
    QCOMPARE(seen.size(), std::size_t(3));
}

void PlatformTest::settingsGoToTheirSectionAndKey() {
    QTemporaryDir dir;
    const QString file = dir.filePath("torquil.ini");
    {
        QtPlatform platform(file);
        QCOMPARE(platform.settings().get("Style", "Dir"), std::string());
        platform.settings().set("Style", "Dir", "/games/krb");
        platform.settings().set("GC3", "File", "cars.gc3");
    }
    QSettings raw(file, QSettings::IniFormat);
    QCOMPARE(raw.value("Style/Dir").toString(), QStringLiteral("/games/krb"));
    QCOMPARE(raw.value("GC3/File").toString(), QStringLiteral("cars.gc3"));
    QtPlatform again(file);
    QCOMPARE(again.settings().get("Style", "Dir"), std::string("/games/krb"));
    QCOMPARE(again.settings().get("BMP", "Dir"), std::string());
}

void PlatformTest::progressFormStopsAndGrows() {
    QtPlatform platform;
    ProgressSink& progress = platform.progress();
    progress.open("Load Page 0", "Loading Graphics Page 0...", 255);
    WorkingForm& form = platform.workingForm();
    QVERIFY(form.isVisible());
    QCOMPARE(form.windowTitle(), QStringLiteral("Load Page 0"));
    QCOMPARE(form.text(), QStringLiteral("Loading Graphics Page 0..."));
    QVERIFY(!progress.stopRequested());
    QTest::mouseClick(form.stopButton(), Qt::LeftButton);
    QVERIFY(progress.stopRequested());
    // Showing the form again clears the request.
    progress.open("Saving", "KRB Data File Saving Pages...", 3);
    QVERIFY(!progress.stopRequested());
    progress.setValue(7);
    QCOMPARE(form.value(), 7);
    QCOMPARE(form.maximum(), 7);
    progress.close();
    QVERIFY(!form.isVisible());
}

void PlatformTest::detailsWindowCopiesSavesAndClears() {
    QtPlatform platform;
    platform.detail("version_code:336");
    DetailsForm form(platform.detailsLog());
    platform.detail("LOF:1234");
    platform.detail("head_size:64");
    QCOMPARE(form.list()->count(), 3);
    form.list()->item(2)->setSelected(true);
    form.list()->item(0)->setSelected(true);
    QCOMPARE(form.selectedText(), QStringLiteral("version_code:336\nhead_size:64"));
    form.show();
    QTest::keySequence(&form, QKeySequence::Copy);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("version_code:336\nhead_size:64"));

    QTemporaryDir dir;
    const QString file = dir.filePath("details.txt");
    QVERIFY(form.saveTo(file));
    QFile in(file);
    QVERIFY(in.open(QIODevice::ReadOnly));
    QCOMPARE(in.readAll(), QByteArray("version_code:336\nLOF:1234\nhead_size:64\n"));

    QTest::mouseClick(form.findChild<QPushButton*>("cmdClear"), Qt::LeftButton);
    QCOMPARE(form.list()->count(), 0);
    QVERIFY(platform.detailsLog().lines().isEmpty());
}

void PlatformTest::wavLengthComesFromItsChunks() {
    QTemporaryDir dir;
    const std::filesystem::path wav = dir.filePath("~tmp1.wav").toStdString();
    torquil::testing::writeFile(wav, wavFile(11025, 8, 11025, false));
    QCOMPARE(wavDurationMs(wav), std::optional<std::int64_t>(1000));
    torquil::testing::writeFile(wav, wavFile(22050, 16, 22050, true)); // a chunk before the data
    QCOMPARE(wavDurationMs(wav), std::optional<std::int64_t>(500));

    auto cut = wavFile(11025, 8, 100, false);
    cut.resize(30); // ends inside the format chunk
    torquil::testing::writeFile(wav, cut);
    QVERIFY(!wavDurationMs(wav));
    torquil::testing::writeFile(wav, {'R', 'I', 'F', 'X', 0, 0, 0, 0, 'W', 'A', 'V', 'E'});
    QVERIFY(!wavDurationMs(wav));
    QVERIFY(!wavDurationMs(dir.filePath("missing.wav").toStdString()));
}

QTEST_MAIN(PlatformTest)
#include "platform_test.moc"
