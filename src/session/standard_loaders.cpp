#include "session/loaders.h"

#include "session/style_session.h"

namespace torquil {

LoaderSet standardLoaders() {
    LoaderSet set;
    // Each part of the program adds its loader here as it lands.
    return set;
}

} // namespace torquil
