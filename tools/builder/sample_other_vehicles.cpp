#include "sample_drawings.h"

#include <cmath>

namespace torquil::testing::sample {

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

} // namespace torquil::testing::sample
