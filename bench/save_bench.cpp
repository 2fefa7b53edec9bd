// A full save of the full-size 24-bit level (every page, CLUT, delta, car record and the car
// names rewritten) next to its floor measured in the same run: reading the file, mapping its
// pixels through one colour table, and writing it whole with a flush to the disk.
// docs/performance.md keeps the figures.

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "fake_platform.h"
#include "floor.h"
#include "sample_level.h"
#include "session/file_backups.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/style_session.h"
#include "style/pages.h"
#include "style_builder.h"

#include <benchmark/benchmark.h>

#include <array>
#include <filesystem>
#include <memory>
#include <unistd.h>

namespace {

using namespace torquil;
namespace fs = std::filesystem;

struct SaveLevel {
    fs::path dir, style;
    SaveLevel() {
        dir = fs::temp_directory_path() /
              ("torquil-save-bench-" + std::to_string(static_cast<long>(::getpid())));
        fs::create_directories(dir);
        style = dir / "STYLE001.G24";
        testing::writeFile(style, testing::buildStyle(testing::fullSizeSpec24()));
        testing::writeFile(dir / "ENGLISH.FXT", testing::encodeFxt(testing::sampleFxtEntries()));
    }
    ~SaveLevel() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

const SaveLevel& level() {
    static const SaveLevel instance;
    return instance;
}

// Everything changed, saved: car info, pages, CLUTs, deltas (with the cut) and ENGLISH.FXT.
void BM_FullSave(benchmark::State& state) {
    AppOptions options;
    options.workDir = level().dir;
    StyleSession session(options);
    testing::FakePlatform platform;
    prepareStyle(session.style, level().style, kLoadSprites);
    if (!initHeader(session, platform, standardLoaders())) {
        state.SkipWithError("the full-size level did not load");
        return;
    }
    BackupRegistry backups;
    SaveOptions save;
    save.backups = &backups;
    for (auto _ : state) {
        markAllChanged(session);
        platform.shownMessages.clear();
        platform.progressValues.clear();
        if (saveChanges(session, platform, save).result != SaveResult::Saved) {
            state.SkipWithError("the save failed");
            return;
        }
    }
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(fs::file_size(level().style)));
}
BENCHMARK(BM_FullSave)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The floor: the file read, every page pixel through one colour table, the file written whole
// beside itself, flushed to the disk and renamed over the old one.
void BM_SaveFloor(benchmark::State& state) {
    bench::FloorPainter floor;
    const fs::path copy = level().dir / "floor.G24";
    for (auto _ : state) {
        std::vector<std::uint8_t> bytes;
        if (!floor.readAndPaint(level().style, bytes)) state.SkipWithError("cannot read the level");
        benchmark::DoNotOptimize(floor.image());
        if (!replaceFileAtomically(copy, bytes)) {
            state.SkipWithError("the copy could not be written");
            return;
        }
    }
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(fs::file_size(level().style)));
}
BENCHMARK(BM_SaveFloor)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
