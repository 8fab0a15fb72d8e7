#include "platform/number_text.h"

#include "platform/services.h"

namespace lumenquest::platform {

std::string numberText(double number, int decimals, bool isGrouped) {
  NumberStyle style;
  style.minimumFractionDigits = decimals;
  style.maximumFractionDigits = decimals;
  style.usesGroupingSeparator = isGrouped;
  return Services::current().formatters().numberFormatter("", style)->stringFromNumber(number);
}

}  // namespace lumenquest::platform
