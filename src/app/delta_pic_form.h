#pragma once
// DeltaPicFrm: a small window that shows one sprite-sized picture (a transparency mask, a delta)
// enlarged with square pixels. The picture area is the sprite plus a one-pixel border all round.

#include <QDialog>
#include <QImage>
#include <QString>

class QLabel;

namespace torquil {

class DeltaPicForm : public QDialog {
    Q_OBJECT
public:
    // `picture` is the sprite-sized image (width x height); the window shows it enlarged inside
    // a (width + 2) x (height + 2) area, with `toolTip` on the picture.
    DeltaPicForm(const QImage& picture, const QString& title, const QString& toolTip,
                 QWidget* parent = nullptr);

    int scale() const { return scale_; }
    // The (width + 2) x (height + 2) picture before enlarging.
    const QImage& framedPicture() const { return framed_; }

private:
    QLabel* deltaPic_ = nullptr;
    QImage framed_;
    int scale_ = 1;
};

} // namespace torquil
