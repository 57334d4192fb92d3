#include <iostream>

#include "tools/kttool/Commands.h"

int main(int argc, char** argv) {
    return kttool::RunTool(kttool::Arguments(argv + 1, argv + argc), std::cout, std::cerr);
}
