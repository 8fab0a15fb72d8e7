#include "platform/ns_fetch_request.h"

#include <utility>

namespace lumenquest::platform {

NSPredicate NSPredicate::greaterThanOrEqual(std::string attribute, AttributeValue value) {
  return {std::move(attribute), Form::greaterThanOrEqual, std::move(value)};
}

NSPredicate NSPredicate::isAbsent(std::string attribute) {
  return {std::move(attribute), Form::isAbsent, {}};
}

bool NSPredicate::holdsFor(const AttributeValue& candidate) const {
  const bool absent = std::holds_alternative<std::monostate>(candidate);
  if (form == Form::isAbsent) return absent;
  // Values of one attribute have one type; another one's compare with nothing.
  return !absent && candidate.index() == value.index() && candidate >= value;
}

}  // namespace lumenquest::platform
