#include "platform/ns_error.h"

namespace lumenquest::platform {

std::string NSError::description() const {
  return domain + " error " + std::to_string(code) + ": " + localizedDescription;
}

std::string NSError::userInfoDescription() const {
  std::string text = "{";
  for (const auto& [key, value] : userInfo) {
    text += (text.size() > 1 ? "; " : "") + key + " = " + value;
  }
  return text + "}";
}

}  // namespace lumenquest::platform
