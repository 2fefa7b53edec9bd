#include "session/save_sequence.h"

#include "exchange/delta_io.h"
#include "sprites/clut.h"
#include "style/page_io.h"

namespace torquil {

SaverSet standardSavers() {
    SaverSet set;
    set.pages = savePages;
    set.clut = saveCLUT;
    set.deltas = saveDeltas;
    return set;
}

} // namespace torquil
