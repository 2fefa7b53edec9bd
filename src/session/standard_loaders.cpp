#include "session/loaders.h"

#include "exchange/delta_io.h"
#include "session/style_session.h"

namespace torquil {

LoaderSet standardLoaders() {
    LoaderSet set;
    // Each part of the program adds its loader here as it lands.
    set.deltas = loadDeltas;
    return set;
}

} // namespace torquil
