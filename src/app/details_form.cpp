#include "app/details_form.h"

#include "platform/qt/details_log.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTextStream>
#include <QVBoxLayout>

#include <algorithm>

namespace torquil {

DetailsForm::DetailsForm(DetailsLog& log, QWidget* parent)
    : QWidget(parent, Qt::Window), log_(log) {
    setObjectName(QStringLiteral("detailsFrm"));
    setWindowTitle(tr("Details"));
    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("List1"));
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setUniformItemSizes(true);
    QFont mono(QStringLiteral("monospace"));
    mono.setStyleHint(QFont::Monospace);
    list_->setFont(mono);
    list_->addItems(log.lines());

    auto* count = new QLabel(this);
    auto updateCount = [this, count] { count->setText(tr("%n line(s)", nullptr, list_->count())); };
    updateCount();

    auto* save = new QPushButton(tr("&Save..."), this);
    save->setObjectName(QStringLiteral("cmdSave"));
    auto* clear = new QPushButton(tr("C&lear"), this);
    clear->setObjectName(QStringLiteral("cmdClear"));
    auto* close = new QPushButton(tr("&Close"), this);
    close->setObjectName(QStringLiteral("cmdClose"));

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(count);
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(clear);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list_);
    layout->addLayout(buttons);
    resize(520, 560);

    connect(&log, &DetailsLog::lineAppended, this, [this, updateCount](const QString& line) {
        list_->addItem(line);
        if (isVisible()) list_->scrollToBottom();
        updateCount();
    });
    connect(&log, &DetailsLog::cleared, this, [this, updateCount] {
        list_->clear();
        updateCount();
    });
    connect(save, &QPushButton::clicked, this, &DetailsForm::saveAs);
    connect(clear, &QPushButton::clicked, &log, &DetailsLog::clear);
    connect(close, &QPushButton::clicked, this, &QWidget::hide);
}

QString DetailsForm::selectedText() const {
    QList<int> rows;
    for (const QListWidgetItem* item : list_->selectedItems()) rows << list_->row(item);
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (int row : rows) lines << list_->item(row)->text();
    return lines.join(QLatin1Char('\n'));
}

void DetailsForm::copySelection() const {
    QApplication::clipboard()->setText(selectedText());
}

bool DetailsForm::saveTo(const QString& file) const {
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Truncate)) return false;
    QTextStream stream(&out);
    for (int i = 0; i < list_->count(); ++i) stream << list_->item(i)->text() << '\n';
    stream.flush();
    return out.error() == QFile::NoError;
}

void DetailsForm::saveAs() {
    const QString file =
        QFileDialog::getSaveFileName(this, tr("Save Details"), QStringLiteral("details.txt"),
                                     tr("Text files (*.txt);;All files (*)"));
    if (file.isEmpty()) return;
    if (!saveTo(file)) log_.append(("Details not saved:" + file).toStdString());
}

void DetailsForm::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace torquil
