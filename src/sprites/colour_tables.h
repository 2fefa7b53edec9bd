#pragma once
// Colour tables: the CLUTs of a .G24 file (pal24) with the palette index that maps virtual to
// physical CLUT numbers, and the fixed palette of a .GRY file.

#include <array>
#include <cstdint>
#include <vector>

namespace torquil {

inline constexpr int kPalIndexEntries =
    3001; // entries 0..3000, the most a style file's index holds

struct ColourTables {
    // gClutsAvail = rounded clut_size / 1024; pal24 has CLUTs 0..gClutsAvail (one spare).
    std::int32_t gClutsAvail = 0;
    // pal24[clut * 256 + colour] = {entry byte 0, 1, 2}: red, green, blue as drawn
    // (entry byte 0 is the file's byte 4k + 2).
    std::vector<std::array<std::uint8_t, 3>> pal24;
    std::vector<std::int16_t> used; // use count per physical CLUT 0..gClutsAvail
    std::array<std::int16_t, kPalIndexEntries> PalIndex{};
    std::int32_t palIndexCount = 0; // entries read
    // The 8-bit palette, each value the file byte times 4 kept in 8 bits.
    std::array<std::uint8_t, 256> red{}, green{}, blue{};

    std::array<std::uint8_t, 3>& entry(int clut, int colour) {
        return pal24[static_cast<std::size_t>(clut) * 256 + colour];
    }
};

} // namespace torquil
