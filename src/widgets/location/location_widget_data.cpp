#include "widgets/location/location_widget_data.h"

namespace lumenquest::widgets {

LocationWidgetData RecordSources::locationData() const {
  return {address, authorizationStatus, isCurrentLocation,
          calculator != nullptr && !calculator->currentLocation(), timeZone};
}

WidgetContent contentFor(const LocationWidgetData& data) {
  if (data.authorizationStatus == platform::CLAuthorizationStatus::denied) {
    return WidgetContent::locationDenied;
  }
  return data.withError ? WidgetContent::locationTimeOut : WidgetContent::information;
}

}  // namespace lumenquest::widgets
