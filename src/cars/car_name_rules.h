#pragma once
// Whether a car model can be given a new name that the save will really write into ENGLISH.FXT.
// The one rule for the car editor, the car list and `torquil-cli car-set` (through editCar).

#include "base/result.h"
#include "cars/car_names.h"

#include <string>
#include <string_view>

namespace torquil {

// Why a name was refused.
enum class CarNameCheck {
    NoPlace, // the model lies outside the names table (0..90)
    NoFxt,   // the names are the built-in ones: no ENGLISH.FXT to write them into
    NoEntry, // ENGLISH.FXT has no entry for the model: the save would drop the name
    BadText  // the name holds a byte that ends an entry or a line of the text file
};

// A refused name: the message says what is wrong and what to do.
struct CarNameFailure : Failure {
    CarNameCheck check = CarNameCheck::NoPlace;
};
using CarNameVerdict = Result<void, CarNameFailure>;

[[nodiscard]] CarNameVerdict checkCarName(const CarNames& names, int model, std::string_view name);

} // namespace torquil
