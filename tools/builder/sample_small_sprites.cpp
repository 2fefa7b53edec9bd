#include "sample_drawings.h"

#include <cmath>
#include <numbers>

namespace torquil::testing::sample {

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

} // namespace torquil::testing::sample
