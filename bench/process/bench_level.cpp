// torquil-command-level DIR: writes the full-size 24-bit level (STYLE001.G24) and ENGLISH.FXT into
// DIR, for timing whole torquil-cli commands against their floor (scripts/command-floors).

#include "fxt_coder.h"
#include "sample_level.h"
#include "style_builder.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <string_view>

int main(int argc, char** argv) {
    if (argc != 2 || std::string_view(argv[1]).starts_with("-")) {
        std::cerr << "usage: torquil-command-level DIR\n";
        return 2;
    }
    try {
        const std::filesystem::path dir = argv[1];
        std::filesystem::create_directories(dir);
        namespace tb = torquil::testing;
        tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(tb::fullSizeSpec24()));
        tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt(tb::sampleFxtEntries()));
    } catch (const std::exception& e) {
        std::cerr << "torquil-command-level: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
