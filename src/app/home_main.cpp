// The command once more, and what it cannot do itself: serve the home screen's page.

#include <malloc.h>

#include <iostream>

#include "app/command_line.h"
#include "app/home_server.h"

int main(int argc, char** argv) {
#ifdef M_ARENA_MAX
  mallopt(M_ARENA_MAX, 1);
#endif
  return lumenquest::app::run({argv + 1, argv + argc}, std::cout, std::cerr,
                              lumenquest::app::serveHome);
}
