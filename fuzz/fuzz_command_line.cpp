// Arguments of any kind, one a line, end in an answer or in one line of error.

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "app/command_line.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace lumenquest;
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  // The required ones are given, so that the fuzzer reaches the computation soon.
  std::vector<std::string> arguments{"today", "--latitude=40", "--longitude=-3", "--time-zone=UTC"};
  for (std::string line; std::getline(lines, line) && arguments.size() < 16;) {
    arguments.push_back(line);
  }
  std::ostringstream out, err;
  const int code = app::run(arguments, out, err);
  const std::string message = err.str();
  const bool answered = code == app::kExitSuccess && message.empty();
  const bool refused = code == app::kExitUsage && out.str().empty() &&
                       std::count(message.begin(), message.end(), '\n') == 1;
  if (!answered && !refused) std::abort();
  return 0;
}
