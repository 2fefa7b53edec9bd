#pragma once
// Edit > Settings: the program that pictures are edited in (Sprite > Edit in Paint Program).
// Empty means the desktop's default program for pictures.

#include <QDialog>

class QLineEdit;
class QSettings;

namespace torquil {

class SettingsForm : public QDialog {
    Q_OBJECT
public:
    // Shows the stored values; accept() stores them.
    SettingsForm(QSettings& settings, QWidget* parent = nullptr);

    QLineEdit* paintProgram() const { return paintProgram_; }
    void accept() override;

private:
    void browse();

    QSettings& settings_;
    QLineEdit* paintProgram_ = nullptr;
};

// The paint program stored in the settings (empty: the desktop's default).
QString storedPaintProgram(QSettings& settings);

} // namespace torquil
