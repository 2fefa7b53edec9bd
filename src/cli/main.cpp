#include "cli/cli.h"

#include <iostream>

int main(int argc, char** argv) {
    return torquil::cli::run(argc, argv, std::cout, std::cerr);
}
