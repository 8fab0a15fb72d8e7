#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/ns_error.h"
#include "widgets/intents/enum.h"
#include "widgets/intents/intent_placemark.h"
#include "widgets/widget_kit.h"

namespace lumenquest::host {

/// A widget on the home screen.
struct PlacedWidget {
  /// Unique on its home screen: lower-case letters, digits and hyphens, such as "sun-2".
  std::string id;
  std::string kind;
  widgets::WidgetFamily family = widgets::WidgetFamily::systemSmall;
  /// Absent: wherever the device is. The plans' widget has none.
  std::optional<widgets::IntentPlacemark> place;
  widgets::Enum theme = widgets::Enum::system;

  bool operator==(const PlacedWidget&) const = default;
};

/// What is wrong with a home screen, or with its file; what() is a sentence in the user's language.
class HomeScreenError : public std::runtime_error {
 public:
  explicit HomeScreenError(const platform::NSError& reason)
      : std::runtime_error(reason.localizedDescription()) {}
  /// What is wrong with a file.
  HomeScreenError(const std::string& file, const HomeScreenError& reason)
      : std::runtime_error(file + ": " + reason.what()) {}
};

/// The widgets of a home screen, in their order. Each operation that would make it wrong throws
/// HomeScreenError and changes nothing.
class HomeScreen {
 public:
  static constexpr std::size_t kMostWidgets = 60;

  /// One of each kind, wherever the device is.
  static HomeScreen standard();

  /// From the text of a file: {"widgets": [{"id", "kind", "family", "theme", "place"}, ...]}.
  static HomeScreen fromJson(const std::string& text);
  /// Made to be read and edited by people.
  std::string toJson() const;

  const std::vector<PlacedWidget>& widgets() const { return widgets_; }
  /// Null when there is none of this identifier.
  const PlacedWidget* find(const std::string& id) const;
  const PlacedWidget& at(const std::string& id) const { return widgets_[IndexOf(id)]; }

  /// Puts a widget at a position, the end when absent. One without an identifier gets one, which is
  /// returned.
  std::string add(PlacedWidget widget, std::optional<std::size_t> position = std::nullopt);
  /// Replaces the widget of the same identifier.
  void replace(const PlacedWidget& widget);
  void remove(const std::string& id);
  /// `position` counts from 0; past the end is the end.
  void move(const std::string& id, std::size_t position);

  bool operator==(const HomeScreen&) const = default;

 private:
  std::size_t IndexOf(const std::string& id) const;
  std::string NewId(const std::string& kind) const;

  std::vector<PlacedWidget> widgets_;
};

/// "small"; read back, "systemSmall" is taken as well.
const char* familyName(widgets::WidgetFamily family);
std::optional<widgets::WidgetFamily> familyNamed(const std::string& text);
/// "system", "dark", "light"
const char* themeName(widgets::Enum theme);
std::optional<widgets::Enum> themeNamed(const std::string& text);

/// What people call a kind, as "milky-way"; "widget" for an unknown one.
std::string shortNameOf(const std::string& kind);

/// What a widget's kind says of itself; absent for an unknown kind.
std::optional<widgets::WidgetConfiguration> configurationOf(const std::string& kind);

}  // namespace lumenquest::host
