#include "app/delta_pic_form.h"

#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace torquil {

namespace {
constexpr int kLargest = 768;     // the enlarged picture stays under this on its longer side
constexpr int kStripHeight = 128; // frames of the strip are enlarged up to this height
constexpr int kStripGap = 6;      // between frames of the strip
constexpr int kNumberHeight = 16; // the band under each frame with its number
constexpr int kFrameMilliseconds = 400;
} // namespace

DeltaPicForm::DeltaPicForm(const QImage& picture, const QString& title, const QString& toolTip,
                           QWidget* parent)
    : QDialog(parent) {
    setObjectName("DeltaPicFrm");
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);

    deltaPic_ = new QLabel(this);
    deltaPic_->setObjectName("deltaPic");
    deltaPic_->setToolTip(toolTip);
    setPicture(picture);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(deltaPic_);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

DeltaPicForm::DeltaPicForm(const std::vector<QImage>& frames, const QString& title, QWidget* parent)
    : QDialog(parent), frames_(frames) {
    setObjectName("DeltaPicFrm");
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    if (frames_.empty()) frames_.emplace_back(1, 1, QImage::Format_RGB32);

    buildStrip();
    auto* stripLabel = new QLabel(this);
    stripLabel->setObjectName("deltaStrip");
    stripLabel->setPixmap(QPixmap::fromImage(strip_));
    stripLabel->setToolTip(tr("Every delta of the sprite, numbered from 0 as the door records and "
                              "torquil-cli count them"));
    auto* stripArea = new QScrollArea(this);
    stripArea->setObjectName("deltaStripArea");
    stripArea->setWidget(stripLabel);
    stripArea->setWidgetResizable(false);
    stripArea->setFixedHeight(strip_.height() + 24);
    stripArea->setMinimumWidth(std::min(strip_.width() + 4, 900));

    deltaPic_ = new QLabel(this);
    deltaPic_->setObjectName("deltaPic");
    deltaPic_->setToolTip(tr("The delta shown enlarged"));

    frameLabel_ = new QLabel(this);
    frameLabel_->setObjectName("frameLabel");
    auto* back = new QPushButton(tr("< &Back"), this);
    back->setObjectName("previousDelta");
    auto* next = new QPushButton(tr("&Next >"), this);
    next->setObjectName("nextDelta");
    playButton_ = new QPushButton(tr("&Play"), this);
    playButton_->setObjectName("playDeltas");
    playButton_->setCheckable(true);
    timer_ = new QTimer(this);
    timer_->setInterval(kFrameMilliseconds);
    connect(back, &QPushButton::clicked, this, [this] { stepBack(); });
    connect(next, &QPushButton::clicked, this, [this] { stepForward(); });
    connect(playButton_, &QPushButton::toggled, this, [this](bool on) { setPlaying(on); });
    connect(timer_, &QTimer::timeout, this, [this] { stepForward(); });

    auto* buttons = buttons_ = new QHBoxLayout;
    buttons->addWidget(back);
    buttons->addWidget(frameLabel_, 1, Qt::AlignCenter);
    buttons->addWidget(next);
    buttons->addWidget(playButton_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(stripArea);
    layout->addWidget(deltaPic_, 0, Qt::AlignHCenter);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    showFrame(0);
}

void DeltaPicForm::offerDeltaEdits(std::function<void()> add, std::function<void(int)> remove) {
    if (!buttons_) return;
    auto* addButton = new QPushButton(tr("&Add Delta"), this);
    addButton->setObjectName("addDelta");
    addButton->setToolTip(tr("A new delta at the end: a copy of the car to draw on"));
    auto* removeButton = new QPushButton(tr("&Remove Delta"), this);
    removeButton->setObjectName("removeDelta");
    removeButton->setToolTip(tr("Removes the delta shown"));
    connect(addButton, &QPushButton::clicked, this, [add] { add(); });
    connect(removeButton, &QPushButton::clicked, this, [this, remove] { remove(current_); });
    buttons_->addWidget(addButton);
    buttons_->addWidget(removeButton);
}

void DeltaPicForm::offerPaintEdit(std::function<void()> edit) {
    if (!buttons_) return;
    auto* button = new QPushButton(tr("Edit in &Paint Program"), this);
    button->setObjectName("editInPaint");
    button->setToolTip(tr("Opens the delta set as one picture in the paint program (Ctrl+E); "
                          "each saved version is offered for import"));
    connect(button, &QPushButton::clicked, this, [edit] { edit(); });
    auto* shortcut = new QShortcut(QKeySequence(tr("Ctrl+E")), this);
    connect(shortcut, &QShortcut::activated, button, &QPushButton::click);
    buttons_->addWidget(button);
}

void DeltaPicForm::setPicture(const QImage& picture) {
    framed_ = QImage(picture.width() + 2, picture.height() + 2, QImage::Format_RGB32);
    framed_.fill(palette().color(QPalette::Window));
    {
        QPainter painter(&framed_);
        painter.drawImage(1, 1, picture);
    }
    scale_ = std::clamp(kLargest / std::max({framed_.width(), framed_.height(), 1}), 1, 4);
    // Square pixels: a plain scale without smoothing.
    deltaPic_->setPixmap(QPixmap::fromImage(
        framed_.scaled(framed_.size() * scale_, Qt::IgnoreAspectRatio, Qt::FastTransformation)));
    deltaPic_->setFixedSize(framed_.size() * scale_);
}

QRect DeltaPicForm::stripFrameRect(int index) const {
    const QSize size = frames_.front().size() * stripScale_;
    return {kStripGap + index * (size.width() + kStripGap), kStripGap, size.width(), size.height()};
}

void DeltaPicForm::buildStrip() {
    const QSize frame = frames_.front().size();
    stripScale_ = std::clamp(kStripHeight / std::max(frame.height(), 1), 1, 2);
    const QRect last = stripFrameRect(frameCount() - 1);
    strip_ = QImage(last.right() + 1 + kStripGap, last.bottom() + 1 + kNumberHeight,
                    QImage::Format_RGB32);
    strip_.fill(palette().color(QPalette::Window));
    QPainter painter(&strip_);
    painter.setPen(palette().color(QPalette::WindowText));
    for (int i = 0; i < frameCount(); ++i) {
        const QRect r = stripFrameRect(i);
        painter.drawImage(r.topLeft(),
                          frames_[static_cast<std::size_t>(i)].scaled(
                              r.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation));
        painter.drawText(QRect(r.left(), r.bottom() + 1, r.width(), kNumberHeight), Qt::AlignCenter,
                         QString::number(i));
    }
}

void DeltaPicForm::showFrame(int index) {
    if (frames_.empty() || !frameLabel_) return;
    current_ = ((index % frameCount()) + frameCount()) % frameCount();
    setPicture(frames_[static_cast<std::size_t>(current_)]);
    // Numbered from 0, as the delta store and the door records count deltas.
    frameLabel_->setText(tr("Delta %1 (0 to %2)").arg(current_).arg(frameCount() - 1));
}

void DeltaPicForm::stepForward() {
    showFrame(current_ + 1);
}

void DeltaPicForm::stepBack() {
    showFrame(current_ - 1);
}

void DeltaPicForm::setPlaying(bool playing) {
    if (!timer_) return;
    if (playing)
        timer_->start();
    else
        timer_->stop();
    if (playButton_->isChecked() != playing) playButton_->setChecked(playing);
    playButton_->setText(playing ? tr("&Stop") : tr("&Play"));
}

bool DeltaPicForm::isPlaying() const {
    return timer_ && timer_->isActive();
}

} // namespace torquil
