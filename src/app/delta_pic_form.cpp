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

} // namespace torquil
