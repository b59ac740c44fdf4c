#include <iostream>

#include "render/Tool.h"

int main(int argc, char** argv) {
    return tvk::render::runTool(argc, argv, std::cout, std::cerr);
}
