#pragma once

#include <optional>
#include <string>

#include "events/widget_astrolib.h"
#include "platform/cl_location_manager.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::widgets {

/// What became of the search for a place, for the views.
struct LocationWidgetData {
  /// The place's title.
  std::optional<std::string> address;
  platform::CLAuthorizationStatus authorizationStatus =
      platform::CLAuthorizationStatus::notDetermined;
  /// Whether the device's own position is what the configuration asks for.
  bool isCurrentLocation = false;
  /// There is no place to show anything for.
  bool withError = false;
  /// The zone in which the record's times are told; absent: the device's. An entry is drawn long
  /// after it was made, when the shared formatters are in some other widget's zone.
  std::optional<platform::NSTimeZone> timeZone;

  bool operator==(const LocationWidgetData&) const = default;
};

/// What a widget's data record is made of.
struct RecordSources {
  /// Null: every number of the record is 0 and every text empty.
  const events::WidgetAstrolib* calculator = nullptr;
  platform::CLAuthorizationStatus authorizationStatus =
      platform::CLAuthorizationStatus::authorizedWhenInUse;
  std::optional<std::string> address;
  std::optional<platform::NSTimeZone> timeZone;
  bool isCurrentLocation = false;

  LocationWidgetData locationData() const;
};

/// What a widget of the sky shows.
enum class WidgetContent { locationDenied, locationTimeOut, information };

WidgetContent contentFor(const LocationWidgetData& data);

}  // namespace lumenquest::widgets
