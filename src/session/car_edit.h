#pragma once
// One box of the car editor set on a loaded car, with the editor's limits: what the car list does
// with a changed cell. The change enters the session through editCar (session/edits.h), the same
// edit the car editor and `torquil-cli car-set` make.

#include "base/result.h"

#include <string>

namespace torquil {

class StyleSession;

// Why a text was not stored.
enum class CarFieldRefusal { NotANumber, DoesNotFit, NameRefused, NoSuchCar, NoSuchField };

// A refused text: the message says why in the user's words (the signed value the game would
// read for a cx of 200, the name rule of checkCarName).
struct CarFieldFailure : Failure {
    CarFieldRefusal refusal = CarFieldRefusal::NoSuchField;
};

// Sets box `index` (0..46; 42 is the name) of car `asn` from a text. The text is clamped to the
// field's limits first; an empty text counts as 0, as when an editor box loses the focus. The
// value is the editor's clamp report (empty when the text was within the limits). A refusal
// changes nothing.
[[nodiscard]] Result<std::string, CarFieldFailure> editCarField(StyleSession& session, int asn,
                                                                int index, const std::string& text);

} // namespace torquil
