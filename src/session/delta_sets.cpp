#include "session/delta_sets.h"

#include "exchange/bmp.h"
#include "exchange/sprite_exchange.h"
#include "platform/platform.h"
#include "session/picture_file.h"
#include "session/session_io.h"
#include "sprites/clut.h"

namespace torquil {

std::vector<const DeltaRec*> spriteDeltas(const StyleSession& session, const SpriteRec& sprite) {
    std::vector<const DeltaRec*> out;
    const auto& table = session.deltas.myDeltas;
    const int count = std::min<int>(sprite.delta_count, static_cast<int>(sprite.deltas.size()));
    for (int k = 0; k < count; ++k) {
        const int index = sprite.deltas[static_cast<std::size_t>(k)];
        const bool inTable = index >= 0 && index < static_cast<int>(table.size()) &&
                             index < session.deltas.deltaCount;
        out.push_back(inTable ? &table[static_cast<std::size_t>(index)] : nullptr);
    }
    return out;
}

std::string deltaSetFileName(const StyleSession& session, const SpriteRec& sprite, bool clean,
                             const std::string& extension) {
    std::string name = bmpFileName(session, sprite);
    if (name.size() > 4) name.resize(name.size() - 4); // ".bmp"
    return name + (clean ? "_deltas_clean" : "_deltas") + extension;
}

bool exportDeltaSet(StyleSession& session, Platform& platform, const std::filesystem::path& file,
                    bool clean) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    const std::vector<const DeltaRec*> deltas = spriteDeltas(session, *sprite);
    if (deltas.empty() || sprite->W == 0 || sprite->H == 0) {
        platform.message("Sprite " + std::to_string(sprite->ASN) + " has no deltas to export.",
                         Buttons::Ok, Icon::Information);
        return false;
    }
    const int width = sprite->W * static_cast<int>(deltas.size());
    const std::vector<std::uint8_t> picture =
        deltaSetPicture(spritePixels(session, *sprite), sprite->W, sprite->H, deltas, clean);
    platform.progress().open("Exporting", file.filename().string(), std::max(0, sprite->H - 1));
    const bool written =
        writePicture(session, platform, file, picture, sprite->clut, width, sprite->H);
    platform.progress().close();
    return written;
}

DeltaViewFrames deltaViewFrames(const StyleSession& session, const SpriteRec& sprite,
                                bool withCar) {
    DeltaViewFrames view;
    view.width = sprite.W;
    view.height = sprite.H;
    const std::vector<const DeltaRec*> deltas = spriteDeltas(session, sprite);
    const std::vector<std::uint8_t> base = spritePixels(session, sprite);
    const std::array<std::uint32_t, 256> colours = spriteColours(session, sprite);
    const std::size_t n = base.size();
    for (const DeltaRec* delta : deltas) {
        std::vector<std::uint8_t> frame = withCar ? base : std::vector<std::uint8_t>(n, 0);
        if (delta) drawDelta(*delta, sprite.W, sprite.H, frame);
        std::vector<std::uint32_t> rgb(n);
        for (std::size_t i = 0; i < n; ++i) rgb[i] = colours[frame[i]];
        view.frames.push_back(std::move(rgb));
    }
    return view;
}

std::vector<DeltaListing> listDeltas(const StyleSession& session, const SpriteRec& sprite) {
    std::vector<DeltaListing> out;
    const std::vector<const DeltaRec*> deltas = spriteDeltas(session, sprite);
    for (std::size_t k = 0; k < deltas.size(); ++k) {
        DeltaListing line;
        if (const DeltaRec* d = deltas[k]) {
            line.tableIndex = sprite.deltas[k];
            line.size = d->size;
            line.ptr = d->ptr;
            line.extent = deltaExtent(*d, sprite.W, sprite.H);
        }
        out.push_back(line);
    }
    return out;
}

} // namespace torquil
