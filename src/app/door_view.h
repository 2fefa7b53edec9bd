#pragma once
// PictDoors: the car's sprite enlarged, with a mark where each opening door sits. Door positions
// (rpx, rpy) count in sprite pixels from the sprite's centre. A click, or the arrow keys, move
// the selected door; the form stores the new position.

#include "cars/car_info.h"

#include <QImage>
#include <QWidget>

#include <vector>

namespace torquil {

class DoorView : public QWidget {
    Q_OBJECT
public:
    explicit DoorView(QWidget* parent = nullptr);

    void setSprite(const QImage& sprite);
    void setDoors(const std::vector<DoorRec>& doors, int selected);
    // The selected door's mark blinks: the form's timer switches it on and off.
    void setMarkVisible(bool visible);
    [[nodiscard]] bool markVisible() const { return markVisible_; }

    // Widget point of a door position, and the door position under a widget point.
    [[nodiscard]] QPoint pointOf(int rpx, int rpy) const;
    [[nodiscard]] QPoint doorPositionAt(const QPoint& point) const;

    [[nodiscard]] QSize sizeHint() const override { return {360, 240}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {160, 120}; }

signals:
    // The user put the selected door at (rpx, rpy).
    void doorMoved(int rpx, int rpy);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] QRect pictureRect() const;
    [[nodiscard]] int scale() const;

    QImage sprite_;
    std::vector<DoorRec> doors_;
    int selected_ = -1;
    bool markVisible_ = true;
};

} // namespace torquil
