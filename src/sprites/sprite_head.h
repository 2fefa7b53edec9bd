#pragma once
// The fixed head of one sprite info record, as both kinds of style file store it.

#include <cstdint>
#include <span>

namespace torquil {

class ErrorState;

inline constexpr int kGryHeadBytes = 10;
inline constexpr int kG24HeadBytes = 12;
inline constexpr int kDeltaEntryBytes = 6;

struct SpriteHead {
    std::uint8_t W = 0, H = 0, delta_count = 0, ws = 0;
    std::int16_t size = 0;
    // Bytes 6-9. In a .G24 head these are clut, xo and yo; the loader keeps them as the stored
    // copy of the head.
    std::int32_t ptr = 0;
    std::int16_t clut = 0; // .G24 only
    std::int32_t page = 0;
    std::uint8_t xo = 0, yo = 0;

    [[nodiscard]] bool sizeMatches() const { return int{W} * int{H} == size; }
};

// Decodes a head of kG24HeadBytes or kGryHeadBytes bytes. A .GRY head's page, xo and yo come
// from ptr; a negative ptr gives a negative xo or yo, which raises "Overflow" (6) as storing it
// in a byte field did.
[[nodiscard]] SpriteHead decodeSpriteHead(std::span<const std::uint8_t> bytes, bool is24,
                                          ErrorState& errors);

} // namespace torquil
