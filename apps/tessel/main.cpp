// tessel: the command-line client of the replay server. Everything but this call lives in the
// korvo_tessel_cli library, where the tests reach it.

#include <iostream>

#include "Tool.h"

int main(int argc, char** argv) {
    return Korvo::Plexis::Tessel::Cli::Main(argc, argv, std::cin, std::cout, std::cerr);
}
