// The car info editor's limits as the user types: clamped and refused values marked at the
// field, unfinished boxes named on closing, tool tips with the field's range and the level's.

#include "car_info_form_fixture.h"

class CarInfoFormLimitsTest : public QObject {
    Q_OBJECT

private slots:
    void outOfRangeValuesAreClampedWithTheReport();
    void partialNumbersAreLeftForTyping();
    void textThatIsNotANumberIsRefusedAtTheField();
    void closingWithAnUnfinishedBoxNamesItAndStaysOpen();
    void toolTipsDescribeTheFieldAndTheLevelsRange();
    void emptyBoxBecomesZeroWhenLeft();
    void fixedPointBoxIsStoredThroughFloat32out();
};

void CarInfoFormLimitsTest::outOfRangeValuesAreClampedWithTheReport() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 0);
    CarInfoForm form(*level->session, level->platform, asn);

    // The report stands under the pages beside the field's name and the cause, the box is
    // marked; no message box stops the typing.
    typeInto(form.box(kWidthBox), "300");
    QCOMPARE(form.box(kWidthBox)->text(), QString("255"));
    QCOMPARE(form.fieldMark(kWidthBox), QString("clamped"));
    QCOMPARE(form.fieldStatus()->text(),
             QString("Width: txtbox valve set to H val (300 is above the range 0 to 255; the box "
                     "now holds 255)"));

    typeInto(form.box(kSpriteNumberBox), "-5");
    QCOMPARE(form.box(kSpriteNumberBox)->text(), QString("0"));
    QCOMPARE(form.fieldMark(kSpriteNumberBox), QString("clamped"));
    QVERIFY(form.fieldStatus()->text().startsWith("Sprite Number: txtbox valve set to L val ("));

    // 16.16 boxes are checked on their real value; moment on its raw value.
    typeInto(form.box(kMassBox), "32000.5");
    QCOMPARE(form.box(kMassBox)->text(), QString("32000.5"));
    QCOMPARE(form.fieldMark(kMassBox), QString());
    typeInto(form.box(kMassBox), "32001");
    QCOMPARE(form.box(kMassBox)->text(), QString("32000"));
    typeInto(form.box(17), "2100000000");
    QCOMPARE(form.box(17)->text(), QString("2000000000"));
    QVERIFY(form.fieldStatus()->text().startsWith("Moment: txtbox valve set to H val"));
    QVERIFY(level->platform.shownMessages.empty());
    // Typing a value in range takes the mark away.
    typeInto(form.box(kWidthBox), "40");
    QCOMPARE(form.fieldMark(kWidthBox), QString());

    // Hue, lightness, saturation and the name have no limits.
    level->platform.shownMessages.clear();
    typeInto(form.box(38), "-700");
    typeInto(form.box(kNameBox), "99999");
    QCOMPARE(form.box(38)->text(), QString("-700"));
    QCOMPARE(form.box(kNameBox)->text(), QString("99999"));
    QVERIFY(level->platform.shownMessages.empty());
}

void CarInfoFormLimitsTest::partialNumbersAreLeftForTyping() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    CarInfoForm form(*level->session, level->platform, carWithDoors(*level->session, 0));
    for (const QString text : {"-", ".", "-."}) {
        typeInto(form.box(kSpriteNumberBox), text);
        QCOMPARE(form.box(kSpriteNumberBox)->text(), text);
    }
    QVERIFY(level->platform.shownMessages.empty());
}

void CarInfoFormLimitsTest::textThatIsNotANumberIsRefusedAtTheField() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    CarInfoForm form(*level->session, level->platform, carWithDoors(*level->session, 0));
    typeInto(form.box(kGripBox), "12");

    form.box(kGripBox)->setText("abc"); // pasted
    QCOMPARE(form.box(kGripBox)->text(), QString("12"));
    QCOMPARE(form.fieldMark(kGripBox), QString("refused"));
    QCOMPARE(form.fieldStatus()->text(),
             QString("Grip: \"abc\" is not a number (-32000 to 32000); the box keeps \"12\""));

    // Typed after a number, a letter is taken back as well.
    QTest::keyClicks(form.box(kGripBox), "x");
    QCOMPARE(form.box(kGripBox)->text(), QString("12"));
    QVERIFY(form.fieldStatus()->text().startsWith("Grip: \"12x\" is not a number"));
    QVERIFY(level->platform.shownMessages.empty());

    // The name box takes any text.
    typeInto(form.box(kNameBox), "abc");
    QCOMPARE(form.box(kNameBox)->text(), QString("abc"));
    QCOMPARE(form.fieldMark(kNameBox), QString());
}

void CarInfoFormLimitsTest::closingWithAnUnfinishedBoxNamesItAndStaysOpen() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 0);
    CarInfoForm form(*level->session, level->platform, asn);
    form.show();
    typeInto(form.box(kGripBox), "-");
    typeInto(form.box(kMassBox), ".");
    form.tabs()->setCurrentIndex(CarInfoForm::SpritePage);

    form.done(QDialog::Accepted);
    QVERIFY(form.isVisible());
    QCOMPARE(form.unfinishedBoxes(), (std::vector<int>{kGripBox, kMassBox}));
    QCOMPARE(form.fieldStatus()->text(),
             QString("Not a number yet: Grip (\"-\"), Mass (\".\"). Finish or correct them to "
                     "close the editor."));
    QCOMPARE(form.fieldMark(kGripBox), QString("unfinished"));
    QCOMPARE(form.tabs()->currentIndex(), int(CarInfoForm::SpecsPage)); // where Grip stands
    QVERIFY(!level->session->history.canUndo());                        // nothing accepted yet

    typeInto(form.box(kGripBox), "-3");
    typeInto(form.box(kMassBox), "");
    form.done(QDialog::Accepted); // an empty box counts as 0
    QVERIFY(!form.isVisible());
    QCOMPARE(level->session->cars.find(asn)->info.grip, std::int16_t{-3});
    QVERIFY(level->platform.shownMessages.empty());
}

void CarInfoFormLimitsTest::toolTipsDescribeTheFieldAndTheLevelsRange() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    CarInfoForm form(*level->session, level->platform, carWithDoors(*level->session, 0));
    QCOMPARE(form.box(kWidthBox)->toolTip().section('\n', 0, 0),
             QString("Width (0 to 255, pixels)"));
    int narrower = 0;
    for (int i = 0; i <= kValueBoxIndex; ++i) {
        const QString tip = form.box(i)->toolTip();
        QVERIFY(tip.contains(QString::fromStdString(std::string(carFieldNote(i)->description))));
        if (const auto range = narrowerObservedRange(level->session->cars, i)) {
            QVERIFY2(tip.endsWith(QString::fromStdString(observedRangeText(*range))),
                     qPrintable(tip));
            ++narrower;
        } else {
            QVERIFY(!tip.contains("the level's cars"));
        }
    }
    QVERIFY(narrower > 0);
    // The focused box's caption and range stand under the pages.
    form.show();
    form.tabs()->setCurrentIndex(CarInfoForm::SpritePage);
    form.box(kWidthBox)->setFocus();
    QFocusEvent in(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(form.box(kWidthBox), &in);
    QVERIFY(form.fieldStatus()->text().startsWith("Width: 0 to 255, pixels"));
}

void CarInfoFormLimitsTest::emptyBoxBecomesZeroWhenLeft() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 0);
    {
        CarInfoForm form(*level->session, level->platform, asn);
        form.box(kGripBox)->setText("   ");
        leaveBox(form.box(kGripBox));
        QCOMPARE(form.box(kGripBox)->text(), QString("0"));
        form.box(kGripBox + 1)->setText("7");
        leaveBox(form.box(kGripBox + 1));
        QCOMPARE(form.box(kGripBox + 1)->text(), QString("7"));
        form.reject();
    }
    QCOMPARE(level->session->cars.find(asn)->info.grip, std::int16_t{0});
    QCOMPARE(level->session->cars.find(asn)->info.handling, std::int16_t{7});
}

void CarInfoFormLimitsTest::fixedPointBoxIsStoredThroughFloat32out() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 0);
    {
        CarInfoForm form(*level->session, level->platform, asn);
        typeInto(form.box(kMassBox), "2.5");
        QCOMPARE(form.box(kMassBox)->text(), QString("2.5"));
        typeInto(form.box(kValueBoxIndex), "40");
        form.reject();
    }
    const CarInfo& info = level->session->cars.find(asn)->info;
    QCOMPARE(info.rbp_mass, 163840);
    QCOMPARE(info.value, (std::array<std::int16_t, 4>{40, 40, 40, 40}));
    QCOMPARE(queued(*level->session), std::vector<std::int16_t>{static_cast<std::int16_t>(asn)});
}

QTEST_MAIN(CarInfoFormLimitsTest)
#include "car_info_form_limits_test.moc"
