#pragma once
// A style file written into a temporary folder and opened the way the load sequence opens it
// (header read, sections located), so that one loader at a time can be run on it.

#include "base/binary_file.h"
#include "fake_platform.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "style/style_header.h"
#include "style_builder.h"
#include "test_dir.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace torquil::testing {

struct OpenStyle {
    TempDir dir;
    FakePlatform platform;
    std::unique_ptr<StyleSession> session;
    std::unique_ptr<BinaryFile> file;
    std::filesystem::path path;

    // Writes bytes as dir/name and opens them for reading with the sections of `option`.
    void open(const std::string& name, const std::vector<uint8_t>& bytes, int option = kLoadSprites,
              bool debug = false, DumpFlags dumps = {}) {
        path = dir / name;
        writeFile(path, bytes);
        AppOptions options;
        options.debugMode = debug;
        options.workDir = dir.path();
        options.dumps = dumps;
        session = std::make_unique<StyleSession>(options);
        prepareStyle(session->style, path, option);
        file = std::make_unique<BinaryFile>(session->errors);
        file->open(path, BinaryFile::Mode::Read);
        session->style.fileLength = file->length();
        session->style.header = readStyleHeader(*file, session->style.gIs24Bit);
        if (option == kLoadTiles)
            locateTileSections(session->style);
        else
            locateSpriteSections(session->style);
    }
    void open(const std::string& name, const StyleSpec& layout, int option = kLoadSprites) {
        open(name, buildStyle(layout), option);
    }

    // The whole load sequence with every loader of the program.
    LoadOutcome load(const std::string& name, const std::vector<uint8_t>& bytes,
                     int option = kLoadSprites) {
        path = dir / name;
        writeFile(path, bytes);
        AppOptions options;
        options.workDir = dir.path();
        session = std::make_unique<StyleSession>(options);
        prepareStyle(session->style, path, option);
        return initHeader(*session, platform, standardLoaders());
    }

    StyleSession& s() { return *session; }
    const SpriteRec& sprite(int page, int sib) const {
        return session->sprites.pageSprites.at(page).at(sib);
    }
};

// The details lines from the first one that starts with `first` on.
inline std::vector<std::string> detailsFrom(const FakePlatform& p, const std::string& first) {
    auto it = std::find_if(p.detailLines.begin(), p.detailLines.end(),
                           [&](const std::string& l) { return l.starts_with(first); });
    return {it, p.detailLines.end()};
}

// One CLUT whose colour c is (r0 + c, g0 + c, b0 + c), wrapping at 256.
inline Clut rampClut(uint8_t r0, uint8_t g0, uint8_t b0) {
    Clut clut;
    for (int c = 0; c < 256; ++c)
        clut[c] = {static_cast<uint8_t>(r0 + c), static_cast<uint8_t>(g0 + c),
                   static_cast<uint8_t>(b0 + c)};
    return clut;
}

inline SpriteSpec spriteAt(int page, int x, int y, int w, int h, int clut = 0) {
    SpriteSpec sp;
    sp.page = page;
    sp.x = x;
    sp.y = y;
    sp.w = w;
    sp.h = h;
    sp.clut = clut;
    return sp;
}

} // namespace torquil::testing
