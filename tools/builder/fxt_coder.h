#pragma once
// ENGLISH.FXT coding. The plain text is the entries, each followed by a 0 byte. The first eight
// plain bytes are stored minus a fixed key; every later byte b is stored as b + 1, and a byte above
// 191 as the two bytes 196, b - 63. The game's own files end with the entry "[]".

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace torquil::testing {

inline constexpr std::array<uint8_t, 8> kFxtKey{0x9C, 0x39, 0x73, 0xE7, 0xCF, 0x9F, 0x3F, 0x7F};

// Codes exactly the entries given (add "[]" last for a file like the game's).
std::vector<uint8_t> encodeFxt(const std::vector<std::string>& entries);
// The entries of a coded file; a last entry without its 0 byte is returned too.
std::vector<std::string> decodeFxt(const std::vector<uint8_t>& file);

} // namespace torquil::testing
