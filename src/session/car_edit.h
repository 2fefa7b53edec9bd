#pragma once
// One box of the car editor set on a loaded car, with the editor's limits: what the car list does
// with a changed cell. The change enters the session through editCar (session/edits.h), the same
// edit the car editor and `torquil-cli car-set` make.

#include <string>

namespace torquil {

class StyleSession;

enum class CarFieldEdit { Stored, NotANumber, DoesNotFit, NameRefused, NoSuchCar, NoSuchField };

// Sets box `index` (0..46; 42 is the name) of car `asn` from a text. The text is clamped to the
// field's limits first (clampReport then holds the editor's report, else it is emptied); an
// empty text counts as 0, as when an editor box loses the focus. Anything but Stored changes
// nothing; `why`, when given, then says why in the user's words (the signed value the game would
// read for a cx of 200, the name rule of checkCarName).
[[nodiscard]] CarFieldEdit editCarField(StyleSession& session, int asn, int index,
                                        const std::string& text, std::string* clampReport = nullptr,
                                        std::string* why = nullptr);

} // namespace torquil
