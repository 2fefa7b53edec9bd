#pragma once
// A GC3 pack's style runs followed into a style file whose sections moved since the pack was
// made: the sections of the pack's unmodified file (from the layout the pack keeps) side by side
// with those of the file as it is now.

#include "exchange/gc3.h"
#include "style/section_map.h"

#include <optional>
#include <vector>

namespace torquil {

struct Gc3StyleLayouts {
    std::vector<StyleSection> before, now; // the same sections, in the same order
    bool moved() const;                    // some section lies elsewhere or has another size
};

// The two layouts; nullopt when the pack keeps no layout or either header does not describe its
// file (`is24`: the style file is a .G24 file).
[[nodiscard]] std::optional<Gc3StyleLayouts>
gc3StyleLayouts(const Gc3Originals& originals, const std::vector<std::uint8_t>& now, bool is24);

// The style file as it is now, laid out as the pack's unmodified file was: its header and sprite
// info as the pack keeps them, every other section's bytes from the file now at the place of the
// section before (cut or padded with zeros where its size changed). The sprites then stand where
// they stood when the pack was made, so a conflict at a position of the unmodified file can be
// named. Empty when the pack keeps no layout.
[[nodiscard]] std::vector<std::uint8_t>
relayStyleFile(const Gc3Originals& originals, const std::vector<std::uint8_t>& now, bool is24);

} // namespace torquil
