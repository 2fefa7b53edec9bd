// Reading the colour tables: palette index and CLUT section of a .G24 file, the 8-bit palette of
// a .GRY file, and the PalIndex/CLUT dump files.

#include "sprites/clut.h"

#include "base/binary_file.h"
#include "base/checked.h"
#include "platform/dump_file.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "platform/progress_scope.h"
#include "sprites/colour_tables.h"
#include "style/pages.h"
#include "style/rounding.h"
#include "style/style_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string>

namespace torquil {

std::int64_t clutSectionStart(const StyleFileState& style) {
    const StyleHeader& h = style.header;
    // The tile area is padded on disk to whole groups of four tiles (16384 bytes); the CLUTs
    // follow the anim data. The .G24 header is 64 bytes.
    return G24Header::kSize +
           roundUp16384(std::int64_t{h.side_size()} + h.lid_size() + h.aux_size()) + h.anim_size() +
           1;
}

std::int64_t paletteIndexPosition(const StyleFileState& style) {
    const G24Header& h = style.header.g24;
    return style.fileLength -
           (std::int64_t{h.palette_index_size} + h.object_info_size + h.car_info_size +
            h.sprite_info_size + h.sprite_graphics_size + h.sprite_numbers_size) +
           1;
}

std::int64_t palette8Position(const StyleFileState& style) {
    const GRYHeader& h = style.header.gry;
    return style.fileLength + 1 -
           (std::int64_t{h.palette_size} + h.remap_size + h.remap_index_size + h.object_info_size +
            h.car_info_size + h.sprite_info_size + h.sprite_graphics_size + h.sprite_numbers_size);
}

std::int64_t clutsAvailFor(std::int32_t clut_size) {
    return roundUp65536(clut_size) / kClutBytes;
}

std::int32_t tileClutCount(const G24Header& header) {
    // Rounded to nearest with ties to even: 1.5 KB of tile CLUTs counts as 2 entries, 2.5 as 2.
    return static_cast<std::int32_t>(std::nearbyint(header.tileclut_size / 1024.0));
}

namespace {

void resetColourTables(ColourTables& c) {
    c.gClutsAvail = 0;
    c.pal24.clear();
    c.used.clear();
    c.PalIndex.fill(0);
    c.palIndexCount = 0;
}

// Reads entries 0, 1, ... while the position is below the section's end; the first entry is read
// even from an empty section. Returns false when a run-time error stopped it.
bool readPaletteIndex(ColourTables& c, const StyleFileState& style, BinaryFile& file,
                      ErrorState& errors, DumpFile& dump) {
    const std::int64_t start = paletteIndexPosition(style);
    const std::int64_t end = start + style.header.g24.palette_index_size;
    file.seek(start);
    if (errors.hasPending()) return false;
    dump.line("PalIndex Seek:" + std::to_string(start));
    dump.line("PALINDEX DATA FOLLOWS, Read as (int):");
    int n = 0;
    do {
        if (n >= kPalIndexEntries) {
            errors.raise(err::SubscriptOutOfRange, "PalIndex(" + std::to_string(n) + ")");
            return false;
        }
        const std::int16_t value = file.readI16();
        c.PalIndex[static_cast<std::size_t>(n++)] = value;
        dump.line(std::to_string(value));
    } while (file.position() < end);
    c.palIndexCount = n;
    return !errors.hasPending();
}

void dumpClutPage(DumpFile& dump, const ColourTables& c, std::int64_t base) {
    for (std::int64_t k = base; k < base + kClutsPerPage; ++k) {
        for (int colour = 0; colour < 256; ++colour) {
            const auto& e = c.pal24[static_cast<std::size_t>(k) * 256 + colour];
            // In file order: the dump's "R byte" is the file's first byte (entry byte 2).
            dump.line(" CLU:" + std::to_string(k) + " RGB0:" + std::to_string(e[2]) + " " +
                      std::to_string(e[1]) + " " + std::to_string(e[0]));
        }
    }
}

} // namespace

bool loadCLUT(ColourTables& c, const StyleFileState& style, BinaryFile& file, FormatContext& ctx) {
    ErrorState& errors = ctx.errors;
    Platform& platform = ctx.platform;
    const G24Header& h = style.header.g24;
    const std::int64_t avail = clutsAvailFor(h.clut_size);
    ProgressScope progress(platform.progress(), "Loading CLUT", "Loading 24bit Color Look Up Table",
                           static_cast<int>(std::clamp<std::int64_t>(avail, 0, 1 << 30)));
    resetColourTables(c);

    // The table is never made larger than a CLUT section this file could hold.
    const std::int64_t room = std::max<std::int64_t>(file.length(), 65536) / kClutBytes;
    if (avail < 0 || avail > room) {
        errors.raise(err::SubscriptOutOfRange, "pal24(0 To " + std::to_string(avail) + ")");
        return false;
    }
    c.gClutsAvail = static_cast<std::int32_t>(avail);
    c.pal24.assign(static_cast<std::size_t>(avail + 1) * 256, {0, 0, 0});

    const bool dumping = ctx.options.dumps.clut;
    const std::string level = std::to_string(style.gMapNumber);
    DumpFile dump;
    if (dumping && dump.open(ctx.options.workDir, level + "PALINDEX.txt", errors))
        dump.line(style.path.string());
    // Tables must not be read after a failed earlier step.
    if (errors.hasPending()) return false;
    if (!readPaletteIndex(c, style, file, errors, dump)) return false;
    dump.close();

    c.used.assign(static_cast<std::size_t>(avail + 1), 0);

    const std::int64_t start = clutSectionStart(style);
    const std::int64_t end = start + roundUp65536(h.clut_size);
    std::int64_t base = 0;
    std::array<std::uint8_t, 256> row{};
    do {
        const std::int64_t page = base / kClutsPerPage;
        const std::int64_t pagePos = start + page * kPageBytes;
        file.seek(pagePos);
        if (dumping) {
            // A dump file that cannot be made is pending on `errors`, which the loop checks.
            (void)dump.open(ctx.options.workDir, level + "CLUT" + std::to_string(page) + ".txt",
                            errors);
            dump.line("CLUT Seek:" + std::to_string(pagePos));
            dump.line("CLUT PAGE " + std::to_string(page) + " (CLUTs " + std::to_string(base) +
                      " to " + std::to_string(base + kClutsPerPage - 1) +
                      ") DATA FOLLOWS  (R byte, G byte, B byte, 0 byte):");
        }
        // A failed seek or dump file: no table is read after an error.
        if (errors.hasPending()) return false;
        // Only a clut_size of 0 or less leaves fewer CLUTs in the table than one page holds.
        if (base + kClutsPerPage - 1 > avail) {
            errors.raise(err::SubscriptOutOfRange, "pal24(" + std::to_string(avail + 1) + ")");
            return false;
        }
        for (int colour = 0; colour < 256; ++colour) {
            file.read(row);
            auto* entry = &c.pal24[static_cast<std::size_t>(base) * 256 + colour];
            // Row `colour` holds that colour of all 64 CLUTs of the page, 4 bytes each; the
            // table keeps them in reverse order (entry byte 0 is the file's byte 4k + 2).
            for (int k = 0; k < kClutsPerPage; ++k, entry += 256)
                *entry = {row[4 * k + 2], row[4 * k + 1], row[4 * k]};
        }
        if (dumping) dumpClutPage(dump, c, base);
        dump.close();
        base += kClutsPerPage;
        progress.setValue(static_cast<int>(std::min<std::int64_t>(base, 1 << 30)));
        platform.doEvents();
    } while (file.position() < end);
    if (errors.hasPending()) return false;

    platform.detail("CLUTS loaded:" + std::to_string(base - 1));
    return true;
}

bool load8bitPal(ColourTables& c, const StyleFileState& style, BinaryFile& file,
                 FormatContext& ctx) {
    const PendingErrorScope fresh(ctx.errors);
    const std::int64_t position = palette8Position(style);
    file.seek(position);
    ctx.platform.detail("load8bitPal Seek:" + std::to_string(position));
    std::array<std::uint8_t, 768> bytes{};
    file.read(bytes);
    for (std::size_t v = 0; v < 256; ++v) {
        // Times 4 as a two-bit shift kept in 8 bits: a file byte of 64 or more wraps round.
        c.red[v] = static_cast<std::uint8_t>(bytes[3 * v] << 2);
        c.green[v] = static_cast<std::uint8_t>(bytes[3 * v + 1] << 2);
        c.blue[v] = static_cast<std::uint8_t>(bytes[3 * v + 2] << 2);
    }
    return !ctx.errors.hasPending();
}

} // namespace torquil
