// torquil-make-sample OUTDIR: writes the bundled sample level (two style files, ENGLISH.FXT and the
// sound banks of levels 1 and 2) into OUTDIR.

#include "sample_level.h"

#include "base/argument_words.h"

#include <exception>
#include <iostream>
#include <string>

namespace {

constexpr const char* kUsage =
    "Usage: torquil-make-sample OUTDIR\n"
    "Writes the bundled sample level into OUTDIR (created when missing): STYLE001.G24,\n"
    "STYLE002.GRY, ENGLISH.FXT and the sound banks audio/LEVEL001 and LEVEL002 (.SDT, .RAW).\n"
    "Files of those names in OUTDIR are replaced.\n"
    "  -h, --help   print this help and exit\n";

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && (std::string(argv[1]) == "--help" || std::string(argv[1]) == "-h")) {
        std::cout << kUsage;
        return 0;
    }
    if (argc != 2) {
        std::cerr << kUsage;
        return 2;
    }
    if (const std::string refusal = torquil::optionWordAsPathMessage(argv[1]); !refusal.empty()) {
        std::cerr << "torquil-make-sample: OUTDIR: " << refusal << "\n" << kUsage;
        return 2;
    }
    try {
        torquil::testing::writeSampleLevel(argv[1]);
    } catch (const std::exception& e) {
        std::cerr << "torquil-make-sample: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
