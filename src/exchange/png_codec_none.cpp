// The PNG codec of a build without libpng: every picture is refused with the build's reason, the
// way an unreadable picture is, so the BMP exchange works unchanged and a PNG says why it cannot.

#include "exchange/png_codec.h"

namespace torquil {

PngDecoded decodeIndexedPng(std::span<const std::uint8_t>, int, int) {
    PngDecoded result;
    result.status = PngStatus::Damaged;
    result.detail = kPngUnsupported;
    return result;
}

Result<std::vector<std::uint8_t>> encodeIndexedPng(std::span<const std::uint8_t>, int, int,
                                                   const BmpColourTable&) {
    return fail(kPngEncodeFailed, kPngUnsupported);
}

bool pngSupported() {
    return false;
}

} // namespace torquil
