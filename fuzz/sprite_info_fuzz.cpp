// Fuzzes the sprite info, sprite numbers and tile region readers and everything that reads their
// tables afterwards (painter, hover lookup, search), on a style file that is the input.

#include "base/binary_file.h"
#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/board_lookup.h"
#include "session/load_sequence.h"
#include "session/session_io.h"
#include "sprites/clut.h"
#include "sprites/sprite_info.h"
#include "sprites/sprite_painter.h"
#include "style/style_header.h"

#include <array>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 2) return 0;
    // The first byte picks the kind of file and the load option.
    const bool is24 = (data[0] & 1) == 0;
    const int option = (data[0] & 2) ? kLoadTiles : kLoadSprites;
    const auto path = fuzz::scratchDir() / (is24 ? "STYLE001.G24" : "STYLE001.GRY");
    std::vector<std::uint8_t> bytes(data + 1, data + size);

    StyleSession& session = fuzz::reusedSession();
    torquil::testing::FakePlatform platform;
    prepareStyle(session.style, path, option);
    BinaryFile file(session.errors);
    file.openBytes(bytes, path);
    session.style.fileLength = file.length();
    session.style.header = readStyleHeader(file, is24);
    if (option == kLoadTiles)
        locateTileSections(session.style);
    else
        locateSpriteSections(session.style);

    if (is24 && !loadCLUT(session, file, platform)) {
        // Go on with an empty palette so that the sprite info is read all the same.
        session.errors.clear();
        session.colours.gClutsAvail = 64;
        session.colours.pal24.assign(65 * 256, {0, 0, 0});
        session.colours.used.assign(65, 0);
    }
    // A refused table is an expected end; the tables are read all the same afterwards.
    if (option == kLoadTiles) {
        (void)calcTileSpriteInfo(session, file, platform);
    } else {
        (void)loadSpriteInfo(session, file, platform);
        session.errors.clear();
        (void)loadSpriteNumbers(session, file, platform);
    }
    session.errors.clear();

    SpritePagePainter painter(session.sprites, session.colours, session.style.gIs24Bit);
    std::array<std::uint32_t, 256> row{};
    for (int page = 0; page <= std::min(session.pages.highestPage, 25); ++page)
        for (int y = 0; y < 256; y += 15)
            painter.paintRow(page, y, session.pages.row(page, y), row.data());
    for (int page = -1; page <= 26; page += 3)
        for (int xy = -1; xy <= 256; xy += 37) (void)describeAt(session, page, xy, 255 - xy);
    for (int asn = 0; asn <= session.sprites.spriteCount + 1; asn += 7)
        (void)findSprite(session.sprites, session.pages.highestPage, asn);
    return 0;
}
