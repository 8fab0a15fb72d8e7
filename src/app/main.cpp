#include <iostream>

#include "app/command_line.h"

int main(int argc, char** argv) {
  return lumenquest::app::run({argv + 1, argv + argc}, std::cout, std::cerr);
}
