#include "sample_level.h"

#include "fxt_coder.h"
#include "sample_assembly.h"

#include <algorithm>

namespace torquil::testing {

namespace {

using namespace sample;

// The sample's 38 vehicles: 27 cars, 3 buses, 2 bikes, 2 trains, a tram, a boat and 2 tanks.
std::vector<VehicleDef> sampleCars() {
    struct Row {
        int model;
        CarKind kind;
        int bw, bl, band;
        uint8_t vtype;
        int doors;
    };
    static const Row rows[] = {
        {0, SPORTS, 16, 36, RED, 4, 2},         {1, BUG, 14, 28, YELLOW, 4, 2},
        {2, SPORTS, 16, 36, PURPLE, 4, 2},      {4, POLICE, 16, 38, SILVER, 1, 2},
        {5, AMBULANCE, 18, 44, SILVER, 2, 2},   {6, VAN, 18, 40, ORANGE, 4, 1},
        {10, PICKUP, 18, 44, YELLOW, 4, 1},     {14, SPORTS, 16, 34, GREEN, 4, 2},
        {17, SPORTS, 16, 36, RED, 4, 2},        {18, SEDAN, 16, 36, BLUE, 4, 2},
        {19, PICKUP, 18, 38, GREEN, 4, 2},      {21, SEDAN, 16, 38, ORANGE, 4, 2},
        {22, TAXI, 16, 38, YELLOW, 4, 2},       {25, SEDAN, 16, 38, CHARCOAL, 4, 2},
        {26, SPORTS, 16, 36, SILVER, 4, 2},     {27, PICKUP, 16, 38, RED, 4, 1},
        {28, BUG, 15, 32, BLUE, 4, 2},          {29, SEDAN, 16, 36, SILVER, 4, 2},
        {31, VAN, 18, 36, GREEN, 4, 1},         {35, LIMO, 16, 52, CHARCOAL, 4, 2},
        {42, FIRETRUCK, 20, 58, RED, 2, 2},     {44, TANKER, 20, 60, SILVER, 4, 1},
        {45, VAN, 18, 40, BLUE, 4, 1},          {46, VAN, 18, 40, SILVER, 4, 1},
        {50, CONVERTIBLE, 16, 34, RED, 4, 2},   {51, VAN, 18, 40, PURPLE, 4, 1},
        {55, CONVERTIBLE, 16, 36, GREEN, 4, 2}, {9, BUS, 22, 74, SILVER, 0, 0},
        {43, BUS, 22, 72, RED, 0, 0},           {33, TRUCK, 22, 70, ORANGE, 0, 0},
        {3, MOTORBIKE, 9, 24, RED, 3, 0},       {41, MOTORBIKE, 9, 24, BLUE, 3, 0},
        {11, LOCOMOTIVE, 26, 96, YELLOW, 8, 0}, {11, CARRIAGE, 26, 96, SILVER, 8, 0},
        {12, TRAMCAR, 24, 90, GREEN, 9, 0},     {13, MOTORBOAT, 24, 56, SILVER, 13, 0},
        {37, TANK, 30, 52, GREEN, 14, 0},       {36, APC, 26, 46, CHARCOAL, 14, 0},
    };
    std::vector<VehicleDef> defs;
    int i = 0;
    for (const Row& r : rows)
        defs.push_back({r.model, r.kind, r.bw, r.bl, tint(r.band, i++), r.band, r.vtype, r.doors});
    return defs;
}

Level sampleLevel() {
    Level lv;
    lv.sideTiles = 12;
    lv.lidTiles = 10;
    lv.auxTiles = 3;
    lv.tiles = makeTiles(lv.sideTiles, lv.lidTiles, lv.auxTiles, 1);
    const auto defs = sampleCars();
    // Page 0: cars and wrecks; page 1: big vehicles and bikes; page 2: peds, arrows, digits,
    // lights; page 3: objects and explosions.
    addVehicles(lv, std::vector<VehicleDef>(defs.begin(), defs.begin() + 27), 0, 11);
    addObjects(lv, 0, 0, 4, 0, 500);
    addVehicles(lv, std::vector<VehicleDef>(defs.begin() + 27, defs.end()), 1, 41);
    addPeds(lv, 4, 8, 2);
    addSmallSprites(lv, 8, 10, 4, 2);
    addObjects(lv, 30, 4, 0, 3, 900);
    packByGroup(lv);
    return lv;
}

int highestPage(const Level& lv) {
    int p = 0;
    for (const auto& a : lv.art) p = std::max(p, a.page);
    return p;
}

} // namespace

StyleSpec sampleSpec24() {
    const Level lv = sampleLevel();
    return describeStyle(lv, true, highestPage(lv) + 1);
}

StyleSpec sampleSpec8() {
    const Level lv = sampleLevel();
    return describeStyle(lv, false, highestPage(lv) + 1);
}

StyleSpec fullSizeSpec24() {
    return fullSizeSpec24(26);
}

StyleSpec fullSizeSpec24(int pages) {
    pages = std::clamp(pages, 1, 26);
    Level lv;
    lv.sideTiles = 195;
    lv.lidTiles = 154;
    lv.auxTiles = 37;
    lv.tiles = makeTiles(lv.sideTiles, lv.lidTiles, lv.auxTiles, 3);
    lv.tileTints = 20;
    const auto sample = sampleCars();
    std::vector<VehicleDef> cars(sample.begin(), sample.begin() + 27);
    // The 38 recorded vehicles first, then more car sprites without records, as real levels have.
    addVehicles(lv, sample, 0, 7);
    std::vector<Art> extra;
    {
        Level more;
        std::vector<VehicleDef> defs;
        for (int i = 0; i < 40; ++i) {
            VehicleDef v = cars[i % cars.size()];
            v.colour = tint(v.band, i + 3);
            defs.push_back(v);
        }
        addVehicles(more, defs, 0, 77);
        for (auto& a : more.art) {
            a.vehicle = -1;
            a.clut = addSpriteClut(lv, more.spriteClutColours[a.clut]);
            lv.art.push_back(std::move(a));
        }
    }
    addPeds(lv, 150, 8, 0);
    addSmallSprites(lv, 49, 10, 6, 0);
    addObjects(lv, 1500 * pages / 26, 48, 48, 0, 1234);
    packSpread(lv, pages);
    return describeStyle(lv, true, pages);
}

std::vector<std::pair<int, std::string>> sampleCarNames() {
    // By model number, '|' between them, empty where the level has no such model. Model 43 is
    // named differently from the editor's built-in names, so tests can tell which names loaded.
    const std::string all =
        "Beast GTS|Bug|Counthash|Bike|Squad Car|Ambulance|Repair Van|Juggernaut|Juggernaut|"
        "Coach|Breakdown Truck|Train|Tram|Boat|Penetrator|||Itali|Mundano|4 X 4||Stallion|"
        "Taxi|||Impaler|Jugular|Pickup|Porka Turbo|Cossie||Bulldog||Juggernaut|Challenger|"
        "Limousine|APC|Tank||||Superbike|Fire Truck|City Bus|Tanker|TV Van|Transit Van|"
        "Model Car|||Roadster|Love Wagon||Beast GTS|Mundano|Mamba|||Portsmouth|||Speeder|"
        "Porka|Flamer|Vulture|Pickup|Itali GTO||||Regal|Monster Bug|Thunderhead|Panther|"
        "Penetrator|LeBonham|Stinger|F - 19|Brigham|Stinger Z29|Classic|29 Special|Itali GTB|"
        "Hotrod|||Limousine|Impaler|Helicopter";
    std::vector<std::pair<int, std::string>> out;
    std::size_t from = 0;
    for (int model = 0; from <= all.size(); ++model) {
        const std::size_t bar = std::min(all.find('|', from), all.size());
        if (bar > from) out.emplace_back(model, all.substr(from, bar - from));
        from = bar + 1;
    }
    return out;
}

std::vector<std::string> sampleFxtEntries() {
    std::vector<std::string> e;
    e.push_back("[1001]Another day in Port Alder. Keep your head down and your engine running.");
    static const char* verbs[] = {"Pick up", "Deliver", "Collect", "Drop off", "Find", "Steal"};
    static const char* things[] = {"the package",  "a briefcase", "the van",
                                   "three crates", "a fast car",  "the driver"};
    static const char* places[] = {"the docks",          "Harbour Street", "the old station",
                                   "Plaza Espa\xF1\x61", // Latin-1 n with tilde, then "a"
                                   "the car wash",       "Caf\xE9 Rouge",  "the multi-storey",
                                   "Sierra Bay bridge"};
    for (int i = 0; i < 180; ++i) {
        std::string text = std::string(verbs[i % 6]) + " " + things[(i / 6) % 6] + " at " +
                           places[i % 8] + " and get to " + places[(i * 3 + 1) % 8] + ".";
        if (i % 7 == 3) text += " Don't scratch the paint!";
        e.push_back("[" + std::to_string(1002 + i) + "]" + text);
    }
    for (const auto& [model, name] : sampleCarNames())
        e.push_back("[car" + std::to_string(model) + "]" + name);
    static const char* misc[] = {"[2001]WASTED",
                                 "[2002]BUSTED",
                                 "[2003]MISSION COMPLETE",
                                 "[2004]FRENZY!",
                                 "[2005]Respect is everything",
                                 "[2006]Press the horn to honk",
                                 "[2007]Nice wheels!"};
    for (const char* m : misc) e.push_back(m);
    e.push_back("[]");
    return e;
}

void writeSampleLevel(const std::filesystem::path& dir) {
    std::filesystem::create_directories(dir / "audio");
    writeFile(dir / "STYLE001.G24", buildStyle(sampleSpec24()));
    writeFile(dir / "STYLE002.GRY", buildStyle(sampleSpec8()));
    writeFile(dir / "ENGLISH.FXT", encodeFxt(sampleFxtEntries()));
    for (int level : {1, 2}) {
        const auto [sdt, raw] = buildSoundBank(sampleSounds(level));
        const std::string stem = "LEVEL00" + std::to_string(level);
        writeFile(dir / "audio" / (stem + ".SDT"), sdt);
        writeFile(dir / "audio" / (stem + ".RAW"), raw);
    }
}

} // namespace torquil::testing
