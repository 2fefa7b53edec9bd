// The car info editor on the sample level: what closing the form accepts, the door and remap
// pages, help and sound buttons.

#include "car_info_form_fixture.h"

class CarInfoFormTest : public QObject {
    Q_OBJECT

private slots:
    void pagesHoldTheirBoxesWithCaptionsAndToolTips();
    void boxesShowTheRecord();
    void closingWithoutChangesQueuesNothing();
    void nameOnlyChangeMarksNamesButQueuesNoRecord();
    void cancelAndWindowCloseKeepTheEdits();
    void doorScrollEditsTheChosenDoor();
    void clickInDoorPictureMovesTheSelectedDoor();
    void remapPageShowsAndEditsTheSelectedRemap();
    void grayStyleListsEightBitRemapsWithSwatch();
    void helpButtonsWithoutHelpFile();
    void helpButtonsOpenTheirContext();
    void unknownCarOpensEmptyAndQueuesNothing();
    void playButtonsPlayEngineHornAndSoundFunction();
    void centreOfMassRoundTripsAsASignedOffset();
    void aNameTheSaveWouldDropIsRefusedOnClosing();
};

void CarInfoFormTest::pagesHoldTheirBoxesWithCaptionsAndToolTips() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 0);
    QVERIFY(asn > 0);
    CarInfoForm form(*level->session, level->platform, asn);

    QCOMPARE(form.windowTitle(),
             QString::fromStdString("Car Info: " + level->session->cars.find(asn)->name));
    QCOMPARE(form.tabs()->objectName(), QString("SSTab1"));
    const QStringList captions{"Sprite", "Doors", "Specs", "Pyhs",
                               "Steer",  "Brake", "Sound", "Remap"};
    QCOMPARE(form.tabs()->count(), captions.size());
    for (int page = 0; page < captions.size(); ++page)
        QCOMPARE(form.tabs()->tabText(page), captions[page]);

    const std::vector<std::vector<int>> pages{
        {11, 12, 30, 0, 1, 2, 3, 42}, {36, 43, 44, 45, 46}, {14, 9, 8, 7, 6, 5, 4, 37},
        {17, 18, 19, 20, 21, 16, 15}, {13, 10, 25, 26, 27}, {22, 23, 24, 28, 29},
        {31, 32, 33, 34, 35},         {38, 39, 40, 41}};
    int boxes = 0;
    for (std::size_t page = 0; page < pages.size(); ++page) {
        for (int index : pages[page]) {
            QLineEdit* edit = form.findChild<QLineEdit*>(QString("txtBox%1").arg(index));
            QVERIFY2(edit, qPrintable(QString("txtBox%1").arg(index)));
            QCOMPARE(pageOf(form, edit), static_cast<int>(page));
            QLabel* label = form.findChild<QLabel*>(QString("Label1_%1").arg(index));
            QVERIFY(label);
            QCOMPARE(pageOf(form, label), static_cast<int>(page));
            // The box's tool tip describes the field and keeps the label's own tip.
            QVERIFY(edit->toolTip().startsWith(label->text()));
            QVERIFY(edit->toolTip().contains(label->toolTip()));
            ++boxes;
        }
        QPushButton* help = form.findChild<QPushButton*>(QString("cmdHelp_%1").arg(page));
        QVERIFY(help);
        QCOMPARE(pageOf(form, help), static_cast<int>(page));
    }
    QCOMPARE(boxes, kCarFieldCount);

    // The Tab key visits the boxes page by page, in the order they stand on the page.
    std::vector<int> expected;
    for (const auto& page : pages)
        for (int index : page)
            if (index != 36) expected.push_back(index); // the door count is shown only
    std::vector<int> visited;
    for (QWidget* w = form.tabs()->nextInFocusChain(); w != form.tabs(); w = w->nextInFocusChain())
        if (auto* edit = qobject_cast<QLineEdit*>(w);
            edit && edit->focusPolicy() != Qt::NoFocus && edit->objectName().startsWith("txtBox"))
            visited.push_back(edit->objectName().mid(6).toInt());
    QCOMPARE(visited, expected);
    QCOMPARE(form.label(18)->text(), QString("Mass"));
    QCOMPARE(form.label(18)->toolTip(), QString("Total Mass (don't set too low)"));
    QCOMPARE(form.label(27)->text(), QString("Steeringwheel offset"));
    QCOMPARE(form.label(37)->toolTip(), QString("X $1000 (Value at all 4 cranes assumed equal)"));
    QCOMPARE(form.label(43)->text(), QString("RPX:"));
    QVERIFY(form.findChild<QPushButton*>("cmdCancel"));
    QVERIFY(form.findChild<QWidget*>("doorFrame")->isAncestorOf(form.box(43)));
    QVERIFY(form.findChild<QWidget*>("remap24Frame")->isAncestorOf(form.box(40)));
    QVERIFY(form.findChild<QWidget*>("remap8Frame")->isAncestorOf(form.box(41)));
    QCOMPARE(form.findChild<QWidget*>("RemapPic")->toolTip(),
             QString("This area displays the new paint color of the car"));
    QCOMPARE(form.findChild<QLabel*>("LRemapInUse")->text(), QString("ALREADY IN USE"));
    QVERIFY(form.findChild<QObject*>("Timer1"));
    QVERIFY(form.findChild<QWidget*>("ImageBar"));
}

void CarInfoFormTest::boxesShowTheRecord() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 1);
    QVERIFY(asn > 0);
    CarEntry& car = *level->session->cars.find(asn);
    car.info.moment = 229376;
    car.info.rbp_mass = -32768;
    car.info.value = {12, 15, 20, 25};
    CarInfoForm form(*level->session, level->platform, asn);

    QCOMPARE(form.box(17)->text(), QString("229376")); // moment: the raw stored integer
    QCOMPARE(form.box(kMassBox)->text(), QString("-0.500"));
    QCOMPARE(form.box(kValueBoxIndex)->text(), QString("12"));
    QCOMPARE(form.box(kWidthBox)->text(), QString::number(car.info.width));
    QCOMPARE(form.box(kNameBox)->text(), QString::fromStdString(car.name));
    QCOMPARE(form.box(36)->text(), QString::number(car.doorList.size()));
    QCOMPARE(form.box(kRpxBox)->text(), QString::number(car.doorList[0].rpx));
    QVERIFY(form.box(36)->isReadOnly());
    QVERIFY(!form.recordChanged());
    QVERIFY(!form.nameChanged());
}

void CarInfoFormTest::closingWithoutChangesQueuesNothing() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 2);
    QVERIFY(asn > 0);
    const CarEntry before = *level->session->cars.find(asn);
    {
        CarInfoForm form(*level->session, level->platform, asn);
        // Looking around changes nothing: pages, remap rows, doors.
        for (int page = 0; page < form.tabs()->count(); ++page) form.tabs()->setCurrentIndex(page);
        form.findChild<QListWidget*>("RemapList")->setCurrentRow(5);
        form.findChild<QScrollBar*>("DoorScroll")->setValue(1);
        QVERIFY(!form.recordChanged());
        form.reject();
    }
    QVERIFY(queued(*level->session).empty());
    QVERIFY(!level->session->style.gCarNamesChanged);
    QVERIFY(!level->session->style.anyChange());
    const CarEntry& after = *level->session->cars.find(asn);
    QCOMPARE(after.info.remap24, before.info.remap24);
    QCOMPARE(after.doorList.size(), before.doorList.size());
    QCOMPARE(after.doorList[1].rpx, before.doorList[1].rpx);
}

void CarInfoFormTest::nameOnlyChangeMarksNamesButQueuesNoRecord() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 0);
    const int model = level->session->cars.find(asn)->info.model;
    {
        CarInfoForm form(*level->session, level->platform, asn);
        typeInto(form.box(kNameBox), "Road Rocket");
        QVERIFY(form.nameChanged());
        QVERIFY(!form.recordChanged());
        form.accept();
    }
    QVERIFY(queued(*level->session).empty());
    QVERIFY(level->session->style.gCarNamesChanged);
    QCOMPARE(level->session->names.names[static_cast<std::size_t>(model)],
             std::string("Road Rocket"));
    QCOMPARE(level->session->cars.find(asn)->name, std::string("Road Rocket"));
}

void CarInfoFormTest::cancelAndWindowCloseKeepTheEdits() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 0);
    {
        CarInfoForm form(*level->session, level->platform, asn);
        form.show();
        typeInto(form.box(kGripBox), "-123");
        QTest::mouseClick(form.findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
        QVERIFY(!form.isVisible());
    }
    QCOMPARE(level->session->cars.find(asn)->info.grip, std::int16_t{-123});
    QCOMPARE(queued(*level->session), std::vector<std::int16_t>{static_cast<std::int16_t>(asn)});
    {
        CarInfoForm form(*level->session, level->platform, asn);
        form.show();
        typeInto(form.box(kGripBox), "77");
        form.close(); // the window's close button
    }
    QCOMPARE(level->session->cars.find(asn)->info.grip, std::int16_t{77});
    // The same car queued twice: it is written twice, at the same place.
    QCOMPARE(queued(*level->session), (std::vector<std::int16_t>{static_cast<std::int16_t>(asn),
                                                                 static_cast<std::int16_t>(asn)}));
}

void CarInfoFormTest::doorScrollEditsTheChosenDoor() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 2);
    QVERIFY(asn > 0);
    const std::vector<DoorRec> before = level->session->cars.find(asn)->doorList;
    {
        CarInfoForm form(*level->session, level->platform, asn);
        auto* scroll = form.findChild<QScrollBar*>("DoorScroll");
        QCOMPARE(scroll->maximum(), static_cast<int>(before.size()) - 1);
        scroll->setValue(1);
        QCOMPARE(form.selectedDoor(), 1);
        QCOMPARE(form.findChild<QLineEdit*>("txtBoxD")->text(),
                 QString("2 of %1").arg(before.size()));
        QCOMPARE(form.box(kRpxBox)->text(), QString::number(before[1].rpx));
        QCOMPARE(form.box(kObjectBox)->text(), QString::number(before[1].object));

        typeInto(form.box(kRpxBox), "300");
        QCOMPARE(form.box(kRpxBox)->text(), QString("255"));
        typeInto(form.box(kObjectBox), "77");
        // Stored at once into the selected door record of the form's copy.
        QCOMPARE(form.workingEntry().doorList[1].rpx, std::int16_t{255});
        QCOMPARE(form.workingEntry().doorList[1].object, std::int16_t{77});
        QCOMPARE(form.workingEntry().doorList[0].rpx, before[0].rpx);
        // Back to the first door: its own values show.
        scroll->setValue(0);
        QCOMPARE(form.box(kRpxBox)->text(), QString::number(before[0].rpx));
        QVERIFY(form.recordChanged());
        form.reject();
    }
    const CarEntry& car = *level->session->cars.find(asn);
    QCOMPARE(car.doorList.size(), before.size());
    QCOMPARE(car.doorList[1].rpx, std::int16_t{255});
    QCOMPARE(car.doorList[1].object, std::int16_t{77});
    QCOMPARE(car.doorList[0].rpx, before[0].rpx);
    QCOMPARE(car.info.doors, static_cast<std::int16_t>(before.size()));
    QCOMPARE(queued(*level->session), std::vector<std::int16_t>{static_cast<std::int16_t>(asn)});
}

void CarInfoFormTest::clickInDoorPictureMovesTheSelectedDoor() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const int asn = carWithDoors(*level->session, 1);
    QVERIFY(asn > 0);
    CarInfoForm form(*level->session, level->platform, asn);
    form.resize(700, 500);
    form.show();
    form.tabs()->setCurrentIndex(CarInfoForm::DoorsPage);
    auto* picture = form.findChild<DoorView*>("PictDoors");
    QVERIFY(picture);
    QTest::mouseClick(picture, Qt::LeftButton, {}, picture->pointOf(3, -4));
    QCOMPARE(form.box(kRpxBox)->text(), QString("3"));
    QCOMPARE(form.box(kRpyBox)->text(), QString("-4"));
    QCOMPARE(form.workingEntry().doorList[0].rpx, std::int16_t{3});
    QCOMPARE(form.workingEntry().doorList[0].rpy, std::int16_t{-4});
    // The arrow keys nudge it by one pixel.
    QTest::keyClick(picture, Qt::Key_Right);
    QCOMPARE(form.workingEntry().doorList[0].rpx, std::int16_t{4});
    QVERIFY(form.recordChanged());
}

void CarInfoFormTest::remapPageShowsAndEditsTheSelectedRemap() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    StyleSession& session = *level->session;
    const int asn = carWithDoors(session, 0);
    CarEntry& car = *session.cars.find(asn);
    car.info.remap24[2] = {90, 0, 20};
    car.info.remap24[3] = {45, 0, 0};
    car.info.remap24[4] = {46, 0, 0};
    const SpriteRec* sprite = findSpriteByAsn(session, asn);
    QVERIFY(sprite);
    const ClutColours base = spriteColours(session, *sprite);
    {
        CarInfoForm form(session, level->platform, asn);
        auto* list = form.findChild<QListWidget*>("RemapList");
        QCOMPARE(list->count(), 12);
        QCOMPARE(list->item(0)->text(), QString("24bit Remap:0"));
        QCOMPARE(list->item(11)->text(), QString("24bit Remap:11"));
        auto* picture = form.findChild<RemapPreview*>("RemapPic");
        auto* inUse = form.findChild<QLabel*>("LRemapInUse");

        list->setCurrentRow(2);
        QCOMPARE(form.box(38)->text(), QString("90"));
        QCOMPARE(form.box(40)->text(), QString("20"));
        QCOMPARE(picture->picture(), spriteImage(session, *sprite, remapClut(base, {90, 0, 20})));
        QVERIFY(inUse->isHidden());

        // Making remap 4 the same as remap 3 marks it as in use; the picture follows the box.
        list->setCurrentRow(4);
        typeInto(form.box(38), "45");
        QVERIFY(!inUse->isHidden());
        QCOMPARE(picture->picture(), spriteImage(session, *sprite, remapClut(base, {45, 0, 0})));
        QCOMPARE(form.workingEntry().info.remap24[4], (std::array<std::int16_t, 3>{45, 0, 0}));
        // The lines name the remaps each coloration picks from.
        QCOMPARE(form.findChild<QLabel*>("LColoration_2")->text(),
                 QString("Unparked Random Car Coloration: remap 0"));
        QVERIFY(form.findChild<QLabel*>("LColoration_0")
                    ->text()
                    .startsWith("Random Car Coloration: remaps 0 to 11"));

        typeInto(form.box(41), "300");
        QCOMPARE(form.box(41)->text(), QString("255"));
        QCOMPARE(form.workingEntry().info.remap8[4], std::uint8_t{255});
        form.reject();
    }
    QCOMPARE(car.info.remap24[4], (std::array<std::int16_t, 3>{45, 0, 0}));
    QCOMPARE(car.info.remap8[4], std::uint8_t{255});
    QCOMPARE(queued(session), std::vector<std::int16_t>{static_cast<std::int16_t>(asn)});

    // A remap colour edit alone still reaches the file.
    session.style.clearDirtyFlags();
    {
        CarInfoForm form(session, level->platform, asn);
        form.findChild<QListWidget*>("RemapList")->setCurrentRow(7);
        typeInto(form.box(39), "12");
        QVERIFY(!form.recordChanged());
        form.reject();
    }
    QCOMPARE(car.info.remap24[7][1], std::int16_t{12});
    QCOMPARE(queued(session), std::vector<std::int16_t>{static_cast<std::int16_t>(asn)});
}

void CarInfoFormTest::grayStyleListsEightBitRemapsWithSwatch() {
    auto level = loadSample("STYLE002.GRY");
    QVERIFY(level);
    StyleSession& session = *level->session;
    const int asn = carWithDoors(session, 0);
    QVERIFY(asn > 0);
    CarInfoForm form(session, level->platform, asn);
    auto* list = form.findChild<QListWidget*>("RemapList");
    QCOMPARE(list->item(0)->text(), QString("8bit Remap:0"));
    list->setCurrentRow(3);
    const std::uint8_t index = session.cars.find(asn)->info.remap8[3];
    QCOMPARE(form.box(41)->text(), QString::number(index));
    auto* picture = form.findChild<RemapPreview*>("RemapPic");
    QVERIFY(picture->swatch().has_value());
    QCOMPARE(picture->swatch()->rgb() & 0xFFFFFFu, palette8Colours(session.colours)[index]);
}

void CarInfoFormTest::helpButtonsWithoutHelpFile() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    CarInfoForm form(*level->session, level->platform, carWithDoors(*level->session, 0));
    form.show();
    for (int page = 0; page < CarInfoForm::PageCount; ++page) {
        form.tabs()->setCurrentIndex(page);
        QTest::mouseClick(form.helpButton(page), Qt::LeftButton);
    }
    QCOMPARE(level->platform.shownMessages.size(), std::size_t{CarInfoForm::PageCount});
    for (const Message& message : level->platform.shownMessages) {
        QCOMPARE(message.text, std::string("Unable to display Help Contents. There is no Help "
                                           "associated with this project."));
        QCOMPARE(message.icon, Icon::Information);
    }
    QVERIFY(!form.recordChanged());
}

// A platform with a help file, recording the contexts asked for.
class HelpfulPlatform : public FakePlatform {
public:
    std::vector<int> contexts;
    bool helpOpens = true;
    bool hasHelp() const override { return true; }
    bool showHelp(int context) override {
        contexts.push_back(context);
        return helpOpens;
    }
};

void CarInfoFormTest::helpButtonsOpenTheirContext() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    HelpfulPlatform platform;
    CarInfoForm form(*level->session, platform, carWithDoors(*level->session, 0));
    form.show();
    form.tabs()->setCurrentIndex(CarInfoForm::SoundPage);
    QTest::mouseClick(form.helpButton(CarInfoForm::SoundPage), Qt::LeftButton);
    form.tabs()->setCurrentIndex(CarInfoForm::SpritePage);
    QTest::mouseClick(form.helpButton(CarInfoForm::SpritePage), Qt::LeftButton);
    QCOMPARE(platform.contexts,
             (std::vector<int>{CarInfoForm::helpContext(CarInfoForm::SoundPage),
                               CarInfoForm::helpContext(CarInfoForm::SpritePage)}));
    QVERIFY(platform.contexts[0] != platform.contexts[1]);
    QVERIFY(platform.shownMessages.empty());

    // A help file that cannot be shown is reported with the error's description.
    platform.helpOpens = false;
    QTest::mouseClick(form.helpButton(CarInfoForm::SpritePage), Qt::LeftButton);
    QCOMPARE(platform.messageTexts(), std::vector<std::string>{"File not found"});
}

void CarInfoFormTest::unknownCarOpensEmptyAndQueuesNothing() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    {
        CarInfoForm form(*level->session, level->platform, 0);
        QCOMPARE(form.windowTitle(), QString("Car Info: "));
        QVERIFY(!form.box(kRpxBox)->isEnabled());
        typeInto(form.box(kGripBox), "5");
        form.reject();
    }
    QVERIFY(!level->session->style.anyChange());
}

void CarInfoFormTest::playButtonsPlayEngineHornAndSoundFunction() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    const std::filesystem::path dir = level->dir.path().toStdString();
    const auto sdt = torquil::testing::readFile(dir / "audio" / "LEVEL001.SDT");
    // Record n of the bank: length and rate.
    auto lengthOf = [&](int n) { return torquil::testing::getI32(sdt, (n - 1) * 12 + 4); };
    auto rateOf = [&](int n) { return torquil::testing::getI32(sdt, (n - 1) * 12 + 8); };
    auto wavField = [](const std::vector<unsigned char>& wav, std::size_t at) {
        return torquil::testing::getI32(wav, at);
    };

    CarInfoForm form(*level->session, level->platform, carWithDoors(*level->session, 0));
    form.show();
    form.tabs()->setCurrentIndex(CarInfoForm::SoundPage);
    typeInto(form.box(31), "2");
    typeInto(form.box(33), "3");
    typeInto(form.box(34), "4");
    for (int button = 0; button < 3; ++button)
        QTest::mouseClick(form.findChild<QPushButton*>(QString("IPlay_%1").arg(button)),
                          Qt::LeftButton);

    const auto& played = level->platform.playedSoundBytes;
    QCOMPARE(played.size(), std::size_t{3});
    // Engine: three times over; horn and sound function once; all at the bank's own rate.
    QCOMPARE(wavField(played[0], 40), lengthOf(2) * 3);
    QCOMPARE(wavField(played[0], 24), rateOf(2));
    QCOMPARE(wavField(played[1], 40), lengthOf(3));
    QCOMPARE(wavField(played[2], 40), lengthOf(4));
    QCOMPARE(wavField(played[2], 24), rateOf(4));
    QVERIFY(level->platform.shownMessages.empty());
}

void CarInfoFormTest::centreOfMassRoundTripsAsASignedOffset() {
    constexpr int kCgX = 15, kCgY = 16;
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    StyleSession& session = *level->session;
    const int asn = carWithDoors(session, 0);
    {
        CarInfoForm form(session, level->platform, asn);
        typeInto(form.box(kCgY), "-6");
        QCOMPARE(form.box(kCgY)->text(), QString("-6"));
        // Inside the box's limits but not in the byte the game reads: refused, never wrapped.
        typeInto(form.box(kCgX), "-200");
        QCOMPARE(form.box(kCgX)->text(), QString("-20"));
        QCOMPARE(form.fieldMark(kCgX), QString("refused"));
        QCOMPARE(form.fieldStatus()->text(),
                 QString("CG_X: -200 is refused: the game reads cx as one signed byte (-128 to "
                         "127): -200 would be read as 56; the box keeps -20"));
        QVERIFY(level->platform.messageTexts().empty());
        typeInto(form.box(kCgX), "-128");
        form.accept();
    }
    QCOMPARE(int{session.cars.find(asn)->info.cy}, -6);
    QCOMPARE(int{session.cars.find(asn)->info.cx}, -128);
    QCOMPARE(saveChanges(session, level->platform).result, SaveResult::Saved);

    // The stored bytes are the game's signed bytes; opened again, the editor shows -6.
    const std::filesystem::path style = session.style.path;
    const auto seek = static_cast<std::streamoff>(session.cars.find(asn)->fileSeek - 1);
    std::ifstream in(style, std::ios::binary);
    in.seekg(seek + 118);
    char bytes[2] = {};
    in.read(bytes, 2);
    QCOMPARE(static_cast<unsigned char>(bytes[0]), static_cast<unsigned char>(0x80));
    QCOMPARE(static_cast<unsigned char>(bytes[1]), static_cast<unsigned char>(0xFA));
    AppOptions options = session.options;
    level->session = std::make_unique<StyleSession>(options);
    prepareStyle(level->session->style, style, kLoadSprites);
    QCOMPARE(initHeader(*level->session, level->platform, standardLoaders()), LoadOutcome::Loaded);
    CarInfoForm again(*level->session, level->platform, asn);
    QCOMPARE(again.box(kCgY)->text(), QString("-6"));
    QCOMPARE(again.box(kCgX)->text(), QString("-128"));
}

void CarInfoFormTest::aNameTheSaveWouldDropIsRefusedOnClosing() {
    auto level = loadSample("STYLE001.G24");
    QVERIFY(level);
    StyleSession& session = *level->session;
    const int asn = carWithDoors(session, 0);
    const int model = session.cars.find(asn)->info.model;
    const std::string old = session.cars.find(asn)->name;
    // ENGLISH.FXT without the model's entry: the save would drop the name.
    session.names.keys[static_cast<std::size_t>(model)].clear();
    {
        CarInfoForm form(session, level->platform, asn);
        typeInto(form.box(kWidthBox), "30");
        typeInto(form.box(kNameBox), "Lost Name");
        form.accept();
    }
    QCOMPARE(session.cars.find(asn)->name, old);
    QVERIFY(!session.style.gCarNamesChanged);
    QCOMPARE(int{session.cars.find(asn)->info.width}, 30); // the record is kept
    const std::vector<std::string> shown = level->platform.messageTexts();
    QVERIFY(!shown.empty());
    QVERIFY2(shown.back().find("Model Name \"Lost Name\": ENGLISH.FXT has no entry for model " +
                               std::to_string(model) + "; its name cannot be saved") !=
                 std::string::npos,
             shown.back().c_str());
}

QTEST_MAIN(CarInfoFormTest)
#include "car_info_form_test.moc"
