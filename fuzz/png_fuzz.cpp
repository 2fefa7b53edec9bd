// Fuzzes the PNG reader: any input must decode to an 8-bit palette picture or a refusal, never a
// crash, a hang or an out-of-bounds access; what decodes must encode and decode again unchanged.

#include "exchange/png_codec.h"

#include <cstdint>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 2) return 0;
    // Byte 0, 1: the expected size (0: take the file's own, bounded by the reader).
    const int w = data[0], h = data[1];
    const std::span<const std::uint8_t> bytes(data + 2, size - 2);
    const PngDecoded d = decodeIndexedPng(bytes, w, w ? h : 0);
    if (d.status != PngStatus::Ok) {
        if (!d.picture.pixels.empty()) __builtin_trap();
        return 0;
    }
    const IndexedPicture& p = d.picture;
    if (p.pixels.size() != static_cast<std::size_t>(p.width) * p.height) __builtin_trap();
    if (w && (p.width != w || p.height != h)) __builtin_trap();
    const auto again = encodeIndexedPng(p.pixels, p.width, p.height, p.colours);
    if (!again) __builtin_trap(); // a decoded picture always encodes again
    const PngDecoded back = decodeIndexedPng(*again, p.width, p.height);
    if (back.status != PngStatus::Ok || back.picture.pixels != p.pixels) __builtin_trap();
    return 0;
}
