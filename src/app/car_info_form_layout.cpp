// The pages of carInfoFrm: which boxes stand on which page, in the order the Tab key visits them.

#include "app/car_info_form.h"
#include "app/qt_text.h"

#include "app/car_sprite_image.h"
#include "app/door_view.h"
#include "app/remap_bar.h"
#include "app/remap_preview.h"
#include "session/session_io.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace torquil {

namespace {

constexpr int kBoxWidth = 110;
constexpr int kNameBoxWidth = 200;

// The page's own help button sits at its bottom right.
void addHelpRow(QVBoxLayout* layout, QPushButton* help) {
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(help);
    layout->addLayout(row);
}

} // namespace

void CarInfoForm::buildForm() {
    auto* layout = new QVBoxLayout(this);
    tabs_ = new QTabWidget(this);
    tabs_->setObjectName("SSTab1");
    layout->addWidget(tabs_);

    tabs_->addTab(buildFieldPage(SpritePage, {11, 12, 30, 0, 1, 2, 3, 42}), "Sprite");
    tabs_->addTab(buildDoorsPage(), "Doors");
    tabs_->addTab(buildFieldPage(SpecsPage, {14, 9, 8, 7, 6, 5, 4, 37}), "Specs");
    // "Pyhs" is the page's caption as modders know it.
    tabs_->addTab(buildFieldPage(PhysicsPage, {17, 18, 19, 20, 21, 16, 15}), "Pyhs");
    tabs_->addTab(buildFieldPage(SteerPage, {13, 10, 25, 26, 27}), "Steer");
    tabs_->addTab(buildFieldPage(BrakePage, {22, 23, 24, 28, 29}), "Brake");
    tabs_->addTab(buildSoundPage(), "Sound");
    tabs_->addTab(buildRemapPage(), "Remap");

    auto* buttons = new QHBoxLayout;
    auto* hint =
        new QLabel("Changes are kept when the editor closes; \"Save Changes\" writes them.", this);
    hint->setEnabled(false);
    // The focused box's caption and range, and the reports of its limits.
    fieldStatus_ = new QLabel(this);
    fieldStatus_->setObjectName("lblFieldStatus");
    fieldStatus_->setWordWrap(true);
    layout->addWidget(fieldStatus_);
    buttons->addWidget(hint);
    buttons->addStretch();
    cmdCancel_ = new QPushButton("&Close", this);
    cmdCancel_->setObjectName("cmdCancel");
    cmdCancel_->setAutoDefault(false);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
    buttons->addWidget(cmdCancel_);
    layout->addLayout(buttons);

    connect(tabs_, &QTabWidget::currentChanged, this, [this](int page) {
        if (page == DoorsPage && !entry_.doorList.empty())
            timer1_->start();
        else
            timer1_->stop();
        if (!pictDoors_->markVisible()) pictDoors_->setMarkVisible(true);
    });
    resize(620, 440);
}

QLineEdit* CarInfoForm::makeBox(int index, QWidget* parent) {
    const CarField* field = carField(index);
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(QString("txtBox%1").arg(index));
    edit->setFixedWidth(field->kind == FieldKind::Name ? kNameBoxWidth : kBoxWidth);
    edit->setToolTip(fieldToolTip(index));
    edit->installEventFilter(this);
    connect(edit, &QLineEdit::textChanged, this, [this, index] { txtBoxChange(index); });
    boxes_[static_cast<std::size_t>(index)] = edit;
    return edit;
}

QLabel* CarInfoForm::makeLabel(int index, QWidget* parent) {
    const CarField* field = carField(index);
    auto* text = new QLabel(qs(field->caption), parent);
    text->setObjectName(QString("Label1_%1").arg(index));
    if (!field->toolTip.empty()) text->setToolTip(qs(field->toolTip));
    labels_[static_cast<std::size_t>(index)] = text;
    return text;
}

QPushButton* CarInfoForm::makeHelpButton(Page page, QWidget* parent) {
    auto* help = new QPushButton("&Help", parent);
    help->setObjectName(QString("cmdHelp_%1").arg(page));
    help->setAutoDefault(false);
    connect(help, &QPushButton::clicked, this, [this, page] { cmdHelpClick(page); });
    helpButtons_[static_cast<std::size_t>(page)] = help;
    return help;
}

QWidget* CarInfoForm::buildFieldPage(Page page, std::initializer_list<int> indexes) {
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    auto* columns = new QHBoxLayout;
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    int row = 0;
    for (int index : indexes) {
        QLabel* text = makeLabel(index, widget);
        QLineEdit* edit = makeBox(index, widget);
        text->setBuddy(edit);
        grid->addWidget(text, row, 0);
        grid->addWidget(edit, row, 1, Qt::AlignLeft);
        ++row;
    }
    grid->setRowStretch(row, 1);
    columns->addLayout(grid);
    columns->addStretch();
    if (page == SpritePage) {
        // The car as the board shows it, for orientation while editing its size.
        auto* picture = new QLabel(widget);
        picture->setObjectName("spritePic");
        picture->setAlignment(Qt::AlignCenter);
        picture->setMinimumSize(160, 200);
        if (sprite_) {
            const QImage image = spriteImage(session_, *sprite_, baseColours_);
            const int scale = std::clamp(200 / std::max(image.height(), 1), 1, 4);
            picture->setPixmap(QPixmap::fromImage(
                image.scaled(image.size() * scale, Qt::IgnoreAspectRatio, Qt::FastTransformation)));
        }
        columns->addWidget(picture, 0, Qt::AlignTop);
    }
    layout->addLayout(columns, 1);
    addHelpRow(layout, makeHelpButton(page, widget));
    return widget;
}

QWidget* CarInfoForm::buildDoorsPage() {
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    doorFrame_ = new QGroupBox("Opening Doors", widget);
    doorFrame_->setObjectName("doorFrame");
    auto* frame = new QHBoxLayout(doorFrame_);

    pictDoors_ = new DoorView(doorFrame_);
    if (sprite_) pictDoors_->setSprite(spriteImage(session_, *sprite_, baseColours_));
    connect(pictDoors_, &DoorView::doorMoved, this, &CarInfoForm::doorMovedTo);

    auto* grid = new QGridLayout;
    // The record's length in the file is fixed by its door count, so the count is shown only.
    QLabel* doorsLabel = makeLabel(36, doorFrame_);
    QLineEdit* doors = makeBox(36, doorFrame_);
    doors->setReadOnly(true);
    doors->setFocusPolicy(Qt::NoFocus);
    doorsLabel->setBuddy(doors);
    grid->addWidget(doorsLabel, 0, 0);
    grid->addWidget(doors, 0, 1);

    auto* doorLabel = new QLabel("Door:", doorFrame_);
    txtBoxD_ = new QLineEdit(doorFrame_);
    txtBoxD_->setObjectName("txtBoxD");
    txtBoxD_->setReadOnly(true);
    txtBoxD_->setFocusPolicy(Qt::NoFocus);
    txtBoxD_->setFixedWidth(kBoxWidth);
    grid->addWidget(doorLabel, 1, 0);
    grid->addWidget(txtBoxD_, 1, 1);

    doorScroll_ = new QScrollBar(Qt::Horizontal, doorFrame_);
    doorScroll_->setObjectName("DoorScroll");
    doorScroll_->setToolTip("Choose the door to edit");
    doorScroll_->setFocusPolicy(Qt::StrongFocus);
    doorScroll_->setRange(0, std::max(0, static_cast<int>(entry_.doorList.size()) - 1));
    doorScroll_->setPageStep(1);
    doorScroll_->setEnabled(entry_.doorList.size() > 1);
    doorScroll_->setFixedWidth(kBoxWidth);
    connect(doorScroll_, &QScrollBar::valueChanged, this, &CarInfoForm::showDoor);
    grid->addWidget(doorScroll_, 2, 1);

    for (int index = 43, row = 3; index <= 46; ++index, ++row) {
        QLabel* text = makeLabel(index, doorFrame_);
        QLineEdit* edit = makeBox(index, doorFrame_);
        edit->setEnabled(!entry_.doorList.empty());
        text->setBuddy(edit);
        grid->addWidget(text, row, 0);
        grid->addWidget(edit, row, 1);
    }
    grid->setRowStretch(7, 1);
    frame->addWidget(pictDoors_, 1);
    frame->addLayout(grid);
    layout->addWidget(doorFrame_, 1);

    timer1_ = new QTimer(this);
    timer1_->setObjectName("Timer1");
    timer1_->setInterval(400);
    connect(timer1_, &QTimer::timeout, this, &CarInfoForm::timerTick);

    addHelpRow(layout, makeHelpButton(DoorsPage, widget));
    return widget;
}

QWidget* CarInfoForm::buildSoundPage() {
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    // The three sounds a modder wants to hear: the engine (looped a little, as it runs on), the
    // horn, and the sound of the car's sound function.
    struct Play {
        int box, repeat;
        const char* caption;
    };
    constexpr Play kPlays[] = {
        {31, 3, "Play &Engine"}, {33, 1, "Play H&orn"}, {34, 1, "Play Sound &Function"}};
    int button = 0;
    for (int index = 31, row = 0; index <= 35; ++index, ++row) {
        QLabel* text = makeLabel(index, widget);
        QLineEdit* edit = makeBox(index, widget);
        text->setBuddy(edit);
        grid->addWidget(text, row, 0);
        grid->addWidget(edit, row, 1);
        for (const Play& play : kPlays) {
            if (play.box != index) continue;
            auto* iplay =
                new QPushButton(style()->standardIcon(QStyle::SP_MediaPlay), play.caption, widget);
            iplay->setObjectName(QString("IPlay_%1").arg(button++));
            iplay->setAutoDefault(false);
            iplay->setToolTip("Plays the sound number in the box from the level's sound bank");
            const int repeat = play.repeat;
            connect(iplay, &QPushButton::clicked, this,
                    [this, index, repeat] { playSoundOfBox(index, repeat); });
            grid->addWidget(iplay, row, 2);
            auto* save = new QPushButton("Save as WAV...", widget);
            save->setObjectName(QString("cmdSaveWav_%1").arg(button - 1));
            save->setAutoDefault(false);
            save->setToolTip("Writes the sound number in the box to a WAV file");
            connect(save, &QPushButton::clicked, this,
                    [this, index, repeat] { saveSoundOfBox(index, repeat); });
            grid->addWidget(save, row, 3);
            auto* replace = new QPushButton("Replace...", widget);
            replace->setObjectName(QString("cmdReplaceSound_%1").arg(button - 1));
            replace->setAutoDefault(false);
            replace->setToolTip("Replaces the sound number in the box with a recording (WAV, "
                                "FLAC, Ogg) and saves the level's sound bank");
            connect(replace, &QPushButton::clicked, this,
                    [this, index] { replaceSound(soundNumberOfBox(index)); });
            grid->addWidget(replace, row, 4);
        }
    }
    grid->setColumnStretch(5, 1);
    layout->addLayout(grid);
    layout->addWidget(buildSoundBankBox(widget), 1);
    soundState_ = new QLabel(widget);
    soundState_->setObjectName("lblSoundState");
    soundState_->setWordWrap(true);
    layout->addWidget(soundState_);
    refreshSoundState();
    addHelpRow(layout, makeHelpButton(SoundPage, widget));
    return widget;
}

QWidget* CarInfoForm::buildRemapPage() {
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    auto* columns = new QHBoxLayout;

    auto* listColumn = new QVBoxLayout;
    auto* tableLabel = new QLabel("ReMap Table:", widget);
    remapList_ = new QListWidget(widget);
    remapList_->setObjectName("RemapList");
    const QString prefix = session_.style.gIs24Bit ? "24bit Remap:" : "8bit Remap:";
    for (int i = 0; i < kRemapCount; ++i) remapList_->addItem(prefix + QString::number(i));
    remapList_->setFixedWidth(130);
    tableLabel->setBuddy(remapList_);
    connect(remapList_, &QListWidget::currentRowChanged, this, &CarInfoForm::remapListClick);
    listColumn->addWidget(tableLabel);
    listColumn->addWidget(remapList_, 1);
    columns->addLayout(listColumn);

    auto* pictureColumn = new QVBoxLayout;
    remapPic_ = new RemapPreview(widget);
    remapInUse_ = new QLabel("ALREADY IN USE", widget);
    remapInUse_->setObjectName("LRemapInUse");
    remapInUse_->setStyleSheet("color: #c01818; font-weight: bold;");
    remapInUse_->setAlignment(Qt::AlignCenter);
    // Keep the place of the label so that the picture does not jump when it comes and goes.
    QSizePolicy keep = remapInUse_->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    remapInUse_->setSizePolicy(keep);
    pictureColumn->addWidget(remapPic_, 1);
    pictureColumn->addWidget(remapInUse_);
    columns->addLayout(pictureColumn, 1);

    auto* frames = new QVBoxLayout;
    auto* remap24Frame = new QGroupBox("24bit Remap", widget);
    remap24Frame->setObjectName("remap24Frame");
    auto* grid24 = new QGridLayout(remap24Frame);
    for (int index = 38, row = 0; index <= 40; ++index, ++row) {
        QLabel* text = makeLabel(index, remap24Frame);
        QLineEdit* edit = makeBox(index, remap24Frame);
        edit->setFixedWidth(70);
        text->setBuddy(edit);
        grid24->addWidget(text, row, 0);
        grid24->addWidget(edit, row, 1);
    }
    imageBar_ = new RemapBar(remap24Frame);
    // Dragging a pointer types its value into the box, which stores it like a typed value.
    connect(imageBar_, &RemapBar::valueDragged, this,
            [this](int i, int value) { box(38 + i)->setText(QString::number(value)); });
    grid24->addWidget(imageBar_, 3, 0, 1, 2);
    frames->addWidget(remap24Frame);

    auto* remap8Frame = new QGroupBox("8bit Remap", widget);
    remap8Frame->setObjectName("remap8Frame");
    auto* grid8 = new QGridLayout(remap8Frame);
    QLabel* indexLabel = makeLabel(41, remap8Frame);
    QLineEdit* index = makeBox(41, remap8Frame);
    index->setFixedWidth(70);
    indexLabel->setBuddy(index);
    grid8->addWidget(indexLabel, 0, 0);
    grid8->addWidget(index, 0, 1);
    grid8->setColumnStretch(2, 1);
    frames->addWidget(remap8Frame);
    frames->addStretch();
    columns->addLayout(frames);
    layout->addLayout(columns, 1);

    for (std::size_t i = 0; i < colorationLabels_.size(); ++i) {
        colorationLabels_[i] = new QLabel(widget);
        colorationLabels_[i]->setObjectName(QString("LColoration_%1").arg(i));
        layout->addWidget(colorationLabels_[i]);
    }
    addHelpRow(layout, makeHelpButton(RemapPage, widget));
    return widget;
}

} // namespace torquil
