#include "app/settings_form.h"

#include "app/paint_watch.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>

namespace torquil {

namespace {

QString paintProgramKey() {
    return QStringLiteral("%1/%2").arg(QLatin1String(kPaintSection),
                                       QLatin1String(kPaintProgramKey));
}

} // namespace

QString storedPaintProgram(QSettings& settings) {
    return settings.value(paintProgramKey()).toString();
}

SettingsForm::SettingsForm(QSettings& settings, QWidget* parent)
    : QDialog(parent), settings_(settings) {
    setObjectName(QStringLiteral("SettingsForm"));
    setWindowTitle(tr("Settings"));
    auto* grid = new QGridLayout(this);
    auto* label = new QLabel(tr("&Paint program:"), this);
    paintProgram_ = new QLineEdit(storedPaintProgram(settings), this);
    paintProgram_->setObjectName(QStringLiteral("paintProgram"));
    paintProgram_->setPlaceholderText(tr("the desktop's default program for pictures"));
    paintProgram_->setMinimumWidth(360);
    label->setBuddy(paintProgram_);
    auto* browseButton = new QPushButton(tr("&Browse..."), this);
    browseButton->setObjectName(QStringLiteral("browsePaintProgram"));
    connect(browseButton, &QPushButton::clicked, this, &SettingsForm::browse);
    auto* hint = new QLabel(tr("Sprite > Edit in Paint Program opens the sprite's picture in this "
                               "program.\nLeave it empty to use the desktop's default program for "
                               "pictures."),
                            this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SettingsForm::reject);
    grid->addWidget(label, 0, 0);
    grid->addWidget(paintProgram_, 0, 1);
    grid->addWidget(browseButton, 0, 2);
    grid->addWidget(hint, 1, 1, 1, 2);
    grid->addWidget(buttons, 2, 0, 1, 3);
}

void SettingsForm::accept() {
    const QString program = paintProgram_->text().trimmed();
    if (program.isEmpty())
        settings_.remove(paintProgramKey());
    else
        settings_.setValue(paintProgramKey(), program);
    settings_.sync();
    QDialog::accept();
}

void SettingsForm::browse() {
    const QString start = paintProgram_->text().trimmed();
    const QString chosen = QFileDialog::getOpenFileName(
        this, tr("Paint Program"), start.isEmpty() ? QString() : QFileInfo(start).absolutePath());
    if (!chosen.isEmpty()) paintProgram_->setText(chosen);
}

} // namespace torquil
