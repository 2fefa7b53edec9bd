// torquil-bench-level DIR PAGES: writes the full-size benchmark level (tools/builder,
// fullSizeSpec24) on PAGES graphics pages as DIR/STYLE001.G24 with the sample's ENGLISH.FXT beside
// it, for timing whole processes (the window started on it against the window started without a
// level).

#include "fxt_coder.h"
#include "sample_level.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: torquil-bench-level DIR PAGES\n";
        return 2;
    }
    const std::string pagesArg = argv[2];
    if (pagesArg.empty() || pagesArg.find_first_not_of("0123456789") != std::string::npos ||
        pagesArg.size() > 2 || std::stoi(pagesArg) < 1 || std::stoi(pagesArg) > 26) {
        std::cerr << "torquil-bench-level: PAGES must be a number from 1 to 26, not " << pagesArg
                  << "\n";
        return 2;
    }
    try {
        const std::filesystem::path dir = argv[1];
        std::filesystem::create_directories(dir);
        const auto style = dir / "STYLE001.G24";
        namespace tb = torquil::testing;
        tb::writeFile(style, tb::buildStyle(tb::fullSizeSpec24(std::stoi(pagesArg))));
        tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt(tb::sampleFxtEntries()));
        std::cout << style.string() << "\n";
    } catch (const std::exception& e) {
        std::cerr << "torquil-bench-level: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
