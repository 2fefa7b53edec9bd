// Opening a full-size level in the main window asks the window system for the progress bar and
// the event loop a few times, not after each of its 4,096 page rows, and Stop still ends the load
// at the row where it was clicked. The pacers' clocks are replaced, so nothing here depends on how
// fast the machine is.

#include "gui_fixture.h"

#include "fxt_coder.h"

#include <QEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <chrono>
#include <memory>

using namespace torquil;
using torquil::testing::WindowHarness;

namespace {

constexpr int kPages = 16;
constexpr int kRows = kPages * 256;

// Counts the event loop's runs: each run delivers the one event posted before it and this
// object posts the next, so a run that delivers nothing new is still counted once.
class EventLoopCounter : public QObject {
public:
    EventLoopCounter() { post(); }
    int runs = 0;

protected:
    bool event(QEvent* e) override {
        if (e->type() != kBeat) return QObject::event(e);
        ++runs;
        post();
        return true;
    }

private:
    static constexpr QEvent::Type kBeat = QEvent::Type(QEvent::User + 21);
    void post() { QCoreApplication::postEvent(this, new QEvent(kBeat)); }
};

// Counts the paint events a widget receives.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::Paint) ++paints;
        return false;
    }
};

// A steady clock that the test moves: by `step` on every reading.
struct SteppingClock {
    std::shared_ptr<WindowPacer::TimePoint> now = std::make_shared<WindowPacer::TimePoint>(
        std::chrono::steady_clock::now() + std::chrono::hours(1));
    std::chrono::milliseconds step{0};
    WindowPacer::Clock clock() const {
        return [now = now, step = step] {
            *now += step;
            return *now;
        };
    }
};

struct Harness : WindowHarness {
    QString level;
    Harness() {
        // The full-size level (4,096 page rows) with the sample's car names beside it.
        const auto dir = sample.dir / "full";
        std::filesystem::create_directories(dir);
        testing::writeFile(dir / "STYLE001.G24",
                           testing::buildStyle(testing::fullSizeSpec24(kPages)));
        testing::writeFile(dir / "ENGLISH.FXT", testing::encodeFxt(testing::sampleFxtEntries()));
        level = QString::fromStdString((dir / "STYLE001.G24").string());
        form->resize(1000, 700);
        form->show();
        QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    }
    void setClock(const SteppingClock& c) {
        platform.qtDesktop().eventPacer().setClock(c.clock());
        platform.workingForm().paintPacer().setClock(c.clock());
    }
};

} // namespace

class LoadEventsTest : public QObject {
    Q_OBJECT
private slots:
    void loadAsksTheWindowSystemPerSectionNotPerRow();
    void stopEndsTheLoadAtTheRowItWasClickedIn();
};

void LoadEventsTest::loadAsksTheWindowSystemPerSectionNotPerRow() {
    Harness h;
    // Every reading of the clock 1 ms on: the core reports progress and lets events run after
    // each row, so a turn of each pacer comes every 25 rows or so.
    SteppingClock clock;
    clock.step = std::chrono::milliseconds(1);
    h.setClock(clock);
    EventLoopCounter loop;
    PaintCounter bar(h.platform.workingForm().bar());

    h.form->openStyle(h.level, kLoadSprites);

    const Pages& pages = h.session().pages;
    QVERIFY(h.session().style.loaded);
    QCOMPARE(int(pages.gNumBlockLoaded), kPages - 1);
    QCOMPARE(int(pages.gNumLinesLoaded), kRows);
    qInfo("%d rows: the event loop ran %d times, the progress bar was painted %d times", kRows,
          loop.runs, bar.paints);
    // The progress was shown, but far from once a row.
    QVERIFY(bar.paints > 0);
    QVERIFY2(loop.runs <= kRows / 8, "the load ran the event loop for (almost) every row");
    QVERIFY2(bar.paints <= kRows / 8, "the load painted the progress bar for (almost) every row");
}

void LoadEventsTest::stopEndsTheLoadAtTheRowItWasClickedIn() {
    Harness h;
    // Every reading 10 ms on: the event loop gets a turn every few rows.
    SteppingClock clock;
    clock.step = std::chrono::milliseconds(10);
    h.setClock(clock);
    WorkingForm& progress = h.platform.workingForm();
    int linesAtStop = -1;
    QTimer clicker;
    clicker.setInterval(0);
    QObject::connect(&clicker, &QTimer::timeout, [&] {
        // The board shows the session being loaded; its first row of page 2 has been read.
        const int lines = h.form->board()->session()->pages.gNumLinesLoaded;
        if (linesAtStop >= 0 || !progress.isVisible() ||
            progress.windowTitle() != QStringLiteral("Load Page 2") || lines <= 2 * 256)
            return;
        linesAtStop = lines;
        QTest::mouseClick(progress.stopButton(), Qt::LeftButton);
    });
    clicker.start();

    h.form->openStyle(h.level, kLoadSprites);
    clicker.stop();

    // Clicked while page 2 was read: pages 0 and 1 stay, page 2 ends at the row of the click.
    QVERIFY(linesAtStop > 2 * 256 && linesAtStop <= 3 * 256);
    const Pages& pages = h.session().pages;
    QCOMPARE(int(pages.gNumBlockLoaded), 1);
    QCOMPARE(int(pages.gNumLinesLoaded), linesAtStop);
    QVERIFY(!progress.isVisible());
}

QTEST_MAIN(LoadEventsTest)
#include "load_events_test.moc"
