#include "session/car_edit.h"

#include "cars/car_fields.h"
#include "cars/car_name_rules.h"
#include "session/edits.h"
#include "session/style_session.h"

namespace torquil {

namespace {}

CarFieldEdit editCarField(StyleSession& session, int asn, int index, const std::string& text,
                          std::string* clampReport, std::string* why) {
    if (clampReport) clampReport->clear();
    if (why) why->clear();
    auto refuse = [&](CarFieldEdit result, std::string reason) {
        if (why) *why = std::move(reason);
        return result;
    };
    const CarEntry* current = session.cars.find(asn);
    if (!current) return refuse(CarFieldEdit::NoSuchCar, "the car has no record");
    if (!carField(index)) return refuse(CarFieldEdit::NoSuchField, "no such field");

    CarEdit edit;
    if (index == kNameBox) {
        // Checked before the edit, so that a refused name leaves no step in the history.
        const CarNameVerdict verdict = checkCarName(session.names, current->info.model, text);
        if (!verdict) return refuse(CarFieldEdit::NameRefused, verdict.reason);
        edit.name = text;
        std::string reason;
        if (!editCar(session, asn, edit, &reason)) return refuse(CarFieldEdit::NameRefused, reason);
        return CarFieldEdit::Stored;
    }
    CarEntry edited = *current;
    const FieldCheck check = clampFieldText(index, textOnLeave(text));
    if (clampReport) *clampReport = check.report;
    switch (setFieldText(edited, index, check.text)) {
    case FieldStore::Stored:
        break;
    case FieldStore::NotANumber:
        return refuse(CarFieldEdit::NotANumber, "not a number");
    case FieldStore::DoesNotFit:
        return refuse(CarFieldEdit::DoesNotFit, doesNotFitReason(index, check.text));
    case FieldStore::NoSuchField:
        return refuse(CarFieldEdit::NoSuchField, "no such field");
    }
    edit.info = edited.info;
    edit.doors = edited.doorList;
    // The car was found above and a record edit has no name to refuse.
    if (!editCar(session, asn, edit))
        return refuse(CarFieldEdit::NoSuchCar, "the car has no record");
    return CarFieldEdit::Stored;
}

} // namespace torquil
