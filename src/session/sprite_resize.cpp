#include "session/sprite_resize.h"

#include "base/binary_file.h"
#include "exchange/delta_frames.h"
#include "platform/platform.h"
#include "session/edit_history.h"
#include "session/edits.h"
#include "session/loaders.h"
#include "session/picture_file.h"
#include "session/session_io.h"
#include "session/sprite_layout.h"
#include "session/style_session.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace torquil {

namespace fs = std::filesystem;

namespace {

SpriteRec* spriteNumbered(StyleSession& session, int asn) {
    const auto at =
        findSprite(session.sprites, std::min(session.pages.highestPage, kMaxPages - 1), asn);
    if (!at || at->second < 1) return nullptr;
    return &session.sprites.pageSprites[static_cast<std::size_t>(at->first)]
                                       [static_cast<std::size_t>(at->second)];
}

void selectNumbered(StyleSession& session, int asn) {
    if (const auto at =
            findSprite(session.sprites, std::min(session.pages.highestPage, kMaxPages - 1), asn)) {
        session.selection.page = at->first;
        session.selection.sib = at->second;
    }
}

void repaint(StyleSession& session, const PageArea& area) {
    if (area.empty()) return;
    const auto painter = makePagePainter(session);
    repaintRect(session, *painter, area.page, area.x, area.y, area.w, area.h);
}

std::string joined(const std::vector<int>& numbers) {
    std::string out;
    for (int n : numbers) out += (out.empty() ? "" : ", ") + std::to_string(n);
    return out;
}

std::string sizeText(int w, int h) {
    return std::to_string(w) + " x " + std::to_string(h);
}

// The head's bytes 6-9 as the loader keeps them: clut, xo, yo of a .G24 head; the graphics offset
// of a .GRY one.
void setPlace(SpriteRec& s, bool is24, int page, int x, int y) {
    s.page = static_cast<std::int16_t>(page);
    s.xo = static_cast<std::uint8_t>(x);
    s.yo = static_cast<std::uint8_t>(y);
    if (is24) {
        s.ptr = static_cast<std::int32_t>(static_cast<std::uint16_t>(s.rawClut) |
                                          (static_cast<std::uint32_t>(s.xo) << 16) |
                                          (static_cast<std::uint32_t>(s.yo) << 24));
    } else {
        s.ptr = s.gryPtr = page * kPageBytes + y * kPageSize + x;
    }
}

} // namespace

std::optional<PictureSize> pictureSize(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::array<std::uint8_t, 26> head{};
    if (!in.read(reinterpret_cast<char*>(head.data()), head.size())) return std::nullopt;
    constexpr std::array<std::uint8_t, 8> kPngSignature{0x89, 'P',  'N',  'G',
                                                        0x0D, 0x0A, 0x1A, 0x0A};
    if (std::equal(kPngSignature.begin(), kPngSignature.end(), head.begin())) {
        // IHDR follows the signature: length, type, then width and height big-endian.
        const auto be = [&](int at) {
            return static_cast<std::int64_t>(head[at]) << 24 | head[at + 1] << 16 |
                   head[at + 2] << 8 | head[at + 3];
        };
        const std::int64_t w = be(16), h = be(20);
        if (w > 0x7FFF || h > 0x7FFF) return PictureSize{0x7FFF, 0x7FFF};
        return PictureSize{static_cast<int>(w), static_cast<int>(h)};
    }
    if (head[0] == 'B' && head[1] == 'M')
        return PictureSize{getI32(head.data() + 18), getI32(head.data() + 22)};
    return std::nullopt;
}

ResizePlan planSpriteResize(const StyleSession& session, const SpriteRec& sprite, int width,
                            int height) {
    ResizePlan plan;
    plan.oldWidth = sprite.W;
    plan.oldHeight = sprite.H;
    plan.width = width;
    plan.height = height;
    if (!sprite.kind.empty()) {
        plan.why = "Tiles keep their size of 64 x 64.";
        return plan;
    }
    if (width < 1 || height < 1 || width > kMaxSpriteSide || height > kMaxSpriteSide ||
        width * height > kMaxSpritePixels) {
        plan.why = "A sprite can be at most 255 pixels wide and 255 high, and at most 32767 "
                   "pixels in all (the style file keeps its size in a 16-bit field); the picture "
                   "is " +
                   sizeText(width, height) + ".";
        return plan;
    }
    plan.place = placeForSprite(session.sprites, session.pages, sprite, width, height);
    if (plan.place.kind == PlaceKind::None) {
        plan.why = plan.place.why;
        return plan;
    }
    const auto& deltas = session.deltas.myDeltas;
    for (std::size_t d = 0; d < sprite.deltas.size(); ++d) {
        const auto index = static_cast<std::size_t>(sprite.deltas[d]);
        if (index >= deltas.size()) continue;
        if (deltaExtent(deltas[index], width, height).outside > 0)
            plan.unfitDeltas.push_back(static_cast<int>(d));
    }
    const auto& cars = session.cars.slots;
    if (sprite.ASN > 0 && static_cast<std::size_t>(sprite.ASN) < cars.size() &&
        cars[static_cast<std::size_t>(sprite.ASN)].inUse) {
        const auto& doors = cars[static_cast<std::size_t>(sprite.ASN)].doorList;
        for (std::size_t i = 0; i < doors.size(); ++i)
            if (std::ranges::find(plan.unfitDeltas, doors[i].delta) != plan.unfitDeltas.end())
                plan.doorsOnUnfit.push_back(static_cast<int>(i) + 1);
    }
    plan.possible = true;
    return plan;
}

std::string describeResize(const ResizePlan& plan, int asn) {
    std::string text = "Sprite " + std::to_string(asn) + " is " +
                       sizeText(plan.oldWidth, plan.oldHeight) + "; the picture is " +
                       sizeText(plan.width, plan.height) + ".";
    if (!plan.possible) return text + "\r" + plan.why;
    switch (plan.place.kind) {
    case PlaceKind::OldPlace:
        text += "\rThe sprite stays at its place on page " + std::to_string(plan.place.page) + ".";
        break;
    case PlaceKind::FreeSpace:
        text += "\rIt does not fit at its place and moves to free space on page " +
                std::to_string(plan.place.page) + " at (" + std::to_string(plan.place.x) + "," +
                std::to_string(plan.place.y) + ").";
        break;
    case PlaceKind::NewPage:
        text += "\rNo page has room for it: it goes on a new page " +
                std::to_string(plan.place.page) + ".";
        break;
    case PlaceKind::None:
        break;
    }
    if (!plan.unfitDeltas.empty()) {
        text +=
            "\rDeltas " + joined(plan.unfitDeltas) + " do not fit the new size and are removed.";
        if (!plan.doorsOnUnfit.empty())
            text += "\rDoors " + joined(plan.doorsOnUnfit) +
                    " use them and then show the sprite's last remaining delta.";
    }
    return text;
}

void removeSpriteDeltas(StyleSession& session, int asn, std::vector<int> drop) {
    SpriteRec* sprite = spriteNumbered(session, asn);
    if (!sprite || drop.empty()) return;
    std::ranges::sort(drop);
    drop.erase(std::unique(drop.begin(), drop.end()), drop.end());
    std::erase_if(drop,
                  [&](int d) { return d < 0 || d >= static_cast<int>(sprite->deltas.size()); });
    auto& table = session.deltas.myDeltas;
    // From the last, so the numbers still to remove stay where they are.
    for (auto it = drop.rbegin(); it != drop.rend(); ++it) {
        const std::int16_t global = sprite->deltas[static_cast<std::size_t>(*it)];
        if (global >= 0 && static_cast<std::size_t>(global) < table.size())
            table.erase(table.begin() + global);
        sprite->deltas.erase(sprite->deltas.begin() + *it);
        session.deltas.deltaCount = std::max(0, session.deltas.deltaCount - 1);
        for (auto& list : session.sprites.pageSprites)
            for (SpriteRec& s : list)
                for (std::int16_t& index : s.deltas)
                    if (index > global) --index;
    }
    if (table.empty()) table.assign(1, DeltaRec{}); // the table keeps its element 0
    sprite->delta_count = static_cast<std::uint8_t>(sprite->deltas.size());

    if (CarEntry* car = session.cars.find(asn)) {
        const int remaining = static_cast<int>(sprite->deltas.size());
        for (DoorRec& door : car->doorList) {
            const int d = door.delta;
            if (std::ranges::binary_search(drop, d)) {
                door.delta = static_cast<std::int16_t>(std::max(0, remaining - 1));
            } else {
                const auto below = std::ranges::lower_bound(drop, d) - drop.begin();
                door.delta = static_cast<std::int16_t>(d - below);
            }
        }
        session.style.gSaveCarInfo.push_back(static_cast<std::int16_t>(asn));
    }
    session.style.gDeltasChanged = true;
    session.style.gLayoutChanged = true;
}

void applySpriteResize(StyleSession& session, const ResizePlan& plan,
                       const std::vector<std::uint8_t>& pixels) {
    SpriteRec* sprite = session.selectedSprite();
    if (!sprite || !plan.possible) return;
    const int asn = sprite->ASN;
    if (!plan.unfitDeltas.empty()) removeSpriteDeltas(session, asn, plan.unfitDeltas);
    sprite = spriteNumbered(session, asn);
    if (!sprite) return;

    // The old rectangle is free space now, except where another sprite lies.
    const PageArea oldArea = spriteArea(*sprite);
    const int oldPage = sprite->page;
    {
        const std::vector<std::uint8_t> used = pixelsUsedByOthers(session.sprites, oldPage, asn);
        for (int y = oldArea.y; y < oldArea.y + oldArea.h; ++y)
            for (int x = oldArea.x; x < oldArea.x + oldArea.w; ++x)
                if (!used[static_cast<std::size_t>(y * kPageSize + x)])
                    session.pages.pixel(oldPage, x, y) = 0;
    }

    const SpritePlace& place = plan.place;
    if (place.kind == PlaceKind::NewPage) {
        session.pages.gNumBlockLoaded = static_cast<std::int16_t>(place.page);
        session.pages.gNumLinesLoaded = (place.page + 1) * kPageSize;
        std::fill_n(session.pages.row(place.page, 0), kPageBytes, std::uint8_t{0});
        session.style.gDeltasChanged = true; // the delta store moves behind the new page
    }
    session.pages.highestPage = std::max(session.pages.highestPage, place.page);

    SpriteRec moved = *sprite;
    moved.W = static_cast<std::uint8_t>(plan.width);
    moved.H = static_cast<std::uint8_t>(plan.height);
    moved.size = static_cast<std::int16_t>(plan.width * plan.height);
    setPlace(moved, session.style.gIs24Bit, place.page, place.x, place.y);
    if (place.page == oldPage) {
        *sprite = moved;
    } else {
        auto& from = session.sprites.pageSprites[static_cast<std::size_t>(oldPage)];
        from.erase(from.begin() + (sprite - from.data()));
        session.sprites.pageSprites[static_cast<std::size_t>(place.page)].push_back(moved);
        sortPageSprites(session.sprites, place.page);
        rebuildMouseOver(session.sprites, oldPage);
    }
    rebuildMouseOver(session.sprites, place.page);
    selectNumbered(session, asn);

    for (int y = 0; y < plan.height; ++y)
        std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(y) * plan.width, plan.width,
                    session.pages.row(place.page, place.y + y) + place.x);

    const PageArea newArea{place.page, place.x, place.y, plan.width, plan.height};
    repaint(session, oldArea);
    repaint(session, place.kind == PlaceKind::NewPage
                         ? PageArea{place.page, 0, 0, kPageSize, kPageSize}
                         : newArea);
    session.style.gPagesChanged = true;
    session.style.gLayoutChanged = true;
}

} // namespace torquil

namespace torquil {

bool importSpriteResizing(StyleSession& session, Platform& platform, const fs::path& file,
                          const ResizeChoice& choice) {
    SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    const std::optional<PictureSize> size = pictureSize(file);
    // The same size, a file that is no picture, or no resize asked: the import as it was (which
    // refuses another size with its message).
    if (!choice.resize || !size || (size->width == sprite->W && size->height == sprite->H))
        return importSpriteFrom(session, platform, file);

    const int asn = sprite->ASN;
    const ResizePlan plan = planSpriteResize(session, *sprite, size->width, size->height);
    if (!plan.possible) {
        platform.message(describeResize(plan, asn) + "\rThe sprite was not resized.", Buttons::Ok,
                         Icon::Warning);
        return false;
    }
    if (!plan.unfitDeltas.empty() && !choice.dropDeltas) {
        platform.message(describeResize(plan, asn) +
                             "\rThe sprite was not resized: removing its deltas was not allowed.",
                         Buttons::Ok, Icon::Warning);
        return false;
    }

    EditScope scope(session, kTouchAll, stepName("Resize Sprite", asn));
    scope.touch(spriteArea(*sprite));
    // A refused picture may still have overwritten the CLUT (the step is then named after that).
    scope.rename(stepName("Overwrite CLUT", sprite->clut));
    ProgressSink& progress = platform.progress();
    progress.open("Importing", file.filename().string(), std::max(0, plan.height - 1));
    std::vector<std::uint8_t> pixels;
    // A width of 0 takes the picture's own size, which the plan was made for.
    const bool read = readPicture(session, platform, file, sprite->clut, 0, 0, pixels);
    progress.close();
    if (!read) return false;
    if (pixels.size() != static_cast<std::size_t>(plan.width) * plan.height) {
        platform.message("The picture " + file.string() + " changed while it was read.",
                         Buttons::Ok, Icon::Warning);
        return false;
    }
    applySpriteResize(session, plan, pixels);
    if (const SpriteRec* now = session.selectedSprite()) scope.touch(spriteArea(*now));
    if (plan.place.kind == PlaceKind::NewPage)
        scope.touch({plan.place.page, 0, 0, kPageSize, kPageSize});
    scope.rename(stepName("Resize Sprite", asn));
    platform.desktop().refreshBoard();
    return true;
}

} // namespace torquil
