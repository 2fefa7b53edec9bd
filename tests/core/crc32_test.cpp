// CRC-32 of the car packs' checksums: the fast paths give the bit-by-bit result for every length,
// alignment and starting value.

#include "base/crc32.h"

#include <gtest/gtest.h>

#include <random>
#include <string_view>
#include <vector>

using namespace torquil;

namespace {

std::uint32_t crc32BitByBit(const std::uint8_t* p, std::size_t n, std::uint32_t crc) {
    crc = ~crc;
    for (std::size_t i = 0; i < n; ++i) {
        crc ^= p[i];
        for (int k = 0; k < 8; ++k) crc = (crc & 1) ? 0xEDB88320u ^ (crc >> 1) : crc >> 1;
    }
    return ~crc;
}

std::vector<std::uint8_t> noiseBytes(std::size_t n, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(n);
    for (auto& b : bytes) b = static_cast<std::uint8_t>(random());
    return bytes;
}

} // namespace

TEST(Crc32, KnownValues) {
    constexpr std::string_view check = "123456789";
    EXPECT_EQ(crc32({reinterpret_cast<const std::uint8_t*>(check.data()), check.size()}),
              0xCBF43926u);
    EXPECT_EQ(crc32({}), 0u);
    const std::vector<std::uint8_t> zeros(4096, 0);
    EXPECT_EQ(crc32(zeros), crc32BitByBit(zeros.data(), zeros.size(), 0));
}

TEST(Crc32, EveryLengthOffsetAndStartGivesTheBitByBitResult) {
    const auto bytes = noiseBytes(700, 7);
    for (std::size_t offset : {0u, 1u, 5u, 15u})
        for (std::size_t n = 0; n + offset <= 600; ++n)
            for (std::uint32_t start : {0u, 0xFFFFFFFFu, 0x12345678u}) {
                const std::span<const std::uint8_t> run(bytes.data() + offset, n);
                ASSERT_EQ(crc32(run, start), crc32BitByBit(run.data(), n, start))
                    << "offset " << offset << " length " << n << " start " << start;
            }
}

TEST(Crc32, LargeRunInPiecesEqualsTheWhole) {
    const auto bytes = noiseBytes((1u << 20) + 77, 11);
    const std::uint32_t whole = crc32(bytes);
    EXPECT_EQ(whole, crc32BitByBit(bytes.data(), bytes.size(), 0));
    for (std::size_t cut :
         {std::size_t{1}, std::size_t{63}, std::size_t{64}, std::size_t{4097}, bytes.size() - 3}) {
        const std::span<const std::uint8_t> all(bytes);
        EXPECT_EQ(crc32(all.subspan(cut), crc32(all.first(cut))), whole) << "cut " << cut;
    }
}
