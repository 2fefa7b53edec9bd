#include "app/door_view.h"

#include "app/car_sprite_image.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace torquil {

namespace {
constexpr int kMargin = 20; // room around the car for doors that stand outside the sprite
constexpr int kMaxScale = 8;
constexpr int kMarkRadius = 5;
} // namespace

DoorView::DoorView(QWidget* parent) : QWidget(parent) {
    setObjectName("PictDoors");
    setFocusPolicy(Qt::StrongFocus);
    setToolTip("Click to place the selected door; arrow keys move it by one pixel");
    setAutoFillBackground(false);
}

void DoorView::setSprite(const QImage& sprite) {
    sprite_ = sprite;
    update();
}

void DoorView::setDoors(const std::vector<DoorRec>& doors, int selected) {
    doors_ = doors;
    selected_ = selected;
    update();
}

void DoorView::setMarkVisible(bool visible) {
    if (markVisible_ == visible) return;
    markVisible_ = visible;
    update();
}

QRect DoorView::pictureRect() const {
    const QSize size = sprite_.isNull() ? QSize(16, 32) : sprite_.size();
    return enlargedRect(size, rect().adjusted(kMargin, kMargin, -kMargin, -kMargin), kMaxScale);
}

int DoorView::scale() const {
    const QSize size = sprite_.isNull() ? QSize(16, 32) : sprite_.size();
    return std::max(1, pictureRect().width() / std::max(1, size.width()));
}

QPoint DoorView::pointOf(int rpx, int rpy) const {
    const QRect pic = pictureRect();
    const int s = scale();
    return {pic.x() + pic.width() / 2 + rpx * s, pic.y() + pic.height() / 2 + rpy * s};
}

QPoint DoorView::doorPositionAt(const QPoint& point) const {
    const QPoint centre = pointOf(0, 0);
    const double s = scale();
    return {static_cast<int>(std::lround((point.x() - centre.x()) / s)),
            static_cast<int>(std::lround((point.y() - centre.y()) / s))};
}

void DoorView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    const QRect pic = pictureRect();
    paintChecker(painter, pic);
    if (!sprite_.isNull()) painter.drawImage(pic, sprite_);
    painter.setPen(QPen(QColor(0x60, 0x60, 0x60), 1, Qt::DotLine));
    painter.drawRect(pic.adjusted(0, 0, -1, -1));

    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = 0; i < doors_.size(); ++i) {
        const bool selected = static_cast<int>(i) == selected_;
        if (selected && !markVisible_) continue;
        const QPoint at = pointOf(doors_[i].rpx, doors_[i].rpy);
        painter.setPen(QPen(selected ? QColor(0xE0, 0x20, 0x20) : QColor(0x20, 0x60, 0xE0), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(at, kMarkRadius, kMarkRadius);
        painter.drawLine(at - QPoint(kMarkRadius + 3, 0), at + QPoint(kMarkRadius + 3, 0));
        painter.drawLine(at - QPoint(0, kMarkRadius + 3), at + QPoint(0, kMarkRadius + 3));
        painter.drawText(at + QPoint(kMarkRadius + 3, -kMarkRadius - 1), QString::number(i + 1));
    }
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void DoorView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || selected_ < 0) return;
    const QPoint door = doorPositionAt(event->position().toPoint());
    emit doorMoved(door.x(), door.y());
}

void DoorView::keyPressEvent(QKeyEvent* event) {
    if (selected_ < 0 || selected_ >= static_cast<int>(doors_.size())) {
        QWidget::keyPressEvent(event);
        return;
    }
    const DoorRec& door = doors_[static_cast<std::size_t>(selected_)];
    int dx = 0, dy = 0;
    switch (event->key()) {
    case Qt::Key_Left:
        dx = -1;
        break;
    case Qt::Key_Right:
        dx = 1;
        break;
    case Qt::Key_Up:
        dy = -1;
        break;
    case Qt::Key_Down:
        dy = 1;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    emit doorMoved(door.rpx + dx, door.rpy + dy);
}

} // namespace torquil
