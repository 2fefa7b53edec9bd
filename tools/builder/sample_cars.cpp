#include "sample_drawings.h"

#include <algorithm>
#include <cmath>

namespace torquil::testing::sample {

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

} // namespace torquil::testing::sample
