#pragma once
// The car names table: 91 entries by car model, each the key as it stood in ENGLISH.FXT
// ("[car12]") and the name.

#include "base/file_stamp.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

inline constexpr int kCarNameCount = 91;

struct CarNames {
    std::array<std::string, kCarNameCount> keys;
    std::array<std::string, kCarNameCount> names;
    bool fromFxt = false; // false: the built-in names (no ENGLISH.FXT with the style)
    // The decoded ENGLISH.FXT as loaded (entries as lines ended by CR LF), kept in memory for the
    // save so that no two runs share a temporary file.
    std::vector<std::uint8_t> decodedText;
    // ENGLISH.FXT as the load found it, to notice another program's (or run's) save since.
    FileStamp fxtStamp;

    [[nodiscard]] std::string nameOf(int model) const {
        return model >= 0 && model < kCarNameCount ? names[static_cast<std::size_t>(model)]
                                                   : std::string{};
    }
};

} // namespace torquil
