#include "session/save_sequence.h"

#include "cars/car_info_io.h"
#include "cars/car_names_io.h"
#include "exchange/delta_io.h"
#include "sprites/clut.h"
#include "style/page_io.h"

namespace torquil {

SaverSet standardSavers() {
    SaverSet set;
    set.carInfo = saveCarInfo;
    set.pages = savePages;
    set.clut = saveCLUT;
    set.deltas = saveDeltas;
    set.carNames = buildCarNamesFxt;
    return set;
}

} // namespace torquil
