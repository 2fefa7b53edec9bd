// Reading the sprite info section into the per-page sprite lists, the mouse-over map and the
// delta reference table.

#include "sprites/sprite_info.h"

#include "base/binary_file.h"
#include "base/checked.h"
#include "platform/dump_file.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "platform/progress_scope.h"
#include "sprites/clut.h"
#include "sprites/colour_tables.h"
#include "sprites/delta_table.h"
#include "sprites/sprite_head.h"
#include "sprites/sprite_info_dump.h"
#include "sprites/sprite_tables_reset.h"
#include "style/pages.h"
#include "style/style_file.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace torquil {

namespace {

constexpr int kMaxCounter = std::numeric_limits<std::int16_t>::max();

// Writes the SIB over the sprite's rectangle column by column (x
// outer): a rectangle reaching past x or y 255 stops with "Subscript out of range" at its first
// cell outside the page, the cells before it written. Past y 255 that is within the first
// column already.
void markMouseOver(SpriteTables& t, int page, int xo, int yo, int w, int h, std::int16_t sib,
                   ErrorState& errors) {
    if (w == 0 || h == 0) return;
    const int xLast = xo + w - 1, yLast = yo + h - 1;
    const int xStop = yLast >= kPageSize ? xo : std::min(xLast, kPageSize - 1);
    const int yStop = std::min(yLast, kPageSize - 1);
    for (int y = yo; y <= yStop; ++y) {
        std::int16_t* row = &t.over(page, 0, y);
        std::fill(row + xo, row + xStop + 1, sib);
    }
    if (yLast >= kPageSize)
        errors.raise(err::SubscriptOutOfRange, "mouseOver y " + std::to_string(yLast));
    else if (xLast >= kPageSize)
        errors.raise(err::SubscriptOutOfRange, "mouseOver x " + std::to_string(xLast));
}

struct Reader {
    SpriteTables& sprites;
    ColourTables& colours;
    DeltaTable& deltas;
    ErrorState& errors;
    BinaryFile& file;
    Platform& platform;
    ProgressScope& progress;
    DumpFile& dump;
    const bool is24;
    const std::int32_t tileCluts;
    int counter = 0;
    int myDeltaRef = -1;
    int highestPage = 0;
    bool sizeMismatch = false;

    void dumpLines(const std::vector<std::string>& lines) {
        for (const auto& line : lines) dump.line(line);
    }

    // One record: head, then its delta entries. Returns false when reading must stop.
    bool readRecord() {
        if (counter == kMaxCounter) {
            errors.raise(err::Overflow, "sprite counter");
            return false;
        }
        ++counter;
        if (counter % 100 == 0) progress.setValue(counter);

        const std::int64_t headPosition = file.position();
        std::array<std::uint8_t, kG24HeadBytes> bytes{};
        const auto headBytes = std::span(bytes).first(is24 ? kG24HeadBytes : kGryHeadBytes);
        file.read(headBytes);
        const SpriteHead head = decodeSpriteHead(headBytes, is24, errors);
        if (errors.hasPending()) return false;
        if (is24)
            sprites.highestRawClut = std::max<std::int32_t>(sprites.highestRawClut, head.clut);

        if (!head.sizeMatches()) {
            platform.message("WARNING: loadSpriteInfo sprite(" + std::to_string(counter) +
                             ").Size mismatch");
            sizeMismatch = true;
            return false;
        }
        if (dump.isOpen()) dumpLines(spriteDumpLines(counter, headPosition, head, is24));

        highestPage = std::max(highestPage, head.page);
        auto& list = checkedAt(sprites.pageSprites, head.page, errors, "pageSprites");
        if (errors.hasPending()) return false;
        const auto sib = static_cast<std::int16_t>(list.size());
        SpriteRec& rec = list.emplace_back();
        rec.W = head.W;
        rec.H = head.H;
        rec.delta_count = head.delta_count;
        rec.ws = head.ws;
        rec.size = head.size;
        rec.ptr = head.ptr;
        rec.xo = head.xo;
        rec.yo = head.yo;
        rec.ASN = static_cast<std::int16_t>(counter);
        rec.page = static_cast<std::int16_t>(head.page);

        if (is24) {
            rec.rawClut = head.clut;
            // The head's clut counts from the sprite CLUTs, which follow the tiles' entries.
            rec.clut = checkedAt(colours.PalIndex, std::int64_t{head.clut} + tileCluts, errors,
                                 "PalIndex");
            if (errors.hasPending()) return false;
            ++checkedAt(colours.used, rec.clut, errors, "CLUT use count");
            if (errors.hasPending()) return false;
        } else {
            rec.gryPtr = head.ptr;
        }

        if (head.page <= kMaxPages - 1)
            markMouseOver(sprites, head.page, head.xo, head.yo, head.W, head.H, sib, errors);
        if (errors.hasPending()) return false;

        return readDeltaEntries(rec, head.delta_count);
    }

    bool readDeltaEntries(SpriteRec& rec, int count) {
        auto& table = deltas.myDeltas;
        for (int d = 0; d < count; ++d) {
            if (myDeltaRef == kMaxCounter) {
                errors.raise(err::Overflow, "myDeltaRef");
                return false;
            }
            ++myDeltaRef;
            if (static_cast<int>(table.size()) <= myDeltaRef) table.resize(myDeltaRef + 1);
            rec.deltas.resize(static_cast<std::size_t>(d) + 1);
            rec.deltas[static_cast<std::size_t>(d)] = static_cast<std::int16_t>(myDeltaRef);
            DeltaRec& entry = table[static_cast<std::size_t>(myDeltaRef)];
            entry.entryPos = static_cast<std::int32_t>(file.position());
            std::array<std::uint8_t, kDeltaEntryBytes> bytes{};
            file.read(bytes);
            entry.size = getI16(&bytes[0]);
            entry.ptr = getI32(&bytes[2]);
            if (dump.isOpen()) dumpLines(deltaDumpLines(myDeltaRef, d, entry.size, entry.ptr));
        }
        return !errors.hasPending();
    }
};

} // namespace

bool loadSpriteInfo(SpriteTables& sprites, ColourTables& colours, DeltaTable& deltas, Pages& pages,
                    const StyleFileState& style, BinaryFile& file, FormatContext& ctx) {
    ErrorState& errors = ctx.errors;
    Platform& platform = ctx.platform;
    const bool is24 = style.gIs24Bit;
    ProgressScope progress(platform.progress(), "Loading SpriteInfo",
                           "Load SpriteInfo / Build MouseOvers...", 1500);
    resetSpriteTables(sprites);
    deltas.myDeltas.assign(1, DeltaRec{});
    deltas.deltaCount = 0;
    pages.highestPage = 0;
    // No table is built on top of an earlier step's failure.
    if (errors.hasPending()) return false;

    DumpFile dump;
    if (ctx.options.dumps.spriteInfo &&
        dump.open(ctx.options.workDir, std::to_string(style.gMapNumber) + "SPRINFO.txt", errors))
        dump.line(style.path.string());

    const std::int64_t start = style.gSeekSpriteInfo;
    const std::int64_t end = style.gSeekSpriteInfoEnd;
    file.seek(start);
    platform.detail("loadSpriteInfoSeek:" + std::to_string(start));

    Reader reader{sprites,  colours,  deltas, errors, file,
                  platform, progress, dump,   is24,   is24 ? tileClutCount(style.header.g24) : 0};
    // The end test follows each record, so even an empty section gives one record. Reading
    // stops at the first run-time error; past the end of the file only zeros would follow.
    if (!errors.hasPending()) {
        while (reader.readRecord() && file.position() < end && !file.atEnd()) {
        }
    }
    dump.close();
    sprites.spriteCount = static_cast<std::int16_t>(reader.counter);
    pages.highestPage = reader.highestPage;
    deltas.deltaCount = reader.myDeltaRef + 1;

    if (file.atEnd()) {
        progress.close();
        platform.message("Unexpected EOF during loadSpriteInfo");
        return false;
    }
    const bool ok = !reader.sizeMismatch && !errors.hasPending();
    progress.close();
    platform.detail(std::to_string(reader.counter) + " sprite_infos loaded");
    platform.detail(std::to_string(reader.highestPage) + " highest block number");
    if (is24)
        platform.detail(std::to_string(sprites.highestRawClut) + " highest CLUT number referenced");
    return ok;
}

} // namespace torquil
