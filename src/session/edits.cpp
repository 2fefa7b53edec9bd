#include "session/edits.h"

#include "base/atomic_file.h"
#include "cars/car_name_rules.h"
#include "exchange/bitmap_names.h"
#include "platform/platform.h"
#include "session/edit_history.h"
#include "session/loaders.h"
#include "session/picture_file.h"
#include "session/session_io.h"

#include <system_error>

namespace torquil {

namespace fs = std::filesystem;

namespace {

void repaintArea(StyleSession& session, const PageArea& area) {
    if (area.empty()) return;
    const auto painter = makePagePainter(session);
    repaintRect(session, *painter, area.page, area.x, area.y, area.w, area.h);
}

// The absolute sprite number a bitmap name stands for; 0 when none.
int spriteOfBitmap(StyleSession& session, const BitmapTarget& target) {
    if (target.kind != BitmapTarget::Car) return target.number;
    for (int i = 1; i <= session.cars.highest; ++i)
        if (const CarEntry* car = session.cars.find(i); car && car->info.model == target.number)
            return i;
    return 0;
}

} // namespace

Result<void> editCar(StyleSession& session, int asn, const CarEdit& edit) {
    CarEntry* car = session.cars.find(asn);
    if (!car)
        return fail("there is no car record at absolute sprite number " + std::to_string(asn));
    EditScope scope(session, kTouchCars | kTouchNames, stepName("Edit Car", asn));
    if (edit.info || edit.doors) {
        if (edit.info) car->info = *edit.info;
        if (edit.doors) car->doorList = *edit.doors;
        session.style.gSaveCarInfo.push_back(static_cast<std::int16_t>(asn));
    }
    if (edit.name)
        if (const CarNameVerdict renamed = renameCarModel(session, car->info.model, *edit.name);
            !renamed)
            return fail(renamed.message());
    return {};
}

void markAllChanged(StyleSession& session) {
    EditScope scope(session, 0, "Mark All Changed"); // only the flags change
    StyleFileState& style = session.style;
    style.gPagesChanged = true;
    style.gClutChanged = style.gIs24Bit; // an 8-bit file has no CLUT section
    style.gDeltasChanged = true;
    style.gCarNamesChanged = true;
    style.gSaveCarInfo.assign(1, 0);
    const auto& slots = session.cars.slots;
    for (std::size_t asn = 1; asn < slots.size(); ++asn)
        if (slots[asn].inUse) style.gSaveCarInfo.push_back(static_cast<std::int16_t>(asn));
}

CarNameVerdict renameCarModel(StyleSession& session, int model, const std::string& name) {
    if (CarNameVerdict verdict = checkCarName(session.names, model, name); !verdict) return verdict;
    EditScope scope(session, kTouchCars | kTouchNames, stepName("Rename Model", model));
    session.names.names[static_cast<std::size_t>(model)] = name;
    session.style.gCarNamesChanged = true;
    // Every loaded car of the model shows the new name.
    for (CarEntry& car : session.cars.slots)
        if (car.inUse && car.info.model == model) car.name = name;
    return {};
}

bool importSprite(StyleSession& session, Platform& platform) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    return importSpriteFrom(session, platform, session.workPath(bmpFileName(session, *sprite)));
}

bool importSpriteFrom(StyleSession& session, Platform& platform, const fs::path& file) {
    SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    EditScope scope(session, kTouchPages | kTouchCluts, stepName("Import Sprite", sprite->ASN));
    scope.touch(spriteArea(*sprite));
    // A refused picture may still have overwritten the CLUT (the step is then named after that).
    scope.rename(stepName("Overwrite CLUT", sprite->clut));
    ProgressSink& progress = platform.progress();
    progress.open("Importing", file.filename().string(), std::max(0, sprite->H - 1));
    std::vector<std::uint8_t> pixels;
    if (!readPicture(session, platform, file, sprite->clut, sprite->W, sprite->H, pixels)) {
        progress.close();
        return false;
    }
    // Into the page, then straight into the page image so the board shows the new sprite
    // without repainting every page.
    repaintArea(session, putSpritePixels(session.pages, *sprite, pixels, progress));
    session.style.gPagesChanged = true;
    scope.rename(stepName("Import Sprite", sprite->ASN));
    platform.desktop().refreshBoard();
    progress.close();
    return true;
}

bool importSpriteNamedBy(StyleSession& session, Platform& platform, const fs::path& file) {
    const std::string name = file.filename().string();
    const std::optional<BitmapTarget> target = bitmapTarget(name, session.style.gMapNumber);
    const int asn = target ? spriteOfBitmap(session, *target) : 0;
    if (asn <= 0) {
        platform.message(
            "The file " + name +
                " is not named after a sprite of this style.\r"
                "Exported sprites are named KRBSPR, KRBTIL or CAR + level + \"_\" + number.",
            Buttons::Ok, Icon::Warning);
        return false;
    }
    if (searchNSelect(session, platform, asn) != SearchResult::Selected) return false;

    // The import reads the sprite's own name in the program's directory.
    const fs::path expected = session.workPath(bmpFileName(session));
    std::error_code ec;
    if (!fs::equivalent(file, expected, ec)) {
        if (!copyFileAtomically(file, expected)) {
            platform.message("Unable to copy " + file.string() + " to " + expected.string(),
                             Buttons::Ok, Icon::Warning);
            return false;
        }
    }
    return importSprite(session, platform);
}

namespace {

// A refusal of the transparency fix, its message shown to the user first when it has one.
TransparencyFailure refuseTransparency(Platform& platform, TransparencyRefusal refusal,
                                       std::string message, bool shown) {
    if (shown) platform.message(message);
    TransparencyFailure failure;
    failure.message = std::move(message);
    failure.refusal = refusal;
    return failure;
}

} // namespace

TransparencyResult transparencyCorrect(StyleSession& session, Platform& platform) {
    SpriteRec* sprite = session.selectedSprite();
    if (!sprite)
        return refuseTransparency(platform, TransparencyRefusal::NoSprite, "No sprite selected",
                                  false);
    EditScope scope(session, kTouchPages | kTouchCluts, stepName("Transparency Fix", sprite->ASN));
    scope.touch(spriteArea(*sprite));
    if (!session.style.gIs24Bit)
        return refuseTransparency(
            platform, TransparencyRefusal::EightBit,
            "Sorry , Transparency Correction not supported on 8bit style files.", true);
    const std::optional<std::uint8_t> background = backgroundIndex(session.pages, *sprite);
    if (!background)
        return refuseTransparency(platform, TransparencyRefusal::Undetermined,
                                  "Unable to determine the transparent color.\r"
                                  "Image is too close to edges.",
                                  true);
    const std::uint8_t t = *background;
    if (t == 0) {
        platform.message("Image appears to already be using correct transparency.");
        return TransparencyDone::AlreadyCorrect;
    }

    BmpColourTable swapped = clutColourTable(session, sprite->clut);
    std::swap(swapped[0], swapped[t]);
    if (!comparePalette(session, platform, sprite->clut, swapped))
        return refuseTransparency(platform, TransparencyRefusal::Cancelled,
                                  "The palette question was cancelled", false);

    repaintArea(session, swapWithZero(session.pages, *sprite, t));
    session.style.gPagesChanged = true;
    platform.desktop().refreshBoard();
    return TransparencyDone::Corrected;
}

bool overwriteClut(StyleSession& session, int clut, const BmpColourTable& colours) {
    if (!clutInTable(session.colours, clut)) return false;
    EditScope scope(session, kTouchCluts, stepName("Overwrite CLUT", clut));
    for (int c = 0; c < 256; ++c) {
        const BmpColour& in = colours[static_cast<std::size_t>(c)];
        session.colours.entry(clut, c) = {in.r, in.g, in.b};
    }
    session.style.gClutChanged = true;
    return true;
}

bool comparePalette(StyleSession& session, Platform& platform, int clut,
                    const BmpColourTable& imported) {
    const BmpColourTable original = clutColourTable(session, clut);
    if (!clutInTable(session.colours, clut)) return false;
    // The CLUT and the recoloured remap CLUTs; the sprite shows the change where the caller's
    // edit paints it.
    EditScope scope(session, kTouchCluts, stepName("Overwrite CLUT", clut));
    if (const SpriteRec* sprite = session.selectedSprite(); sprite && sprite->clut == clut)
        scope.touch(spriteArea(*sprite));
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

    if (!overwriteClut(session, clut, imported)) return false;

    if (const SpriteRec* sprite = session.selectedSprite(); sprite && sprite->delta_count != 0) {
        const Message question{"You have just modified this sprite's palette.\r"
                               "This will also effect the sprite's Deltas and Remaps.\r"
                               "Would you like to AutoCorrect the Remaps? (recommended)",
                               "Palette Change", Buttons::YesNo, Icon::Question, true};
        // How many remaps were recoloured is not reported: the board shows them.
        if (platform.messages().show(question) == Answer::Yes)
            (void)autoCorrectRemaps(session, *sprite);
    }

    // The board shows the memory picture; only the caller's own sprite is repainted there, so
    // the other users of this CLUT show their new colours after the next load.
    platform.desktop().refreshBoard();
    if (others > 0)
        platform.message("You must Save and ReOpen the STYLE file in order to see the other " +
                         std::to_string(others) + " sprites effected by this CLUT change.");
    return true;
}

} // namespace torquil
