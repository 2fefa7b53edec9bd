// torquil-command-level DIR [PAGES]: writes the full-size 24-bit level (STYLE001.G24) and
// ENGLISH.FXT into DIR, for timing whole torquil-cli commands against their floor
// (bench/command-floors). PAGES (1 to 26) defaults to 16, the size of a real level (3.8 MB).

#include "fxt_coder.h"
#include "sample_level.h"
#include "style_builder.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

int main(int argc, char** argv) {
    const int pages = argc == 3 ? std::atoi(argv[2]) : 16;
    if (argc < 2 || argc > 3 || std::string_view(argv[1]).starts_with("-") || pages < 1 ||
        pages > 26) {
        std::cerr << "usage: torquil-command-level DIR [PAGES]\n";
        return 2;
    }
    try {
        const std::filesystem::path dir = argv[1];
        std::filesystem::create_directories(dir);
        namespace tb = torquil::testing;
        tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(tb::fullSizeSpec24(pages)));
        tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt(tb::sampleFxtEntries()));
    } catch (const std::exception& e) {
        std::cerr << "torquil-command-level: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
