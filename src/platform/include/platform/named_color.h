#pragma once

#include <string>

namespace lumenquest::platform {

/// A colour of the asset catalogue by its name, with an opacity from 0 to 1. What it looks like
/// depends on the colour scheme of the view that draws it.
struct NamedColor {
  std::string name;
  double alpha = 1.0;

  bool operator==(const NamedColor&) const = default;
};

}  // namespace lumenquest::platform
