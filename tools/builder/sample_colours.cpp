#include "sample_colours.h"

#include <algorithm>
#include <cmath>

namespace torquil::testing::sample {

uint8_t clampByte(double v) {
    return static_cast<uint8_t>(std::lround(std::clamp(v, 0.0, 255.0)));
}

uint8_t ramp(double t) {
    return static_cast<uint8_t>(kRampFirst +
                                std::lround(std::clamp(t, 0.0, 1.0) * (kRampSteps - 1)));
}

namespace {

Rgb rampColour(Rgb base, double t) {
    auto channel = [t](uint8_t c) {
        if (t < 0.7) return clampByte(c * (0.18 + 0.82 * t / 0.7));
        return clampByte(c + (255 - c) * (t - 0.7) / 0.3 * 0.55);
    };
    return {channel(base.r), channel(base.g), channel(base.b)};
}

} // namespace

Rgb scaled(Rgb c, double k) {
    return {clampByte(c.r * k), clampByte(c.g * k), clampByte(c.b * k)};
}

Clut makeClut(Rgb base, double brightness) {
    Clut clut{};
    for (int i = 1; i < kRampFirst; ++i) clut[i] = scaled(kMaterialColours[i], brightness);
    for (int i = kRampFirst; i < 256; ++i)
        clut[i] = scaled(rampColour(base, (i - kRampFirst) / double(kRampSteps - 1)), brightness);
    return clut;
}

std::array<Rgb, 256> gryPalette() {
    std::array<Rgb, 256> p{};
    auto six = [](Rgb c) {
        return Rgb{static_cast<uint8_t>(c.r / 4), static_cast<uint8_t>(c.g / 4),
                   static_cast<uint8_t>(c.b / 4)};
    };
    for (int i = 1; i < kRampFirst; ++i) p[i] = six(kMaterialColours[i]);
    for (int b = 0; b < BAND_COUNT; ++b)
        for (int l = 0; l < kBandLevels; ++l)
            p[kRampFirst + b * kBandLevels + l] =
                six(rampColour(kBandColours[b], (l + 0.5) / kBandLevels));
    return p;
}

uint8_t toGry(uint8_t code, int band) {
    if (code < kRampFirst) return code;
    return static_cast<uint8_t>(kRampFirst + band * kBandLevels +
                                (code - kRampFirst) * kBandLevels / kRampSteps);
}

// The game's car remaps: hue turned by h degrees, saturation scaled by 1 + s / 100, value kept;
// colour 0 stays as it is.
Rgb hsvRemap(Rgb c, int h, int s) {
    const double r = c.r / 255.0, g = c.g / 255.0, b = c.b / 255.0;
    const double mx = std::max({r, g, b}), mn = std::min({r, g, b}), d = mx - mn;
    double hue = 0;
    if (d > 0) {
        if (mx == r)
            hue = std::fmod((g - b) / d, 6.0);
        else if (mx == g)
            hue = (b - r) / d + 2;
        else
            hue = (r - g) / d + 4;
        hue /= 6;
    }
    double sat = mx > 0 ? d / mx : 0;
    hue = hue + h / 360.0;
    hue -= std::floor(hue);
    sat = std::clamp(sat * (1 + s / 100.0), 0.0, 1.0);
    const double v = mx;
    const double hh = hue * 6;
    const int sector = static_cast<int>(hh) % 6;
    const double f = hh - std::floor(hh);
    const double p = v * (1 - sat), q = v * (1 - sat * f), t = v * (1 - sat * (1 - f));
    double rr = v, gg = t, bb = p;
    switch (sector) {
    case 1:
        rr = q, gg = v, bb = p;
        break;
    case 2:
        rr = p, gg = v, bb = t;
        break;
    case 3:
        rr = p, gg = q, bb = v;
        break;
    case 4:
        rr = t, gg = p, bb = v;
        break;
    case 5:
        rr = v, gg = p, bb = q;
        break;
    default:
        break;
    }
    return {clampByte(rr * 255), clampByte(gg * 255), clampByte(bb * 255)};
}

Clut remapClut(const Clut& base, int h, int s) {
    Clut out = base;
    for (int i = 1; i < 256; ++i) out[i] = hsvRemap(base[i], h, s);
    return out;
}

Rgb tint(int band, int variant) {
    const Rgb b = kBandColours[band];
    const double k = 0.8 + 0.12 * (variant % 4);
    return hsvRemap(scaled(b, k), (variant * 7) % 21 - 10, 0);
}

} // namespace torquil::testing::sample
