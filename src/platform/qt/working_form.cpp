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
    maximum_ = maximum > 0 ? maximum : 0;
    value_ = 0;
    showProgress();
    if (!isVisible()) {
        placeOverOwner();
        show();
    }
    if (letEventsRun)
        letEventsRun();
    else
        QCoreApplication::processEvents();
}

void WorkingForm::setText(const QString& text) {
    text_->setText(text);
}

void WorkingForm::setMaximum(int maximum) {
    maximum_ = maximum > 0 ? maximum : 0;
    if (paint_.takeTurn()) showProgress();
}

void WorkingForm::setValue(int value) {
    // Some loops report past their announced maximum (an estimate): grow the bar instead.
    value_ = value < 0 ? 0 : value;
    if (value_ > maximum_) maximum_ = value_;
    if (paint_.takeTurn()) showProgress();
}

void WorkingForm::showProgress() {
    bar_->setRange(0, maximum_);
    bar_->setValue(value_);
}

QString WorkingForm::text() const {
    return text_->text();
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
