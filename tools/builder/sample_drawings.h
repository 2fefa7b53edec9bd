#pragma once
// What the sample level draws: vehicles with their damage and door deltas, peds, arrows, digits,
// traffic lights, objects, explosions and the 64 x 64 tiles. Each returns a picture in codes.

#include "sample_canvas.h"

#include <vector>

namespace torquil::testing::sample {

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

// Inside a w x h rectangle with corners rounded to radius r.
bool inRounded(int x, int y, int w, int h, int r);

// A car, bus or truck seen from above (not the kinds after BURNT), with room beside it for open
// doors.
CarArt drawCar(CarKind kind, int bw, int bl, int seed);
// Damage at one corner: dented, darker paint with rust, broken lamp.
Canvas damaged(const CarArt& a, bool right, bool rear, int seed);
Canvas smashedScreen(const CarArt& a, int seed);
Canvas doorOpen(const CarArt& a, bool right);

Canvas drawBike(int seed);
Canvas drawTrain(bool engine, int w, int l);
Canvas drawTram(int w, int l);
Canvas drawBoat(int w, int l);
Canvas drawTank(int w, int l, bool turret);

// ------------------------------------------------------------- small sprites

Canvas drawPed(int frame);       // frame 0..7 of a walk
Canvas drawArrow(int direction); // eighths of a turn clockwise from up
Canvas drawDigit(int d);
Canvas drawTrafficLight(int state); // 0 red, 1 amber, 2 green, 3 red and amber

struct ObjectArt {
    Canvas c;
    int band = 0;
};

// One of 30 street objects (10 designs in 3 variants) and the band it is painted in.
ObjectArt drawObject(int n);
Canvas drawExplosion(int frame, int seed);

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

int tileBand(TileKind k);

struct TileSet {
    std::vector<TileKind> kinds; // per tile
    std::vector<uint8_t> codes;  // 4096 per tile, x fastest
};

// side, lid and aux tiles, in turn through the kinds of each part.
TileSet makeTiles(int side, int lid, int aux, int seed);

} // namespace torquil::testing::sample
