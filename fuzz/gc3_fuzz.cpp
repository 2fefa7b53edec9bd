// Fuzzes the GC3 pack reader and applier: any pack must be read, applied, or refused with the
// files untouched, never a crash, a huge allocation or a write outside a buffer.

#include "base/binary_file.h"
#include "exchange/gc3.h"
#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/car_pack.h"
#include "session/file_backups.h"

#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    const std::vector<std::uint8_t> bytes(data, data + size);
    const Gc3Pack parsed = parseGc3(bytes).valueOr({});
    (void)findGc3Trailer(bytes, parsed.header);

    // The applier works on files by name.
    const auto pack = fuzz::writeScratch("PACK.GC3", data, size);
    const std::vector<std::uint8_t> style(300, 0x11), text(40, 0x22);
    const auto stylePath = fuzz::writeScratch("STYLE001.G24", style.data(), style.size());
    const auto textPath = fuzz::writeScratch("ENGLISH.FXT", text.data(), text.size());
    testing::FakePlatform platform;
    Gc3Header header;
    (void)readGC3(pack, header, platform);
    BackupRegistry backups;
    const CarPackApplied applied = applyCarPack(pack, {stylePath, textPath}, platform, backups);
    // A file that cannot be read back counts as empty, which no applied pack leaves.
    const std::vector<std::uint8_t> styleNow = readWholeFile(stylePath).valueOr({});
    const std::vector<std::uint8_t> textNow = readWholeFile(textPath).valueOr({});
    if (!applied) {
        // A refused pack leaves both files as they were.
        if (styleNow != style || textNow != text) __builtin_trap();
    } else if (styleNow.size() != static_cast<std::size_t>(parsed.header.StyleDataLOF)) {
        // An applied pack gives the style file its recorded length.
        __builtin_trap();
    }
    return 0;
}
