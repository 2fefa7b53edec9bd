#include "sample_assembly.h"

#include <algorithm>
#include <stdexcept>

namespace torquil::testing::sample {

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

} // namespace torquil::testing::sample
