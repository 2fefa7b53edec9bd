#pragma once
// What each box of the car info editor means to a modder: its unit and what the value does in
// the game, the range its limits allow and, from a loaded car table, the range the level's own
// cars use. The editor's tool tips, the manual's field table and the tests read this one table.
// Also how far a box's text is from a number, for the editor to refuse text as it is typed.

#include "cars/car_fields.h"

#include <optional>
#include <string>
#include <string_view>

namespace torquil {

struct CarTable;

struct CarFieldNote {
    int index;
    std::string_view unit;        // "pixels", "16.16 real", ... ("" when the value is a code)
    std::string_view description; // what the value does in the game
};

// The note of a box (0..46); nullptr outside.
[[nodiscard]] const CarFieldNote* carFieldNote(int index);

// "0 to 255"; "no limit" for the boxes that are never clamped.
[[nodiscard]] std::string fieldRangeText(int index);

// The box's whole description: caption, range, unit, what it does, and the label's own tool tip
// when the field has one. One paragraph per part, joined with "\n".
[[nodiscard]] std::string fieldDescription(int index);

// The values the loaded cars hold in a box (whole numbers for the integer boxes, real values for
// the 16.16 boxes), over every car in use. Nothing for the remap, name and door boxes or when no
// car is loaded.
struct ObservedRange {
    double low = 0, high = 0;
    int cars = 0;
};
[[nodiscard]] std::optional<ObservedRange> observedRange(const CarTable& cars, int index);

// The observed range when it is much narrower than the box's limits (a quarter of their span or
// less), so worth telling: "the level's cars: 12 to 40". Nothing otherwise.
[[nodiscard]] std::optional<ObservedRange> narrowerObservedRange(const CarTable& cars, int index);
[[nodiscard]] std::string
observedRangeText(const ObservedRange& range); // "the level's cars: 12 to 40"

// How a box's text stands while it is being typed.
enum class FieldTextState {
    Number,     // reads as a number (or a name box: any text)
    Unfinished, // not yet a number but may become one ("", "-", ".", "-.", "1e")
    NotANumber  // can never become a number by typing on ("abc", "12x")
};
[[nodiscard]] FieldTextState fieldTextState(int index, std::string_view text);

} // namespace torquil
