#pragma once
// A small paletted picture in codes, with the shapes the sample's drawings are made of, and the
// repeatable noise that roughens them.

#include "sample_colours.h"

#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

namespace torquil::testing::sample {

// A repeatable value in [0, 1) for three integers.
double noise(int a, int b, int c);

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

} // namespace torquil::testing::sample
