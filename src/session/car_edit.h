#pragma once
// The one way a car's edits reach the session: the car editor and the car list both hand an
// edited copy of the car's entry here. A changed record (with its doors and remaps) replaces the
// loaded one and is queued for the save; a changed name goes into the car names table and is
// shown by every loaded car of the same model.

#include "cars/car_info.h"

#include <string>

namespace torquil {

class StyleSession;

struct CarEditResult {
    bool applied = false;      // false: the car has no loaded record
    bool recordQueued = false; // the record was queued in gSaveCarInfo
    bool nameStored = false;   // the name went into the car names table
};

// Applies an edited copy of car `asn`'s entry. recordChanged: the record, its doors and its
// remaps replace the loaded ones; nameChanged: edited.name becomes the model's name.
CarEditResult applyCarEdit(StyleSession& session, int asn, const CarEntry& edited,
                           bool recordChanged, bool nameChanged);

// One box of the car editor set on car `asn` with the editor's limits: the text is clamped to
// the field's limits first (clampReport then holds the editor's report). Index 42 sets the name.
enum class CarFieldEdit { Stored, NotANumber, DoesNotFit, NoSuchCar, NoSuchField };
CarFieldEdit editCarField(StyleSession& session, int asn, int index, const std::string& text,
                          std::string* clampReport = nullptr);

} // namespace torquil
