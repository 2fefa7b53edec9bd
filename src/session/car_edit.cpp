#include "session/car_edit.h"

#include "cars/car_fields.h"
#include "cars/car_name_rules.h"
#include "session/edits.h"
#include "session/style_session.h"

namespace torquil {

namespace {

CarFieldFailure fieldRefused(CarFieldRefusal refusal, std::string reason) {
    CarFieldFailure f;
    f.message = std::move(reason);
    f.refusal = refusal;
    return f;
}

} // namespace

Result<std::string, CarFieldFailure> editCarField(StyleSession& session, int asn, int index,
                                                  const std::string& text) {
    const auto refuse = fieldRefused;
    const CarEntry* current = session.cars.find(asn);
    if (!current) return refuse(CarFieldRefusal::NoSuchCar, "the car has no record");
    if (!carField(index)) return refuse(CarFieldRefusal::NoSuchField, "no such field");

    CarEdit edit;
    if (index == kNameBox) {
        // Checked before the edit, so that a refused name leaves no step in the history.
        const CarNameVerdict verdict = checkCarName(session.names, current->info.model, text);
        if (!verdict) return refuse(CarFieldRefusal::NameRefused, verdict.message());
        edit.name = text;
        if (const Result<void> edited = editCar(session, asn, edit); !edited)
            return refuse(CarFieldRefusal::NameRefused, edited.message());
        return std::string();
    }
    CarEntry edited = *current;
    const FieldCheck check = clampFieldText(index, textOnLeave(text));
    switch (setFieldText(edited, index, check.text)) {
    case FieldStore::Stored:
        break;
    case FieldStore::NotANumber:
        return refuse(CarFieldRefusal::NotANumber, "not a number");
    case FieldStore::DoesNotFit:
        return refuse(CarFieldRefusal::DoesNotFit, doesNotFitReason(index, check.text));
    case FieldStore::NoSuchField:
        return refuse(CarFieldRefusal::NoSuchField, "no such field");
    }
    edit.info = edited.info;
    edit.doors = edited.doorList;
    // The car was found above and a record edit has no name to refuse.
    if (!editCar(session, asn, edit))
        return refuse(CarFieldRefusal::NoSuchCar, "the car has no record");
    return check.report;
}

} // namespace torquil
