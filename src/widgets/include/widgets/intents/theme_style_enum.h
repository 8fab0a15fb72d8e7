#pragma once

#include "widgets/intents/enum.h"

namespace lumenquest::widgets {

/// The theme that a timeline entry is drawn in.
enum class ThemeStyleEnum : int {
  themeSystem = 0,  ///< the host's colour scheme
  themeDark = 1,
  themeLight = 2,
};

/// The theme of a choice; dark where none was made.
constexpr ThemeStyleEnum themeStyleOf(Enum choice) {
  switch (choice) {
    case Enum::system:
      return ThemeStyleEnum::themeSystem;
    case Enum::light:
      return ThemeStyleEnum::themeLight;
    case Enum::dark:
    case Enum::unknown:
      break;
  }
  return ThemeStyleEnum::themeDark;
}

}  // namespace lumenquest::widgets
