#include "sample_level.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <stdexcept>
#include <tuple>

namespace torquil::testing {

namespace {

// ============================================================== colours
//
// Every sprite and tile is drawn in "codes": 0 is transparent, 1..15 are fixed materials that look
// the same everywhere, 16..255 are a dark-to-light ramp of the owner's own colour. In the .G24 file
// a code is the pixel itself and the owner's CLUT gives the ramp its colour; in the .GRY file the
// ramp is squeezed into one of eight 30-level bands of the single palette.

constexpr uint8_t CLEAR = 0, OUTLINE = 1, TYRE = 2, GLASS_DARK = 3, GLASS = 4, HEADLIGHT = 5,
                  TAILLIGHT = 6, CHROME = 7, INTERIOR = 8, WHITE = 9, BLUE_LIGHT = 10,
                  RED_LIGHT = 11, AMBER = 12, RUST = 13, SKIN = 14, LEAF = 15;
constexpr int kRampFirst = 16;
constexpr int kRampSteps = 240;

constexpr Rgb kMaterialColours[16] = {
    {0, 0, 0},       {22, 22, 26},    {58, 58, 62},    {34, 52, 72},
    {120, 160, 190}, {255, 248, 200}, {210, 24, 24},   {175, 178, 182},
    {64, 54, 48},    {242, 242, 240}, {40, 90, 255},   {255, 50, 40},
    {250, 190, 30},  {96, 60, 36},    {228, 178, 140}, {46, 140, 56}};

enum Band { RED, BLUE, YELLOW, GREEN, SILVER, CHARCOAL, ORANGE, PURPLE, BAND_COUNT };
constexpr Rgb kBandColours[BAND_COUNT] = {{196, 32, 30},  {36, 78, 196},   {236, 196, 40},
                                          {52, 146, 58},  {196, 200, 206}, {74, 76, 82},
                                          {226, 118, 34}, {128, 48, 156}};
constexpr int kBandLevels = 30;

uint8_t clampByte(double v) {
    return static_cast<uint8_t>(std::lround(std::clamp(v, 0.0, 255.0)));
}

uint8_t ramp(double t) {
    return static_cast<uint8_t>(kRampFirst +
                                std::lround(std::clamp(t, 0.0, 1.0) * (kRampSteps - 1)));
}

Rgb rampColour(Rgb base, double t) {
    auto channel = [t](uint8_t c) {
        if (t < 0.7) return clampByte(c * (0.18 + 0.82 * t / 0.7));
        return clampByte(c + (255 - c) * (t - 0.7) / 0.3 * 0.55);
    };
    return {channel(base.r), channel(base.g), channel(base.b)};
}

Rgb scaled(Rgb c, double k) {
    return {clampByte(c.r * k), clampByte(c.g * k), clampByte(c.b * k)};
}

Clut makeClut(Rgb base, double brightness = 1.0) {
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

// ============================================================== drawing

uint32_t mix(uint32_t a) {
    a ^= a >> 16;
    a *= 0x7feb352dU;
    a ^= a >> 15;
    a *= 0x846ca68bU;
    a ^= a >> 16;
    return a;
}

double noise(int a, int b, int c) {
    const uint32_t h =
        mix(static_cast<uint32_t>(a) * 73856093U ^
            mix(static_cast<uint32_t>(b) * 19349663U ^ mix(static_cast<uint32_t>(c) * 83492791U)));
    return (h & 0xFFFFFF) / double(0x1000000);
}

struct Canvas {
    int w = 0, h = 0;
    std::vector<uint8_t> px;

    Canvas() = default;
    Canvas(int width, int height) : w(width), h(height), px(static_cast<std::size_t>(w) * h, 0) {}
    bool inside(int x, int y) const { return x >= 0 && y >= 0 && x < w && y < h; }
    uint8_t get(int x, int y) const { return inside(x, y) ? px[y * w + x] : CLEAR; }
    void set(int x, int y, uint8_t v) {
        if (inside(x, y)) px[y * w + x] = v;
    }
    void rect(int x, int y, int rw, int rh, uint8_t v) {
        for (int j = y; j < y + rh; ++j)
            for (int i = x; i < x + rw; ++i) set(i, j, v);
    }
    void ellipse(double cx, double cy, double rx, double ry, uint8_t v) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const double dx = (x + 0.5 - cx) / rx, dy = (y + 0.5 - cy) / ry;
                if (dx * dx + dy * dy <= 1.0) set(x, y, v);
            }
    }
    void line(int x0, int y0, int x1, int y1, uint8_t v) {
        const int dx = std::abs(x1 - x0), dy = -std::abs(y1 - y0);
        const int sx = x0 < x1 ? 1 : -1, sy = y0 < y1 ? 1 : -1;
        int err = dx + dy;
        for (;;) {
            set(x0, y0, v);
            if (x0 == x1 && y0 == y1) break;
            const int e2 = 2 * err;
            if (e2 >= dy) err += dy, x0 += sx;
            if (e2 <= dx) err += dx, y0 += sy;
        }
    }
    void polygon(const std::vector<std::pair<double, double>>& pts, uint8_t v) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const double px0 = x + 0.5, py0 = y + 0.5;
                bool in = false;
                for (std::size_t i = 0, j = pts.size() - 1; i < pts.size(); j = i++) {
                    const auto [xi, yi] = pts[i];
                    const auto [xj, yj] = pts[j];
                    if ((yi > py0) != (yj > py0) && px0 < (xj - xi) * (py0 - yi) / (yj - yi) + xi)
                        in = !in;
                }
                if (in) set(x, y, v);
            }
    }
    // Paints `v` on the pixels at the shape's border (non-clear with a clear 4-neighbour).
    void outline(uint8_t v = OUTLINE) {
        std::vector<uint8_t> copy = px;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                if (get(x, y) == CLEAR) continue;
                if (get(x - 1, y) == CLEAR || get(x + 1, y) == CLEAR || get(x, y - 1) == CLEAR ||
                    get(x, y + 1) == CLEAR || x == 0 || y == 0 || x == w - 1 || y == h - 1)
                    copy[y * w + x] = v;
            }
        px = std::move(copy);
    }
};

// ------------------------------------------------------------- vehicles

enum CarKind {
    SEDAN,
    SPORTS,
    CONVERTIBLE,
    PICKUP,
    VAN,
    TAXI,
    POLICE,
    AMBULANCE,
    FIRETRUCK,
    TANKER,
    LIMO,
    BUG,
    BUS,
    TRUCK,
    BURNT,
    // not drawn by drawCar
    MOTORBIKE,
    LOCOMOTIVE,
    CARRIAGE,
    TRAMCAR,
    MOTORBOAT,
    TANK,
    APC
};

constexpr int kDoorMargin = 3; // transparent columns beside the body, for open doors

struct CarArt {
    Canvas c;
    int x0 = kDoorMargin, y0 = 1, bw = 0, bl = 0;
    int doorY = 0, doorLen = 0;
    int screenTop = 0, screenEnd = 0;
};

bool inRounded(int x, int y, int w, int h, int r) {
    if (x < 0 || y < 0 || x >= w || y >= h) return false;
    const int cx = x < r ? r : (x >= w - r ? w - r - 1 : x);
    const int cy = y < r ? r : (y >= h - r ? h - r - 1 : y);
    const double dx = x - cx, dy = y - cy;
    return dx * dx + dy * dy <= (r + 0.3) * (r + 0.3);
}

CarArt drawCar(CarKind kind, int bw, int bl, int seed) {
    CarArt a;
    a.bw = bw;
    a.bl = bl;
    a.c = Canvas(bw + 2 * kDoorMargin, bl + 2);
    Canvas& c = a.c;
    auto Y = [&](double f) { return a.y0 + static_cast<int>(std::lround(f * bl)); };

    // Wheels first; the body covers their inner half.
    const int wheelLen = std::max(4, bl / 7);
    std::vector<double> axles{0.13, 0.70};
    if (bl > 56) axles.push_back(0.84);
    for (double f : axles) {
        c.rect(a.x0 - 1, Y(f), 2, wheelLen, TYRE);
        c.rect(a.x0 + bw - 1, Y(f), 2, wheelLen, TYRE);
    }

    const int radius = kind == BUG ? std::max(3, bw / 2 - 1) : (kind == SPORTS ? 4 : 3);
    const double half = (bw - 1) / 2.0;
    for (int y = 0; y < bl; ++y)
        for (int x = 0; x < bw; ++x) {
            if (!inRounded(x, y, bw, bl, radius)) continue;
            const bool edge =
                !inRounded(x - 1, y, bw, bl, radius) || !inRounded(x + 1, y, bw, bl, radius) ||
                !inRounded(x, y - 1, bw, bl, radius) || !inRounded(x, y + 1, bw, bl, radius);
            const double across = 1.0 - std::abs(x - half) / (half + 1);
            c.set(a.x0 + x, a.y0 + y, edge ? OUTLINE : ramp(0.30 + 0.45 * across));
        }

    auto glass = [&](int top, int end, int insetTop, int insetBottom) {
        for (int y = top; y < end; ++y) {
            const double f = end - top > 1 ? double(y - top) / (end - top - 1) : 0;
            const int inset =
                static_cast<int>(std::lround(insetTop + (insetBottom - insetTop) * f));
            for (int x = a.x0 + inset; x < a.x0 + bw - inset; ++x)
                c.set(x, y, ((x + y + seed) % 5 == 0) ? GLASS : GLASS_DARK);
        }
    };
    auto roof = [&](int top, int end, double light) {
        for (int y = top; y < end; ++y)
            for (int x = a.x0 + 2; x < a.x0 + bw - 2; ++x) {
                const double across = 1.0 - std::abs(x - a.x0 - half) / (half + 1);
                c.set(x, y, ramp(light + 0.2 * across));
            }
    };

    double screen0 = 0.27, screen1 = 0.38, rear0 = 0.66, rear1 = 0.74;
    switch (kind) {
    case SPORTS:
        screen0 = 0.33, screen1 = 0.44, rear0 = 0.60, rear1 = 0.66;
        break;
    case CONVERTIBLE:
        screen0 = 0.30, screen1 = 0.36, rear0 = 0.70, rear1 = 0.70;
        break;
    case PICKUP:
        screen0 = 0.22, screen1 = 0.32, rear0 = 0.46, rear1 = 0.50;
        break;
    case VAN:
    case AMBULANCE:
        screen0 = 0.09, screen1 = 0.19, rear0 = 0.98, rear1 = 0.98;
        break;
    case FIRETRUCK:
    case TANKER:
    case TRUCK:
        screen0 = 0.04, screen1 = 0.11, rear0 = 0.21, rear1 = 0.21;
        break;
    case LIMO:
        screen0 = 0.22, screen1 = 0.30, rear0 = 0.74, rear1 = 0.80;
        break;
    case BUS:
        screen0 = 0.02, screen1 = 0.07, rear0 = 0.97, rear1 = 0.99;
        break;
    default:
        break;
    }
    a.screenTop = Y(screen0);
    a.screenEnd = Y(screen1);
    glass(Y(screen0), Y(screen1), 3, 2);
    if (kind == CONVERTIBLE) {
        c.rect(a.x0 + 2, Y(screen1), bw - 4, Y(rear0) - Y(screen1), INTERIOR);
        c.rect(a.x0 + 3, Y(0.45), bw / 2 - 4, 4, OUTLINE); // seats
        c.rect(a.x0 + bw / 2 + 1, Y(0.45), bw / 2 - 4, 4, OUTLINE);
    } else {
        roof(Y(screen1), Y(rear0), 0.62);
        if (rear1 > rear0) glass(Y(rear0), Y(rear1), 2, 3);
    }

    switch (kind) {
    case PICKUP:
        c.rect(a.x0 + 2, Y(0.54), bw - 4, Y(0.96) - Y(0.54), INTERIOR);
        for (int y = Y(0.58); y < Y(0.94); y += 4) c.rect(a.x0 + 3, y, bw - 6, 1, OUTLINE);
        break;
    case TAXI:
        c.rect(a.x0 + half - 2, Y(0.50), 5, 2, AMBER);
        break;
    case POLICE:
        c.rect(a.x0 + 2, Y(0.46), bw / 2 - 2, 2, BLUE_LIGHT);
        c.rect(a.x0 + bw / 2, Y(0.46), bw / 2 - 2, 2, RED_LIGHT);
        break;
    case AMBULANCE: {
        const int cx = a.x0 + bw / 2, cy = Y(0.55);
        c.rect(cx - 1, cy - 4, 3, 9, TAILLIGHT);
        c.rect(cx - 4, cy - 1, 9, 3, TAILLIGHT);
        c.rect(a.x0 + 2, Y(0.2), bw - 4, 1, BLUE_LIGHT);
        break;
    }
    case FIRETRUCK:
        for (int x : {a.x0 + 4, a.x0 + bw - 5}) c.rect(x, Y(0.26), 1, Y(0.95) - Y(0.26), CHROME);
        for (int y = Y(0.27); y < Y(0.95); y += 3) c.rect(a.x0 + 4, y, bw - 8, 1, CHROME);
        c.rect(a.x0 + 2, Y(0.12), bw - 4, 1, RED_LIGHT);
        break;
    case TANKER:
        c.rect(a.x0, Y(0.22), bw, 2, OUTLINE);
        for (int y = Y(0.26); y < Y(0.97); ++y)
            for (int x = a.x0 + 1; x < a.x0 + bw - 1; ++x) {
                const double across = 1.0 - std::abs(x - a.x0 - half) / (half + 1);
                c.set(x, y, ramp(0.15 + 0.85 * across * across));
            }
        for (double f : {0.40, 0.62, 0.84}) c.rect(a.x0 + 1, Y(f), bw - 2, 1, CHROME);
        break;
    case TRUCK:
        c.rect(a.x0, Y(0.22), bw, 2, OUTLINE);
        roof(Y(0.25), Y(0.97), 0.55);
        for (int y = Y(0.30); y < Y(0.95); y += 6) c.rect(a.x0 + 2, y, bw - 4, 1, ramp(0.35));
        break;
    case BUS:
        for (double f : {0.25, 0.55, 0.8}) c.rect(a.x0 + 4, Y(f), bw - 8, 3, CHROME);
        c.rect(a.x0 + 3, Y(0.38), bw - 6, 8, ramp(0.4));
        break;
    default:
        break;
    }

    // Lights.
    c.set(a.x0 + 1, a.y0 + 1, HEADLIGHT);
    c.set(a.x0 + 2, a.y0 + 1, HEADLIGHT);
    c.set(a.x0 + bw - 2, a.y0 + 1, HEADLIGHT);
    c.set(a.x0 + bw - 3, a.y0 + 1, HEADLIGHT);
    c.set(a.x0 + 1, a.y0 + bl - 2, TAILLIGHT);
    c.set(a.x0 + bw - 2, a.y0 + bl - 2, TAILLIGHT);

    if (kind == BURNT) {
        for (int y = 0; y < c.h; ++y)
            for (int x = 0; x < c.w; ++x) {
                const uint8_t v = c.get(x, y);
                if (v == CLEAR || v == TYRE || v == OUTLINE) continue;
                if (v == GLASS || v == GLASS_DARK) {
                    c.set(x, y, noise(seed, x, y) < 0.2 ? CHROME : INTERIOR);
                    continue;
                }
                const double patch = noise(seed, x / 3, y / 3), fine = noise(seed + 1, x, y);
                c.set(x, y, patch < 0.35 && fine < 0.7 ? RUST : ramp(0.06 + 0.18 * fine));
            }
    }

    a.doorLen = std::max(5, bl / 5);
    a.doorY = (kind == VAN || kind == AMBULANCE || kind >= FIRETRUCK) ? Y(screen1) : Y(screen1) + 1;
    if (kind == LIMO || kind == BUS) a.doorY = Y(0.34);
    return a;
}

// Damage at one corner: dented, darker paint with rust, broken lamp.
Canvas damaged(const CarArt& a, bool right, bool rear, int seed) {
    Canvas c = a.c;
    const int w = std::max(4, a.bw / 3), h = std::max(4, a.bl / 7);
    const int x0 = right ? a.x0 + a.bw - w : a.x0;
    const int y0 = rear ? a.y0 + a.bl - h : a.y0;
    for (int y = y0; y < y0 + h; ++y)
        for (int x = x0; x < x0 + w; ++x) {
            const uint8_t v = c.get(x, y);
            if (v == CLEAR || v == TYRE) continue;
            const double n = noise(seed, x, y);
            if (v == HEADLIGHT || v == TAILLIGHT)
                c.set(x, y, OUTLINE);
            else if (n < 0.35)
                c.set(x, y, RUST);
            else if (v >= kRampFirst)
                c.set(x, y, ramp(0.12 + 0.2 * n));
            else if (n > 0.8)
                c.set(x, y, INTERIOR);
        }
    return c;
}

Canvas smashedScreen(const CarArt& a, int seed) {
    Canvas c = a.c;
    const int cx = a.x0 + a.bw / 2 + static_cast<int>(noise(seed, 1, 2) * 4) - 2;
    const int cy = (a.screenTop + a.screenEnd) / 2;
    for (int y = a.screenTop; y < a.screenEnd; ++y)
        for (int x = a.x0; x < a.x0 + a.bw; ++x) {
            const uint8_t v = c.get(x, y);
            if (v != GLASS && v != GLASS_DARK) continue;
            const bool crack = std::abs(x - cx) == std::abs(y - cy) || x == cx || y == cy;
            c.set(x, y, crack ? WHITE : GLASS);
        }
    return c;
}

Canvas doorOpen(const CarArt& a, bool right) {
    Canvas c = a.c;
    const int hingeX = right ? a.x0 + a.bw - 1 : a.x0;
    const int inner = right ? hingeX - 1 : hingeX + 1;
    for (int y = a.doorY; y < a.doorY + a.doorLen; ++y) {
        c.set(hingeX, y, INTERIOR);
        c.set(inner, y, INTERIOR);
    }
    // The door swung out into the margin, hinge at its front end.
    const int dir = right ? 1 : -1;
    for (int k = 0; k < a.doorLen - 1; ++k) {
        const int x = hingeX + dir * (1 + (k * (kDoorMargin - 1)) / std::max(1, a.doorLen - 2));
        const int y = a.doorY + k;
        c.set(x, y, k == 0 ? OUTLINE : ramp(0.55));
    }
    return c;
}

Canvas drawBike(int seed) {
    Canvas c(9, 24);
    c.rect(3, 0, 3, 6, TYRE);
    c.rect(3, 18, 3, 6, TYRE);
    c.rect(4, 5, 1, 14, CHROME);
    c.rect(0, 5, 9, 1, CHROME); // handlebar
    c.ellipse(4.5, 9, 2.5, 3, ramp(0.7));
    c.ellipse(4.5, 13, 4, 2.5, ramp(0.45 + 0.1 * noise(seed, 0, 0))); // rider's jacket
    c.ellipse(4.5, 12.5, 2, 2, WHITE);                                // helmet
    c.set(0, 5, OUTLINE);
    c.set(8, 5, OUTLINE);
    return c;
}

Canvas drawTrain(bool engine, int w, int l) {
    Canvas c(w, l);
    c.rect(0, 0, w, l, ramp(0.5));
    for (int y = 0; y < l; ++y)
        for (int x = 1; x < w - 1; ++x) {
            const double across = 1.0 - std::abs(x - (w - 1) / 2.0) / (w / 2.0);
            c.set(x, y, ramp(0.35 + 0.4 * across));
        }
    if (engine) {
        c.rect(2, 1, w - 4, 5, GLASS_DARK);
        c.rect(0, 6, w, 3, AMBER);
        for (int y = 14; y < l - 8; y += 10) c.rect(4, y, w - 8, 6, CHROME);
    } else {
        for (int y = 8; y < l - 4; y += 12) c.rect(2, y, w - 4, 1, ramp(0.2));
        c.rect(w / 2 - 3, 0, 6, 2, OUTLINE);
        c.rect(w / 2 - 3, l - 2, 6, 2, OUTLINE);
    }
    c.outline();
    return c;
}

Canvas drawTram(int w, int l) {
    Canvas c(w, l);
    for (int y = 0; y < l; ++y)
        for (int x = 0; x < w; ++x) {
            if (!inRounded(x, y, w, l, 4)) continue;
            const double across = 1.0 - std::abs(x - (w - 1) / 2.0) / (w / 2.0);
            c.set(x, y, ramp(0.4 + 0.35 * across));
        }
    c.outline();
    c.rect(3, 1, w - 6, 4, GLASS_DARK);
    c.rect(3, l - 5, w - 6, 4, GLASS_DARK);
    for (int y = 10; y < l - 10; y += 8) {
        c.rect(1, y, 1, 5, GLASS);
        c.rect(w - 2, y, 1, 5, GLASS);
    }
    const int cx = w / 2, cy = l / 2;
    c.line(cx, cy - 10, cx - 6, cy, OUTLINE);
    c.line(cx - 6, cy, cx, cy + 10, OUTLINE);
    c.line(cx, cy + 10, cx + 6, cy, OUTLINE);
    c.line(cx + 6, cy, cx, cy - 10, OUTLINE);
    c.rect(cx - 3, cy - 14, 6, 2, CHROME);
    return c;
}

Canvas drawBoat(int w, int l) {
    Canvas c(w, l);
    const double W = w - 1;
    c.polygon({{W / 2, 0}, {W - 1, l * 0.28}, {W - 1, l - 6.0}, {1, l - 6.0}, {1, l * 0.28}},
              ramp(0.8));
    c.outline();
    c.polygon({{W / 2, 5}, {W - 4, l * 0.32}, {W - 4, l - 10.0}, {4, l - 10.0}, {4, l * 0.32}},
              RUST);
    c.rect(static_cast<int>(W / 2) - 4, l / 3, 9, l / 6, GLASS_DARK);
    c.rect(static_cast<int>(W / 2) - 4, l / 3 + l / 6, 9, l / 7, ramp(0.9));
    c.rect(static_cast<int>(W / 2) - 2, l - 6, 5, 5, OUTLINE); // outboard motor
    return c;
}

Canvas drawTank(int w, int l, bool turret) {
    Canvas c(w, l);
    const int track = turret ? 6 : 4;
    if (turret) {
        c.rect(0, 0, track, l, TYRE);
        c.rect(w - track, 0, track, l, TYRE);
        for (int y = 1; y < l; y += 3) {
            c.rect(0, y, track, 1, OUTLINE);
            c.rect(w - track, y, track, 1, OUTLINE);
        }
    } else {
        for (int k = 0; k < 4; ++k) {
            const int y = 4 + k * (l - 10) / 3;
            c.rect(0, y, 3, 6, TYRE);
            c.rect(w - 3, y, 3, 6, TYRE);
        }
    }
    for (int y = 3; y < l - 2; ++y)
        for (int x = track - 1; x < w - track + 1; ++x)
            c.set(x, y, ramp(0.3 + 0.3 * noise(7, x / 3, y / 3) * 0.3 + 0.15));
    for (int y = 3; y < l - 2; ++y) {
        c.set(track - 1, y, OUTLINE);
        c.set(w - track, y, OUTLINE);
    }
    c.rect(track - 1, 2, w - 2 * track + 2, 1, OUTLINE);
    c.rect(track - 1, l - 3, w - 2 * track + 2, 1, OUTLINE);
    if (turret) {
        const double cx = w / 2.0, cy = l * 0.56;
        c.ellipse(cx, cy, 8, 8, OUTLINE);
        c.ellipse(cx, cy, 7, 7, ramp(0.6));
        c.ellipse(cx - 2, cy - 2, 2, 2, ramp(0.8));
        c.rect(static_cast<int>(cx) - 1, 0, 2, static_cast<int>(cy) - 6, OUTLINE);
    } else {
        c.rect(w / 2 - 3, l / 3, 6, 6, OUTLINE);
        c.rect(w / 2 - 2, l / 3 + 1, 4, 4, ramp(0.7));
        c.rect(track + 1, 4, w - 2 * track - 2, 4, GLASS_DARK);
    }
    return c;
}

// ------------------------------------------------------------- small sprites

Canvas drawPed(int frame) {
    Canvas c(12, 14);
    const double phase = frame / 8.0 * 2 * std::numbers::pi;
    const int step = static_cast<int>(std::lround(2.5 * std::sin(phase)));
    c.rect(3, 8 + step, 2, 4, INTERIOR);
    c.rect(7, 8 - step, 2, 4, INTERIOR);
    c.rect(4, 11 + step, 1, 1, OUTLINE); // shoes
    c.rect(7, 11 - step, 1, 1, OUTLINE);
    c.ellipse(6, 7.5, 5, 2.4, ramp(0.55));
    c.ellipse(6, 7.0, 3, 1.2, ramp(0.8));
    c.rect(0, 6 - step, 2, 3, SKIN);
    c.rect(10, 6 + step, 2, 3, SKIN);
    c.ellipse(6, 5.5, 2.4, 2.4, (frame % 2) ? RUST : OUTLINE); // hair, seen from above
    return c;
}

Canvas drawArrow(int direction) {
    Canvas c(16, 16);
    const std::vector<std::pair<double, double>> up{{8, 1},    {14.5, 8}, {10.5, 8}, {10.5, 15},
                                                    {5.5, 15}, {5.5, 8},  {1.5, 8}};
    const double a = direction * std::numbers::pi / 4;
    std::vector<std::pair<double, double>> pts;
    for (auto [x, y] : up) {
        const double dx = x - 8, dy = y - 8;
        pts.emplace_back(8 + dx * std::cos(a) - dy * std::sin(a),
                         8 + dx * std::sin(a) + dy * std::cos(a));
    }
    c.polygon(pts, ramp(0.8));
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            if (c.get(x, y) != CLEAR) c.set(x, y, ramp(0.5 + 0.4 * (16 - y) / 16.0));
    c.outline();
    return c;
}

Canvas drawDigit(int d) {
    static const char* font[10] = {"111101101101111", "010110010010111", "111001111100111",
                                   "111001111001111", "101101111001001", "111100111001111",
                                   "111100111101111", "111001010010010", "111101111101111",
                                   "111101111001111"};
    Canvas c(8, 12);
    for (int row = 0; row < 5; ++row)
        for (int col = 0; col < 3; ++col)
            if (font[d][row * 3 + col] == '1') c.rect(1 + col * 2, 1 + row * 2, 2, 2, WHITE);
    Canvas edged = c;
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 8; ++x)
            if (c.get(x, y) == CLEAR && (c.get(x - 1, y) == WHITE || c.get(x + 1, y) == WHITE ||
                                         c.get(x, y - 1) == WHITE || c.get(x, y + 1) == WHITE))
                edged.set(x, y, OUTLINE);
    return edged;
}

Canvas drawTrafficLight(int state) {
    Canvas c(8, 20);
    c.rect(0, 0, 8, 20, ramp(0.25));
    c.outline();
    const uint8_t lit[3] = {RED_LIGHT, AMBER, LEAF};
    for (int k = 0; k < 3; ++k) {
        const bool on = (state == k) || (state == 3 && k < 2);
        c.ellipse(4, 4 + k * 6, 2.3, 2.3, on ? lit[k] : INTERIOR);
    }
    return c;
}

struct ObjectArt {
    Canvas c;
    int band = 0;
};

ObjectArt drawObject(int n) {
    const int design = n % 10, variant = n / 10;
    ObjectArt o;
    auto shade = [](Canvas& c, double cx, double cy, double r) {
        for (int y = 0; y < c.h; ++y)
            for (int x = 0; x < c.w; ++x)
                if (c.get(x, y) >= kRampFirst) {
                    const double d = std::hypot(x + 0.5 - cx, y + 0.5 - cy) / r;
                    c.set(x, y, ramp(0.85 - 0.5 * d));
                }
    };
    switch (design) {
    case 0: { // traffic cone
        const int s = 9 + variant;
        o.c = Canvas(s, s);
        o.c.ellipse(s / 2.0, s / 2.0, s / 2.0, s / 2.0, ramp(0.6));
        shade(o.c, s / 2.0 - 1, s / 2.0 - 1, s / 2.0);
        o.c.ellipse(s / 2.0, s / 2.0, s / 4.0, s / 4.0, WHITE);
        o.c.ellipse(s / 2.0, s / 2.0, 1, 1, ramp(0.9));
        o.band = ORANGE;
        break;
    }
    case 1: { // oil drum
        const int s = 12 + variant;
        o.c = Canvas(s, s);
        o.c.ellipse(s / 2.0, s / 2.0, s / 2.0, s / 2.0, ramp(0.5));
        shade(o.c, s / 2.0 - 2, s / 2.0 - 2, s / 2.0);
        o.c.outline();
        o.c.ellipse(s / 2.0, s / 2.0, s / 2.0 - 3, s / 2.0 - 3, OUTLINE);
        o.c.ellipse(s / 2.0, s / 2.0, s / 2.0 - 4, s / 2.0 - 4, ramp(0.6));
        o.c.set(s / 2 + 1, s / 2 - 2, CHROME);
        o.band = variant == 1 ? RED : BLUE;
        break;
    }
    case 2: { // crate
        const int s = 14 + 2 * variant;
        o.c = Canvas(s, s);
        o.c.rect(0, 0, s, s, ramp(0.35));
        for (int y = 2; y < s; y += 4) o.c.rect(1, y, s - 2, 1, ramp(0.2));
        o.c.line(1, 1, s - 2, s - 2, ramp(0.55));
        o.c.line(s - 2, 1, 1, s - 2, ramp(0.55));
        o.c.outline();
        o.band = ORANGE;
        break;
    }
    case 3: { // litter bin
        const int s = 11 + variant;
        o.c = Canvas(s, s);
        o.c.rect(1, 1, s - 2, s - 2, ramp(0.45));
        o.c.rect(2, s / 2, s - 4, 1, ramp(0.25));
        o.c.outline();
        o.band = GREEN;
        break;
    }
    case 4: { // tree
        const int s = 20 + 2 * variant;
        o.c = Canvas(s, s);
        for (int y = 0; y < s; ++y)
            for (int x = 0; x < s; ++x) {
                const double d = std::hypot(x + 0.5 - s / 2.0, y + 0.5 - s / 2.0);
                const double edge = s / 2.0 - 1.5 * noise(n, x / 3, y / 3);
                if (d > edge) continue;
                const double lit = 0.75 - 0.55 * d / (s / 2.0) + 0.2 * noise(n, x, y);
                o.c.set(x, y, noise(n + 5, x, y) > 0.9 ? LEAF : ramp(lit));
            }
        o.band = GREEN;
        break;
    }
    case 5: { // bench
        o.c = Canvas(20 + 2 * variant, 8);
        for (int y = 1; y < 7; y += 2) o.c.rect(1, y, o.c.w - 2, 1, ramp(0.5));
        o.c.rect(0, 0, 1, 8, CHROME);
        o.c.rect(o.c.w - 1, 0, 1, 8, CHROME);
        o.band = ORANGE;
        break;
    }
    case 6: { // phone box
        o.c = Canvas(12, 12);
        o.c.rect(0, 0, 12, 12, ramp(0.45));
        o.c.rect(2, 2, 8, 8, ramp(0.65));
        o.c.rect(4, 4, 4, 4, GLASS);
        o.c.outline();
        o.band = RED;
        break;
    }
    case 7: { // hydrant
        o.c = Canvas(7, 7);
        o.c.ellipse(3.5, 3.5, 3.5, 3.5, ramp(0.6));
        o.c.rect(0, 3, 7, 1, CHROME);
        o.c.set(3, 3, ramp(0.95));
        o.band = variant == 2 ? YELLOW : RED;
        break;
    }
    case 8: { // street lamp
        o.c = Canvas(14, 6);
        o.c.ellipse(3, 3, 3, 3, ramp(0.4));
        o.c.rect(3, 2, 9, 2, ramp(0.6));
        o.c.rect(11, 1, 3, 4, HEADLIGHT);
        o.band = SILVER;
        break;
    }
    default: { // skip full of rubble
        o.c = Canvas(16, 24);
        o.c.rect(0, 0, 16, 24, ramp(0.55));
        for (int y = 2; y < 22; ++y)
            for (int x = 2; x < 14; ++x) {
                const double r = noise(n, x, y);
                o.c.set(x, y, r < 0.3 ? RUST : (r < 0.5 ? CHROME : (r < 0.8 ? INTERIOR : OUTLINE)));
            }
        o.c.outline();
        o.band = YELLOW;
        break;
    }
    }
    return o;
}

Canvas drawExplosion(int frame, int seed) {
    const int s = 20 + frame * 4;
    Canvas c(s, s);
    const double r = s / 2.0;
    for (int y = 0; y < s; ++y)
        for (int x = 0; x < s; ++x) {
            const double d = std::hypot(x + 0.5 - r, y + 0.5 - r) / r;
            const double edge = 0.75 + 0.25 * noise(seed + frame, x / 2, y / 2);
            if (d > edge) continue;
            if (d < 0.2 - 0.04 * frame)
                c.set(x, y, WHITE);
            else if (d > edge - 0.15)
                c.set(x, y, noise(seed, x, y) < 0.5 ? OUTLINE : INTERIOR);
            else
                c.set(x, y, ramp(1.0 - 0.8 * d + 0.1 * noise(seed + 1, x, y)));
        }
    return c;
}

// ------------------------------------------------------------- tiles

enum TileKind {
    BRICK,
    CONCRETE,
    OFFICE,
    ROAD,
    ROAD_LANE,
    ROAD_KERB,
    ZEBRA,
    PAVEMENT,
    GRASS,
    ROOF_FLAT,
    ROOF_TILES,
    PARKING,
    WATER,
    SAND,
    RAIL,
    TILE_KIND_COUNT
};

int tileBand(TileKind k) {
    switch (k) {
    case BRICK:
        return RED;
    case CONCRETE:
        return SILVER;
    case OFFICE:
        return BLUE;
    case ROAD:
    case ROAD_LANE:
    case ROAD_KERB:
    case ZEBRA:
    case PARKING:
        return CHARCOAL;
    case PAVEMENT:
        return SILVER;
    case GRASS:
        return GREEN;
    case ROOF_FLAT:
        return ORANGE;
    case ROOF_TILES:
        return RED;
    case WATER:
        return BLUE;
    case SAND:
        return YELLOW;
    case RAIL:
        return SILVER;
    default:
        return CHARCOAL;
    }
}

uint8_t tileCode(TileKind k, int seed, int x, int y) {
    const double n = noise(seed, x, y);
    switch (k) {
    case BRICK: {
        const int row = y / 8;
        const int bx = (x + (row % 2) * 8) % 16;
        if (y % 8 == 7 || bx == 15) return ramp(0.85);
        return ramp(0.42 + 0.15 * noise(seed, (x + (row % 2) * 8) / 16, row) + 0.05 * n);
    }
    case CONCRETE:
        if (x % 32 == 0 || y % 32 == 0) return ramp(0.35);
        return ramp(0.55 + 0.1 * n);
    case OFFICE:
        if (x % 16 < 2 || y % 16 < 2) return CHROME;
        return ramp(0.35 + 0.4 * (y % 16) / 16.0 + 0.05 * n);
    case ROAD_LANE:
        if (x >= 30 && x < 34 && y % 32 < 18) return WHITE;
        return ramp(0.33 + 0.1 * n);
    case ROAD_KERB:
        if (x < 4) return x == 3 ? OUTLINE : CHROME;
        return ramp(0.33 + 0.1 * n);
    case ZEBRA:
        if (y >= 8 && y < 56 && (x / 6) % 2 == 0) return WHITE;
        return ramp(0.33 + 0.1 * n);
    case PARKING:
        if (x % 21 == 0 && y < 40) return WHITE;
        return ramp(0.33 + 0.1 * n);
    case ROAD:
        return ramp(0.33 + 0.1 * n);
    case PAVEMENT:
        if (x % 16 == 0 || y % 16 == 0) return ramp(0.45);
        return ramp(0.68 + 0.06 * n);
    case GRASS:
        return n > 0.97 ? LEAF : ramp(0.3 + 0.3 * n + 0.1 * noise(seed, x / 8, y / 8));
    case ROOF_FLAT:
        if (x < 3 || y < 3 || x > 60 || y > 60) return ramp(0.7);
        if (x > 40 && x < 52 && y > 10 && y < 22) return CHROME;
        return ramp(0.3 + 0.06 * n);
    case ROOF_TILES:
        return ramp((y % 6 < 2 ? 0.3 : 0.48) + 0.06 * n);
    case WATER: {
        const double wave = std::sin(x * 0.3 + y * 0.2 + seed) * 0.5 + 0.5;
        return n > 0.985 ? WHITE : ramp(0.35 + 0.2 * wave);
    }
    case SAND:
        return ramp(0.62 + 0.12 * n);
    case RAIL:
        if (x == 20 || x == 21 || x == 43 || x == 44) return CHROME;
        if (y % 8 < 3 && x >= 12 && x < 53) return RUST;
        return ramp(0.3 + 0.25 * n);
    default:
        return ramp(0.5);
    }
}

struct TileSet {
    std::vector<TileKind> kinds; // per tile
    std::vector<uint8_t> codes;  // 4096 per tile, x fastest
};

TileSet makeTiles(int side, int lid, int aux, int seed) {
    static const TileKind sideKinds[] = {BRICK, CONCRETE, OFFICE};
    static const TileKind lidKinds[] = {ROAD,  ROAD_LANE, ROAD_KERB,  PAVEMENT, GRASS,
                                        ZEBRA, ROOF_FLAT, ROOF_TILES, PARKING};
    static const TileKind auxKinds[] = {WATER, SAND, RAIL};
    TileSet t;
    for (int i = 0; i < side; ++i) t.kinds.push_back(sideKinds[i % 3]);
    for (int i = 0; i < lid; ++i) t.kinds.push_back(lidKinds[i % 9]);
    for (int i = 0; i < aux; ++i) t.kinds.push_back(auxKinds[i % 3]);
    // Four looks of each kind, reused, as a level's tiles repeat too.
    t.codes.resize(t.kinds.size() * kTileBytes);
    std::map<std::pair<int, int>, std::size_t> drawn;
    for (std::size_t i = 0; i < t.kinds.size(); ++i) {
        const int look = static_cast<int>(i % 4);
        const auto [it, fresh] = drawn.try_emplace({t.kinds[i], look}, i);
        uint8_t* out = t.codes.data() + i * kTileBytes;
        if (!fresh) {
            std::copy_n(t.codes.data() + it->second * kTileBytes, kTileBytes, out);
            continue;
        }
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x) out[y * 64 + x] = tileCode(t.kinds[i], seed + look, x, y);
    }
    return t;
}

// ============================================================== levels

struct VehicleDef {
    int model;
    CarKind kind;
    int bw, bl;
    Rgb colour;
    int band;
    uint8_t vtype;
    int doors;
};

// One sprite as drawn, before it is placed on a page.
struct Art {
    SpriteType type = SPR_OBJECT;
    Canvas canvas;
    std::vector<Canvas> deltas; // the sprite as each delta leaves it
    int band = 0;               // .GRY palette band
    int clut = 0;               // .G24 sprite clut (virtual, relative to the sprite CLUTs)
    int vehicle = -1;           // index into the level's vehicles
    int group = 0;              // sprites of a new group start on a new page (sample only)
    int page = 0, x = 0, y = 0;
};

struct Level {
    TileSet tiles;
    int sideTiles = 0, lidTiles = 0, auxTiles = 0;
    std::vector<Art> art;
    std::vector<Rgb> spriteClutColours; // base colour of each virtual sprite clut
    std::vector<VehicleDef> vehicles;
    std::vector<std::array<std::array<int16_t, 3>, 12>> remaps; // per vehicle
    std::vector<std::vector<DoorSpec>> doors;                   // per vehicle (deltas are relative)
    int pedClutFirst = 0, pedKinds = 0;
    int tileTints = 1; // > 1: tiles of one colour get that many tinted CLUTs
};

int addSpriteClut(Level& lv, Rgb colour) {
    lv.spriteClutColours.push_back(colour);
    return static_cast<int>(lv.spriteClutColours.size()) - 1;
}

Rgb tint(int band, int variant) {
    const Rgb b = kBandColours[band];
    const double k = 0.8 + 0.12 * (variant % 4);
    return hsvRemap(scaled(b, k), (variant * 7) % 21 - 10, 0);
}

// Vehicles: art, deltas and doors. Cars get 4 corner damages, a smashed windscreen and a delta per
// door; the records' doors refer to the door deltas.
void addVehicles(Level& lv, const std::vector<VehicleDef>& defs, int group, int seed) {
    for (const auto& v : defs) {
        const int vi = static_cast<int>(lv.vehicles.size());
        lv.vehicles.push_back(v);
        Art a;
        a.vehicle = vi;
        a.group = group;
        a.band = v.band;
        a.clut = addSpriteClut(lv, v.colour);
        std::vector<DoorSpec> doors;
        const int s = seed + vi * 31;
        a.type = static_cast<SpriteType>(spriteTypeOfVtype(v.vtype));
        switch (v.kind) {
        case MOTORBIKE:
            a.canvas = drawBike(s);
            break;
        case LOCOMOTIVE:
        case CARRIAGE:
            a.canvas = drawTrain(v.kind == LOCOMOTIVE, v.bw, v.bl);
            break;
        case TRAMCAR:
            a.canvas = drawTram(v.bw, v.bl);
            break;
        case MOTORBOAT:
            a.canvas = drawBoat(v.bw, v.bl);
            break;
        case TANK:
        case APC:
            a.canvas = drawTank(v.bw, v.bl, v.kind == TANK);
            break;
        case BUS:
        case TRUCK: {
            const CarArt c = drawCar(v.kind, v.bw, v.bl, s);
            a.canvas = c.c;
            a.deltas = {damaged(c, false, false, s), damaged(c, true, false, s + 1)};
            break;
        }
        default: {
            const CarArt c = drawCar(v.kind, v.bw, v.bl, s);
            a.canvas = c.c;
            for (int corner = 0; corner < 4; ++corner)
                a.deltas.push_back(damaged(c, corner % 2 == 1, corner >= 2, s + corner));
            a.deltas.push_back(smashedScreen(c, s));
            const int centreY = c.y0 + v.bl / 2;
            for (int d = 0; d < v.doors; ++d) {
                const bool right = d == 1;
                DoorSpec door;
                door.rpx = static_cast<int16_t>(right ? v.bw / 2 : -v.bw / 2);
                door.rpy = static_cast<int16_t>(c.doorY + c.doorLen / 2 - centreY);
                door.object = static_cast<int16_t>(60 + d);
                door.delta = static_cast<int16_t>(a.deltas.size());
                doors.push_back(door);
                a.deltas.push_back(doorOpen(c, right));
            }
            break;
        }
        }
        std::array<std::array<int16_t, 3>, 12> remap{};
        for (int j = 1; j < 12; ++j) {
            const int k = j < 8 ? j : j - 8; // entries 8..11 repeat 0..3
            remap[j] = {static_cast<int16_t>((k * 45 + vi * 10) % 360 * (k ? 1 : 0)), 0,
                        static_cast<int16_t>(k ? (k % 3 - 1) * 20 : 0)};
        }
        lv.remaps.push_back(remap);
        lv.doors.push_back(doors);
        lv.art.push_back(std::move(a));
    }
}

void addPeds(Level& lv, int kinds, int frames, int group) {
    static const int shirtBands[] = {BLUE, RED, GREEN, PURPLE, YELLOW, ORANGE, SILVER, CHARCOAL};
    lv.pedClutFirst = static_cast<int>(lv.spriteClutColours.size());
    lv.pedKinds = kinds;
    for (int k = 0; k < kinds; ++k) {
        const int band = shirtBands[k % 8];
        const int clut = addSpriteClut(lv, tint(band, k / 8));
        for (int f = 0; f < frames; ++f) {
            Art a;
            a.type = SPR_PED;
            a.canvas = drawPed(f);
            a.band = band;
            a.clut = clut;
            a.group = group;
            lv.art.push_back(std::move(a));
        }
    }
}

void addSmallSprites(Level& lv, int arrows, int digits, int lights, int group) {
    const int arrowClut = addSpriteClut(lv, kBandColours[YELLOW]);
    const int digitClut = addSpriteClut(lv, kBandColours[SILVER]);
    const int lightClut = addSpriteClut(lv, kBandColours[CHARCOAL]);
    auto add = [&](SpriteType type, Canvas c, int band, int clut) {
        Art a;
        a.type = type;
        a.canvas = std::move(c);
        a.band = band;
        a.clut = clut;
        a.group = group;
        lv.art.push_back(std::move(a));
    };
    for (int i = 0; i < arrows; ++i) add(SPR_ARROW, drawArrow(i % 8), YELLOW, arrowClut);
    for (int i = 0; i < digits; ++i) add(SPR_DIGITS, drawDigit(i % 10), SILVER, digitClut);
    for (int i = 0; i < lights; ++i)
        add(SPR_TRAFFIC_LIGHTS, drawTrafficLight(i % 4), CHARCOAL, lightClut);
}

void addObjects(Level& lv, int objects, int explosions, int wrecks, int group, int seed) {
    std::map<int, int> bandClut;
    for (int i = 0; i < objects; ++i) {
        ObjectArt o = drawObject(i % 30);
        // A level with many objects gives them a few shades per colour, each with its own CLUT.
        const int shade = objects > 100 ? i % 20 : 0;
        const int key = o.band * 100 + shade;
        if (!bandClut.count(key))
            bandClut[key] = addSpriteClut(lv, shade ? tint(o.band, shade) : kBandColours[o.band]);
        Art a;
        a.type = SPR_OBJECT;
        a.canvas = std::move(o.c);
        a.band = o.band;
        a.clut = bandClut[key];
        a.group = group;
        lv.art.push_back(std::move(a));
    }
    const int fireClut = addSpriteClut(lv, kBandColours[ORANGE]);
    for (int i = 0; i < explosions; ++i) {
        Art a;
        a.type = SPR_EX;
        a.canvas = drawExplosion(i % 4, seed + i);
        a.band = ORANGE;
        a.clut = fireClut;
        a.group = group;
        lv.art.push_back(std::move(a));
    }
    const int burntClut = addSpriteClut(lv, kBandColours[CHARCOAL]);
    for (int i = 0; i < wrecks; ++i) {
        Art a;
        a.type = SPR_TUMCAR;
        a.canvas = drawCar(BURNT, 16 + (i % 3) * 2, 34 + (i % 4) * 4, seed + 100 + i).c;
        a.band = CHARCOAL;
        a.clut = burntClut;
        a.group = group;
        lv.art.push_back(std::move(a));
    }
}

// Shelf packing, 2 pixels apart; a new group starts a new page.
void packByGroup(Level& lv) {
    int page = 0, x = 0, y = 0, shelf = 0, group = lv.art.empty() ? 0 : lv.art[0].group;
    constexpr int gap = 2;
    for (auto& a : lv.art) {
        if (a.group != group) {
            group = a.group;
            if (x > 0 || y > 0) ++page, x = y = shelf = 0;
        }
        if (x + a.canvas.w > 256) x = 0, y += shelf + gap, shelf = 0;
        if (y + a.canvas.h > 256) ++page, x = y = shelf = 0;
        a.page = page, a.x = x, a.y = y;
        x += a.canvas.w + gap;
        shelf = std::max(shelf, a.canvas.h);
    }
}

// Spreads the sprites over `pages` pages: dealt out in turn, each page packed tallest first; what
// does not fit moves on to the next page.
void packSpread(Level& lv, int pages) {
    std::vector<std::vector<int>> bins(pages);
    for (std::size_t i = 0; i < lv.art.size(); ++i) bins[i % pages].push_back(static_cast<int>(i));
    constexpr int gap = 2;
    for (int p = 0; p < pages; ++p) {
        auto& bin = bins[p];
        std::stable_sort(bin.begin(), bin.end(),
                         [&](int a, int b) { return lv.art[a].canvas.h > lv.art[b].canvas.h; });
        int x = 0, y = 0, shelf = 0;
        for (int i : bin) {
            Art& a = lv.art[i];
            if (x + a.canvas.w > 256) x = 0, y += shelf + gap, shelf = 0;
            if (y + a.canvas.h > 256) {
                if (p + 1 == pages)
                    throw std::logic_error("full-size level does not fit its pages");
                bins[p + 1].push_back(i);
                continue;
            }
            a.page = p, a.x = x, a.y = y;
            x += a.canvas.w + gap;
            shelf = std::max(shelf, a.canvas.h);
        }
    }
}

CarSpec carRecord(const VehicleDef& v, int sprNum, const Art& a,
                  const std::array<std::array<int16_t, 3>, 12>& remap,
                  const std::vector<DoorSpec>& doors, int index) {
    CarSpec c;
    c.width = static_cast<int16_t>(v.bw);
    c.height = static_cast<int16_t>(v.bl);
    c.depth = static_cast<int16_t>(v.vtype == 0 || v.vtype == 8 || v.vtype == 9 ? 48 : 20);
    c.spr_num = static_cast<int16_t>(sprNum);
    const double mass = v.bw * v.bl / 700.0; // about 1 for a family car
    c.weight = static_cast<int16_t>(std::lround(1200 * mass));
    const bool fast = v.kind == SPORTS || v.kind == CONVERTIBLE || v.vtype == 3;
    c.max_speed = static_cast<int16_t>(fast ? 48 : (mass > 1.6 ? 26 : 36));
    c.min_speed = static_cast<int16_t>(-c.max_speed / 4);
    c.acceleration = static_cast<int16_t>(fast ? 11 : (mass > 1.6 ? 4 : 8));
    c.braking = static_cast<int16_t>(mass > 1.6 ? 6 : 12);
    c.grip = static_cast<int16_t>(fast ? 11 : 8);
    c.handling = static_cast<int16_t>(fast ? 10 : (mass > 1.6 ? 4 : 7));
    c.remap24 = remap;
    for (int j = 0; j < 12; ++j)
        c.remap8[j] = static_cast<uint8_t>(
            j == 0 ? 0 : kRampFirst + ((v.band + j) % BAND_COUNT) * kBandLevels + 20);
    c.vtype = v.vtype;
    c.model = static_cast<uint8_t>(v.model);
    c.turning = static_cast<uint8_t>(fast ? 16 : 12);
    c.damagable = v.vtype == 14 ? 0 : 1;
    const int16_t base = static_cast<int16_t>(fast ? 40 : 10 + 5 * (index % 4));
    c.value = {base, static_cast<int16_t>(base * 3 / 2), static_cast<int16_t>(base * 2),
               static_cast<int16_t>(base * 5 / 2)};
    c.cx = static_cast<uint8_t>(a.canvas.w / 2);
    c.cy = static_cast<uint8_t>(a.canvas.h / 2);
    auto fixed = [](double real) { return static_cast<int32_t>(std::lround(real * 65536)); };
    c.moment = fixed(3.5 * mass);
    c.rbp_mass = fixed(1.2 * mass);
    c.g1_thrust = fixed(fast ? 0.4 : 0.25);
    c.tyre_adhesion_x = fixed(fast ? 1.0 : 0.9);
    c.tyre_adhesion_y = fixed(fast ? 0.8 : 0.7);
    c.handbrake_friction = fixed(0.4);
    c.footbrake_friction = fixed(0.6);
    c.front_brake_bias = fixed(0.6);
    c.turn_ratio = static_cast<int16_t>(fast ? 360 : 300);
    c.drive_wheel_offset = static_cast<int16_t>(v.bl / 4);
    c.steering_wheel_offset = static_cast<int16_t>(-v.bl / 4);
    c.back_end_slide_value = fixed(fast ? 0.35 : 0.25);
    c.handbrake_slide_value = fixed(0.75);
    c.convertible = v.kind == CONVERTIBLE ? 1 : 0;
    c.engine = static_cast<uint8_t>(v.vtype == 3 ? 2 : (mass > 1.6 ? 3 : 1));
    c.radio = static_cast<uint8_t>(1 + index % 5);
    c.horn = static_cast<uint8_t>(v.kind == POLICE || v.kind == AMBULANCE ? 4 : 3);
    c.sound_function = static_cast<uint8_t>(
        v.kind == POLICE || v.kind == AMBULANCE || v.kind == FIRETRUCK ? 1 : 0);
    c.fast_change_flag = 0;
    c.doors = doors;
    return c;
}

// Turns the drawn level into a style description. Sprites go into the file type after type; the
// car records follow the sprite order.
StyleSpec describeStyle(const Level& lv, bool is24, int pageCount) {
    StyleSpec s;
    s.is24 = is24;
    s.sideTiles = lv.sideTiles;
    s.lidTiles = lv.lidTiles;
    s.auxTiles = lv.auxTiles;
    s.pageCount = pageCount;
    std::vector<int> bands;
    for (TileKind k : lv.tiles.kinds) bands.push_back(tileBand(k));
    s.tileData = lv.tiles.codes;
    if (!is24) {
        for (std::size_t i = 0; i < s.tileData.size(); ++i)
            s.tileData[i] = toGry(s.tileData[i], bands[i / kTileBytes]);
        s.palette8 = gryPalette();
    }

    std::vector<int> order(lv.art.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return lv.art[a].type < lv.art[b].type; });

    SpriteNumbers counts{};
    std::vector<int> relative(lv.art.size());
    for (int i : order) relative[i] = counts[lv.art[i].type]++;
    s.spriteNumbers = counts;

    for (int i : order) {
        const Art& a = lv.art[i];
        SpriteSpec sp;
        sp.type = a.type;
        sp.page = a.page;
        sp.x = a.x;
        sp.y = a.y;
        sp.w = a.canvas.w;
        sp.h = a.canvas.h;
        sp.clut = a.clut;
        sp.pixels = a.canvas.px;
        for (const Canvas& after : a.deltas)
            sp.deltas.push_back(deltaFromDiff(a.canvas.px, after.px, a.canvas.w, a.canvas.h));
        if (!is24) {
            for (auto& p : sp.pixels) p = toGry(p, a.band);
            for (auto& d : sp.deltas)
                for (auto& r : d.runs)
                    for (auto& p : r.data) p = toGry(p, a.band);
        }
        s.sprites.push_back(std::move(sp));
        if (a.vehicle >= 0) {
            const int v = a.vehicle;
            s.cars.push_back(carRecord(lv.vehicles[v], relative[i], a, lv.remaps[v], lv.doors[v],
                                       static_cast<int>(s.cars.size())));
        }
    }
    if (!is24) return s;

    // Physical CLUTs: tiles (4 lighting levels per band), sprites, car remaps, ped remaps, font.
    std::map<std::tuple<int, int, int>, int> tileCluts;
    for (std::size_t t = 0; t < bands.size(); ++t) {
        const int b = bands[t];
        const int tone = lv.tileTints > 1 ? static_cast<int>(t) % lv.tileTints : -1;
        for (int light = 0; light < 4; ++light) {
            auto [it, fresh] = tileCluts.try_emplace({b, tone, light}, 0);
            if (fresh) {
                it->second = static_cast<int>(s.cluts.size());
                const Rgb colour = tone < 0 ? kBandColours[b] : tint(b, tone);
                s.cluts.push_back(makeClut(colour, 1.0 - 0.15 * light));
            }
            s.paletteIndex.push_back(static_cast<int16_t>(it->second));
        }
    }

    std::vector<int> spritePhysical;
    for (const Rgb& c : lv.spriteClutColours) {
        spritePhysical.push_back(static_cast<int>(s.cluts.size()));
        s.paletteIndex.push_back(static_cast<int16_t>(s.cluts.size()));
        s.cluts.push_back(makeClut(c));
    }

    std::map<std::tuple<int, int, int>, int> remapped;
    auto remapOf = [&](int physical, int h, int sat) {
        if (h == 0 && sat == 0) return physical;
        auto [it, fresh] = remapped.try_emplace({physical, h, sat}, 0);
        if (fresh) {
            it->second = static_cast<int>(s.cluts.size());
            s.cluts.push_back(remapClut(s.cluts[physical], h, sat));
        }
        return it->second;
    };
    for (int i : order) {
        const Art& a = lv.art[i];
        if (a.vehicle < 0) continue;
        for (const auto& r : lv.remaps[a.vehicle])
            s.paletteIndex.push_back(
                static_cast<int16_t>(remapOf(spritePhysical[a.clut], r[0], r[2])));
    }
    const int pedBases = std::min(lv.pedKinds, 16);
    for (int j = 0; j < 64; ++j) {
        const int base = spritePhysical[lv.pedClutFirst + j % pedBases];
        s.paletteIndex.push_back(static_cast<int16_t>(remapOf(base, (j / pedBases) % 4 * 90, 0)));
    }
    const int fontWhite = static_cast<int>(s.cluts.size());
    s.cluts.push_back(makeClut(kBandColours[SILVER]));
    s.cluts.push_back(makeClut(kBandColours[YELLOW]));
    for (int j = 0; j < 8; ++j) s.paletteIndex.push_back(static_cast<int16_t>(fontWhite + j % 2));

    const int tileEntries = 4 * static_cast<int>(bands.size());
    const int spriteEntries = static_cast<int>(lv.spriteClutColours.size());
    s.tileclutSize = tileEntries * kClutBytes;
    s.spriteclutSize = spriteEntries * kClutBytes;
    s.newcarclutSize = (12 * static_cast<int>(s.cars.size()) + 64) * kClutBytes;
    s.fontclutSize = 8 * kClutBytes;
    return s;
}

// The sample's 38 vehicles: 27 cars, 3 buses, 2 bikes, 2 trains, a tram, a boat and 2 tanks.
std::vector<VehicleDef> sampleCars() {
    struct Row {
        int model;
        CarKind kind;
        int bw, bl, band;
        uint8_t vtype;
        int doors;
    };
    static const Row rows[] = {
        {0, SPORTS, 16, 36, RED, 4, 2},         {1, BUG, 14, 28, YELLOW, 4, 2},
        {2, SPORTS, 16, 36, PURPLE, 4, 2},      {4, POLICE, 16, 38, SILVER, 1, 2},
        {5, AMBULANCE, 18, 44, SILVER, 2, 2},   {6, VAN, 18, 40, ORANGE, 4, 1},
        {10, PICKUP, 18, 44, YELLOW, 4, 1},     {14, SPORTS, 16, 34, GREEN, 4, 2},
        {17, SPORTS, 16, 36, RED, 4, 2},        {18, SEDAN, 16, 36, BLUE, 4, 2},
        {19, PICKUP, 18, 38, GREEN, 4, 2},      {21, SEDAN, 16, 38, ORANGE, 4, 2},
        {22, TAXI, 16, 38, YELLOW, 4, 2},       {25, SEDAN, 16, 38, CHARCOAL, 4, 2},
        {26, SPORTS, 16, 36, SILVER, 4, 2},     {27, PICKUP, 16, 38, RED, 4, 1},
        {28, BUG, 15, 32, BLUE, 4, 2},          {29, SEDAN, 16, 36, SILVER, 4, 2},
        {31, VAN, 18, 36, GREEN, 4, 1},         {35, LIMO, 16, 52, CHARCOAL, 4, 2},
        {42, FIRETRUCK, 20, 58, RED, 2, 2},     {44, TANKER, 20, 60, SILVER, 4, 1},
        {45, VAN, 18, 40, BLUE, 4, 1},          {46, VAN, 18, 40, SILVER, 4, 1},
        {50, CONVERTIBLE, 16, 34, RED, 4, 2},   {51, VAN, 18, 40, PURPLE, 4, 1},
        {55, CONVERTIBLE, 16, 36, GREEN, 4, 2}, {9, BUS, 22, 74, SILVER, 0, 0},
        {43, BUS, 22, 72, RED, 0, 0},           {33, TRUCK, 22, 70, ORANGE, 0, 0},
        {3, MOTORBIKE, 9, 24, RED, 3, 0},       {41, MOTORBIKE, 9, 24, BLUE, 3, 0},
        {11, LOCOMOTIVE, 26, 96, YELLOW, 8, 0}, {11, CARRIAGE, 26, 96, SILVER, 8, 0},
        {12, TRAMCAR, 24, 90, GREEN, 9, 0},     {13, MOTORBOAT, 24, 56, SILVER, 13, 0},
        {37, TANK, 30, 52, GREEN, 14, 0},       {36, APC, 26, 46, CHARCOAL, 14, 0},
    };
    std::vector<VehicleDef> defs;
    int i = 0;
    for (const Row& r : rows)
        defs.push_back({r.model, r.kind, r.bw, r.bl, tint(r.band, i++), r.band, r.vtype, r.doors});
    return defs;
}

Level sampleLevel() {
    Level lv;
    lv.sideTiles = 12;
    lv.lidTiles = 10;
    lv.auxTiles = 3;
    lv.tiles = makeTiles(lv.sideTiles, lv.lidTiles, lv.auxTiles, 1);
    const auto defs = sampleCars();
    // Page 0: cars and wrecks; page 1: big vehicles and bikes; page 2: peds, arrows, digits,
    // lights; page 3: objects and explosions.
    addVehicles(lv, std::vector<VehicleDef>(defs.begin(), defs.begin() + 27), 0, 11);
    addObjects(lv, 0, 0, 4, 0, 500);
    addVehicles(lv, std::vector<VehicleDef>(defs.begin() + 27, defs.end()), 1, 41);
    addPeds(lv, 4, 8, 2);
    addSmallSprites(lv, 8, 10, 4, 2);
    addObjects(lv, 30, 4, 0, 3, 900);
    packByGroup(lv);
    return lv;
}

int highestPage(const Level& lv) {
    int p = 0;
    for (const auto& a : lv.art) p = std::max(p, a.page);
    return p;
}

// ------------------------------------------------------------- sounds

std::vector<uint8_t> synth(double seconds, int rate, const std::function<double(double)>& wave) {
    std::vector<uint8_t> out(static_cast<std::size_t>(seconds * rate));
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = double(i) / rate;
        const double fade = std::min({1.0, t / 0.01, (seconds - t) / 0.02});
        out[i] = clampByte(128 + 110 * fade * std::clamp(wave(t), -1.0, 1.0));
    }
    return out;
}

double saw(double phase) {
    return 2 * (phase - std::floor(phase + 0.5));
}
double square(double phase) {
    return std::sin(2 * std::numbers::pi * phase) >= 0 ? 0.6 : -0.6;
}

} // namespace

// ============================================================== public

StyleSpec sampleSpec24() {
    const Level lv = sampleLevel();
    return describeStyle(lv, true, highestPage(lv) + 1);
}

StyleSpec sampleSpec8() {
    const Level lv = sampleLevel();
    return describeStyle(lv, false, highestPage(lv) + 1);
}

StyleSpec fullSizeSpec24() {
    Level lv;
    lv.sideTiles = 195;
    lv.lidTiles = 154;
    lv.auxTiles = 37;
    lv.tiles = makeTiles(lv.sideTiles, lv.lidTiles, lv.auxTiles, 3);
    lv.tileTints = 20;
    const auto sample = sampleCars();
    std::vector<VehicleDef> cars(sample.begin(), sample.begin() + 27);
    // The 38 recorded vehicles first, then more car sprites without records, as real levels have.
    addVehicles(lv, sample, 0, 7);
    std::vector<Art> extra;
    {
        Level more;
        std::vector<VehicleDef> defs;
        for (int i = 0; i < 40; ++i) {
            VehicleDef v = cars[i % cars.size()];
            v.colour = tint(v.band, i + 3);
            defs.push_back(v);
        }
        addVehicles(more, defs, 0, 77);
        for (auto& a : more.art) {
            a.vehicle = -1;
            a.clut = addSpriteClut(lv, more.spriteClutColours[a.clut]);
            lv.art.push_back(std::move(a));
        }
    }
    addPeds(lv, 150, 8, 0);
    addSmallSprites(lv, 49, 10, 6, 0);
    addObjects(lv, 1500, 48, 48, 0, 1234);
    packSpread(lv, 26);
    return describeStyle(lv, true, 26);
}

std::vector<std::pair<int, std::string>> sampleCarNames() {
    // By model number, '|' between them, empty where the level has no such model. Model 43 is
    // named differently from the editor's built-in names, so tests can tell which names loaded.
    const std::string all =
        "Beast GTS|Bug|Counthash|Bike|Squad Car|Ambulance|Repair Van|Juggernaut|Juggernaut|"
        "Coach|Breakdown Truck|Train|Tram|Boat|Penetrator|||Itali|Mundano|4 X 4||Stallion|"
        "Taxi|||Impaler|Jugular|Pickup|Porka Turbo|Cossie||Bulldog||Juggernaut|Challenger|"
        "Limousine|APC|Tank||||Superbike|Fire Truck|City Bus|Tanker|TV Van|Transit Van|"
        "Model Car|||Roadster|Love Wagon||Beast GTS|Mundano|Mamba|||Portsmouth|||Speeder|"
        "Porka|Flamer|Vulture|Pickup|Itali GTO||||Regal|Monster Bug|Thunderhead|Panther|"
        "Penetrator|LeBonham|Stinger|F - 19|Brigham|Stinger Z29|Classic|29 Special|Itali GTB|"
        "Hotrod|||Limousine|Impaler|Helicopter";
    std::vector<std::pair<int, std::string>> out;
    std::size_t from = 0;
    for (int model = 0; from <= all.size(); ++model) {
        const std::size_t bar = std::min(all.find('|', from), all.size());
        if (bar > from) out.emplace_back(model, all.substr(from, bar - from));
        from = bar + 1;
    }
    return out;
}

std::vector<std::string> sampleFxtEntries() {
    std::vector<std::string> e;
    e.push_back("[1001]Another day in Port Alder. Keep your head down and your engine running.");
    static const char* verbs[] = {"Pick up", "Deliver", "Collect", "Drop off", "Find", "Steal"};
    static const char* things[] = {"the package",  "a briefcase", "the van",
                                   "three crates", "a fast car",  "the driver"};
    static const char* places[] = {"the docks",
                                   "Harbour Street",
                                   "the old station",
                                   "Plaza Espa\xF1"
                                   "a",
                                   "the car wash",
                                   "Caf\xE9 Rouge",
                                   "the multi-storey",
                                   "Sierra Bay bridge"};
    for (int i = 0; i < 180; ++i) {
        std::string text = std::string(verbs[i % 6]) + " " + things[(i / 6) % 6] + " at " +
                           places[i % 8] + " and get to " + places[(i * 3 + 1) % 8] + ".";
        if (i % 7 == 3) text += " Don't scratch the paint!";
        e.push_back("[" + std::to_string(1002 + i) + "]" + text);
    }
    for (const auto& [model, name] : sampleCarNames())
        e.push_back("[car" + std::to_string(model) + "]" + name);
    static const char* misc[] = {"[2001]WASTED",
                                 "[2002]BUSTED",
                                 "[2003]MISSION COMPLETE",
                                 "[2004]FRENZY!",
                                 "[2005]Respect is everything",
                                 "[2006]Press the horn to honk",
                                 "[2007]Nice wheels!"};
    for (const char* m : misc) e.push_back(m);
    e.push_back("[]");
    return e;
}

std::vector<SoundSpec> sampleSounds(int level) {
    const double pitch = level == 2 ? 1.12 : 1.0;
    std::vector<SoundSpec> s;
    s.push_back({std::vector<uint8_t>(220, 128), 11025}); // silence
    s.push_back({synth(0.8, 11025,
                       [=](double t) {
                           const double f = 55 * pitch;
                           return 0.7 * saw(f * t) *
                                  (0.8 + 0.2 * std::sin(2 * std::numbers::pi * 9 * t));
                       }),
                 11025}); // engine idle
    s.push_back({synth(1.0, 11025,
                       [=](double t) {
                           const double f = (60 + 80 * t) * pitch;
                           return 0.7 * saw(f * t);
                       }),
                 11025}); // engine rev
    s.push_back(
        {synth(0.45, 22050,
               [=](double t) { return square(440 * pitch * t) + square(554 * pitch * t) * 0.5; }),
         22050}); // horn
    s.push_back({synth(1.2, 22050,
                       [](double t) {
                           const double f = 700 + 250 * std::sin(2 * std::numbers::pi * 1.5 * t);
                           return std::sin(2 * std::numbers::pi * f * t);
                       }),
                 22050}); // siren
    s.push_back({synth(0.6, 11025,
                       [](double t) {
                           const int i = static_cast<int>(t * 11025);
                           return (noise(5, i, 0) * 2 - 1) * std::exp(-5 * t);
                       }),
                 11025}); // crash
    s.push_back({synth(0.5, 22050,
                       [](double t) {
                           const int i = static_cast<int>(t * 22050);
                           return 0.5 * std::sin(2 * std::numbers::pi * 1800 * t) +
                                  0.4 * (noise(9, i, 1) * 2 - 1);
                       }),
                 22050}); // tyre screech
    s.push_back({synth(0.25, 11025,
                       [](double t) {
                           return std::sin(2 * std::numbers::pi * 90 * t) * std::exp(-18 * t);
                       }),
                 11025}); // door slam
    if (level != 2)
        s.push_back({synth(0.3, 22050,
                           [](double t) {
                               const double f = t < 0.15 ? 880 : 1320;
                               return 0.8 * std::sin(2 * std::numbers::pi * f * t);
                           }),
                     22050});                             // pickup chime
    s.push_back({std::vector<uint8_t>(110, 128), 11025}); // silence
    return s;
}

void writeSampleLevel(const std::filesystem::path& dir) {
    std::filesystem::create_directories(dir / "audio");
    writeFile(dir / "STYLE001.G24", buildStyle(sampleSpec24()));
    writeFile(dir / "STYLE002.GRY", buildStyle(sampleSpec8()));
    writeFile(dir / "ENGLISH.FXT", encodeFxt(sampleFxtEntries()));
    for (int level : {1, 2}) {
        const auto [sdt, raw] = buildSoundBank(sampleSounds(level));
        const std::string stem = "LEVEL00" + std::to_string(level);
        writeFile(dir / "audio" / (stem + ".SDT"), sdt);
        writeFile(dir / "audio" / (stem + ".RAW"), raw);
    }
}

} // namespace torquil::testing
