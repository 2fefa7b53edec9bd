#pragma once
// The sample level put together: the drawn sprites with their CLUTs and vehicles, placed on pages,
// and turned into the description the style builder writes.

#include "sample_drawings.h"
#include "style_builder.h"

#include <array>
#include <vector>

namespace torquil::testing::sample {

struct VehicleDef {
    int model;
    CarKind kind;
    int bw, bl;
    Rgb colour;
    int band;
    uint8_t vtype;
    int doors;
};

// One sprite as drawn, before it is placed on a page.
struct Art {
    SpriteType type = SPR_OBJECT;
    Canvas canvas;
    std::vector<Canvas> deltas; // the sprite as each delta leaves it
    int band = 0;               // .GRY palette band
    int clut = 0;               // .G24 sprite clut (virtual, relative to the sprite CLUTs)
    int vehicle = -1;           // index into the level's vehicles
    int group = 0;              // sprites of a new group start on a new page (sample only)
    int page = 0, x = 0, y = 0;
};

struct Level {
    TileSet tiles;
    int sideTiles = 0, lidTiles = 0, auxTiles = 0;
    std::vector<Art> art;
    std::vector<Rgb> spriteClutColours; // base colour of each virtual sprite clut
    std::vector<VehicleDef> vehicles;
    std::vector<std::array<std::array<int16_t, 3>, 12>> remaps; // per vehicle
    std::vector<std::vector<DoorSpec>> doors;                   // per vehicle (deltas are relative)
    int pedClutFirst = 0, pedKinds = 0;
    int tileTints = 1; // > 1: tiles of one colour get that many tinted CLUTs
};

// A sprite CLUT of the given base colour; returns its number among the sprite CLUTs.
int addSpriteClut(Level& lv, Rgb colour);
// Vehicles: art, deltas and doors. Cars get 4 corner damages, a smashed windscreen and a delta per
// door; the records' doors refer to the door deltas.
void addVehicles(Level& lv, const std::vector<VehicleDef>& defs, int group, int seed);
void addPeds(Level& lv, int kinds, int frames, int group);
void addSmallSprites(Level& lv, int arrows, int digits, int lights, int group);
void addObjects(Level& lv, int objects, int explosions, int wrecks, int group, int seed);

// Shelf packing, 2 pixels apart; a new group starts a new page.
void packByGroup(Level& lv);
// Spreads the sprites over `pages` pages: dealt out in turn, each page packed tallest first; what
// does not fit moves on to the next page.
void packSpread(Level& lv, int pages);

// Turns the drawn level into a style description. Sprites go into the file type after type; the
// car records follow the sprite order.
StyleSpec describeStyle(const Level& lv, bool is24, int pageCount);

} // namespace torquil::testing::sample
