// Start-up: the command line and the splash form.

#include "app/splash_form.h"
#include "app/startup.h"
#include "base/work_dir.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

using namespace torquil;

class StartupTest : public QObject {
    Q_OBJECT
private slots:
    void commandLineNamesTheStyleAndTheHiddenOptions();
    void splashClosesByTimerKeyOrButton();
};

void StartupTest::commandLineNamesTheStyleAndTheHiddenOptions() {
    StartupArgs a = parseStartupArgs({"-d", "STYLE001.G24", "more.G24"});
    QCOMPARE(a.style, QStringLiteral("STYLE001.G24")); // the first name wins
    QVERIFY(a.screenshot.isEmpty() && a.splash);
    a = parseStartupArgs({"--screenshot", "shot.png", "--zoom", "3", "--select", "40", "--workdir",
                          "/tmp/w", "--settings", "s.ini", "--no-splash", "--view-deltas", "car",
                          "--unknown", "x.G24"});
    QCOMPARE(a.screenshot, QStringLiteral("shot.png"));
    QCOMPARE(a.zoom, 3);
    QCOMPARE(a.select, 40);
    QCOMPARE(a.viewDeltas, QStringLiteral("car"));
    QCOMPARE(a.workDir, QStringLiteral("/tmp/w"));
    QCOMPARE(a.settings, QStringLiteral("s.ini"));
    QVERIFY(!a.splash);
    QCOMPARE(a.style, QStringLiteral("x.G24"));
    // An option without its value is ignored rather than eating the style's name.
    a = parseStartupArgs({"STYLE002.GRY", "--screenshot"});
    QCOMPARE(a.style, QStringLiteral("STYLE002.GRY"));
    QVERIFY(a.screenshot.isEmpty());
    // Debug mode is a plain substring test over the whole command line.
    QVERIFY(commandLineHasDebugSwitch({"x", "-dz"}));
    QVERIFY(!commandLineHasDebugSwitch({"--no-splash", "STYLE001.G24"}));
}

void StartupTest::splashClosesByTimerKeyOrButton() {
    {
        SplashForm splash;
        QCOMPARE(splash.timer()->interval(), 2000);
        QVERIFY(splash.timer()->isActive());
        splash.show();
        QTRY_VERIFY_WITH_TIMEOUT(!splash.isVisible(), 4000);
    }
    {
        SplashForm splash;
        splash.show();
        QTest::keyClick(&splash, Qt::Key_Space);
        QVERIFY(!splash.isVisible());
    }
    {
        SplashForm splash;
        splash.show();
        QTest::mouseClick(splash.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
        QVERIFY(!splash.isVisible());
    }
}

QTEST_MAIN(StartupTest)
#include "startup_test.moc"
