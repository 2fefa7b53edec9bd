#include "exchange/palette_compare.h"

#include "exchange/remap_recolour.h"
#include "platform/platform.h"
#include "session/style_session.h"

#include <string>

namespace torquil {

namespace {

bool clutInTable(const StyleSession& session, int clut) {
    return clut >= 0 && static_cast<std::size_t>(clut) * 256 + 255 < session.colours.pal24.size();
}

bool sameColours(const BmpColourTable& a, const BmpColourTable& b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i].b != b[i].b || a[i].g != b[i].g || a[i].r != b[i].r) return false;
    return true;
}

} // namespace

BmpColourTable clutColourTable(StyleSession& session, int clut) {
    BmpColourTable table{};
    if (!clutInTable(session, clut)) {
        session.errors.raise(err::SubscriptOutOfRange, "CLUT " + std::to_string(clut));
        return table;
    }
    for (int c = 0; c < 256; ++c) {
        // pal24 keeps red, green, blue; the BMP table wants blue, green, red.
        const auto& e = session.colours.entry(clut, c);
        table[static_cast<std::size_t>(c)] = {e[2], e[1], e[0], 0};
    }
    return table;
}

BmpColourTable palette8ColourTable(const StyleSession& session) {
    BmpColourTable table{};
    const ColourTables& c = session.colours;
    for (std::size_t i = 0; i < 256; ++i) table[i] = {c.blue[i], c.green[i], c.red[i], 0};
    return table;
}

bool comparePalette(StyleSession& session, Platform& platform, int clut,
                    const BmpColourTable& imported) {
    const BmpColourTable original = clutColourTable(session, clut);
    if (!clutInTable(session, clut)) return false;
    if (sameColours(original, imported)) {
        if (session.options.debugMode)
            platform.message("Imported Sprite's Palette is identical to original.\r"
                             "No CLUT changes necessary.");
        return true;
    }

    // The sprite itself is one of the CLUT's users.
    const auto& used = session.colours.used;
    const int others = clut < static_cast<int>(used.size()) ? used[clut] - 1 : 0;
    std::string prompt = "Warning: The imported sprite's palette does not match original palette.";
    if (others > 0)
        prompt +=
            "\rThis Sprite's palette is also used by " + std::to_string(others) + " other sprites!";
    prompt += "\rOverwrite the original CLUT entry with imported palette?";
    prompt += others > 0 ? "\r(NOT recommended)" : "\r(recommended)";
    if (platform.message(prompt, Buttons::OkCancel, Icon::Warning, "Import G24 Palette") !=
        Answer::Ok)
        return false;

    for (int c = 0; c < 256; ++c) {
        const BmpColour& in = imported[static_cast<std::size_t>(c)];
        session.colours.entry(clut, c) = {in.r, in.g, in.b};
    }

    if (const SpriteRec* sprite = session.selectedSprite(); sprite && sprite->delta_count != 0) {
        const Message question{"You have just modified this sprite's palette.\r"
                               "This will also effect the sprite's Deltas and Remaps.\r"
                               "Would you like to AutoCorrect the Remaps? (recommended)",
                               "Palette Change", Buttons::YesNo, Icon::Question, true};
        if (platform.messages().show(question) == Answer::Yes) autoCorrectRemaps(session, *sprite);
    }

    session.style.gClutChanged = true;
    // The board shows the memory picture; only the caller's own sprite is repainted there, so
    // the other users of this CLUT show their new colours after the next load.
    platform.desktop().refreshBoard();
    if (others > 0)
        platform.message("You must Save and ReOpen the STYLE file in order to see the other " +
                         std::to_string(others) + " sprites effected by this CLUT change.");
    return true;
}

} // namespace torquil
