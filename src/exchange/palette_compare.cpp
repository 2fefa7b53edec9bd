#include "exchange/palette_compare.h"

#include "base/runtime_error.h"
#include "platform/platform.h"
#include "sprites/colour_tables.h"

#include <string>

namespace torquil {

namespace {} // namespace

bool clutInTable(const ColourTables& colours, int clut) {
    return clut >= 0 && static_cast<std::size_t>(clut) * 256 + 255 < colours.pal24.size();
}

bool sameColours(const BmpColourTable& a, const BmpColourTable& b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i].b != b[i].b || a[i].g != b[i].g || a[i].r != b[i].r) return false;
    return true;
}

BmpColourTable clutColourTable(const ColourTables& colours, ErrorState& errors, int clut) {
    BmpColourTable table{};
    if (!clutInTable(colours, clut)) {
        errors.raise(err::SubscriptOutOfRange, "CLUT " + std::to_string(clut));
        return table;
    }
    for (int c = 0; c < 256; ++c) {
        // pal24 keeps red, green, blue; the BMP table wants blue, green, red.
        const auto& e = colours.pal24[static_cast<std::size_t>(clut) * 256 + c];
        table[static_cast<std::size_t>(c)] = {e[2], e[1], e[0], 0};
    }
    return table;
}

BmpColourTable palette8ColourTable(const ColourTables& c) {
    BmpColourTable table{};
    for (std::size_t i = 0; i < 256; ++i) table[i] = {c.blue[i], c.green[i], c.red[i], 0};
    return table;
}

bool acceptGryPalette(const ColourTables& colours, Platform& platform,
                      const BmpColourTable& imported) {
    if (sameColours(imported, palette8ColourTable(colours))) return true;
    platform.progress().close();
    const Answer a = platform.message(
        "Warning: Imported Sprite palette does not match 8bit KRB palette.\r"
        "The imported palette will be ignored in favor of the correct KRB8bit palette.",
        Buttons::OkCancel, Icon::Warning, "Import GRY Palette");
    return a == Answer::Ok;
}

} // namespace torquil
