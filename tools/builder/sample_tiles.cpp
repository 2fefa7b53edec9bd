#include "sample_drawings.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace torquil::testing::sample {

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

namespace {

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

} // namespace

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

} // namespace torquil::testing::sample
