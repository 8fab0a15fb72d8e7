// Formats and texts of any bytes are filled and trimmed without harm.

#include <cstdlib>
#include <string>

#include "adapters/printable_text.h"
#include "platform/localized_strings.h"
#include "platform/ns_string.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace lumenquest;
  const std::string text(reinterpret_cast<const char*>(data), size);
  platform::stringWithFormat(text, {"text", 1.0e308, 7, std::optional<std::string>()});
  const std::string trimmed = platform::stringByTrimmingWhitespace(text);
  if (platform::stringByTrimmingWhitespace(trimmed) != trimmed) std::abort();
  if (adapters::printableText(text).find('\n') != std::string::npos) std::abort();
  return 0;
}
