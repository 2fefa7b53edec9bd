#include "platform/qt/window_pacer.h"

namespace torquil {

bool WindowPacer::takeTurn() {
    const TimePoint now = clock_();
    if (last_ && now - *last_ < kInterval) return false;
    last_ = now;
    ++turns_;
    return true;
}

} // namespace torquil
