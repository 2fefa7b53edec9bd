#include "sample_canvas.h"

namespace torquil::testing::sample {

namespace {

uint32_t mix(uint32_t a) {
    a ^= a >> 16;
    a *= 0x7feb352dU;
    a ^= a >> 15;
    a *= 0x846ca68bU;
    a ^= a >> 16;
    return a;
}

} // namespace

double noise(int a, int b, int c) {
    const uint32_t h =
        mix(static_cast<uint32_t>(a) * 73856093U ^
            mix(static_cast<uint32_t>(b) * 19349663U ^ mix(static_cast<uint32_t>(c) * 83492791U)));
    return (h & 0xFFFFFF) / double(0x1000000);
}

} // namespace torquil::testing::sample
