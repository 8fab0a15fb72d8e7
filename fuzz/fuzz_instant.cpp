// A timestamp is refused, or comes back as the same instant.

#include <cmath>
#include <cstdlib>
#include <string>

#include "adapters/rfc3339.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace lumenquest;
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto date = adapters::parseRfc3339(text);
  if (!date) return 0;
  const auto again = adapters::parseRfc3339(adapters::formatRfc3339(*date));
  // Written to the microsecond.
  if (!again || std::fabs(again->timeIntervalSinceReferenceDate() -
                          date->timeIntervalSinceReferenceDate()) > 1e-3) {
    std::abort();
  }
  return 0;
}
