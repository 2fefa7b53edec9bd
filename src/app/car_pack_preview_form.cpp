#include "app/car_pack_preview_form.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace torquil {

namespace {

constexpr const char* kIndent = "  ";

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
    layout->addWidget(buttons_);
    resize(560, 420);
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
