// torquil-make-sample OUTDIR: writes the bundled sample level (two style files, ENGLISH.FXT and the
// sound banks of levels 1 and 2) into OUTDIR.

#include "sample_level.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: torquil-make-sample OUTDIR\n";
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
