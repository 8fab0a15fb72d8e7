#include "widgets/deep_links.h"

#include "platform/localized_strings.h"

namespace lumenquest::widgets {

std::string planLink(const std::string& objectId) {
  if (objectId.empty()) return kPlansLink;
  return platform::stringWithFormat("lumenquest://plan?id=%@", {objectId});
}

}  // namespace lumenquest::widgets
