#pragma once

#include <string>

#include "app/option_values.h"

namespace lumenquest::app {

/// `lumenquest settings`: the settings that the widgets share with the main application.
struct SettingsOptions {
  OptionText key;
  OptionText value;
  OptionText format;
};

// Each returns the output and throws UsageError for wrong use, std::runtime_error when the file
// cannot be read or written.

std::string listSettings(const SettingsOptions& options);
std::string getSetting(const SettingsOptions& options);
std::string setSetting(const SettingsOptions& options);

}  // namespace lumenquest::app
