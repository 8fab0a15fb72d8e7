#pragma once

#include <string>

namespace lumenquest::platform {

/// A colour of the asset catalogue by its name, with an opacity from 0 to 1.
struct UIColor {
  std::string name;
  double alpha = 1.0;

  bool operator==(const UIColor&) const = default;
};

}  // namespace lumenquest::platform
