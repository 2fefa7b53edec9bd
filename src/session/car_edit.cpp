#include "session/car_edit.h"

#include "cars/car_fields.h"
#include "cars/car_names_io.h"
#include "session/style_session.h"

namespace torquil {

namespace {
constexpr int kNameBox = 42;
}

CarEditResult applyCarEdit(StyleSession& session, int asn, const CarEntry& edited,
                           bool recordChanged, bool nameChanged) {
    CarEditResult result;
    CarEntry* target = session.cars.find(asn);
    if (!target) return result;
    result.applied = true;

    if (recordChanged) {
        target->info = edited.info;
        target->doorList = edited.doorList;
        session.style.gSaveCarInfo.push_back(static_cast<std::int16_t>(asn));
        result.recordQueued = true;
    }
    if (nameChanged) {
        // The name belongs to the model: every loaded car of it shows the new one.
        result.nameStored = renameCarModel(session, target->info.model, edited.name);
        target->name = edited.name;
    }
    return result;
}

CarFieldEdit editCarField(StyleSession& session, int asn, int index, const std::string& text,
                          std::string* clampReport) {
    const CarEntry* current = session.cars.find(asn);
    if (!current) return CarFieldEdit::NoSuchCar;
    const CarField* field = carField(index);
    if (!field) return CarFieldEdit::NoSuchField;

    CarEntry edited = *current;
    if (index == kNameBox) {
        edited.name = text;
        applyCarEdit(session, asn, edited, false, true);
        return CarFieldEdit::Stored;
    }
    const FieldCheck check = clampFieldText(index, textOnLeave(text));
    if (clampReport) *clampReport = check.report;
    switch (setFieldText(edited, index, check.text)) {
    case FieldStore::Stored:
        break;
    case FieldStore::NotANumber:
        return CarFieldEdit::NotANumber;
    case FieldStore::DoesNotFit:
        return CarFieldEdit::DoesNotFit;
    case FieldStore::NoSuchField:
        return CarFieldEdit::NoSuchField;
    }
    applyCarEdit(session, asn, edited, true, false);
    return CarFieldEdit::Stored;
}

} // namespace torquil
