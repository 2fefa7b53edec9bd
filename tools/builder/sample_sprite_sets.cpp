#include "sample_assembly.h"

#include <map>

namespace torquil::testing::sample {

int addSpriteClut(Level& lv, Rgb colour) {
    lv.spriteClutColours.push_back(colour);
    return static_cast<int>(lv.spriteClutColours.size()) - 1;
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

} // namespace torquil::testing::sample
