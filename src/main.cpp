#include "ui/terminal/command_line.h"

int main(int argc, char** argv) {
    return brindlet::runCommandLine({argv + (argc > 0 ? 1 : 0), argv + argc}, BRINDLET_VERSION);
}
