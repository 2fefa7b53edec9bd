// The sprite picture window: framing, square-pixel enlargement and the texts it is given.

#include "app/delta_pic_form.h"

#include <QLabel>
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

QTEST_MAIN(DeltaPicFormTest)
#include "delta_pic_form_test.moc"
