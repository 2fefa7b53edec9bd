#pragma once
// RemapPic: the car's sprite painted in the colours of the selected remap, enlarged, and for an
// 8-bit remap a swatch of its palette colour.

#include <QColor>
#include <QImage>
#include <QWidget>

#include <optional>

namespace torquil {

class RemapPreview : public QWidget {
    Q_OBJECT
public:
    explicit RemapPreview(QWidget* parent = nullptr);

    void setPicture(const QImage& sprite, std::optional<QColor> swatch = std::nullopt);
    [[nodiscard]] const QImage& picture() const { return sprite_; }
    [[nodiscard]] std::optional<QColor> swatch() const { return swatch_; }

    [[nodiscard]] QSize sizeHint() const override { return {200, 200}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {120, 120}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage sprite_;
    std::optional<QColor> swatch_;
};

} // namespace torquil
