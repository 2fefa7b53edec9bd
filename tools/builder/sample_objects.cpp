#include "sample_drawings.h"

#include <cmath>

namespace torquil::testing::sample {

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

} // namespace torquil::testing::sample
