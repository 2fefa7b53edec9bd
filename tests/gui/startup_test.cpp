// Start-up: the command line and the splash form.

#include "app/command_line_info.h"
#include "app/splash_form.h"
#include "app/startup.h"
#include "base/version.h"
#include "base/work_dir.h"

#include <QDir>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <filesystem>
#include <fstream>

#include <sstream>

using namespace torquil;

class StartupTest : public QObject {
    Q_OBJECT
private slots:
    void commandLineNamesTheStyleAndTheHiddenOptions();
    void splashClosesByTimerKeyOrButton();
    void helpAndVersionAnswerWithoutAWindow();
    void installedProgramWorksInTheUsersDataFolder();
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
    // A file or folder option followed by another option takes nothing and says which.
    a = parseStartupArgs({"--screenshot", "--no-splash", "--workdir", "--wd", "x.G24"});
    QVERIFY(a.screenshot.isEmpty() && a.workDir.isEmpty());
    QVERIFY2(
        a.error.startsWith(QStringLiteral("--screenshot: \"--no-splash\" looks like an option")),
        qPrintable(a.error));
    QVERIFY(parseStartupArgs({"--screenshot", "./-shot.png"}).error.isEmpty());
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

void StartupTest::helpAndVersionAnswerWithoutAWindow() {
    std::ostringstream out;
    QCOMPARE(torquil::answerInfoOptions({"--version"}, out).value_or(-1), 0);
    QCOMPARE(out.str(), std::string("torquil ") + torquil::kVersion + "\n");
    for (const char* help : {"--help", "-h"}) {
        std::ostringstream usage;
        QCOMPARE(torquil::answerInfoOptions({"STYLE001.G24", help}, usage).value_or(-1), 0);
        QCOMPARE(usage.str(), torquil::windowUsage());
    }
    QVERIFY(torquil::windowUsage().starts_with("Usage: torquil "));
    // Anything else starts the window, printing nothing.
    std::ostringstream none;
    QVERIFY(!torquil::answerInfoOptions({"--zoom", "2", "STYLE001.G24"}, none).has_value());
    QVERIFY(none.str().empty());
}

void StartupTest::installedProgramWorksInTheUsersDataFolder() {
#if !defined(Q_OS_LINUX)
    QSKIP("the per-user data folder is moved through XDG_DATA_HOME");
#endif
    namespace fs = std::filesystem;
    QTemporaryDir temp;
    const fs::path root(temp.path().toStdString());
    // The per-user data folder inside the test's folder.
    const QByteArray oldDataHome = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString((root / "data").string()));
    // The command line's folder too.
    const QString data = QString::fromStdString((root / "data" / "torquil").string());

    // /usr/bin is writable for root, yet an installed program never works in it.
    fs::create_directories(root / "usr" / "bin");
    fs::create_directories(root / "usr" / "share");
    const QString installed = QString::fromStdString((root / "usr" / "bin" / "torquil").string());
    QVERIFY(!QDir(data).exists());
    QCOMPARE(windowWorkDir({}, installed), fs::path(data.toStdString()));
    QVERIFY(QDir(data).exists());
    // --workdir wins.
    QCOMPARE(windowWorkDir(QString::fromStdString((root / "w").string()), installed), root / "w");

    // Run from its build folder, the program keeps working beside itself.
    fs::create_directories(root / "build" / "src");
    std::ofstream(root / "build" / "src" / "torquil") << "x";
    QCOMPARE(
        windowWorkDir({}, QString::fromStdString((root / "build" / "src" / "torquil").string())),
        root / "build" / "src");

    if (oldDataHome.isNull())
        qunsetenv("XDG_DATA_HOME");
    else
        qputenv("XDG_DATA_HOME", oldDataHome);
}

QTEST_MAIN(StartupTest)
#include "startup_test.moc"
