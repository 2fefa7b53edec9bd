#pragma once
// The car names table: 91 entries by car model, each the key as it stood in ENGLISH.FXT
// ("[car12]") and the name.

#include <array>
#include <string>

namespace torquil {

inline constexpr int kCarNameCount = 91;

struct CarNames {
    std::array<std::string, kCarNameCount> keys;
    std::array<std::string, kCarNameCount> names;
    bool fromFxt = false; // false: the built-in names (no ENGLISH.FXT with the style)

    std::string nameOf(int model) const {
        return model >= 0 && model < kCarNameCount ? names[static_cast<std::size_t>(model)]
                                                   : std::string{};
    }
};

} // namespace torquil
