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
    text_ = new QLabel(this);
    text_->setObjectName(QStringLiteral("lblExportNotice"));
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
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
    text_->setText(text);
    setToolTip(QDir::toNativeSeparators(folder));
    show();
}

} // namespace torquil
