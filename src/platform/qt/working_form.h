#pragma once
// workingFrm: the small progress window of long loads and saves. It is not modal, so the main
// window keeps repainting; its Stop button sets the stop request that the loops test.

#include "platform/platform.h"

#include <QDialog>
#include <QPointer>

class QLabel;
class QProgressBar;
class QPushButton;

namespace torquil {

class WorkingForm : public QDialog {
    Q_OBJECT
public:
    explicit WorkingForm(QWidget* parent = nullptr);

    // Shows the form (centred on its owner) and clears the stop request.
    void begin(const QString& title, const QString& text, int maximum);
    void setText(const QString& text);
    void setMaximum(int maximum);
    void setValue(int value);
    void finish() { hide(); }

    bool stopRequested() const { return stopRequested_; }
    void requestStop() { stopRequested_ = true; }

    // The window it is centred on when shown.
    void setOwnerWindow(QWidget* owner) { owner_ = owner; }
    QString text() const;
    int value() const;
    int maximum() const;
    QPushButton* stopButton() const { return stop_; }

private:
    void placeOverOwner();

    QLabel* text_ = nullptr;
    QProgressBar* bar_ = nullptr;
    QPushButton* stop_ = nullptr;
    QPointer<QWidget> owner_;
    bool stopRequested_ = false;
};

// The core's view of the form.
class WorkingProgress : public ProgressSink {
public:
    explicit WorkingProgress(WorkingForm& form) : form_(form) {}
    void open(const std::string& title, const std::string& text, int maximum) override;
    void setTitle(const std::string& title) override;
    void setText(const std::string& text) override;
    void setMaximum(int maximum) override { form_.setMaximum(maximum); }
    void setValue(int value) override { form_.setValue(value); }
    void close() override { form_.finish(); }
    bool stopRequested() const override { return form_.stopRequested(); }
    void requestStop() override { form_.requestStop(); }

private:
    WorkingForm& form_;
};

} // namespace torquil
