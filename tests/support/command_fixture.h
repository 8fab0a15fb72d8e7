#pragma once

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/home_server.h"
#include "scratch_folder.h"

namespace lumenquest::testing {

/// The user's own configuration stays out of the tests.
inline const int kNoConfiguration = setenv("XDG_CONFIG_HOME", "/nonexistent", 1);

/// A data folder of the test's own, for settings and plans; the user's stay out of the tests.
class DataFolder : public ScratchFolder {
 public:
  DataFolder() { setenv("XDG_DATA_HOME", path().c_str(), 1); }
  ~DataFolder() { setenv("XDG_DATA_HOME", "/nonexistent", 1); }
};

struct Result {
  int code;
  std::string out;
  std::string err;
};

/// Calls the command as its users do.
inline Result Call(const std::vector<std::string>& arguments) {
  std::ostringstream out, err;
  const int code = app::run(arguments, out, err, app::serveHome);
  return {code, out.str(), err.str()};
}

}  // namespace lumenquest::testing
