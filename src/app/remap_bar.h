#pragma once
// ImageBar: where the selected remap's hue, lightness and saturation stand, one scale each with a
// pointer and the value written over it. Hue runs round the colour circle (0..360 degrees);
// lightness and saturation run from -100 to +100 percent. Pressing or dragging on a scale moves
// its pointer there and reports the new value.

#include <QWidget>

#include <array>

namespace torquil {

class RemapBar : public QWidget {
    Q_OBJECT
public:
    explicit RemapBar(QWidget* parent = nullptr);

    void setValues(int hue, int lightness, int saturation);
    // Fraction of the scale's width at which pointer i (0 hue, 1 lightness, 2 saturation) stands.
    [[nodiscard]] double pointerFraction(int i) const;
    [[nodiscard]] int value(int i) const { return values_[static_cast<std::size_t>(i)]; }
    // The scale (0..2) under a point and the value a point's x stands for on scale i.
    [[nodiscard]] static int scaleAt(int y);
    [[nodiscard]] int valueAt(int i, int x) const;

    [[nodiscard]] QSize sizeHint() const override { return {260, 3 * kRowHeight + 4}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {160, 3 * kRowHeight + 4}; }

signals:
    // The user moved pointer i (0 hue, 1 lightness, 2 saturation) to a value.
    void valueDragged(int i, int value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void dragTo(int x);
    int dragging_ = -1; // the scale being dragged
    static constexpr int kRowHeight = 32;
    std::array<int, 3> values_{};
};

} // namespace torquil
