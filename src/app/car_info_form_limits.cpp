// The car editor's limits as the user types: each box is marked at the field when its value was
// clamped or its text refused, and the line under the pages names the field, its range and the
// report. No message box interrupts the typing.

#include "app/car_info_form.h"
#include "app/qt_text.h"

#include "cars/car_field_notes.h"
#include "session/style_session.h"

#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

namespace torquil {

namespace {

const char* const kMarkProperty = "fieldMark";

QString caption(int index) {
    return qs(carField(index)->caption).remove(QLatin1Char(':'));
}

// The frame colour of each mark: amber for a value moved to its limit, red for refused or
// unfinished text.
QString markStyle(const QString& mark) {
    if (mark == QLatin1String("clamped")) return QStringLiteral("border: 2px solid #e0a020;");
    if (mark.isEmpty()) return {};
    return QStringLiteral("border: 2px solid #e04040;");
}

} // namespace

QString CarInfoForm::fieldMark(int index) const {
    const QLineEdit* edit = box(index);
    return edit ? edit->property(kMarkProperty).toString() : QString();
}

void CarInfoForm::markField(int index, const QString& mark) {
    QLineEdit* edit = box(index);
    if (!edit || edit->property(kMarkProperty).toString() == mark) return;
    edit->setProperty(kMarkProperty, mark);
    edit->setStyleSheet(markStyle(mark));
}

QString CarInfoForm::fieldToolTip(int index) const {
    QString tip = qs(fieldDescription(index));
    if (const std::optional<ObservedRange> range = narrowerObservedRange(session_.cars, index))
        tip += QLatin1Char('\n') + qs(observedRangeText(*range));
    return tip;
}

void CarInfoForm::showFieldInfo(int index) {
    if (!fieldStatus_) return;
    const CarFieldNote* note = carFieldNote(index);
    QString text = caption(index) + QStringLiteral(": ") + qs(fieldRangeText(index));
    if (note && !note->unit.empty()) text += QStringLiteral(", ") + qs(note->unit);
    if (const std::optional<ObservedRange> range = narrowerObservedRange(session_.cars, index))
        text += QStringLiteral(" (") + qs(observedRangeText(*range)) + QLatin1Char(')');
    fieldStatus_->setText(text);
}

void CarInfoForm::reportClamp(int index, const QString& typed, const FieldCheck& check) {
    markField(index, QStringLiteral("clamped"));
    const bool high = check.report.find("H val") != std::string::npos;
    // The report is the editor's own text; the field and the cause stand beside it.
    fieldStatus_->setText(caption(index) + QStringLiteral(": ") + qs(check.report) +
                          QStringLiteral(" (%1 is %2 the range %3; the box now holds %4)")
                              .arg(typed.trimmed(),
                                   high ? QStringLiteral("above") : QStringLiteral("below"),
                                   qs(fieldRangeText(index)), qs(check.text)));
}

void CarInfoForm::refuseText(int index, const QString& typed) {
    QLineEdit* edit = box(index);
    const QString kept = lastGood_[static_cast<std::size_t>(index)];
    const bool wasFilling = filling_;
    filling_ = true;
    edit->setText(kept);
    filling_ = wasFilling;
    markField(index, QStringLiteral("refused"));
    fieldStatus_->setText(
        caption(index) +
        QStringLiteral(": \"%1\" is not a number (%2); the box keeps %3")
            .arg(typed, qs(fieldRangeText(index)),
                 kept.isEmpty() ? QStringLiteral("nothing") : QStringLiteral("\"%1\"").arg(kept)));
}

std::vector<int> CarInfoForm::unfinishedBoxes() const {
    std::vector<int> boxes;
    for (int i = 0; i < kCarFieldCount; ++i) {
        const QLineEdit* edit = box(i);
        if (!edit || edit->isReadOnly() || !edit->isEnabled()) continue;
        // An empty box is taken as 0, as when it loses the focus.
        const std::string text = textOnLeave(edit->text().toStdString());
        if (fieldTextState(i, text) != FieldTextState::Number) boxes.push_back(i);
    }
    return boxes;
}

bool CarInfoForm::refuseUnfinishedClose() {
    const std::vector<int> unfinished = unfinishedBoxes();
    if (unfinished.empty()) return false;
    QStringList names;
    for (int i : unfinished) {
        markField(i, QStringLiteral("unfinished"));
        names << QStringLiteral("%1 (\"%2\")").arg(caption(i), box(i)->text());
    }
    fieldStatus_->setText(QStringLiteral("Not a number yet: %1. Finish or correct %2 to close "
                                         "the editor.")
                              .arg(names.join(QStringLiteral(", ")), unfinished.size() == 1
                                                                         ? QStringLiteral("it")
                                                                         : QStringLiteral("them")));
    // Show the first of them.
    QLineEdit* first = box(unfinished.front());
    for (int page = 0; page < tabs_->count(); ++page)
        if (tabs_->widget(page)->isAncestorOf(first)) tabs_->setCurrentIndex(page);
    first->setFocus();
    return true;
}

} // namespace torquil
