#include "cars/car_name_rules.h"

namespace torquil {

namespace {

CarNameFailure nameRefused(CarNameCheck check, std::string reason) {
    CarNameFailure f;
    f.message = std::move(reason);
    f.check = check;
    return f;
}

} // namespace

CarNameVerdict checkCarName(const CarNames& names, int model, std::string_view name) {
    const std::string m = std::to_string(model);
    if (model < 0 || model >= kCarNameCount)
        return nameRefused(CarNameCheck::NoPlace,
                           "model " + m + " has no place in the car names table (0 to " +
                               std::to_string(kCarNameCount - 1) + ")");
    if (!names.fromFxt)
        return nameRefused(
            CarNameCheck::NoFxt,
            "the style has no ENGLISH.FXT with car names beside it; names cannot be saved. "
            "Put the game's ENGLISH.FXT in the style file's folder and open the style again");
    if (names.keys[static_cast<std::size_t>(model)].empty())
        return nameRefused(CarNameCheck::NoEntry, "ENGLISH.FXT has no entry for model " + m +
                                                      "; its name cannot be saved");
    // The decoded text ends a line at CR (and LF after it) and an entry at a coded 0.
    for (const char c : name)
        if (c == '\0' || c == '\r' || c == '\n')
            return nameRefused(
                CarNameCheck::BadText,
                "a car name cannot hold a line break or a zero byte; type it on one line");
    return {};
}

} // namespace torquil
