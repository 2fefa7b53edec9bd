#include "cli/run.h"
#include "platform/console_setup.h"

#include <iostream>

int main(int argc, char** argv) {
    torquil::setBinaryStdio();
    return torquil::cli::run(torquil::utf8Arguments(argc, argv), std::cout, std::cerr);
}
