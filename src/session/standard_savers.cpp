#include "session/save_sequence.h"

#include "session/session_io.h"

namespace torquil {

SaverSet standardSavers() {
    SaverSet set;
    set.carInfo = [](StyleSession& s, BinaryFile& f, Platform& p) { return saveCarInfo(s, f, p); };
    set.pages = [](StyleSession& s, BinaryFile& f, Platform& p) { return savePages(s, f, p); };
    set.clut = [](StyleSession& s, BinaryFile& f, Platform& p) { return saveCLUT(s, f, p); };
    set.deltas = [](StyleSession& s, BinaryFile& f, Platform& p) { return saveDeltas(s, f, p); };
    set.carNames = [](StyleSession& s, Platform& p) { return saveCarNames(s, p); };
    return set;
}

} // namespace torquil
