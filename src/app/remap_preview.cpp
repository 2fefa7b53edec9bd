#include "app/remap_preview.h"

#include "app/car_sprite_image.h"

#include <QPainter>

namespace torquil {

namespace {
constexpr int kMaxScale = 6;
constexpr int kSwatch = 28;
} // namespace

RemapPreview::RemapPreview(QWidget* parent) : QWidget(parent) {
    setObjectName("RemapPic");
    setToolTip("This area displays the new paint color of the car");
}

void RemapPreview::setPicture(const QImage& sprite, std::optional<QColor> swatch) {
    sprite_ = sprite;
    swatch_ = swatch;
    update();
}

void RemapPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    QRect area = rect().adjusted(6, 6, -6, -6);
    if (swatch_) {
        const QRect box(area.left(), area.top(), kSwatch, kSwatch);
        painter.fillRect(box, *swatch_);
        painter.setPen(palette().color(QPalette::Text));
        painter.drawRect(box.adjusted(0, 0, -1, -1));
        area.setLeft(box.right() + 6);
    }
    if (sprite_.isNull()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, "No sprite loaded for this car");
        return;
    }
    const QRect pic = enlargedRect(sprite_.size(), area, kMaxScale);
    paintChecker(painter, pic);
    painter.drawImage(pic, sprite_);
}

} // namespace torquil
