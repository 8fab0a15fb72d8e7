// What is read for a home screen from files and from the network: whatever is taken is written and
// read again as the same.

#include <cstdlib>
#include <string>

#include "app/runtime.h"
#include "host/entry_json.h"
#include "host/home_screen.h"
#include "host/web_request.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace lumenquest;
  static const bool isInstalled = [] {
    app::installServices({});
    return true;
  }();
  if (!isInstalled) std::abort();
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const std::string written = host::HomeScreen::fromJson(text).toJson();
    if (host::HomeScreen::fromJson(written).toJson() != written) std::abort();
  } catch (const host::HomeScreenError&) {
  }
  if (const auto entry = host::entryFromJson(text)) {
    const std::string written = host::entryToJson(*entry);
    const auto again = host::entryFromJson(written);
    if (!again || host::entryToJson(*again) != written) std::abort();
  }
  host::parseQuery(text);
  host::parseListenAddress(text);
  return 0;
}
