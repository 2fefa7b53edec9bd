#pragma once
// A style file made by the builder, written into a temporary folder and opened through the real
// load sequence, with the work directory in the same folder.

#include "cli_runner.h"
#include "fake_platform.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "sprites/sprite_info.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace torquil::testing {

// A CLUT whose colour c is (c, 255 - c, seed + c), so that every CLUT and colour differ.
inline Clut distinctClut(std::uint8_t seed) {
    Clut c{};
    for (int i = 0; i < 256; ++i)
        c[static_cast<std::size_t>(i)] = {static_cast<std::uint8_t>(i),
                                          static_cast<std::uint8_t>(255 - i),
                                          static_cast<std::uint8_t>(seed + i)};
    return c;
}

// w x h pixels whose value depends on x and y, never 0 unless `zeroes`.
inline std::vector<std::uint8_t> patternPixels(int w, int h, int seed = 0) {
    std::vector<std::uint8_t> p(static_cast<std::size_t>(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            p[static_cast<std::size_t>(y) * w + x] =
                static_cast<std::uint8_t>(1 + (x * 7 + y * 13 + seed) % 250);
    return p;
}

struct StyleFixture : ::testing::Test {
    TempDir dir;
    FakePlatform platform;
    std::unique_ptr<StyleSession> session;
    std::filesystem::path stylePath;

    // Writes the style and loads it with the sprites option; fails the test when it does not load.
    void open(const StyleSpec& layout, const std::string& name = "STYLE001.G24",
              bool debug = false) {
        stylePath = dir / name;
        writeFile(stylePath, buildStyle(layout));
        reopen(debug);
    }
    void reopen(bool debug = false) {
        AppOptions options;
        options.debugMode = debug;
        options.workDir = dir.path();
        session = std::make_unique<StyleSession>(options);
        prepareStyle(session->style, stylePath, kLoadSprites);
        ASSERT_TRUE(initHeader(*session, platform, standardLoaders()))
            << (platform.shownMessages.empty() ? "" : platform.shownMessages.back().text);
        platform.shownMessages.clear();
    }
    void select(int asn) {
        ASSERT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
    }
    const SpriteRec& selected() const { return *session->selectedSprite(); }
    std::vector<std::string> messages() const { return platform.messageTexts(); }
};

} // namespace torquil::testing
