#pragma once

#include <string>

#include "platform/services.h"

namespace lumenquest::adapters {

/// Writes diagnostics to the system's log, where they disturb no one.
class SystemLog final : public platform::Log {
 public:
  void write(const std::string& message) override;
};

}  // namespace lumenquest::adapters
