#include "base/crc32.h"

#include <array>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define TORQUIL_CRC32_CLMUL 1
#include <immintrin.h>
#endif

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

#ifdef TORQUIL_CRC32_CLMUL
namespace {

__attribute__((target("sse2"))) inline __m128i crc32Load(const std::uint8_t* at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

// A 128-bit lane multiplied forward by the distance in `k` and added to the next 128 bits.
__attribute__((target("pclmul,sse4.1"))) inline __m128i crc32Fold(__m128i lane, __m128i k,
                                                                  __m128i next) {
    const __m128i lo = _mm_clmulepi64_si128(lane, k, 0x00);
    const __m128i hi = _mm_clmulepi64_si128(lane, k, 0x11);
    return _mm_xor_si128(_mm_xor_si128(hi, lo), next);
}

// Folding by carry-less multiplication: four 128-bit lanes are each multiplied forward by 512
// bits and added to the next 64 bytes; at the end the lanes fold into one, which is reduced to
// 64 and then 32 bits (Barrett). The constants are powers of x modulo the reflected polynomial:
// x^(512+32), x^(512-32), x^(128+32), x^(128-32), x^64, and the polynomial with its quotient.
__attribute__((target("pclmul,sse4.1"))) std::uint32_t
crc32Folded(const std::uint8_t* p, std::size_t n, std::uint32_t reg) {
    const __m128i k1k2 = _mm_set_epi64x(0x1c6e41596, 0x154442bd4);
    const __m128i k3k4 = _mm_set_epi64x(0x0ccaa009e, 0x1751997d0);
    const __m128i k5 = _mm_set_epi64x(0, 0x163cd6124);
    const __m128i poly = _mm_set_epi64x(0x1f7011641, 0x1db710641);
    const __m128i low32 = _mm_setr_epi32(~0, 0, ~0, 0);
    __m128i x1 = _mm_xor_si128(crc32Load(p), _mm_cvtsi32_si128(static_cast<int>(reg)));
    __m128i x2 = crc32Load(p + 16), x3 = crc32Load(p + 32), x4 = crc32Load(p + 48);
    p += 64;
    n -= 64;
    for (; n >= 64; n -= 64, p += 64) {
        x1 = crc32Fold(x1, k1k2, crc32Load(p));
        x2 = crc32Fold(x2, k1k2, crc32Load(p + 16));
        x3 = crc32Fold(x3, k1k2, crc32Load(p + 32));
        x4 = crc32Fold(x4, k1k2, crc32Load(p + 48));
    }
    x1 = crc32Fold(x1, k3k4, x2);
    x1 = crc32Fold(x1, k3k4, x3);
    x1 = crc32Fold(x1, k3k4, x4);
    for (; n >= 16; n -= 16, p += 16) x1 = crc32Fold(x1, k3k4, crc32Load(p));
    // 128 bits to 64.
    __m128i x2r = _mm_clmulepi64_si128(x1, k3k4, 0x10);
    x1 = _mm_xor_si128(_mm_srli_si128(x1, 8), x2r);
    x2r = _mm_srli_si128(x1, 4);
    x1 = _mm_and_si128(x1, low32);
    x1 = _mm_xor_si128(_mm_clmulepi64_si128(x1, k5, 0x00), x2r);
    // 64 bits to 32.
    __m128i t = _mm_and_si128(x1, low32);
    t = _mm_clmulepi64_si128(t, poly, 0x10);
    t = _mm_and_si128(t, low32);
    t = _mm_clmulepi64_si128(t, poly, 0x00);
    x1 = _mm_xor_si128(x1, t);
    return static_cast<std::uint32_t>(_mm_extract_epi32(x1, 1));
}

bool crc32CanFold() {
    static const bool can = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
    return can;
}

} // namespace
#endif

// The bytes the processor can fold go first (whole 16-byte blocks, at least 64 bytes); the table
// takes the rest and every byte on other processors.
std::uint32_t crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc) {
    const auto& t = kCrc32Tables;
    crc = ~crc;
    const std::uint8_t* p = bytes.data();
    std::size_t n = bytes.size();
#ifdef TORQUIL_CRC32_CLMUL
    if (n >= 64 && crc32CanFold()) {
        const std::size_t whole = n & ~std::size_t{15};
        crc = crc32Folded(p, whole, crc);
        p += whole;
        n -= whole;
    }
#endif
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
