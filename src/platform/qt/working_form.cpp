#include "platform/qt/working_form.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace torquil {

WorkingForm::WorkingForm(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("workingFrm"));
    setModal(false);
    setWindowFlags(Qt::Tool | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
    setMinimumWidth(360);

    text_ = new QLabel(this);
    text_->setObjectName(QStringLiteral("lblText"));
    text_->setWordWrap(true);
    bar_ = new QProgressBar(this);
    bar_->setObjectName(QStringLiteral("ProgressBar1"));
    stop_ = new QPushButton(tr("&Stop"), this);
    stop_->setObjectName(QStringLiteral("cmdStop"));
    connect(stop_, &QPushButton::clicked, this, [this] { requestStop(); });

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(stop_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text_);
    layout->addWidget(bar_);
    layout->addLayout(buttons);
}

void WorkingForm::begin(const QString& title, const QString& text, int maximum) {
    stopRequested_ = false;
    setWindowTitle(title);
    text_->setText(text);
    bar_->setRange(0, maximum > 0 ? maximum : 0);
    bar_->setValue(0);
    if (!isVisible()) {
        placeOverOwner();
        show();
    }
    QCoreApplication::processEvents();
}

void WorkingForm::setText(const QString& text) {
    text_->setText(text);
}

void WorkingForm::setMaximum(int maximum) {
    bar_->setMaximum(maximum > 0 ? maximum : 0);
}

void WorkingForm::setValue(int value) {
    // Some loops report past their announced maximum (an estimate): grow the bar instead.
    if (value > bar_->maximum()) bar_->setMaximum(value);
    bar_->setValue(value < 0 ? 0 : value);
}

QString WorkingForm::text() const {
    return text_->text();
}
int WorkingForm::value() const {
    return bar_->value();
}
int WorkingForm::maximum() const {
    return bar_->maximum();
}

void WorkingForm::placeOverOwner() {
    adjustSize();
    if (!owner_ || !owner_->isVisible()) return;
    move(owner_->frameGeometry().center() - rect().center());
}

void WorkingProgress::open(const std::string& title, const std::string& text, int maximum) {
    form_.begin(QString::fromStdString(title), QString::fromStdString(text), maximum);
}

void WorkingProgress::setTitle(const std::string& title) {
    form_.setWindowTitle(QString::fromStdString(title));
}

void WorkingProgress::setText(const std::string& text) {
    form_.setText(QString::fromStdString(text));
}

} // namespace torquil
