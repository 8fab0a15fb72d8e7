#pragma once

#include <string>

#include "host/place_day.h"

namespace lumenquest::host {

// The contents of the pages that the widgets of the sky lead to. HTML.
// REQUIRES: the shared formatters are in the place's zone.

/// `isRightToLeft`: the band of the day runs that way.
std::string sunPageContent(const PlaceDay& day, bool isRightToLeft);
/// `moonPicture`: where the Moon's picture is.
std::string moonPageContent(const PlaceDay& day, const std::string& moonPicture);

}  // namespace lumenquest::host
