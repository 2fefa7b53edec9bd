#include "app/export_notice.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QUrl>

namespace torquil {

ExportNotice::ExportNotice(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("exportNotice"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    text_ = new QLabel(this);
    text_->setObjectName(QStringLiteral("lblExportNotice"));
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // The label takes the width it is given; the text is shortened to fit (showText).
    text_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    text_->setMinimumWidth(160);
    openFolder_ = new QPushButton(tr("Open Folder"), this);
    openFolder_->setObjectName(QStringLiteral("btnOpenFolder"));
    openFolder_->setFlat(true);
    layout->addWidget(text_);
    layout->addWidget(openFolder_);
    connect(openFolder_, &QPushButton::clicked, this, [this] {
        if (openFolder)
            openFolder(folder_);
        else
            QDesktopServices::openUrl(QUrl::fromLocalFile(folder_));
    });
    hide();
}

void ExportNotice::showExport(const QString& what, const QString& file) {
    showWritten(tr("%1 exported to %2").arg(what, QDir::toNativeSeparators(file)),
                QFileInfo(file).absolutePath());
    file_ = file;
}

void ExportNotice::showWritten(const QString& text, const QString& folder) {
    file_.clear();
    folder_ = folder;
    fullText_ = text;
    setToolTip(text);
    show();
    showText();
}

void ExportNotice::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    showText();
}

void ExportNotice::showText() {
    text_->setText(text_->fontMetrics().elidedText(fullText_, Qt::ElideMiddle, text_->width()));
}

} // namespace torquil
