#include "app/remap_bar.h"

#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace torquil {

namespace {
constexpr int kLabelWidth = 14; // "H", "L", "S" before each scale
constexpr int kScaleHeight = 10;
constexpr const char* kLetters[3] = {"H", "L", "S"};
constexpr const char* kNames[3] = {"Hue", "Lightness", "Saturation"};
} // namespace

RemapBar::RemapBar(QWidget* parent) : QWidget(parent) {
    setObjectName("ImageBar");
    setToolTip("Hue, lightness and saturation of the selected remap");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
}

int RemapBar::scaleAt(int y) {
    return std::clamp((y - 2) / kRowHeight, 0, 2);
}

int RemapBar::valueAt(int i, int x) const {
    const int left = kLabelWidth + 6, right = width() - 6;
    const double f =
        std::clamp((x - left) / static_cast<double>(std::max(right - left, 1)), 0.0, 1.0);
    if (i == 0) return static_cast<int>(std::lround(f * 360.0)) % 360;
    return static_cast<int>(std::lround(f * 200.0)) - 100;
}

void RemapBar::dragTo(int x) {
    if (dragging_ < 0) return;
    const int v = valueAt(dragging_, x);
    if (v == values_[static_cast<std::size_t>(dragging_)]) return;
    values_[static_cast<std::size_t>(dragging_)] = v;
    update();
    emit valueDragged(dragging_, v);
}

void RemapBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    dragging_ = scaleAt(event->position().toPoint().y());
    dragTo(event->position().toPoint().x());
}

void RemapBar::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) dragTo(event->position().toPoint().x());
}

void RemapBar::mouseReleaseEvent(QMouseEvent* event) {
    dragTo(event->position().toPoint().x());
    dragging_ = -1;
}

void RemapBar::setValues(int hue, int lightness, int saturation) {
    values_ = {hue, lightness, saturation};
    update();
}

double RemapBar::pointerFraction(int i) const {
    if (i == 0) return ((values_[0] % 360) + 360) % 360 / 360.0;
    return std::clamp((values_[static_cast<std::size_t>(i)] + 100) / 200.0, 0.0, 1.0);
}

void RemapBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int left = kLabelWidth + 6, right = width() - 6;
    const int span = std::max(right - left, 1);
    const QColor hueColour = QColor::fromHsvF(static_cast<float>(pointerFraction(0)), 1.0f, 1.0f);

    for (int i = 0; i < 3; ++i) {
        const int top = 2 + i * kRowHeight + 12; // room for the value over the pointer
        const QRect scale(left, top, span, kScaleHeight);
        QLinearGradient gradient(scale.topLeft(), scale.topRight());
        if (i == 0) {
            for (int k = 0; k <= 6; ++k)
                gradient.setColorAt(k / 6.0,
                                    QColor::fromHsvF(static_cast<float>(k % 6) / 6.0f, 1.0f, 1.0f));
        } else if (i == 1) {
            gradient.setColorAt(0, Qt::black);
            gradient.setColorAt(1, Qt::white);
        } else {
            gradient.setColorAt(0, QColor(0x80, 0x80, 0x80));
            gradient.setColorAt(1, hueColour);
        }
        painter.fillRect(scale, gradient);
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(scale);

        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(QRect(0, top - 3, kLabelWidth, kScaleHeight + 6), Qt::AlignCenter,
                         kLetters[i]);

        // The Pointer mark under the scale and its LabelOver value above it.
        const int x = left + static_cast<int>(pointerFraction(i) * span);
        QPainterPath pointer;
        pointer.moveTo(x, top + kScaleHeight - 3);
        pointer.lineTo(x - 5, top + kScaleHeight + 6);
        pointer.lineTo(x + 5, top + kScaleHeight + 6);
        pointer.closeSubpath();
        painter.fillPath(pointer, palette().color(QPalette::WindowText));
        const QString over =
            QString("%1 %2").arg(kNames[i]).arg(values_[static_cast<std::size_t>(i)]);
        const int textWidth = fontMetrics().horizontalAdvance(over);
        const int tx = std::clamp(x - textWidth / 2, left, std::max(left, right - textWidth));
        painter.drawText(QPoint(tx, top - 2), over);
    }
}

} // namespace torquil
