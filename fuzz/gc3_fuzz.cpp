// Fuzzes the GC3 pack reader and applier: any pack must be read, applied, or refused with the
// files untouched, never a crash, a huge allocation or a write outside a buffer.

#include "base/binary_file.h"
#include "exchange/gc3.h"
#include "fake_platform.h"
#include "fuzz_support.h"

#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    const std::vector<std::uint8_t> bytes(data, data + size);
    Gc3Pack parsed;
    std::string why;
    parseGc3(bytes, parsed, why);

    const auto pack = fuzz::writeScratch("PACK.GC3", data, size);
    const std::vector<std::uint8_t> style(300, 0x11), text(40, 0x22);
    const auto stylePath = fuzz::writeScratch("STYLE001.G24", style.data(), style.size());
    const auto textPath = fuzz::writeScratch("ENGLISH.FXT", text.data(), text.size());
    testing::FakePlatform platform;
    Gc3Header header;
    readGC3(pack, header, platform);
    if (!applyGC3(pack, stylePath, textPath, platform)) {
        // A refused pack leaves both files as they were.
        std::vector<std::uint8_t> styleNow, textNow;
        readWholeFile(stylePath, styleNow);
        readWholeFile(textPath, textNow);
        if (styleNow != style || textNow != text) __builtin_trap();
    }
    return 0;
}
