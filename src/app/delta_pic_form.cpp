#include "app/delta_pic_form.h"

#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>

#include <algorithm>

namespace torquil {

namespace {
constexpr int kLargest = 768; // the enlarged picture stays under this on its longer side
} // namespace

DeltaPicForm::DeltaPicForm(const QImage& picture, const QString& title, const QString& toolTip,
                           QWidget* parent)
    : QDialog(parent) {
    setObjectName("DeltaPicFrm");
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);

    framed_ = QImage(picture.width() + 2, picture.height() + 2, QImage::Format_RGB32);
    framed_.fill(palette().color(QPalette::Window));
    {
        QPainter painter(&framed_);
        painter.drawImage(1, 1, picture);
    }
    scale_ = std::clamp(kLargest / std::max({framed_.width(), framed_.height(), 1}), 1, 4);

    deltaPic_ = new QLabel(this);
    deltaPic_->setObjectName("deltaPic");
    deltaPic_->setToolTip(toolTip);
    // Square pixels: a plain scale without smoothing.
    deltaPic_->setPixmap(QPixmap::fromImage(
        framed_.scaled(framed_.size() * scale_, Qt::IgnoreAspectRatio, Qt::FastTransformation)));
    deltaPic_->setFixedSize(framed_.size() * scale_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(deltaPic_);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

DeltaPicForm* DeltaPicForm::transparencyTest(const QImage& mask, QWidget* parent) {
    return new DeltaPicForm(mask, "Transparency test...",
                            "OK if you see a white shape in a red background.", parent);
}

QImage transparencyMask(const unsigned char* bytes, int width, int height, int stride) {
    QImage mask(std::max(width, 0), std::max(height, 0), QImage::Format_RGB32);
    constexpr QRgb kShape = 0xFFFFFFFF, kBackground = 0xFFB42828; // RGB 180, 40, 40
    for (int y = 0; y < mask.height(); ++y) {
        auto* out = reinterpret_cast<QRgb*>(mask.scanLine(y));
        const unsigned char* row = bytes + static_cast<std::ptrdiff_t>(y) * stride;
        for (int x = 0; x < mask.width(); ++x) out[x] = row[x] ? kShape : kBackground;
    }
    return mask;
}

} // namespace torquil
