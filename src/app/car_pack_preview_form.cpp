#include "app/car_pack_preview_form.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QScrollArea>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cstring>

namespace torquil {

namespace {

constexpr const char* kIndent = "  ";
constexpr int kPictureSide = 96; // the larger side of a sprite's picture on screen, at most

QLabel* pictureLabel(const QImage& image, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(QStringLiteral("spritePicture"));
    // Small sprites are enlarged by a whole factor so that their pixels stay sharp.
    const int side = std::max(image.width(), image.height());
    const int scale = side > 0 ? std::clamp(kPictureSide / side, 1, 4) : 1;
    QImage shown = image.scaled(image.size() * scale);
    if (side * scale > kPictureSide)
        shown = image.scaled(kPictureSide, kPictureSide, Qt::KeepAspectRatio);
    label->setPixmap(QPixmap::fromImage(shown));
    label->setFixedSize(shown.size());
    return label;
}

} // namespace

CarPackPreviewForm::CarPackPreviewForm(const CarPackPreview& preview, const QString& packName,
                                       Purpose purpose, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("carPackPreview"));
    setWindowTitle(QStringLiteral("GC3 Car Pack - ") + packName);
    const std::vector<std::string> lines = carPackPreviewLines(preview);

    headline_ = new QLabel(this);
    headline_->setObjectName(QStringLiteral("headline"));
    QFont bold = headline_->font();
    bold.setBold(true);
    headline_->setFont(bold);
    headline_->setWordWrap(true);
    if (!lines.empty()) headline_->setText(QString::fromStdString(lines.front()));

    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("changes"));
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(true);
    list_->setSelectionMode(QAbstractItemView::NoSelection);
    // Every line whole: long lines scroll sideways instead of being cut with an ellipsis.
    list_->setTextElideMode(Qt::ElideNone);
    list_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list_->header()->setStretchLastSection(false);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    QTreeWidgetItem* group = nullptr;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const QString line = QString::fromStdString(lines[i]);
        if (line.startsWith(QLatin1String(kIndent)) && group) {
            new QTreeWidgetItem(group, QStringList(line.mid(2)));
            continue;
        }
        auto* item = new QTreeWidgetItem(list_, QStringList(line));
        if (line.endsWith(QLatin1Char(':'))) {
            QFont font = item->font(0);
            font.setBold(true);
            item->setFont(0, font);
            group = item;
        } else {
            group = nullptr;
        }
    }
    list_->expandAll();
    if (!preview.forOpenLevel()) headline_->setStyleSheet(QStringLiteral("color: #a00000"));

    buttons_ = new QDialogButtonBox(this);
    if (purpose == Purpose::Apply) {
        buttons_->addButton(QStringLiteral("Apply"), QDialogButtonBox::AcceptRole)
            ->setObjectName(QStringLiteral("apply"));
        buttons_->addButton(QDialogButtonBox::Cancel);
    } else {
        buttons_->addButton(QDialogButtonBox::Close)->setObjectName(QStringLiteral("close"));
    }
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(headline_);
    if (purpose == Purpose::Apply) {
        auto* question =
            new QLabel(QStringLiteral("Apply this car pack to the open level? The style file and "
                                      "ENGLISH.FXT are changed; their .bak copies are kept."),
                       this);
        question->setWordWrap(true);
        layout->addWidget(question);
    }
    layout->addWidget(list_, 1);
    if (QWidget* pictures = picturesPanel(preview)) layout->addWidget(pictures);
    layout->addWidget(buttons_);
    resize(560, pictures_.isEmpty() ? 420 : 560);
}

QImage CarPackPreviewForm::imageOf(const CarPackPreview::Picture& picture) {
    if (picture.empty() || picture.width <= 0 || picture.height <= 0 ||
        picture.argb.size() != static_cast<std::size_t>(picture.width) * picture.height)
        return {};
    QImage image(picture.width, picture.height, QImage::Format_ARGB32);
    const auto rowBytes = static_cast<std::size_t>(picture.width) * sizeof(std::uint32_t);
    for (int y = 0; y < picture.height; ++y)
        std::memcpy(image.scanLine(y),
                    picture.argb.data() + static_cast<std::size_t>(y) * picture.width, rowBytes);
    return image;
}

// Each repainted sprite by name, its picture before the pack and after it, side by side.
QWidget* CarPackPreviewForm::picturesPanel(const CarPackPreview& preview) {
    auto* inner = new QWidget;
    auto* grid = new QGridLayout(inner);
    grid->setHorizontalSpacing(12);
    grid->addWidget(new QLabel(QStringLiteral("Sprite"), inner), 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Before"), inner), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("After"), inner), 0, 2);
    int row = 1;
    for (const CarPackPreview::Sprite& s : preview.sprites) {
        const QImage before = imageOf(s.before), after = imageOf(s.after);
        if (before.isNull() || after.isNull()) continue;
        QString caption = QStringLiteral("Sprite %1").arg(s.asn);
        if (!s.car.empty()) caption += QStringLiteral(" (%1)").arg(QString::fromStdString(s.car));
        caption += QStringLiteral("\npage %1").arg(s.page);
        grid->addWidget(new QLabel(caption, inner), row, 0, Qt::AlignTop);
        grid->addWidget(pictureLabel(before, inner), row, 1, Qt::AlignTop | Qt::AlignLeft);
        grid->addWidget(pictureLabel(after, inner), row, 2, Qt::AlignTop | Qt::AlignLeft);
        pictures_ << before << after;
        ++row;
    }
    if (row == 1) {
        delete inner;
        return nullptr;
    }
    grid->setColumnStretch(3, 1);
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("spritePictures"));
    scroll->setWidget(inner);
    scroll->setWidgetResizable(true);
    scroll->setMinimumHeight(std::min(inner->sizeHint().height() + 4, 2 * kPictureSide + 40));
    return scroll;
}

QStringList CarPackPreviewForm::listedLines() const {
    QStringList out;
    for (int i = 0; i < list_->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* top = list_->topLevelItem(i);
        out << top->text(0);
        for (int c = 0; c < top->childCount(); ++c)
            out << QLatin1String(kIndent) + top->child(c)->text(0);
    }
    return out;
}

QString CarPackPreviewForm::headline() const {
    return headline_->text();
}

void CarPackPreviewForm::confirm() {
    accept();
}

} // namespace torquil
