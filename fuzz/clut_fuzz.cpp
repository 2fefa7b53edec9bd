// Fuzzes the colour table readers and the CLUT writer: the palette index, the CLUT section, the
// 8-bit palette and the save back, on a style file whose header and body are the input.

#include "base/binary_file.h"
#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/load_sequence.h"
#include "session/session_io.h"
#include "sprites/clut.h"
#include "style/style_header.h"

#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 2) return 0;
    // The first byte picks the kind of file and whether the CLUTs are saved back.
    const bool is24 = (data[0] & 1) == 0;
    const bool save = (data[0] & 2) != 0;
    const auto path = fuzz::scratchDir() / (is24 ? "STYLE001.G24" : "STYLE001.GRY");
    std::vector<std::uint8_t> bytes(data + 1, data + size);

    StyleSession& session = fuzz::reusedSession();
    torquil::testing::FakePlatform platform;
    prepareStyle(session.style, path, kLoadSprites);
    BinaryFile file(session.errors);
    file.openBytes(bytes, path);
    session.style.fileLength = file.length();
    session.style.header = readStyleHeader(file, is24);
    locateSpriteSections(session.style);

    const bool loaded =
        is24 ? loadCLUT(session, file, platform) : load8bitPal(session, file, platform);
    if (loaded) {
        SpriteRec sprite;
        for (int clut = -1; clut <= session.colours.gClutsAvail + 1; clut += 17) {
            sprite.clut = static_cast<std::int16_t>(clut);
            (void)spriteColour(session, sprite, static_cast<std::uint8_t>(clut));
        }
    }
    if (save) (void)saveCLUT(session, file, platform);
    return 0;
}
