// The manual covers the program: a section for every entry of the window's menus and for every
// box of the car editor (with the description its tool tip shows), and the topic of every Help
// button.

#include "gui_fixture.h"

#include "app/car_field_pictures.h"
#include "app/car_info_form.h"
#include "app/help_window.h"
#include "cars/car_field_notes.h"
#include "cars/car_fields.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>

using namespace torquil;
using namespace torquil::testing;

namespace {

// The anchors (<a name="...">) of the manual as the help window shows it.
QStringList manualAnchors(const QString& html) {
    QStringList names;
    const QRegularExpression anchor(QStringLiteral("<a name=\"([^\"]+)\""));
    for (auto it = anchor.globalMatch(html); it.hasNext();) names << it.next().captured(1);
    return names;
}

// Every action of a menu and its submenus that has a name: entries and submenus alike. The
// entries the window makes as it goes (each recent file, each zoom step) stand under their
// submenu's section.
void collectMenuEntries(QMenu* menu, QStringList& names) {
    static const QRegularExpression madeOnTheFly(
        QStringLiteral("^(mnuRecent(\\d+|None|Clear)|mnuZoom\\d)$"));
    for (QAction* action : menu->actions()) {
        if (action->isSeparator() || action->objectName().isEmpty()) continue;
        if (!madeOnTheFly.match(action->objectName()).hasMatch()) names << action->objectName();
        if (action->menu()) collectMenuEntries(action->menu(), names);
    }
}

} // namespace

class ManualTest : public QObject {
    Q_OBJECT
private slots:
    void everyMenuEntryHasItsSection();
    void everyFieldHasItsRowWithItsDescription();
    void everyHelpTopicIsInTheManual();
    void helpButtonOfThePaletteQuestionOpensItsTopic();
    void picturesOfTheCarsPositionsAreInTheManual();
    void positionPicturesMarkTheCentreOfMassAndEveryDoor();
    void everyPictureOfTheManualLoads();
};

void ManualTest::everyMenuEntryHasItsSection() {
    WindowHarness h;
    QStringList entries;
    for (QAction* top : h.form->menuBar()->actions()) {
        entries << top->objectName();
        collectMenuEntries(top->menu(), entries);
    }
    QVERIFY(entries.contains("mnuExportSpriteAs"));
    QVERIFY(entries.contains("mnuCarList"));
    QVERIFY(entries.size() > 45);

    HelpWindow help;
    QVERIFY(help.showManual());
    const QStringList anchors = manualAnchors(help.browser()->document()->toHtml());
    QStringList missing;
    for (const QString& entry : entries)
        if (!anchors.contains(entry)) missing << entry;
    QVERIFY2(missing.isEmpty(), qPrintable("no section for " + missing.join(", ")));
}

void ManualTest::everyFieldHasItsRowWithItsDescription() {
    HelpWindow help;
    QVERIFY(help.showManual());
    const QStringList anchors = manualAnchors(help.browser()->document()->toHtml());
    const QString text = help.browser()->toPlainText();
    for (const CarField& field : carFields()) {
        const QString anchor =
            "field-" +
            QString::fromLatin1(field.field.data(), field.field.size()).replace('.', '-');
        QVERIFY2(anchors.contains(anchor), qPrintable(anchor));
        // The manual says what the tool tip says (one table in the core for both).
        const std::string_view description = carFieldNote(field.index)->description;
        QVERIFY2(text.contains(QString::fromUtf8(description.data(), description.size())),
                 qPrintable(anchor));
        QVERIFY2(text.contains(QString::fromStdString(fieldRangeText(field.index))),
                 qPrintable(anchor));
    }
}

void ManualTest::everyHelpTopicIsInTheManual() {
    HelpWindow help;
    QVERIFY(help.showManual());
    const QStringList anchors = manualAnchors(help.browser()->document()->toHtml());
    QVERIFY(anchors.contains(helpAnchor(0)));
    // The Help button of the palette question after an import.
    QCOMPARE(helpAnchor(helpContextOfMessage("Palette Change")), QString("palette"));
    QVERIFY(anchors.contains("palette"));
    QCOMPARE(helpContextOfMessage("Import G24 Palette"), 0);
    for (int page = 0; page < CarInfoForm::PageCount; ++page)
        QVERIFY(anchors.contains(helpAnchor(CarInfoForm::helpContext(page))));
    for (const char* topic : {"packs", "undo", "delta-sets", "car-list", "recent", "drag-drop",
                              "command-line", "first-car", "fields"})
        QVERIFY2(anchors.contains(topic), topic);
}

void ManualTest::picturesOfTheCarsPositionsAreInTheManual() {
    HelpWindow help;
    QVERIFY(help.showManual());
    const QString html = help.browser()->document()->toHtml();
    // The pictures sit in the sections of the fields they show (everyPictureOfTheManualLoads
    // loads them).
    for (const char* picture :
         {"screenshots/car_centre_of_mass.png", "screenshots/car_door_positions.png"})
        QVERIFY2(html.contains(QLatin1String(picture)), picture);
    QVERIFY(html.indexOf("name=\"editor-doors\"") < html.indexOf("car_door_positions.png"));
    QVERIFY(html.indexOf("car_door_positions.png") < html.indexOf("name=\"editor-specs\""));
    QVERIFY(html.indexOf("name=\"editor-physics\"") < html.indexOf("car_centre_of_mass.png"));
    QVERIFY(html.indexOf("car_centre_of_mass.png") < html.indexOf("name=\"editor-steer\""));
}

namespace {

// Pixels of the mark's colour in the 13 x 13 square around `at`.
int markPixels(const QImage& image, const QPoint& at, QRgb colour) {
    int n = 0;
    for (int y = at.y() - 6; y <= at.y() + 6; ++y)
        for (int x = at.x() - 6; x <= at.x() + 6; ++x)
            if (image.rect().contains(x, y) && image.pixel(x, y) == colour) ++n;
    return n;
}

} // namespace

void ManualTest::positionPicturesMarkTheCentreOfMassAndEveryDoor() {
    WindowHarness h;
    h.open();
    StyleSession& s = h.session();
    int asn = 0;
    for (int i = 1; i <= s.cars.highest && asn == 0; ++i)
        if (const CarEntry* car = s.cars.find(i); car && car->doorList.size() >= 2) asn = i;
    QVERIFY(asn > 0);
    CarEntry& car = *s.cars.find(asn);
    // A centre of mass left of and above the sprite's centre, as a signed offset.
    car.info.cx = -3;
    car.info.cy = -5;
    const FieldPicture mass = centreOfMassPicture(s, asn);
    QVERIFY(!mass.image.isNull());
    QVERIFY(markPixels(mass.image, mass.pointOf(-3, -5), kCentreMarkColour) >= 8);
    QCOMPARE(markPixels(mass.image, mass.pointOf(3, 5), kCentreMarkColour), 0);
    QVERIFY(mass.pointOf(-3, -5).x() < mass.centre.x() &&
            mass.pointOf(-3, -5).y() < mass.centre.y());

    // A door far outside the sprite still lies inside the picture, with its mark.
    car.doorList[0].rpx = 60;
    car.doorList[0].rpy = -70;
    const FieldPicture doors = doorPositionsPicture(s, asn);
    QVERIFY(!doors.image.isNull());
    for (const DoorRec& d : car.doorList) {
        QVERIFY(doors.image.rect().contains(doors.pointOf(d.rpx, d.rpy)));
        QVERIFY(markPixels(doors.image, doors.pointOf(d.rpx, d.rpy), kDoorMarkColour) >= 8);
    }
    // No car there: no picture.
    QVERIFY(centreOfMassPicture(s, 0).image.isNull());
}

void ManualTest::helpButtonOfThePaletteQuestionOpensItsTopic() {
    WindowHarness h;
    h.platform.messageSink().setHook(nullptr); // the real box, pressed below
    int boxes = 0;
    QTimer presser;
    presser.setInterval(20);
    QObject::connect(&presser, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) return;
        // First Help, then (the box is asked again) No.
        QAbstractButton* button = box->button(boxes++ == 0 ? QMessageBox::Help : QMessageBox::No);
        QVERIFY(button);
        button->click();
    });
    presser.start();
    const Answer answer =
        h.platform.messages().show(Message{"Would you like to AutoCorrect the Remaps?",
                                           "Palette Change", Buttons::YesNo, Icon::Question, true});
    presser.stop();
    QCOMPARE(answer, Answer::No);
    QCOMPARE(boxes, 2);
    QVERIFY(h.form->helpWindow());
    QCOMPARE(h.form->helpWindow()->anchor(), QString("palette"));
}

void ManualTest::everyPictureOfTheManualLoads() {
    HelpWindow help;
    QVERIFY(help.showManual());
    QStringList pictures;
    const QRegularExpression image(QStringLiteral("<img src=\"([^\"]+)\""));
    for (auto it = image.globalMatch(help.browser()->document()->toHtml()); it.hasNext();)
        pictures << it.next().captured(1);
    QVERIFY(pictures.contains("screenshots/resize_question.png"));
    for (const QString& picture : pictures) {
        const QVariant loaded =
            help.browser()->document()->resource(QTextDocument::ImageResource, QUrl(picture));
        QVERIFY2(loaded.isValid(), qPrintable(picture));
    }
}

QTEST_MAIN(ManualTest)
#include "manual_test.moc"
