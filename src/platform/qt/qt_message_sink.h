#pragma once
// Modal message boxes. A hook may answer instead of the box (tests, scripted runs).

#include "platform/platform.h"

#include <QPointer>
#include <QString>

#include <functional>
#include <optional>

class QWidget;

namespace torquil {

// The program's title: the default title of every message box.
inline constexpr const char* kProgramTitle = "Torquil";

// A message's text for display: the "\r" line joins become line breaks.
[[nodiscard]] QString displayText(const std::string& text);

class QtMessageSink : public MessageSink {
public:
    using Hook = std::function<std::optional<Answer>(const Message&)>;

    Answer show(const Message& message) override;

    // When the hook returns an answer the box is not shown. An answer that the box does not
    // offer is replaced by the safe one.
    void setHook(Hook hook) { hook_ = std::move(hook); }
    void setParentWindow(QWidget* window) { parent_ = window; }
    // What the Help button of a box does: shows the manual's topic for the message (true) or
    // nothing (false: the box says there is no help). The box is asked again afterwards.
    using HelpHandler = std::function<bool(const Message&)>;
    void setHelpHandler(HelpHandler handler) { help_ = std::move(handler); }

private:
    Hook hook_;
    HelpHandler help_;
    QPointer<QWidget> parent_;
};

} // namespace torquil
