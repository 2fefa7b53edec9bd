// Opening a full-size 24-bit level (26 pages, thousands of sprites, about 950 CLUTs) with every
// loader of the program, next to a floor measured in the same run: reading the same file's bytes
// and mapping 26 x 65,536 pixels through one colour table. docs/performance.md keeps the figures.

#include "base/binary_file.h"
#include "fake_platform.h"
#include "floor.h"
#include "sample_level.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "sprites/clut.h"
#include "sprites/sprite_info.h"
#include "sprites/sprite_painter.h"
#include "style/page_io.h"
#include "style/style_header.h"

#include <benchmark/benchmark.h>

#include <array>
#include <filesystem>
#include <memory>
#include <unistd.h>

namespace {

using namespace torquil;

// The full-size level, written once per run into a temporary folder.
struct FullSizeLevel {
    std::filesystem::path dir;
    std::filesystem::path style;
    FullSizeLevel() {
        dir = std::filesystem::temp_directory_path() /
              ("torquil-bench-" + std::to_string(static_cast<long>(::getpid())));
        std::filesystem::create_directories(dir);
        style = dir / "STYLE001.G24";
        testing::writeFile(style, testing::buildStyle(testing::fullSizeSpec24()));
    }
    ~FullSizeLevel() {
        std::error_code ec;
        std::filesystem::remove_all(dir, ec);
    }
};

const FullSizeLevel& level() {
    static const FullSizeLevel instance;
    return instance;
}

std::unique_ptr<StyleSession> loadLevel(testing::FakePlatform& platform) {
    AppOptions options;
    options.workDir = level().dir;
    auto session = std::make_unique<StyleSession>(options);
    prepareStyle(session->style, level().style, kLoadSprites);
    if (!initHeader(*session, platform, standardLoaders())) return nullptr;
    return session;
}

// The whole open: new session, header, every loader, pages read and painted.
void BM_FullLoad(benchmark::State& state) {
    for (auto _ : state) {
        testing::FakePlatform platform;
        auto session = loadLevel(platform);
        if (!session) {
            state.SkipWithError("the full-size level did not load");
            return;
        }
        benchmark::DoNotOptimize(session->image.rgb.data());
    }
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(std::filesystem::file_size(level().style)));
}
BENCHMARK(BM_FullLoad)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The floor: the file's bytes into memory, and every page pixel through one colour table.
void BM_Floor(benchmark::State& state) {
    bench::FloorPainter floor;
    for (auto _ : state) {
        std::vector<std::uint8_t> bytes;
        if (!floor.readAndPaint(level().style, bytes)) state.SkipWithError("cannot read the level");
        benchmark::DoNotOptimize(floor.image());
    }
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(std::filesystem::file_size(level().style)));
}
BENCHMARK(BM_Floor)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// Painting alone: every loaded page repainted from the session's tables.
void BM_RepaintPages(benchmark::State& state) {
    testing::FakePlatform platform;
    auto session = loadLevel(platform);
    if (!session) {
        state.SkipWithError("the full-size level did not load");
        return;
    }
    for (auto _ : state) {
        SpritePagePainter painter(session->sprites, session->colours, session->style.gIs24Bit);
        repaintPages(*session, painter);
        benchmark::DoNotOptimize(session->image.rgb.data());
    }
}
BENCHMARK(BM_RepaintPages)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The same load into a session kept from the previous load (its buffers already allocated):
// what reusing the session's page buffers across loads would give.
void BM_LoadIntoKeptSession(benchmark::State& state) {
    AppOptions options;
    options.workDir = level().dir;
    StyleSession session(options);
    for (auto _ : state) {
        testing::FakePlatform platform;
        session.errors.clear();
        session.style = StyleFileState{};
        prepareStyle(session.style, level().style, kLoadSprites);
        if (!initHeader(session, platform, standardLoaders())) {
            state.SkipWithError("the full-size level did not load");
            return;
        }
        benchmark::DoNotOptimize(session.image.rgb.data());
    }
}
BENCHMARK(BM_LoadIntoKeptSession)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// What every load pays before reading a byte: a new session with its page bytes, page image
// and mouse-over map (about 12 MB, zeroed).
void BM_NewSession(benchmark::State& state) {
    for (auto _ : state) {
        auto session = std::make_unique<StyleSession>(AppOptions{});
        benchmark::DoNotOptimize(session->image.rgb.data());
    }
}
BENCHMARK(BM_NewSession)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The colour and sprite tables alone (CLUTs, palette index, sprite info, sprite numbers) on a
// session that already exists.
void BM_ColourAndSpriteTables(benchmark::State& state) {
    AppOptions options;
    options.workDir = level().dir;
    StyleSession session(options);
    prepareStyle(session.style, level().style, kLoadSprites);
    BinaryFile file(session.errors);
    if (!file.open(level().style, BinaryFile::Mode::Read))
        state.SkipWithError("cannot open the level");
    session.style.fileLength = file.length();
    session.style.header = readStyleHeader(file, true);
    locateSpriteSections(session.style);
    testing::FakePlatform platform;
    for (auto _ : state) {
        const bool ok = loadCLUT(session, file, platform) &&
                        loadSpriteInfo(session, file, platform) &&
                        loadSpriteNumbers(session, file, platform);
        if (!ok) {
            state.SkipWithError("the tables did not load");
            return;
        }
        platform.detailLines.clear();
        platform.progressValues.clear();
    }
}
BENCHMARK(BM_ColourAndSpriteTables)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
