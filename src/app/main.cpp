#include "app/startup.h"

int main(int argc, char** argv) {
    return torquil::runTorquil(argc, argv);
}
