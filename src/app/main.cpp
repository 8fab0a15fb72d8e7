#include <malloc.h>

#include <iostream>

#include "app/command_line.h"

int main(int argc, char** argv) {
#ifdef M_ARENA_MAX
  // The libraries' few threads would each get a heap of their own: 0.4 MB while a widget is drawn.
  mallopt(M_ARENA_MAX, 1);
#endif
  return lumenquest::app::run({argv + 1, argv + argc}, std::cout, std::cerr);
}
