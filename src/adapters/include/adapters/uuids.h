#pragma once

#include <string>

#include "platform/services.h"

namespace lumenquest::adapters {

/// Random UUIDs, by libuuid.
class RandomUUIDs final : public platform::UUIDService {
 public:
  std::string UUIDString() override;
};

}  // namespace lumenquest::adapters
