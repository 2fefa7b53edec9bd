#include "sample_assembly.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace torquil::testing::sample {

namespace {

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

} // namespace

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

} // namespace torquil::testing::sample
