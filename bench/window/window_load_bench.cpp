// Opening the full-size level through the real main window (MainForm, the Qt platform, the progress
// form and the page board) on Qt's offscreen platform, beside the same load through the recording
// fake platform that bench/load_bench.cpp uses. The window figure includes what the user waits
// for and the fake one leaves out: the progress form, the event loop and painting the board until
// the level is on screen. docs/performance.md keeps the figures.

#include "app/main_form.h"
#include "app/page_board.h"
#include "fake_platform.h"
#include "fxt_coder.h"
#include "platform/qt/qt_platform.h"
#include "sample_level.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"

#include <QApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>

namespace {

using namespace torquil;

// The full-size level on 16 pages (the size of a real level), 24 and 26, written once per run.
class Levels {
public:
    std::filesystem::path style(int pages) {
        auto it = files_.find(pages);
        if (it != files_.end()) return it->second;
        const auto dir = root() / ("pages" + std::to_string(pages));
        std::filesystem::create_directories(dir);
        const auto file = dir / "STYLE001.G24";
        testing::writeFile(file, testing::buildStyle(testing::fullSizeSpec24(pages)));
        testing::writeFile(dir / "ENGLISH.FXT", testing::encodeFxt(testing::sampleFxtEntries()));
        return files_[pages] = file;
    }
    std::filesystem::path root() const { return temp_.path().toStdString(); }
    QString settingsFile() const { return temp_.filePath(QStringLiteral("settings.ini")); }

private:
    QTemporaryDir temp_;
    std::map<int, std::filesystem::path> files_;
};

Levels& levels() {
    static Levels instance;
    return instance;
}

// A shown main window of the usual size whose message boxes answer themselves.
struct Window {
    QtPlatform platform{levels().settingsFile()};
    std::unique_ptr<MainForm> form;
    Window() {
        platform.messageSink().setHook(
            [](const Message& m) -> std::optional<Answer> { return safeAnswer(m.buttons); });
        AppOptions options;
        options.workDir = levels().root();
        form = std::make_unique<MainForm>(options, platform);
        form->resize(1280, 800);
        form->show();
        settle();
    }
    // Lets the window handle and paint everything pending, as it would before the user sees it.
    static void settle() {
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
    }
};

// From the open command to the level painted on the board.
void BM_WindowOpen(benchmark::State& state) {
    const int pages = static_cast<int>(state.range(0));
    const QString path = QString::fromStdString(levels().style(pages).string());
    Window window;
    for (auto _ : state) {
        window.form->openStyle(path, kLoadSprites);
        Window::settle();
        if (!window.form->session().style.loaded) {
            state.SkipWithError("the level did not load in the window");
            return;
        }
        benchmark::DoNotOptimize(window.form->session().image.rgb.data());
    }
    state.counters["pages"] = pages;
}
BENCHMARK(BM_WindowOpen)->Arg(16)->Arg(24)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// An empty window handling and painting the same pending events: what the window costs without
// a load.
void BM_WindowSettle(benchmark::State& state) {
    Window window;
    for (auto _ : state) {
        window.form->board()->refresh();
        Window::settle();
    }
}
BENCHMARK(BM_WindowSettle)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The same load through the recording fake platform (no window, no event loop).
void BM_FakePlatformOpen(benchmark::State& state) {
    const int pages = static_cast<int>(state.range(0));
    const auto path = levels().style(pages);
    for (auto _ : state) {
        testing::FakePlatform platform;
        AppOptions options;
        options.workDir = levels().root();
        auto session = std::make_unique<StyleSession>(options);
        prepareStyle(session->style, path, kLoadSprites);
        if (!initHeader(*session, platform, standardLoaders())) {
            state.SkipWithError("the level did not load");
            return;
        }
        benchmark::DoNotOptimize(session->image.rgb.data());
    }
    state.counters["pages"] = pages;
}
BENCHMARK(BM_FakePlatformOpen)->Arg(16)->Arg(24)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

int main(int argc, char** argv) {
    // Headless unless told otherwise: the window is real, the screen is not needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
