#include "session/loaders.h"

#include "session/session_io.h"

namespace torquil {

LoaderSet standardLoaders() {
    LoaderSet set;
    // Each loader is the session form of its format's routine (session_io.h).
    set.carNames = [](StyleSession& s, BinaryFile& f, Platform& p) {
        return loadCarNames(s, f, p);
    };
    set.carInfo = [](StyleSession& s, BinaryFile& f, Platform& p) { return loadCarInfo(s, f, p); };
    set.deltas = [](StyleSession& s, BinaryFile& f, Platform& p) { return loadDeltas(s, f, p); };
    set.palette24 = [](StyleSession& s, BinaryFile& f, Platform& p) { return loadCLUT(s, f, p); };
    set.palette8 = [](StyleSession& s, BinaryFile& f, Platform& p) { return load8bitPal(s, f, p); };
    set.spriteInfo = [](StyleSession& s, BinaryFile& f, Platform& p) {
        return loadSpriteInfo(s, f, p);
    };
    set.spriteNumbers = [](StyleSession& s, BinaryFile& f, Platform& p) {
        return loadSpriteNumbers(s, f, p);
    };
    set.tileRegions = [](StyleSession& s, BinaryFile& f, Platform& p) {
        return calcTileSpriteInfo(s, f, p);
    };
    return set;
}

} // namespace torquil
