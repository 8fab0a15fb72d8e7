#include "host/day_pages.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

#include "ephemeris/constants.h"
#include "events/ephemeris_utils.h"
#include "events/event_text.h"
#include "events/milky_way.h"
#include "host/web_page.h"
#include "host/web_text.h"
#include "platform/formatters.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"
#include "platform/number_text.h"
#include "platform/services.h"

namespace lumenquest::host {

namespace {

using events::EphemerisUtils;
using platform::kTableApp;
using platform::kTableCommon;
using platform::kTableEphemeris;
using platform::localizedString;
using platform::NSDate;
using platform::NSDateFormatterStyle;
using platform::numberText;
using platform::Services;
using platform::stringWithFormat;

constexpr const char* kNothing = "--";

std::string Ephemeris(const char* key) { return localizedString(key, kTableEphemeris); }
std::string Common(const char* key) { return localizedString(key, kTableCommon); }

/// An attribute's number, in no language.
std::string Plain(double number) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                 std::chars_format::fixed, 3);
  return {buffer.data(), end.ptr};
}

/// Time, with a mark when it belongs to another day; or the words of a special value.
std::string Time(const PlaceDay& day, double mjd) {
  return events::eventText(mjd, day.values.mjdTodayAt0, day.values.mjdTomorrowAt0);
}

std::string Date(NSDate date, const platform::NSTimeZone& zone, const char* fields) {
  platform::FormatterService& service = Services::current().formatters();
  const auto formatter =
      service.dateFormatter("", NSDateFormatterStyle::shortStyle, NSDateFormatterStyle::noStyle);
  formatter->setDateFormat(service.dateFormatFromTemplate(fields));
  formatter->setTimeZone(zone);
  return formatter->stringFromDate(date);
}

/// Rows of a label and a value. The value runs in the page's direction, as in the widgets, so that
/// a range's start is where the reading starts.
class Facts {
 public:
  void Row(const std::string& label, const std::string& value) {
    rows_ += "<div><dt>" + htmlEscaped(label) + "</dt><dd>" + htmlEscaped(value) + "</dd></div>\n";
  }
  std::string Html() const { return "<dl class=\"facts\">\n" + rows_ + "</dl>\n"; }

 private:
  std::string rows_;
};

void AddRiseSet(Facts& facts, const PlaceDay& day, const char* riseKey, const char* setKey,
                const char* bothKey, double rise, double set) {
  const auto label = [](const char* key) { return localizedString(key, kTableApp); };
  if (rise == set && !EphemerisUtils::drawEventAtMjd(rise)) {
    facts.Row(label(bothKey), EphemerisUtils::mjdToString(rise));
    return;
  }
  facts.Row(label(riseKey), Time(day, rise));
  facts.Row(label(setKey), Time(day, set));
}

/// Which place and which moment.
std::string Heading(const PlaceDay& day, const std::string& title) {
  const std::string coordinate =
      platform::LocationUtils::latLonStringWithCoordinate(day.place.location.coordinate);
  return pageHeading(title, "<p class=\"where\">" + bdi(day.place.title) +
                                "</p>\n<p class=\"when\">" + "<span>" +
                                htmlEscaped(Date(day.now, day.place.timeZone, "yMMMMEEEEd")) +
                                "</span> <span class=\"clock\">" +
                                htmlEscaped(EphemerisUtils::mjdToString(day.mjdNow)) +
                                "</span></p>\n<p class=\"coordinates\">" +
                                (coordinate == day.place.title ? "" : bdi(coordinate)) + " <span>" +
                                bdi(day.place.timeZone.name) + "</span></p>\n");
}

std::string Card(const std::string& heading, const std::string& content, const char* kind = "") {
  return std::string("<section class=\"card ") + kind + "\">\n<h2>" + htmlEscaped(heading) +
         "</h2>\n" + content + "</section>\n";
}

/// The 24 hours as a band. Its places along the day are percentages, so that it becomes wider and
/// its texts do not.
class Band {
 public:
  Band(const PlaceDay& day, bool isRightToLeft) : day_(day), isRightToLeft_(isRightToLeft) {}

  std::string Svg() const {
    std::string parts;
    // The night is the band's ground.
    for (const LightSpan& span : day_.lights) {
      if (span.light != Light::night) parts += Span(span);
    }
    std::string svg =
        "<svg class=\"band\" width=\"100%\" height=\"112\" role=\"img\" aria-label=\"" +
        webText("web_light_of_day") +
        "\">\n<defs><clipPath id=\"band-clip\"><rect x=\"0\" y=\"28\" "
        "width=\"100%\" height=\"48\" rx=\"12\"/></clipPath></defs>\n"
        "<g clip-path=\"url(#band-clip)\"><rect class=\"ground\" x=\"0\" y=\"28\" "
        "width=\"100%\" height=\"48\"/>" +
        parts + "</g>\n";
    svg += RiseSetMarks() + HourMarks();
    const double now = Place(day_.mjdNow);
    // The edge keeps the mark apart from whichever light it stands in.
    for (const char* const kind : {"now edge", "now"}) {
      svg += std::string("<line class=\"") + kind + "\" x1=\"" + Plain(now) + "%\" x2=\"" +
             Plain(now) + "%\" y1=\"22\" y2=\"82\"/>";
    }
    return svg + "<circle class=\"now\" cx=\"" + Plain(now) + "%\" cy=\"22\" r=\"4\"/></svg>\n";
  }

 private:
  /// Per cent from the left edge.
  double Place(double mjd) const {
    const double length = day_.values.mjdTomorrowAt0 - day_.values.mjdTodayAt0;
    const double part = std::clamp((mjd - day_.values.mjdTodayAt0) / length, 0.0, 1.0) * 100.0;
    return isRightToLeft_ ? 100.0 - part : part;
  }

  std::string Span(const LightSpan& span) const {
    const platform::UIColor color = colorOf(span.light);
    const double from = Place(span.mjdStart);
    const double to = Place(span.mjdEnd);
    const auto byte = [](double component) {
      return std::to_string(std::lround(component * 255.0));
    };
    return "<rect x=\"" + Plain(std::min(from, to)) + "%\" y=\"28\" width=\"" +
           Plain(std::fabs(to - from)) + "%\" height=\"48\" fill=\"rgb(" + byte(color.red) + "," +
           byte(color.green) + "," + byte(color.blue) + ")\" fill-opacity=\"" + Plain(color.alpha) +
           "\"/>";
  }

  /// A text that stays within the band, at a place along the day.
  std::string Label(double place, int y, const std::string& text) const {
    constexpr double kEdge = 9.0;
    // In a text that runs from right to left, its start is on the right.
    const char* const left = isRightToLeft_ ? "end" : "start";
    const char* const right = isRightToLeft_ ? "start" : "end";
    const char* const anchor = place < kEdge ? left : place > 100.0 - kEdge ? right : "middle";
    const double x = place < kEdge ? 0.0 : place > 100.0 - kEdge ? 100.0 : place;
    return "<text x=\"" + Plain(x) + "%\" y=\"" + std::to_string(y) + "\" text-anchor=\"" + anchor +
           "\">" + htmlEscaped(text) + "</text>";
  }

  std::string RiseSetMarks() const {
    std::string marks;
    const std::pair<double, const char*> events[] = {{day_.mjdSunRiseToday, "\u2191"},
                                                     {day_.mjdSunSetToday, "\u2193"}};
    for (const auto& [mjd, arrow] : events) {
      if (!EphemerisUtils::drawEventAtMjd(mjd)) continue;
      const double place = Place(mjd);
      marks += "<line class=\"tick\" x1=\"" + Plain(place) + "%\" x2=\"" + Plain(place) +
               "%\" y1=\"20\" y2=\"28\"/>" +
               Label(place, 14, arrow + EphemerisUtils::mjdToString(mjd));
    }
    return marks;
  }

  std::string HourMarks() const {
    std::string marks;
    platform::NSCalendar& calendar = platform::NSCalendar::cachedCalendar();
    platform::NSDateComponents hour = calendar.componentsFromDate(day_.now);
    hour.minute = hour.second = 0;
    // The hour alone: times with minutes would run into each other on a phone.
    platform::FormatterService& service = Services::current().formatters();
    const auto formatter =
        service.dateFormatter("", NSDateFormatterStyle::noStyle, NSDateFormatterStyle::shortStyle);
    formatter->setDateFormat(service.dateFormatFromTemplate("j"));
    formatter->setTimeZone(day_.place.timeZone);
    for (hour.hour = 0; hour.hour <= 24; hour.hour += 6) {
      const bool isEnd = hour.hour == 24;
      const NSDate instant = calendar.dateFromComponents(hour);
      const double place = Place(isEnd ? day_.values.mjdTomorrowAt0 : instant.modifiedJulianDay());
      marks += "<line class=\"tick\" x1=\"" + Plain(place) + "%\" x2=\"" + Plain(place) +
               "%\" y1=\"76\" y2=\"82\"/>";
      if (!isEnd) marks += Label(place, 100, formatter->stringFromDate(instant));
    }
    return marks;
  }

  const PlaceDay& day_;
  bool isRightToLeft_;
};

/// The day's lights, one a row: the same as the band, in words.
std::string LightsTable(const PlaceDay& day) {
  std::string html = "<table>\n<caption>" + webText("web_light_of_day") +
                     "</caption>\n<thead><tr><th scope=\"col\">" + webText("web_column_light") +
                     "</th><th scope=\"col\">" + webText("web_column_from") +
                     "</th><th scope=\"col\">" + webText("web_column_to") +
                     "</th></tr></thead>\n<tbody>\n";
  for (const LightSpan& span : day.lights) {
    const bool isNow = span.mjdStart <= day.mjdNow && day.mjdNow < span.mjdEnd;
    html += std::string("<tr") + (isNow ? " aria-current=\"time\"" : "") +
            "><th scope=\"row\"><svg class=\"swatch light-" +
            std::to_string(static_cast<int>(span.light)) +
            "\" width=\"12\" height=\"12\" aria-hidden=\"true\"><circle cx=\"6\" cy=\"6\" "
            "r=\"6\"/></svg>" +
            htmlEscaped(nameOf(span.light)) + "</th><td>" +
            htmlEscaped(EphemerisUtils::mjdToString(span.mjdStart)) + "</td><td>" +
            htmlEscaped(EphemerisUtils::mjdToString(span.mjdEnd)) + "</td></tr>\n";
  }
  return html + "</tbody>\n</table>\n";
}

std::string OrNothing(const std::optional<std::string>& text) {
  return text && !text->empty() ? *text : kNothing;
}

std::string AzimuthText(double azimuth) {
  return numberText(std::fmod(std::round(azimuth), 360.0), 0) + "° " +
         platform::LocationUtils::cardinalNameForBearing(azimuth);
}

std::string GalacticCentreCard(const PlaceDay& day) {
  const events::TodayViewModel& values = day.values;
  std::string html;
  if (EphemerisUtils::drawEventAtMjd(values.mjdGcVisibilityStart)) {
    html = "<table>\n<thead><tr><td></td><th scope=\"col\">" + webText("web_column_time") +
           "</th><th scope=\"col\">" + webText("web_column_azimuth") + "</th><th scope=\"col\">" +
           webText("web_column_tilt") + "</th></tr></thead>\n<tbody>\n";
    struct End {
      const char* title;
      double mjd;
      double tilt;
    };
    for (const End& end :
         {End{"gc_visibility_from", values.mjdGcVisibilityStart, values.gcVisibilityStartAngle},
          End{"gc_visibility_to", values.mjdGcVisibilityEnd, values.gcVisibilityEndAngle}}) {
      // A window may have no end; then it has no direction there.
      const bool isInstant = EphemerisUtils::drawEventAtMjd(end.mjd);
      const double azimuth =
          isInstant ? events::MilkyWay::azimuthOfGalacticCenter(day.place.location, end.mjd) : 0.0;
      html +=
          "<tr><th scope=\"row\">" + htmlEscaped(Ephemeris(end.title)) + "</th><td>" +
          htmlEscaped(Time(day, end.mjd)) + "</td><td>" +
          htmlEscaped(isInstant ? AzimuthText(azimuth) : kNothing) + "</td><td>" +
          bdi(isInstant ? numberText(std::round(end.tilt * ephemeris::kRadiansToDegrees), 0) + "°"
                        : kNothing) +
          "</td></tr>\n";
    }
    html += "</tbody>\n</table>\n<p class=\"note\">" + webText("web_tilt_note") + "</p>\n";
  } else if (values.dateNextVisiblity) {
    html = "<p>" +
           htmlEscaped(
               stringWithFormat(Ephemeris("gc_not_visible_until"),
                                {Date(*values.dateNextVisiblity, day.place.timeZone, "EEEE"),
                                 Date(*values.dateNextVisiblity, day.place.timeZone, "yMMMMd")})) +
           "</p>\n";
  } else {
    html = "<p>" + htmlEscaped(Ephemeris("body_always_invisible")) + "</p>\n";
  }
  // High latitudes, a wrong zone and a day of 23 hours can make the hours absurd.
  constexpr float kHoursPerDay = 24.0f;
  Facts facts;
  facts.Row(localizedString("row_moonless_hours", kTableApp),
            day.moonlessHours >= 0.0f && day.moonlessHours <= kHoursPerDay
                ? EphemerisUtils::moonlessHoursText(day.moonlessHours)
                : kNothing);
  return Card(localizedString("row_galactic_centre", kTableApp), html + facts.Html());
}

}  // namespace

std::string sunPageContent(const PlaceDay& day, bool isRightToLeft) {
  const events::TodayViewModel& values = day.values;
  std::string now = "<p class=\"light\">" + htmlEscaped(values.currentLightType) + "</p>\n<p>";
  if (values.nextEvent) {
    now += htmlEscaped(localizedString("row_light_next", kTableApp)) + ": " +
           bdi(stringWithFormat(localizedString("value_light_at", kTableApp),
                                {values.nextEvent->name, Time(day, values.nextEvent->mjd())}));
  } else {
    now += webText("web_no_change_of_light");
  }
  Facts facts;
  AddRiseSet(facts, day, "row_sunrise", "row_sunset", "row_sunrise_sunset", values.mjdSunRise,
             values.mjdSunSet);
  facts.Row(Ephemeris("twilight_golden_hour"), OrNothing(values.goldenHourInterval));
  facts.Row(Ephemeris("twilight_blue_hour"), OrNothing(values.blueHourInterval));
  facts.Row(Ephemeris("twilight_astronomical"), OrNothing(values.astronomicalTwilightInterval));
  return Heading(day, Common("appwidget_sun")) +
         Card(localizedString("row_light_now", kTableApp),
              now + "</p>\n" + Band(day, isRightToLeft).Svg() + facts.Html(), "now") +
         Card(localizedString("web_light_of_day", kTableApp), LightsTable(day), "lights");
}

std::string moonPageContent(const PlaceDay& day, const std::string& moonPicture) {
  const events::TodayViewModel& values = day.values;
  const events::MoonPhaseResult phase = values.moonPhaseData.value_or(events::MoonPhaseResult());
  const std::string name = EphemerisUtils::moonPhaseToString(phase.phase).value_or("");
  Facts facts;
  const auto percent = static_cast<double>(phase.phaseIllumination * 100.0f);
  facts.Row(localizedString("web_illumination", kTableApp),
            stringWithFormat(localizedString("web_percent", kTableApp), {numberText(percent, 1)}));
  // The instant of a principal phase, on its day.
  if (phase.mjdPhase > 0.0) facts.Row(name, Time(day, phase.mjdPhase));
  AddRiseSet(facts, day, "row_moonrise", "row_moonset", "row_moonrise_moonset", values.mjdMoonRise,
             values.mjdMoonSet);
  facts.Row(localizedString("web_distance", kTableApp),
            stringWithFormat(localizedString("web_kilometres", kTableApp),
                             {numberText(std::round(day.moonDistance / 100.0) * 100.0, 0, true)}));
  std::string html = "<div class=\"moon\"><img src=\"" + htmlEscaped(moonPicture) +
                     "\" width=\"180\" height=\"180\" alt=\"" +
                     htmlEscaped(values.moonPhase.value_or(name)) +
                     "\"></div>\n<p class=\"light\">" + htmlEscaped(name) + "</p>\n";
  if (day.isSupermoon) {
    html += "<p class=\"supermoon\">" + htmlEscaped(Ephemeris("phase_supermoon")) + "</p>\n";
  }
  return Heading(day, Common("appwidget_moon")) +
         Card(localizedString("web_moon_now", kTableApp), html + facts.Html(), "now") +
         GalacticCentreCard(day);
}

}  // namespace lumenquest::host
