#pragma once
// Whether a car model can be given a new name that the save will really write into ENGLISH.FXT.
// The one rule for the car editor, the car list and `torquil-cli car-set` (through editCar).

#include "cars/car_names.h"

#include <string>
#include <string_view>

namespace torquil {

enum class CarNameCheck {
    Ok,
    NoPlace, // the model lies outside the names table (0..90)
    NoFxt,   // the names are the built-in ones: no ENGLISH.FXT to write them into
    NoEntry, // ENGLISH.FXT has no entry for the model: the save would drop the name
    BadText  // the name holds a byte that ends an entry or a line of the text file
};

struct CarNameVerdict {
    CarNameCheck check = CarNameCheck::Ok;
    std::string reason; // what is wrong and what to do; empty when Ok
    explicit operator bool() const { return check == CarNameCheck::Ok; }
};

[[nodiscard]] CarNameVerdict checkCarName(const CarNames& names, int model, std::string_view name);

} // namespace torquil
