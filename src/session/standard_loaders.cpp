#include "session/loaders.h"

#include "cars/car_info_io.h"
#include "cars/car_names_io.h"
#include "exchange/delta_io.h"
#include "session/style_session.h"
#include "sprites/clut.h"
#include "sprites/sprite_info.h"

namespace torquil {

LoaderSet standardLoaders() {
    LoaderSet set;
    // Each part of the program adds its loader here as it lands.
    set.carNames = loadCarNames;
    set.carInfo = loadCarInfo;
    set.deltas = loadDeltas;
    set.palette24 = loadCLUT;
    set.palette8 = load8bitPal;
    set.spriteInfo = loadSpriteInfo;
    set.spriteNumbers = loadSpriteNumbers;
    set.tileRegions = calcTileSpriteInfo;
    return set;
}

} // namespace torquil
