#include "session/sprite_layout.h"

#include "base/binary_file.h"
#include "session/style_session.h"
#include "sprites/sprite_head.h"

#include <algorithm>
#include <limits>

namespace torquil {

std::vector<const SpriteRec*> spritesInFileOrder(const SpriteTables& sprites) {
    std::vector<const SpriteRec*> out;
    for (const auto& list : sprites.pageSprites)
        for (std::size_t sib = 1; sib < list.size(); ++sib) out.push_back(&list[sib]);
    std::ranges::sort(out, {}, [](const SpriteRec* s) { return s->ASN; });
    return out;
}

std::vector<std::uint8_t> buildSpriteInfoSection(const StyleSession& session,
                                                 std::vector<std::int64_t>* entryOffsets) {
    const bool is24 = session.style.gIs24Bit;
    const auto& deltas = session.deltas.myDeltas;
    std::vector<std::uint8_t> out;
    if (entryOffsets) entryOffsets->assign(deltas.size(), 0);
    for (const SpriteRec* s : spritesInFileOrder(session.sprites)) {
        const std::size_t at = out.size();
        out.resize(at + (is24 ? kG24HeadBytes : kGryHeadBytes));
        std::uint8_t* head = out.data() + at;
        head[0] = s->W;
        head[1] = s->H;
        head[2] = s->delta_count;
        head[3] = s->ws;
        putI16(head + 4, s->size);
        if (is24) {
            putI16(head + 6, s->rawClut);
            head[8] = s->xo;
            head[9] = s->yo;
            putI16(head + 10, s->page);
        } else {
            // A .GRY head keeps the place as one offset into the sprite graphics.
            putI32(head + 6, s->page * kPageBytes + s->yo * kPageSize + s->xo);
        }
        for (std::int16_t index : s->deltas) {
            const std::size_t entry = out.size();
            out.resize(entry + kDeltaEntryBytes);
            const auto i = static_cast<std::size_t>(index);
            const DeltaRec none{};
            const DeltaRec& d = i < deltas.size() ? deltas[i] : none;
            putI16(out.data() + entry, d.size);
            putI32(out.data() + entry + 2, d.ptr);
            if (entryOffsets && i < entryOffsets->size())
                (*entryOffsets)[i] = static_cast<std::int64_t>(entry);
        }
    }
    return out;
}

void placeDeltaEntries(StyleSession& session) {
    if (session.style.loadOption != kLoadSprites || session.style.gSeekSpriteInfo < 1) return;
    const bool is24 = session.style.gIs24Bit;
    std::int64_t position = session.style.gSeekSpriteInfo;
    auto& deltas = session.deltas.myDeltas;
    for (const SpriteRec* s : spritesInFileOrder(session.sprites)) {
        position += is24 ? kG24HeadBytes : kGryHeadBytes;
        for (std::int16_t index : s->deltas) {
            if (index >= 0 && static_cast<std::size_t>(index) < deltas.size())
                deltas[static_cast<std::size_t>(index)].entryPos =
                    static_cast<std::int32_t>(position);
            position += kDeltaEntryBytes;
        }
    }
}

void rebuildMouseOver(SpriteTables& sprites, int page) {
    if (page < 0 || page >= kMaxPages) return;
    std::fill_n(sprites.mouseOver.data() + static_cast<std::size_t>(page) * kPageBytes, kPageBytes,
                std::int16_t{0});
    const auto& list = sprites.pageSprites[static_cast<std::size_t>(page)];
    for (std::size_t sib = 1; sib < list.size(); ++sib) {
        const SpriteRec& s = list[sib];
        const int x1 = std::min(s.xo + s.W, kPageSize), y1 = std::min(s.yo + s.H, kPageSize);
        for (int y = s.yo; y < y1; ++y)
            for (int x = s.xo; x < x1; ++x)
                sprites.over(page, x, y) = static_cast<std::int16_t>(sib);
    }
}

void sortPageSprites(SpriteTables& sprites, int page) {
    if (page < 0 || page >= kMaxPages) return;
    auto& list = sprites.pageSprites[static_cast<std::size_t>(page)];
    if (list.size() > 2)
        std::stable_sort(list.begin() + 1, list.end(),
                         [](const SpriteRec& a, const SpriteRec& b) { return a.ASN < b.ASN; });
}

int SpriteInfoRewrite::apply(StyleSession& session, BinaryFile& file) {
    StyleFileState& style = session.style;
    ErrorState& errors = session.errors;
    if (style.gSeekSpriteInfo < 1 || style.gSeekSpriteInfoEnd < style.gSeekSpriteInfo ||
        style.gSeekSpriteInfoEnd > file.length() + 1) {
        errors.raise(err::BadRecordNumber, "sprite info section");
        return errors.pending();
    }
    entryPos_.emplace();
    for (const DeltaRec& d : session.deltas.myDeltas) entryPos_->push_back(d.entryPos);
    spriteInfoEnd_ = style.gSeekSpriteInfoEnd;
    graphicsStart_ = style.gSeekGraphicsStart;
    graphicsEnd_ = style.gSeekGraphicsEnd;
    numbers_ = style.gSeekSpriteNumbers;
    deltaStart_ = session.deltas.deltaStart;
    spriteInfoSize_ = style.header.sprite_info_size();
    graphicsSize_ = style.header.sprite_graphics_size();
    applied_ = true;

    const std::vector<std::uint8_t> section = buildSpriteInfoSection(session);
    if (section.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        errors.raise(err::Overflow, "sprite_info_size");
        return errors.pending();
    }
    // Everything behind the section moves with it, byte for byte.
    std::vector<std::uint8_t> rest(static_cast<std::size_t>(file.length() + 1 - spriteInfoEnd_));
    file.seek(spriteInfoEnd_);
    if (file.read(rest) != rest.size()) {
        errors.raise(err::BadRecordNumber, "sprite graphics");
        return errors.pending();
    }
    file.seek(style.gSeekSpriteInfo);
    file.write(section);
    file.write(rest);
    const std::int64_t end = file.position() - 1;
    if (end < file.length()) file.truncateInMemory(end);

    // sprite_info_size: the header field just before sprite_graphics_size, in both kinds.
    const auto size = static_cast<std::int32_t>(section.size());
    file.seek(style.header.spriteGraphicsSizeOffset() - 4 + 1);
    file.writeI32(size);
    (style.header.is24 ? style.header.g24.sprite_info_size : style.header.gry.sprite_info_size) =
        size;

    const std::int64_t moved = style.gSeekSpriteInfo + size - spriteInfoEnd_;
    style.gSeekSpriteInfoEnd = style.gSeekSpriteInfo + size;
    style.gSeekGraphicsStart += moved;
    style.gSeekGraphicsEnd += moved;
    style.gSeekSpriteNumbers += moved;
    // The delta store follows the pages: a page added behind the last one pushes it on.
    const std::int64_t storeOffset = std::max<std::int64_t>(
        deltaStart_ - graphicsStart_, std::int64_t{session.pages.gNumLinesLoaded} * kPageSize);
    session.deltas.deltaStart = style.gSeekGraphicsStart + storeOffset;
    placeDeltaEntries(session);
    // The pages and the delta store now lie elsewhere: both are written again, and the delta save
    // puts the sprite numbers behind the store.
    style.gPagesChanged = true;
    style.gDeltasChanged = true;
    style.gLayoutChanged = false;
    return errors.pending();
}

void SpriteInfoRewrite::restore(StyleSession& session) const {
    if (!applied_) return;
    StyleFileState& style = session.style;
    style.gSeekSpriteInfoEnd = spriteInfoEnd_;
    style.gSeekGraphicsStart = graphicsStart_;
    style.gSeekGraphicsEnd = graphicsEnd_;
    style.gSeekSpriteNumbers = numbers_;
    (style.header.is24 ? style.header.g24.sprite_info_size : style.header.gry.sprite_info_size) =
        spriteInfoSize_;
    style.header.set_sprite_graphics_size(graphicsSize_);
    session.deltas.deltaStart = deltaStart_;
    auto& deltas = session.deltas.myDeltas;
    for (std::size_t i = 0; i < deltas.size() && entryPos_ && i < entryPos_->size(); ++i)
        deltas[i].entryPos = static_cast<std::int32_t>((*entryPos_)[i]);
    style.gLayoutChanged = style.gPagesChanged = style.gDeltasChanged = true;
}

} // namespace torquil
