#pragma once
// frmSplash: the start-up picture, closed by its timer (2000 ms), a key or its OK button.

#include <QDialog>

class QTimer;

namespace torquil {

class SplashForm : public QDialog {
    Q_OBJECT
public:
    explicit SplashForm(QWidget* parent = nullptr);
    [[nodiscard]] QTimer* timer() const { return timer_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QTimer* timer_ = nullptr;
};

} // namespace torquil
