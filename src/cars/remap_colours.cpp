#include "cars/remap_colours.h"

#include <algorithm>
#include <cmath>

namespace torquil {

namespace {

double channel(std::uint32_t rgb, int shift) {
    return ((rgb >> shift) & 0xFF) / 255.0;
}

std::uint32_t toByte(double unit) {
    return static_cast<std::uint32_t>(std::lround(std::clamp(unit, 0.0, 1.0) * 255.0));
}

bool sameRemap(const CarInfo& info, int a, int b, bool is24) {
    const auto ia = static_cast<std::size_t>(a), ib = static_cast<std::size_t>(b);
    return is24 ? info.remap24[ia] == info.remap24[ib] : info.remap8[ia] == info.remap8[ib];
}

bool validIndex(int i) {
    return i >= 0 && i < kRemapCount;
}

} // namespace

Hsv rgbToHsv(std::uint32_t rgb) {
    const double r = channel(rgb, 16), g = channel(rgb, 8), b = channel(rgb, 0);
    const double hi = std::max({r, g, b}), lo = std::min({r, g, b});
    const double range = hi - lo;
    Hsv out;
    out.v = hi;
    out.s = hi > 0 ? range / hi : 0.0;
    if (range <= 0) return out; // a grey has no hue
    double h;
    if (hi == r)
        h = (g - b) / range;
    else if (hi == g)
        h = 2.0 + (b - r) / range;
    else
        h = 4.0 + (r - g) / range;
    h /= 6.0;
    out.h = h - std::floor(h);
    return out;
}

std::uint32_t hsvToRgb(const Hsv& hsv) {
    const double h6 = (hsv.h - std::floor(hsv.h)) * 6.0;
    const double c = hsv.v * hsv.s;
    const double x = c * (1.0 - std::fabs(std::fmod(h6, 2.0) - 1.0));
    const double m = hsv.v - c;
    double r = 0, g = 0, b = 0;
    switch (static_cast<int>(h6) % 6) {
    case 0:
        r = c, g = x;
        break;
    case 1:
        r = x, g = c;
        break;
    case 2:
        g = c, b = x;
        break;
    case 3:
        g = x, b = c;
        break;
    case 4:
        r = x, b = c;
        break;
    default:
        r = c, b = x;
        break;
    }
    return toByte(r + m) << 16 | toByte(g + m) << 8 | toByte(b + m);
}

std::uint32_t remappedColour(std::uint32_t rgb, int hue, int saturation) {
    Hsv hsv = rgbToHsv(rgb);
    const double h = hsv.h + hue / 360.0;
    hsv.h = h - std::floor(h);
    hsv.s = std::clamp(hsv.s * (1.0 + saturation / 100.0), 0.0, 1.0);
    return hsvToRgb(hsv);
}

ClutColours remapClut(const ClutColours& base, const std::array<std::int16_t, 3>& hls) {
    const int hue = hls[0], saturation = hls[2];
    if (hue % 360 == 0 && saturation == 0) return base; // the car's own colours, exactly
    ClutColours out = base;
    for (std::size_t c = 1; c < out.size(); ++c) out[c] = remappedColour(base[c], hue, saturation);
    return out;
}

bool remapInUse(const CarInfo& info, int index, bool is24) {
    if (!validIndex(index)) return false;
    for (int other = 0; other < kRemapCount; ++other)
        if (other != index && sameRemap(info, index, other, is24)) return true;
    return false;
}

int distinctRemaps(const CarInfo& info, int first, int last, bool is24) {
    first = std::max(first, 0);
    last = std::min(last, kRemapCount - 1);
    int count = 0;
    for (int i = first; i <= last; ++i) {
        bool seen = false;
        for (int j = first; j < i && !seen; ++j) seen = sameRemap(info, i, j, is24);
        if (!seen) ++count;
    }
    return count;
}

std::string describeColoration(const CarInfo& info, const ColorationLine& line, bool is24) {
    if (line.first == line.last) return "remap " + std::to_string(line.first);
    return "remaps " + std::to_string(line.first) + " to " + std::to_string(line.last) + " (" +
           std::to_string(distinctRemaps(info, line.first, line.last, is24)) + " different)";
}

} // namespace torquil
