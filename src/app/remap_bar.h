#pragma once
// ImageBar: where the selected remap's hue, lightness and saturation stand, one scale each with a
// pointer and the value written over it. Hue runs round the colour circle (0..360 degrees);
// lightness and saturation run from -100 to +100 percent.

#include <QWidget>

#include <array>

namespace torquil {

class RemapBar : public QWidget {
    Q_OBJECT
public:
    explicit RemapBar(QWidget* parent = nullptr);

    void setValues(int hue, int lightness, int saturation);
    // Fraction of the scale's width at which pointer i (0 hue, 1 lightness, 2 saturation) stands.
    double pointerFraction(int i) const;

    QSize sizeHint() const override { return {260, 3 * kRowHeight + 4}; }
    QSize minimumSizeHint() const override { return {160, 3 * kRowHeight + 4}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr int kRowHeight = 32;
    std::array<int, 3> values_{};
};

} // namespace torquil
