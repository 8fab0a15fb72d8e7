#include "app/settings_command.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "adapters/printable_text.h"
#include "app/runtime.h"
#include "app/table.h"
#include "platform/localized_strings.h"
#include "platform/ns_user_defaults.h"

namespace lumenquest::app {

namespace {

using Json = nlohmann::ordered_json;
using platform::NSUserDefaults;
using platform::stringWithFormat;
using Value = NSUserDefaults::Value;

struct SettingsOptions {
  OptionText key;
  OptionText value;
  OptionText format;
};

/// Reads a value of one type; nothing when the text is none.
using Parser = std::optional<Value> (*)(const std::string&);

std::optional<Value> ParseDegrees(const std::string& text, double bound) {
  const std::optional<double> degrees = parseNumber(text);
  if (!degrees || !(std::fabs(*degrees) <= bound)) return std::nullopt;
  return *degrees;
}

struct KnownSetting {
  const char* key;
  const char* helpKey;
  const char* expectationKey;
  Parser parse;
};

constexpr std::array<KnownSetting, 6> kSettings{{
    {platform::kUserDefaultsCoordinateSystem, "setting_coordinate_system",
     "expect_coordinate_system",
     [](const std::string& text) -> std::optional<Value> {
       if (text != "0" && text != "1" && text != "2") return std::nullopt;
       return std::int64_t{text[0] - '0'};
     }},
    {platform::kUserDefaultsUseGeodesicLines, "setting_geodesic_lines", "expect_boolean",
     [](const std::string& text) -> std::optional<Value> {
       if (text != "true" && text != "false") return std::nullopt;
       return text == "true";
     }},
    {platform::kUserDefaultsTodayExtensionLastLatitude, "setting_last_latitude", "expect_latitude",
     [](const std::string& text) { return ParseDegrees(text, 90.0); }},
    {platform::kUserDefaultsTodayExtensionLastLongitude, "setting_last_longitude",
     "expect_longitude", [](const std::string& text) { return ParseDegrees(text, 180.0); }},
    {platform::kUserDefaultsTodayExtensionLastPostalAddress, "setting_last_address", "expect_text",
     [](const std::string& text) -> std::optional<Value> {
       if (!adapters::isText(text)) return std::nullopt;
       return text;
     }},
    {platform::kUserDefaultsTodayExtensionLastTimeZone, "setting_last_time_zone",
     "expect_time_zone",
     [](const std::string& text) -> std::optional<Value> {
       const auto zone = platform::NSTimeZone::timeZoneWithName(text);
       if (!zone) return std::nullopt;
       return zone->name;
     }},
}};

std::string KnownKeys() {
  std::string keys;
  for (const KnownSetting& setting : kSettings) {
    if (!keys.empty()) keys += ", ";
    keys += setting.key;
  }
  return keys;
}

std::vector<Suggestion> SuggestKeys(const std::string&) {
  std::vector<Suggestion> suggestions;
  for (const KnownSetting& setting : kSettings) {
    suggestions.push_back({setting.key, appText(setting.helpKey)});
  }
  return suggestions;
}

const KnownSetting& SettingOf(const OptionText& key) {
  if (!key)
    throw UsageError(stringWithFormat(appText("error_missing_option"), {"KEY", KnownKeys()}));
  const auto found = std::find_if(kSettings.begin(), kSettings.end(),
                                  [&](const KnownSetting& setting) { return setting.key == *key; });
  if (found == kSettings.end()) throwBadOptionExpecting("KEY", *key, KnownKeys());
  return *found;
}

/// The suite; throws when it has no place, or a file that cannot be read.
NSUserDefaults& ReadableSuite() {
  NSUserDefaults* const suite = NSUserDefaults::lumenquestUserDefaults();
  if (suite != nullptr) suite->dictionaryRepresentation();
  if (const auto error = settingsError()) {
    throw std::runtime_error(stringWithFormat(appText("error_settings_read"), {*error}));
  }
  return *suite;
}

Json ToJson(const std::optional<Value>& value) {
  if (!value) return nullptr;
  return std::visit([](const auto& stored) { return Json(stored); }, *value);
}

std::string ToText(const std::optional<Value>& value) {
  if (!value) return "--";
  if (const auto* text = std::get_if<std::string>(&*value))
    return adapters::printableText(*text, 200);
  return ToJson(value).dump();
}

std::string ListSettings(const SettingsOptions& options) {
  const OutputFormat format = parseFormat(options.format);
  const NSUserDefaults& suite = ReadableSuite();
  if (format == OutputFormat::json) {
    Json json = Json::object();
    for (const KnownSetting& setting : kSettings) {
      json[setting.key] = ToJson(suite.objectForKey(setting.key));
    }
    return json.dump(2) + "\n";
  }
  Table table;
  for (const KnownSetting& setting : kSettings) {
    table.Row(setting.key,
              ToText(suite.objectForKey(setting.key)) + "   " + appText(setting.helpKey));
  }
  return table.Text();
}

std::string GetSetting(const SettingsOptions& options) {
  const KnownSetting& setting = SettingOf(options.key);
  const OutputFormat format = parseFormat(options.format);
  const auto value = ReadableSuite().objectForKey(setting.key);
  if (format == OutputFormat::json) return Json{{setting.key, ToJson(value)}}.dump(2) + "\n";
  return ToText(value) + "\n";
}

std::string SetSetting(const SettingsOptions& options) {
  const KnownSetting& setting = SettingOf(options.key);
  if (!options.value) {
    throw UsageError(stringWithFormat(appText("error_missing_option"),
                                      {"VALUE", appText(setting.expectationKey)}));
  }
  const std::optional<Value> value = setting.parse(*options.value);
  if (!value) throwBadOption(setting.key, *options.value, setting.expectationKey);
  NSUserDefaults& suite = ReadableSuite();
  suite.setObject(value, setting.key);
  if (!suite.synchronize()) {
    throw std::runtime_error(
        stringWithFormat(appText("error_settings_write"), {settingsError().value_or("")}));
  }
  requestReload();
  return std::string();
}

}  // namespace

void addSettingsCommands(CommandSet& commands) {
  SettingsOptions& o = commands.Keep<SettingsOptions>();
  const OptionSpec key{"KEY", "", "help_setting_key", "expect_text", &o.key, SuggestKeys};
  CommandSet::Command& settings = commands.AddGroup(
      "settings", {"help_usage_settings", "help_settings", "help_settings_examples"});
  commands.Add(settings, "list",
               {"help_usage_settings_list", "help_settings_list", "help_settings_examples"},
               {formatOption(o.format)}, [&o] { return ListSettings(o); });
  commands.Add(settings, "get",
               {"help_usage_settings_get", "help_settings_get", "help_settings_examples"},
               {key, formatOption(o.format)}, [&o] { return GetSetting(o); });
  commands.Add(settings, "set",
               {"help_usage_settings_set", "help_settings_set", "help_settings_examples"},
               {key, {"VALUE", "", "help_setting_value", "expect_text", &o.value}},
               [&o] { return SetSetting(o); });
}

}  // namespace lumenquest::app
