// Fuzzes ENGLISH.FXT decoding and the car names save on top of it: any coded file must decode,
// give names only for models 0..90 and, when it has car entries, be written back; never crash or
// overrun a buffer.

#include "base/binary_file.h"
#include "cars/car_names_io.h"
#include "cars/fxt.h"
#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/edits.h"
#include "session/session_io.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    namespace fs = std::filesystem;
    const fs::path folder = fuzz::scratchDir() / "level";
    fs::create_directories(folder);
    fuzz::writeScratch("level/ENGLISH.FXT", data, size);

    static StyleSession s([] {
        AppOptions options;
        options.workDir = fuzz::scratchDir();
        return options;
    }());
    s.errors.clear();
    s.style.path = folder / "STYLE001.G24";
    s.style.gCarNamesChanged = false;
    testing::FakePlatform platform;
    BinaryFile unused(s.errors);
    if (!loadCarNames(s, unused, platform)) std::abort();
    // A file without car entries is left alone (the built-in names stand in).
    if (!s.names.fromFxt) return 0;
    // A rename of every named model, then the save through the decoded copy.
    for (int model = 0; model < kCarNameCount; ++model)
        if (!s.names.keys[static_cast<std::size_t>(model)].empty())
            (void)renameCarModel(s, model, s.names.names[static_cast<std::size_t>(model)] + "\xC0");
    if (!saveCarNames(s, platform)) std::abort();

    // The rebuilt file decodes again.
    CarNames names;
    if (!fxt2txt(folder / "ENGLISH.FXT", fuzz::scratchDir() / "again.txt", &names, platform))
        std::abort();
    return 0;
}
