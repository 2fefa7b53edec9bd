#include "platform/qt/qt_message_sink.h"

#include <QMessageBox>

namespace torquil {

QString displayText(const std::string& text) {
    QString s = QString::fromStdString(text);
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    s.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return s;
}

namespace {

QMessageBox::StandardButtons standardButtons(Buttons buttons) {
    switch (buttons) {
    case Buttons::Ok:
        return QMessageBox::Ok;
    case Buttons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case Buttons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon boxIcon(Icon icon) {
    switch (icon) {
    case Icon::None:
        return QMessageBox::NoIcon;
    case Icon::Critical:
        return QMessageBox::Critical;
    case Icon::Question:
        return QMessageBox::Question;
    case Icon::Warning:
        return QMessageBox::Warning;
    case Icon::Information:
        return QMessageBox::Information;
    }
    return QMessageBox::NoIcon;
}

Answer answerOf(int button, Buttons offered) {
    switch (button) {
    case QMessageBox::Ok:
        return Answer::Ok;
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        return safeAnswer(offered); // closed by the window's close button or Escape
    }
}

} // namespace

Answer QtMessageSink::show(const Message& message) {
    if (hook_) {
        if (std::optional<Answer> scripted = hook_(message)) {
            return answerOffered(message.buttons, *scripted) ? *scripted
                                                             : safeAnswer(message.buttons);
        }
    }
    const QString title = message.title.empty() ? QString::fromLatin1(kProgramTitle)
                                                : QString::fromStdString(message.title);
    QMessageBox box(boxIcon(message.icon), title, displayText(message.text),
                    standardButtons(message.buttons), parent_);
    if (message.helpButton) box.addButton(QMessageBox::Help);
    for (;;) {
        const int pressed = box.exec();
        if (pressed != QMessageBox::Help) return answerOf(pressed, message.buttons);
        if (help_ && help_(message)) continue;
        // There is no help file: say so and ask again.
        QMessageBox::information(
            parent_, title,
            QStringLiteral("Unable to display Help Contents. There is no Help associated with "
                           "this project."));
    }
}

} // namespace torquil
