#include <malloc.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <stdexcept>
#include <system_error>

#include "app/command_line.h"
#include "app/option_values.h"
#include "app/runtime.h"
#include "platform/localized_strings.h"

namespace {

/// Goes on as the program that serves, which lies where the build says, seen from this one: its
/// libraries would take 1.5 MB of every other command's memory. Returns only by throwing.
void BecomeServer(char** arguments) {
  using namespace lumenquest;
  const std::string server =
      (app::programFolder() / LUMENQUEST_HOME_PROGRAM).lexically_normal().string();
  execv(server.c_str(), arguments);
  const std::string reason = std::generic_category().message(errno);
  throw std::runtime_error(
      platform::stringWithFormat(app::appText("error_program"), {server, reason}));
}

}  // namespace

int main(int argc, char** argv) {
#ifdef M_ARENA_MAX
  // The libraries' few threads would each get a heap of their own: 0.4 MB while a widget is drawn.
  mallopt(M_ARENA_MAX, 1);
#endif
  return lumenquest::app::run({argv + 1, argv + argc}, std::cout, std::cerr,
                              [&](const auto&...) { BecomeServer(argv); });
}
