#include <iostream>

#include "tools/fapictl/CommandLine.h"
#include "tools/fapictl/FactoryPackage.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return static_cast<int>(fapictl::run(fapictl::factoryPackage(), arguments, std::cout, std::cerr));
}
