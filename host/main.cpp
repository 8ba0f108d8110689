#include <iostream>

#include "command.h"

int main(int argc, char** argv) {
  return undercut::host::run_Command(argc, argv, std::cout, std::cerr);
}
