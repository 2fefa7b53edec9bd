#include "app/startup.h"

#include "app/board_palette.h"
#include "app/command_line_info.h"
#include "app/delta_pic_form.h"
#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/splash_form.h"
#include "base/argument_words.h"
#include "base/version.h"
#include "base/work_dir.h"
#include "platform/qt/qt_platform.h"

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

// The icon lives in the application library: it has to be brought in by name.
static void initIconResource() {
    Q_INIT_RESOURCE(icon);
}

namespace torquil {

StartupArgs parseStartupArgs(const QStringList& arguments) {
    StartupArgs args;
    // A file or folder option takes the next word only when it is a name.
    auto pathValue = [&](int& i, QString& into) {
        const QString& word = arguments[++i];
        const std::string refusal = optionWordAsPathMessage(word.toStdString());
        if (refusal.empty())
            into = word;
        else if (args.error.isEmpty())
            args.error = arguments[i - 1] + QStringLiteral(": ") + QString::fromStdString(refusal);
    };
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (a == QLatin1String("--screenshot") && hasValue)
            pathValue(i, args.screenshot);
        else if (a == QLatin1String("--workdir") && hasValue)
            pathValue(i, args.workDir);
        else if (a == QLatin1String("--settings") && hasValue)
            pathValue(i, args.settings);
        else if (a == QLatin1String("--zoom") && hasValue)
            args.zoom = arguments[++i].toInt();
        else if (a == QLatin1String("--select") && hasValue)
            args.select = arguments[++i].toInt();
        else if (a == QLatin1String("--view-deltas") && hasValue)
            args.viewDeltas = arguments[++i];
        else if (a == QLatin1String("--no-splash"))
            args.splash = false;
        else if (!a.startsWith(QLatin1Char('-')) && args.style.isEmpty())
            args.style = a;
    }
    return args;
}

std::filesystem::path windowWorkDir(const QString& workDirArg, const QString& executable) {
    if (!workDirArg.isEmpty()) return std::filesystem::absolute(workDirArg.toStdString());
    // The same folder as torquil-cli's, so exported pictures and dumps are found by both.
    return defaultWorkDir(std::filesystem::path(executable.toStdString()));
}

namespace {

int saveScreenshot(QWidget& window, const QString& file) {
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
    const QImage picture = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    if (!picture.save(file, "PNG")) {
        std::fprintf(stderr, "Could not write the screenshot %s\n", qPrintable(file));
        return 1;
    }
    std::printf("%s\n", qPrintable(QFileInfo(file).absoluteFilePath()));
    return 0;
}

} // namespace

int runTorquil(int argc, char** argv) {
    {
        std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
        if (const auto status = answerInfoOptions(arguments, std::cout)) return *status;
    }
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Torquil"));
    QApplication::setApplicationName(QStringLiteral("Torquil"));
    applyBoardPalette(app);
    initIconResource();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/torquil/torquil.png")));
    QApplication::setApplicationVersion(QString::fromLatin1(kVersion));

    std::vector<std::string> raw;
    for (int i = 1; i < argc; ++i) raw.emplace_back(argv[i]);
    const StartupArgs args = parseStartupArgs(QApplication::arguments().mid(1));
    if (!args.error.isEmpty()) {
        std::fprintf(stderr, "torquil: %s\nRun torquil --help for the options.\n",
                     qPrintable(args.error));
        return 2;
    }
    // Relative names on the command line are taken before the current directory moves.
    const QString style =
        args.style.isEmpty() ? QString() : QFileInfo(args.style).absoluteFilePath();
    const QString screenshot =
        args.screenshot.isEmpty() ? QString() : QFileInfo(args.screenshot).absoluteFilePath();

    AppOptions options;
    options.debugMode = commandLineHasDebugSwitch(raw);
    options.workDir = windowWorkDir(args.workDir, QApplication::applicationFilePath());
    std::error_code ec;
    std::filesystem::create_directories(options.workDir, ec);
    std::filesystem::current_path(options.workDir, ec);

    QtPlatform platform(args.settings);
    if (!screenshot.isEmpty()) {
        // Nobody is there to answer: messages go to standard error and take the safe answer.
        platform.messageSink().setHook([](const Message& m) -> std::optional<Answer> {
            std::fprintf(stderr, "message: %s\n", qPrintable(displayText(m.text)));
            return safeAnswer(m.buttons);
        });
    }
    SplashForm* splash = nullptr;
    if (args.splash && screenshot.isEmpty()) {
        splash = new SplashForm;
        QObject::connect(splash, &QDialog::finished, splash, &QObject::deleteLater);
        splash->show();
    }
    MainForm form(options, platform);
    form.show();
    if (splash) splash->raise();

    if (args.zoom >= 1) form.setZoom(args.zoom);
    auto load = [&form, &args, style] {
        if (style.isEmpty()) return;
        form.openStyle(style, kLoadSprites);
        // A number without a sprite has said so (searchNSelect's message).
        if (args.select > 0) (void)form.selectSprite(args.select);
        if (!args.viewDeltas.isEmpty()) {
            const char* entry =
                args.viewDeltas == QLatin1String("car") ? "mnuViewDeltas1" : "mnuViewDeltas0";
            if (QAction* view = form.menus().action(entry); view && view->isEnabled())
                view->trigger();
        }
    };
    if (!screenshot.isEmpty()) {
        load();
        if (!args.viewDeltas.isEmpty()) {
            auto* view = form.findChild<DeltaPicForm*>(QStringLiteral("DeltaPicFrm"));
            if (!view) {
                std::fprintf(stderr, "The selected sprite has no delta view\n");
                return 1;
            }
            return saveScreenshot(*view, screenshot);
        }
        return saveScreenshot(form, screenshot);
    }
    QTimer::singleShot(0, &form, load);
    return app.exec();
}

} // namespace torquil
