#include "session/car_edit.h"

#include "cars/car_fields.h"
#include "session/edits.h"
#include "session/style_session.h"

namespace torquil {

namespace {
constexpr int kNameBox = 42;
}

CarFieldEdit editCarField(StyleSession& session, int asn, int index, const std::string& text,
                          std::string* clampReport) {
    if (clampReport) clampReport->clear();
    const CarEntry* current = session.cars.find(asn);
    if (!current) return CarFieldEdit::NoSuchCar;
    if (!carField(index)) return CarFieldEdit::NoSuchField;

    CarEdit edit;
    if (index == kNameBox) {
        edit.name = text;
        // A model outside the names table keeps its name, as in the editor.
        (void)editCar(session, asn, edit);
        return CarFieldEdit::Stored;
    }
    CarEntry edited = *current;
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
    edit.info = edited.info;
    edit.doors = edited.doorList;
    (void)editCar(session, asn, edit);
    return CarFieldEdit::Stored;
}

} // namespace torquil
