#include "base/crc32.h"

#include <array>

namespace torquil {

namespace {

constexpr std::array<std::uint32_t, 256> makeTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t n = 0; n < 256; ++n) {
        std::uint32_t c = n;
        for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        table[n] = c;
    }
    return table;
}

constexpr auto kTable = makeTable();

} // namespace

std::uint32_t crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc) {
    crc = ~crc;
    for (std::uint8_t b : bytes) crc = kTable[(crc ^ b) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

} // namespace torquil
