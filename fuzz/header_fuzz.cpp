// Fuzzes the header reader and the whole load sequence with every loader of the program: any
// input must end in a loaded file or a message, never a crash or an out-of-bounds access.

#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 2) return 0;
    // The first byte picks the kind and load option; the rest is the file.
    const bool is24 = data[0] & 1;
    const int option = (data[0] >> 1) & 1;
    auto path = fuzz::writeScratch(is24 ? "STYLE001.G24" : "STYLE001.GRY", data + 1, size - 1);
    AppOptions options;
    options.workDir = fuzz::scratchDir();
    StyleSession session(options);
    torquil::testing::FakePlatform platform;
    prepareStyle(session.style, path, option);
    // A loaded file and a refused one are both fine ends.
    (void)initHeader(session, platform, standardLoaders());
    return 0;
}
