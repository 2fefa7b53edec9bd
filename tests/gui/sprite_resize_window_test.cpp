// A sprite of another size through the window: the import asks (old and new size), the step is
// undoable; the delta view's Add Delta and Remove Delta.

#include "gui_fixture.h"

#include "app/delta_pic_form.h"
#include "app/main_form.h"
#include "session/picture_file.h"
#include "style_builder.h"

#include <QAction>
#include <QPushButton>
#include <QtTest>

using namespace torquil;
using torquil::testing::WindowHarness;

namespace {

// The exported picture of the selected sprite, redrawn at (w, h).
void writeResized(WindowHarness& h, const std::filesystem::path& file, int w, int h2) {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(w) * h2);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint8_t>(1 + i % 200);
    const SpriteRec& r = *h.session().selectedSprite();
    QVERIFY(writePicture(h.session(), h.platform, file, pixels, r.clut, w, h2));
}

} // namespace

class SpriteResizeWindowTest : public QObject {
    Q_OBJECT
private slots:
    void theImportAsksBeforeResizingAndUndoTakesItBack();
    void theDeltaViewAddsAndRemovesDeltas();
};

void SpriteResizeWindowTest::theImportAsksBeforeResizingAndUndoTakesItBack() {
    WindowHarness h;
    h.open("STYLE001.G24");
    const SpriteRec r = *h.firstSprite(0, true);
    QVERIFY(h.form->selectSprite(r.ASN));
    h.action("mnuExportSprite")->trigger();
    const std::filesystem::path bmp = h.form->lastExportedFile().toStdString();
    writeResized(h, bmp, r.W + 8, r.H + 8);

    // No: nothing changes.
    h.platform.answers = {Answer::No};
    h.action("mnuImportSprite")->trigger();
    const std::string asked = h.platform.texts().back();
    QVERIFY(asked.find("is " + std::to_string(r.W) + " x " + std::to_string(r.H) +
                       "; the picture is " + std::to_string(r.W + 8) + " x " +
                       std::to_string(r.H + 8)) != std::string::npos);
    QCOMPARE(int(h.session().selectedSprite()->W), int(r.W));

    h.platform.answers = {Answer::Yes};
    h.action("mnuImportSprite")->trigger();
    QCOMPARE(int(h.session().selectedSprite()->W), r.W + 8);
    QCOMPARE(h.action("mnuUndo")->text(), QString("&Undo Resize Sprite %1").arg(r.ASN));
    h.action("mnuUndo")->trigger();
    QCOMPARE(int(h.session().selectedSprite()->W), int(r.W));
    QCOMPARE(int(h.session().selectedSprite()->page), int(r.page));
}

void SpriteResizeWindowTest::theDeltaViewAddsAndRemovesDeltas() {
    WindowHarness h;
    h.open("STYLE001.G24");
    StyleSession& s = h.session();
    int asn = 0;
    for (int page = 0; page < kMaxPages && asn == 0; ++page)
        for (int sib = 1; sib <= s.sprites.pageCount(page) && asn == 0; ++sib)
            if (s.sprites.pageSprites[page][sib].delta_count > 0)
                asn = s.sprites.pageSprites[page][sib].ASN;
    QVERIFY(asn > 0);
    QVERIFY(h.form->selectSprite(asn));
    const int n = s.selectedSprite()->delta_count;
    h.action("mnuViewDeltas1")->trigger();
    auto* view = h.form->findChild<DeltaPicForm*>();
    QVERIFY(view);
    auto* add = view->findChild<QPushButton*>("addDelta");
    QVERIFY(add);
    add->click();
    QCOMPARE(int(h.session().selectedSprite()->delta_count), n + 1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    view = h.form->findChild<DeltaPicForm*>();
    QVERIFY(view);
    QCOMPARE(view->frameCount(), n + 1);
    view->showFrame(n);
    view->findChild<QPushButton*>("removeDelta")->click();
    QCOMPARE(int(h.session().selectedSprite()->delta_count), n);
    h.action("mnuUndo")->trigger();
    QCOMPARE(int(h.session().selectedSprite()->delta_count), n + 1);
}

QTEST_MAIN(SpriteResizeWindowTest)
#include "sprite_resize_window_test.moc"
