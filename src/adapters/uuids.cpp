#include "adapters/uuids.h"

#include <uuid/uuid.h>

#include <array>

namespace lumenquest::adapters {

std::string RandomUUIDs::UUIDString() {
  uuid_t bytes;
  uuid_generate_random(bytes);
  std::array<char, UUID_STR_LEN> text{};
  uuid_unparse_upper(bytes, text.data());
  return text.data();
}

}  // namespace lumenquest::adapters
