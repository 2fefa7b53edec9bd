#pragma once
// workingFrm: the small progress window of long loads and saves. It is not modal, so the main
// window keeps repainting; its Stop button sets the stop request that the loops test.

#include "platform/platform.h"
#include "platform/qt/window_pacer.h"

#include <QDialog>
#include <QPointer>

#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;

namespace torquil {

class WorkingForm : public QDialog {
    Q_OBJECT
public:
    explicit WorkingForm(QWidget* parent = nullptr);

    // Shows the form (centred on its owner), clears the stop request and lets events run so that
    // it is painted.
    void begin(const QString& title, const QString& text, int maximum);
    void setText(const QString& text);
    // The range and value are kept at once; the bar shows them at most once per
    // WindowPacer::kInterval (a progress bar repaints itself on every change of its value).
    void setMaximum(int maximum);
    void setValue(int value);
    void finish() { hide(); }

    [[nodiscard]] bool stopRequested() const { return stopRequested_; }
    void requestStop() { stopRequested_ = true; }

    // The window it is centred on when shown.
    void setOwnerWindow(QWidget* owner) { owner_ = owner; }
    [[nodiscard]] QString text() const;
    // The value and maximum reported last (the bar may show an earlier pair for a moment).
    [[nodiscard]] int value() const { return value_; }
    [[nodiscard]] int maximum() const { return maximum_; }
    [[nodiscard]] QProgressBar* bar() const { return bar_; }
    [[nodiscard]] QPushButton* stopButton() const { return stop_; }

    // How the form lets events run once shown; the platform passes its paced event loop.
    std::function<void()> letEventsRun;
    // How often the bar is repainted (tests set its clock and count its turns).
    WindowPacer& paintPacer() { return paint_; }

private:
    void placeOverOwner();
    void showProgress();

    QLabel* text_ = nullptr;
    QProgressBar* bar_ = nullptr;
    QPushButton* stop_ = nullptr;
    QPointer<QWidget> owner_;
    bool stopRequested_ = false;
    int value_ = 0, maximum_ = 0;
    WindowPacer paint_;
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
    [[nodiscard]] bool stopRequested() const override { return form_.stopRequested(); }
    void requestStop() override { form_.requestStop(); }

private:
    WorkingForm& form_;
};

} // namespace torquil
