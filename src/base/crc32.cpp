#include "base/crc32.h"

#include <array>

namespace torquil {

namespace {

// Eight tables: table k gives the CRC of a byte followed by k zero bytes, so that eight bytes are
// folded into the CRC with eight lookups and no dependency between them.
using Crc32Tables = std::array<std::array<std::uint32_t, 256>, 8>;

constexpr Crc32Tables makeCrc32Tables() {
    Crc32Tables t{};
    for (std::uint32_t n = 0; n < 256; ++n) {
        std::uint32_t c = n;
        for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        t[0][n] = c;
    }
    for (std::size_t k = 1; k < t.size(); ++k)
        for (std::size_t n = 0; n < 256; ++n)
            t[k][n] = (t[k - 1][n] >> 8) ^ t[0][t[k - 1][n] & 0xFF];
    return t;
}

constexpr Crc32Tables kCrc32Tables = makeCrc32Tables();

std::uint32_t littleEndian32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
           (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

} // namespace

std::uint32_t crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc) {
    const auto& t = kCrc32Tables;
    crc = ~crc;
    const std::uint8_t* p = bytes.data();
    std::size_t n = bytes.size();
    for (; n >= 8; n -= 8, p += 8) {
        const std::uint32_t lo = crc ^ littleEndian32(p);
        const std::uint32_t hi = littleEndian32(p + 4);
        crc = t[7][lo & 0xFF] ^ t[6][(lo >> 8) & 0xFF] ^ t[5][(lo >> 16) & 0xFF] ^ t[4][lo >> 24] ^
              t[3][hi & 0xFF] ^ t[2][(hi >> 8) & 0xFF] ^ t[1][(hi >> 16) & 0xFF] ^ t[0][hi >> 24];
    }
    for (; n > 0; --n, ++p) crc = t[0][(crc ^ *p) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

} // namespace torquil
