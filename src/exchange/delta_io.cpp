#include "exchange/delta_io.h"

#include "base/binary_file.h"
#include "exchange/delta_dump.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "sprites/delta_table.h"
#include "style/style_file.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

namespace torquil {

namespace {

constexpr int kRunHeadBytes = 3; // offset (u16) + length (u8)

// The deltas really listed in sprite info; element 0 of an empty table is not a delta.
int deltasInTable(const DeltaTable& table) {
    return std::clamp<int>(table.deltaCount, 0, static_cast<int>(table.myDeltas.size()));
}

RunLine readRun(BinaryFile& file) {
    RunLine run;
    run.offset = file.readU16();
    run.length = file.readU8();
    run.data.resize(run.length);
    file.read(run.data);
    return run;
}

// Reads the records of one delta from the current position while it is below end. A record is
// read whole even when it straddles end. Returns the sum of (length + 3) over the records.
std::int64_t readRuns(BinaryFile& file, std::int64_t end, DeltaRec& delta, DeltaLoadDump* dump) {
    std::int64_t calculated = 0;
    int runCount = -1;
    while (file.position() < end) {
        if (file.atEnd()) {
            // Past the end every record reads as zeros: offset 0, which ends a delta on save, and
            // length 0. They are counted, not stored, so a huge size cannot flood the table.
            const std::int64_t left = (end - file.position() + kRunHeadBytes - 1) / kRunHeadBytes;
            calculated += left * kRunHeadBytes;
            file.seek(file.position() + left * kRunHeadBytes);
            break;
        }
        RunLine run = readRun(file);
        calculated += run.length + kRunHeadBytes;
        ++runCount;
        // The list starts as one empty element, which the first run replaces.
        if (runCount == 0)
            delta.runLine[0] = std::move(run);
        else
            delta.runLine.push_back(std::move(run));
        if (dump) dump->run(runCount, delta.runLine.back());
    }
    return calculated;
}

void writeRun(BinaryFile& file, const RunLine& run) {
    file.writeI16(static_cast<std::int16_t>(run.offset));
    file.writeU8(run.length);
    // Exactly `length` bytes, whatever the data array holds.
    std::vector<std::uint8_t> bytes(
        run.data.begin(), run.data.begin() + std::min<std::size_t>(run.data.size(), run.length));
    bytes.resize(run.length, 0);
    file.write(bytes);
}

// Writes the runs of one delta up to the first with offset 0, which marks the end of the used
// run lines (so no run can start at the sprite's top-left pixel). Returns the bytes written.
std::int64_t writeRuns(BinaryFile& file, int index, const DeltaRec& delta, DeltaSaveDump* dump) {
    std::int64_t size = 0;
    for (std::size_t k = 0; k < delta.runLine.size(); ++k) {
        const RunLine& run = delta.runLine[k];
        if (run.offset == 0) break;
        writeRun(file, run);
        size += run.length + kRunHeadBytes;
        if (dump) dump->run(index, static_cast<int>(k), run);
    }
    return size;
}

} // namespace

std::int64_t deltaStoreStart(const StyleFileState& style) {
    return style.gSeekGraphicsStart;
}

bool loadDeltas(DeltaTable& table, const StyleFileState& style, BinaryFile& file,
                FormatContext& ctx) {
    Platform& platform = ctx.platform;
    ProgressSink& progress = platform.progress();
    const int count = deltasInTable(table);
    progress.open("Load Delta Graphics", "Loading Delta Graphics and Data...",
                  std::max(0, count - 1));

    for (DeltaRec& delta : table.myDeltas) delta.runLine.assign(1, RunLine{});

    std::optional<DeltaLoadDump> dump;
    if (ctx.options.dumps.delta) {
        platform.message("Generating loadDelta File");
        dump.emplace(ctx.options.workPath("loadDelta.txt"));
    }

    const std::int64_t storeStart = deltaStoreStart(style);
    if (count == 0) {
        // No deltas: the store is empty and ends where the sprite graphics section ends, which
        // is where a later save starts (and ends) writing.
        table.deltaStart = style.gSeekGraphicsEnd;
        file.seek(table.deltaStart);
    }
    for (int i = 0; i < count; ++i) {
        DeltaRec& delta = table.myDeltas[static_cast<std::size_t>(i)];
        const std::int64_t start = storeStart + delta.ptr;
        if (i == 0) table.deltaStart = start;
        const std::int64_t end = start + delta.size;
        if (dump) dump->beginDelta(i, delta, start, end);
        if (start < 1) {
            ctx.errors.raise(err::BadRecordNumber, "delta " + std::to_string(i));
            continue;
        }
        file.seek(start);
        const std::int64_t calculated = readRuns(file, end, delta, dump ? &*dump : nullptr);
        if (dump) dump->endDelta(calculated);
        progress.setValue(i);
    }
    dump.reset();

    // The delta store is never the last thing in a style file: ending at the file's end, even
    // exactly, means the sprite numbers after it are missing.
    if (file.atEnd()) {
        platform.message("Unexpected EOF during load of Delta Graphics");
        progress.close();
        return false;
    }
    progress.close();
    return !ctx.errors.hasPending();
}

int saveDeltas(DeltaTable& table, StyleFileState& style, BinaryFile& file, FormatContext& ctx) {
    ErrorState& errors = ctx.errors;
    Platform& platform = ctx.platform;
    ProgressSink& progress = platform.progress();
    const PendingErrorScope fresh(errors);
    const int count = deltasInTable(table);
    progress.open("Save Delta Graphics", "Saving Delta Graphics...", std::max(0, count - 1));

    std::optional<DeltaSaveDump> dump;
    if (ctx.options.dumps.delta) {
        platform.message("Generating saveDelta File");
        dump.emplace(ctx.options.workPath("loaddeltassave.txt"));
    }

    const std::int64_t storeStart = deltaStoreStart(style);
    // Never write from a place the load did not find inside the file: a bad start would pad the
    // file with zeros up to it.
    if (table.deltaStart < std::max<std::int64_t>(1, storeStart) ||
        table.deltaStart > file.length() + 1) {
        errors.raise(err::BadRecordNumber, "deltaStart " + std::to_string(table.deltaStart));
        progress.close();
        return errors.pending();
    }

    file.seek(table.deltaStart);
    for (int i = 0; i < count; ++i) {
        DeltaRec& delta = table.myDeltas[static_cast<std::size_t>(i)];
        const std::int64_t ptr = file.position() - storeStart;
        if (ptr > std::numeric_limits<std::int32_t>::max()) {
            errors.raise(err::Overflow, "delta ptr");
            break;
        }
        delta.ptr = static_cast<std::int32_t>(ptr);
        DeltaSaveDump* log = dump && DeltaSaveDump::logs(i) ? &*dump : nullptr;
        if (log) log->beginDelta(i, delta.ptr);

        const std::int64_t size = writeRuns(file, i, delta, log);
        if (size > std::numeric_limits<std::int16_t>::max())
            errors.raise(err::Overflow, "delta " + std::to_string(i) + " size");
        else
            delta.size = static_cast<std::int16_t>(size);

        const std::int64_t here = file.position();
        if (delta.entryPos < 1) {
            errors.raise(err::BadRecordNumber, "delta " + std::to_string(i) + " entry");
        } else {
            file.seek(delta.entryPos);
            file.writeI16(delta.size);
            file.writeI32(delta.ptr);
            file.seek(here);
        }
        if (log) log->endDelta(delta.ptr, delta.size);
        progress.setValue(i);
    }

    const std::int64_t end = file.position();
    const std::int64_t graphicsSize = end - storeStart;
    if (graphicsSize > std::numeric_limits<std::int32_t>::max()) {
        errors.raise(err::Overflow, "sprite_graphics_size");
    } else {
        // sprite_graphics_size: byte offset 56 of a .G24 header, 44 of a .GRY one.
        file.seek(style.header.spriteGraphicsSizeOffset() + 1);
        file.writeI32(static_cast<std::int32_t>(graphicsSize));
        style.header.set_sprite_graphics_size(static_cast<std::int32_t>(graphicsSize));
        style.gSeekGraphicsEnd = end;
        table.storeEnd = end;
    }

    dump.reset();
    progress.close();
    style.gDeltasChanged = false;
    return errors.pending();
}

} // namespace torquil
