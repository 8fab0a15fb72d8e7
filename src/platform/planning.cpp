#include "platform/planning.h"

#include "platform/services.h"

namespace lumenquest::platform {

void Planning::awakeFromInsert() {
  NSManagedObject::awakeFromInsert();
  if (uniqueIdentifier().value_or("").empty()) {
    setValue(Services::current().uuids().UUIDString(), kAttributeUniqueIdentifier);
  }
}

}  // namespace lumenquest::platform
