#include "platform/ns_error.h"

#include "platform/localized_strings.h"

namespace lumenquest::platform {

std::string NSError::localizedDescription() const {
  const std::vector<FormatArgument> values(arguments.begin(), arguments.end());
  const std::string sentence = stringWithFormat(localizedString(key, kTableCommon), values);
  return detail.empty() ? sentence : sentence + " (" + detail + ")";
}

std::string NSError::description() const {
  std::string text = domain + " error " + std::to_string(code) + ": " + key;
  for (const std::string& argument : arguments) text += " \"" + argument + "\"";
  return detail.empty() ? text : text + " (" + detail + ")";
}

std::string NSError::userInfoDescription() const {
  std::string text = "{";
  for (const auto& [name, value] : userInfo) {
    text += (text.size() > 1 ? "; " : "") + name + " = " + value;
  }
  return text + "}";
}

}  // namespace lumenquest::platform
