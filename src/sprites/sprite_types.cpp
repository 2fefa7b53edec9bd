#include "sprites/sprite_tables.h"

namespace torquil {

const std::array<const char*, kSpriteTypes> kSpriteTypeNames = {
    "SPR_ARROW",   "SPR_DIGITS", "SPR_BOAT",           "SPR_BOX",
    "SPR_BUS",     "SPR_CAR",    "SPR_OBJECT",         "SPR_PED",
    "SPR_SPEEDO",  "SPR_TANK",   "SPR_TRAFFIC_LIGHTS", "SPR_TRAIN",
    "SPR_TRDOORS", "SPR_BIKE",   "SPR_TRAM",           "SPR_WBUS",
    "SPR_WCAR",    "SPR_EX",     "SPR_TUMCAR",         "SPR_TUMTRUCK",
    "SPR_FERRY"};

int SpriteTables::countBefore(int k) const {
    int sum = 0;
    for (int i = 0; i < k && i < kSpriteTypes; ++i)
        sum += spriteNumbers[static_cast<std::size_t>(i)];
    return sum;
}

} // namespace torquil
