#include "fuzz_support.h"

#include "session/session_io.h"

#include <fstream>
#include <unistd.h>

namespace torquil::fuzz {

const std::filesystem::path& scratchDir() {
    static const std::filesystem::path dir = [] {
        auto d = std::filesystem::temp_directory_path() /
                 ("torquil-fuzz-" + std::to_string(static_cast<long>(getpid())));
        std::filesystem::create_directories(d);
        return d;
    }();
    return dir;
}

std::filesystem::path writeScratch(const std::string& name, const std::uint8_t* data,
                                   std::size_t size) {
    auto path = scratchDir() / name;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return path;
}

StyleSession& reusedSession() {
    static StyleSession session([] {
        AppOptions options;
        options.workDir = scratchDir();
        return options;
    }());
    session.errors.clear();
    session.style = StyleFileState{};
    session.colours = ColourTables{};
    session.deltas = DeltaTable{};
    session.sprites.spriteNumbers = {};
    session.pages.highestPage = 0;
    session.pages.gNumBlockLoaded = -1;
    session.selection.clear();
    return session;
}

} // namespace torquil::fuzz
