// The sprite picture window: framing, square-pixel enlargement and the texts it is given.

#include "app/delta_pic_form.h"

#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

using torquil::DeltaPicForm;

namespace {

// A w x h picture with a distinct colour per pixel.
QImage numberedPicture(int w, int h) {
    QImage image(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) image.setPixel(x, y, qRgb(x * 20, y * 20, 90));
    return image;
}

} // namespace

class DeltaPicFormTest : public QObject {
    Q_OBJECT

private slots:
    void showsThePictureFramedAndEnlargedWithSquarePixels();
    void largeSpritesAreEnlargedLess();
    void deltaViewShowsEveryFrameNumberedAndOneEnlarged();
    void deltaViewStepsAndPlaysRoundTheFrames();
};

void DeltaPicFormTest::showsThePictureFramedAndEnlargedWithSquarePixels() {
    const QImage picture = numberedPicture(5, 3);
    auto* form = new DeltaPicForm(picture, "Transparency test...",
                                  "OK if you see a white shape in a red background.");
    QCOMPARE(form->windowTitle(), QString("Transparency test..."));
    QVERIFY(form->testAttribute(Qt::WA_DeleteOnClose));
    auto* pic = form->findChild<QLabel*>("deltaPic");
    QVERIFY(pic);
    QCOMPARE(pic->toolTip(), QString("OK if you see a white shape in a red background."));

    // The sprite sits one pixel in from every edge of a (w + 2) x (h + 2) picture.
    const QImage& framed = form->framedPicture();
    QCOMPARE(framed.size(), QSize(7, 5));
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) QCOMPARE(framed.pixel(x + 1, y + 1), picture.pixel(x, y));
    QCOMPARE(framed.pixel(0, 0), framed.pixel(6, 4));
    QVERIFY(framed.pixel(0, 0) != picture.pixel(0, 0));

    // Enlarged four times, every sprite pixel a solid 4 x 4 block.
    QCOMPARE(form->scale(), 4);
    QCOMPARE(pic->size(), QSize(28, 20));
    const QImage shown = pic->pixmap().toImage().convertToFormat(QImage::Format_RGB32);
    QCOMPARE(shown.size(), QSize(28, 20));
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            for (int dy = 0; dy < 4; ++dy)
                for (int dx = 0; dx < 4; ++dx)
                    QCOMPARE(shown.pixel((x + 1) * 4 + dx, (y + 1) * 4 + dy), picture.pixel(x, y));
    delete form;
}

void DeltaPicFormTest::largeSpritesAreEnlargedLess() {
    DeltaPicForm wide(numberedPicture(254, 40), "t", "tip");
    QCOMPARE(wide.framedPicture().size(), QSize(256, 42));
    QCOMPARE(wide.scale(), 3); // stays under 768 pixels on the long side
    DeltaPicForm huge(numberedPicture(800, 10), "t", "tip");
    QCOMPARE(huge.scale(), 1);
}

namespace {

// n frames of w x h, frame i a solid colour of its own.
std::vector<QImage> solidFrames(int n, int w, int h) {
    std::vector<QImage> frames;
    for (int i = 0; i < n; ++i) {
        QImage f(w, h, QImage::Format_RGB32);
        f.fill(qRgb(40 * i, 200 - 30 * i, 17));
        frames.push_back(f);
    }
    return frames;
}

} // namespace

void DeltaPicFormTest::deltaViewShowsEveryFrameNumberedAndOneEnlarged() {
    const auto frames = solidFrames(4, 12, 9);
    DeltaPicForm form(frames, "Deltas (plain) - sprite 7");
    QCOMPARE(form.windowTitle(), QString("Deltas (plain) - sprite 7"));
    QCOMPARE(form.frameCount(), 4);
    QCOMPARE(form.currentFrame(), 0);

    // The strip holds every frame side by side, left to right, apart from each other.
    const QImage& strip = form.strip();
    for (int i = 0; i < 4; ++i) {
        const QRect r = form.stripFrameRect(i);
        QVERIFY(strip.rect().contains(r));
        QCOMPARE(r.size(), QSize(24, 18)); // small frames are doubled
        QCOMPARE(strip.pixel(r.center()), frames[i].pixel(0, 0));
        QCOMPARE(strip.pixel(r.topLeft()), frames[i].pixel(0, 0));
        QCOMPARE(strip.pixel(r.bottomRight()), frames[i].pixel(0, 0));
        if (i > 0) QVERIFY(r.left() > form.stripFrameRect(i - 1).right() + 1);
    }
    // Under each frame its number, in the text colour: some pixel below frame 0 is not the
    // window colour.
    const QRect below(form.stripFrameRect(0).left(), form.stripFrameRect(0).bottom() + 1, 24, 15);
    bool written = false;
    for (int y = below.top(); y <= below.bottom() && y < strip.height(); ++y)
        for (int x = below.left(); x <= below.right(); ++x)
            written = written || strip.pixel(x, y) != strip.pixel(0, strip.height() - 1);
    QVERIFY(written);
    QVERIFY(form.findChild<QLabel*>("deltaStrip"));

    // The enlarged frame is the current one, framed as the single picture is.
    auto* pic = form.findChild<QLabel*>("deltaPic");
    QVERIFY(pic);
    QCOMPARE(form.framedPicture().size(), QSize(14, 11));
    QCOMPARE(form.framedPicture().pixel(1, 1), frames[0].pixel(0, 0));
    QCOMPARE(pic->size(), QSize(14, 11) * form.scale());
    QCOMPARE(form.findChild<QLabel*>("frameLabel")->text(), QString("Delta 0 (0 to 3)"));
}

void DeltaPicFormTest::deltaViewStepsAndPlaysRoundTheFrames() {
    const auto frames = solidFrames(3, 5, 5);
    DeltaPicForm form(frames, "Deltas (with car)");
    auto* next = form.findChild<QPushButton*>("nextDelta");
    auto* back = form.findChild<QPushButton*>("previousDelta");
    auto* play = form.findChild<QPushButton*>("playDeltas");
    QVERIFY(next && back && play);
    QTest::mouseClick(next, Qt::LeftButton);
    QCOMPARE(form.currentFrame(), 1);
    QCOMPARE(form.framedPicture().pixel(2, 2), frames[1].pixel(0, 0));
    QCOMPARE(form.findChild<QLabel*>("frameLabel")->text(), QString("Delta 1 (0 to 2)"));
    QTest::mouseClick(back, Qt::LeftButton);
    QTest::mouseClick(back, Qt::LeftButton);
    QCOMPARE(form.currentFrame(), 2); // wraps round to the last
    form.stepForward();
    QCOMPARE(form.currentFrame(), 0);

    // Play starts the animation's timer and turns into Stop; each tick shows the next frame.
    QTest::mouseClick(play, Qt::LeftButton);
    QVERIFY(form.isPlaying());
    QCOMPARE(play->text(), QString("&Stop"));
    auto* timer = form.findChild<QTimer*>();
    QVERIFY(timer);
    QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection);
    QCOMPARE(form.currentFrame(), 1);
    QTest::mouseClick(play, Qt::LeftButton);
    QVERIFY(!form.isPlaying());
    QCOMPARE(play->text(), QString("&Play"));
}

QTEST_MAIN(DeltaPicFormTest)
#include "delta_pic_form_test.moc"
