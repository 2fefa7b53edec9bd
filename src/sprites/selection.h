#pragma once
// The board's selection: the page and the sprite (SIB) on it; -1 = none.

namespace torquil {

struct Selection {
    int page = -1; // BLK of the selected sprite
    int sib = -1;  // SIB of the selected sprite ("selected sprite")
    [[nodiscard]] bool any() const { return sib >= 0 && page >= 0; }
    void clear() { page = sib = -1; }
};

} // namespace torquil
