#include "host/home_site.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <system_error>
#include <variant>

#include "events/moon_shadow.h"
#include "host/day_pages.h"
#include "host/home_pages.h"
#include "host/web_text.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"
#include "platform/ns_user_defaults.h"
#include "platform/place_zone.h"
#include "platform/services.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::host {

namespace {

using platform::ColorScheme;
using platform::kTableApp;
using platform::localizedString;
using platform::stringWithFormat;

constexpr const char* kSvg = "image/svg+xml";
constexpr const char* kPng = "image/png";
constexpr const char* kJson = "application/json";
/// How soon to come again for what is being computed.
constexpr int kSecondsToFirstEntry = 2;
/// Plans are changed by another program, and a home screen may have no widget that tells of it.
constexpr int kSecondsToPlans = 15;
constexpr const char* kPlansRefresh = " data-refresh=\"15\"";

/// Whether a widget of the sky tells of the Sun's page, or else of the Moon's.
bool TellsOf(const std::string& kind, bool isSun) {
  return kind == widgets::LumenquestWidget().kind || leadsToMoon(kind) != isSun;
}

/// A version of contents, for caches: FNV-1a, 64 bits.
std::string TagOf(const std::string& contents) {
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (const char c : contents) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
  }
  char text[17];
  std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(hash));
  return text;
}

std::string ContentTypeOf(const std::string& name) {
  if (name.ends_with(".css")) return "text/css; charset=utf-8";
  if (name.ends_with(".js")) return "text/javascript; charset=utf-8";
  return kSvg;
}

std::string Parameter(const WebRequest& request, const char* name) {
  const auto found = request.query.find(name);
  return found == request.query.end() ? "" : found->second;
}

ColorScheme SchemeOf(const WebRequest& request) {
  return Parameter(request, "scheme") == "light" ? ColorScheme::light : ColorScheme::dark;
}

/// What is wrong with a parameter, by the key of what would be right.
struct BadParameter {
  const char* name;
  const char* expected;
};

/// Another word than the schemes' may be a slip that nobody sees on a frame.
ColorScheme GivenScheme(const WebRequest& request) {
  const std::string text = Parameter(request, "scheme");
  if (!text.empty() && text != "dark" && text != "light") {
    throw BadParameter{"scheme", "expect_scheme"};
  }
  return SchemeOf(request);
}

/// Pixels a point.
double GivenScale(const WebRequest& request) {
  const std::string text = Parameter(request, "scale");
  if (text.empty()) return 2.0;
  double scale = 0.0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, scale, std::chars_format::fixed);
  if (error != std::errc() || rest != end || !(scale >= 1.0 && scale <= 4.0)) {
    throw BadParameter{"scale", "expect_scale"};
  }
  return scale;
}

WebResponse ErrorJson(const std::string& sentence, int status) {
  WebResponse response;
  response.status = status;
  response.contentType = kJson;
  // What was typed may be anything.
  response.body = nlohmann::json{{"error", sentence}}.dump(
                      -1, ' ', false, nlohmann::json::error_handler_t::replace) +
                  "\n";
  return response;
}

/// What an entry of the sky says of its place; null for the plans.
const widgets::LocationWidgetData* LocationDataOf(const AnyEntry& entry) {
  return std::visit(
      [](const auto& kind) -> const widgets::LocationWidgetData* {
        if constexpr (requires { kind.data.locationData; }) {
          return &kind.data.locationData;
        } else {
          return nullptr;
        }
      },
      entry);
}

std::string CoordinateText(const platform::CLLocation& location) {
  return platform::LocationUtils::latLonStringWithCoordinate(location.coordinate);
}

std::optional<platform::NSTimeZone> KnownZone(const std::optional<std::string>& name) {
  return name ? platform::NSTimeZone::timeZoneWithName(*name) : std::nullopt;
}

/// Where the device is as far as it knows itself.
std::optional<platform::CLLocation> DeviceLocation() {
  const auto manager = platform::Services::current().locations().locationManager();
  return manager->isAuthorizedForWidgetUpdates() ? manager->location() : std::nullopt;
}

/// Where the device was last; `data` is of a widget that follows it, and may be null.
std::optional<DayPlace> LastPlace(const widgets::LocationWidgetData* data) {
  const platform::NSTimeZone local = platform::NSTimeZone::localTimeZone();
  const auto [saved, savedPlace] = platform::SavedLocation::loadWithPlace();
  const auto location = DeviceLocation();
  if (!location && !saved) return std::nullopt;
  std::optional<std::string> address;
  std::optional<platform::NSTimeZone> zone;
  if (location && data != nullptr) {
    address = data->address;
    zone = data->timeZone;
  } else if (!location ||
             (saved && location->distanceFromLocation(*saved) <= widgets::kSamePlaceDistance)) {
    // The saved location is that of whichever widget asked last, wherever it is.
    address = savedPlace.address;
    zone = KnownZone(savedPlace.timeZone);
  }
  const platform::CLLocation& there = location ? *location : *saved;
  return DayPlace{address.value_or(CoordinateText(there)), there, zone.value_or(local)};
}

/// Where a widget is; nothing when nobody knows.
std::optional<DayPlace> PlaceOf(const ShownWidget* shown) {
  // The provider has looked up the place's zone; sample data are of another place.
  const widgets::LocationWidgetData* const data =
      shown != nullptr && !shown->isPlaceholder ? LocationDataOf(shown->entry) : nullptr;
  if (shown == nullptr || !shown->widget.place) return LastPlace(data);
  const widgets::IntentPlacemark& place = *shown->widget.place;
  const auto zone = data != nullptr ? data->timeZone : std::nullopt;
  if (!zone && shown->isPlaceholder) return std::nullopt;
  return DayPlace{place.name.empty() ? CoordinateText(place.location) : place.name, place.location,
                  zone.value_or(platform::NSTimeZone::localTimeZone())};
}

/// The Moon's picture as it stands in the sky.
platform::UIImage MoonImage(const PlaceDay& day) {
  constexpr double kPoints = 180.0;
  // The shadow reaches a little beyond the disc.
  constexpr double kMargin = 4.0;
  const platform::CGRect whole{0.0, 0.0, kPoints, kPoints};
  const platform::CGRect disc = whole.insetBy(kMargin);
  const auto picture = platform::Services::current().assets().imageNamed("moon");
  const events::MoonPhaseResult phase =
      day.values.moonPhaseData.value_or(events::MoonPhaseResult());
  platform::ImageContext context({whole.width, whole.height});
  context.embedImage(
      std::make_shared<const platform::UIImage>(events::MoonShadow::drawShadowOnMoonImage(
          picture.get(), {disc.width, disc.height}, static_cast<double>(phase.zenithAngle),
          phase.shadowPhase(), static_cast<double>(phase.sunElevation),
          static_cast<double>(phase.phaseIllumination), 0.0, day.isSupermoon)),
      disc, {});
  return context.image();
}

}  // namespace

HomeSite::HomeSite(Scheduler& scheduler, HomeScreenFile& file, HomeSiteOptions options)
    : scheduler_(scheduler),
      file_(file),
      options_(std::move(options)),
      pictures_(options_.drawWidget),
      pngs_(options_.drawPng),
      api_(scheduler, file, [this](const HomeScreen& screen) {
        scheduler_.show(screen);
        homeScreenIsNew();
      }) {}

void HomeSite::entryIsNew(const ShownWidget& shown) {
  options_.publish(
      "entry", nlohmann::ordered_json{{"id", shown.widget.id}, {"version", shown.version}}.dump());
}

void HomeSite::homeScreenIsNew() {
  pictures_.keepOnly(scheduler_.shown());
  pngs_.keepOnly(scheduler_.shown());
  options_.publish("home", "{}");
}

WebResponse HomeSite::answer(const WebRequest& request) {
  const std::string& path = request.path;
  if (path.starts_with("/api/")) return api_.answer(request);
  if (request.method == "POST") {
    WebResponse response = Message(localizedString("web_method_title", kTableApp),
                                   localizedString("web_method", kTableApp), 405);
    response.allow = "GET, HEAD";
    return response;
  }
  if (path == "/") return Page(homePage(scheduler_.shown(), pictures_));
  if (path == "/edit") return Page(editPage(scheduler_.shown(), file_.problem()));
  if (path == "/sun" || path == "/moon" || path == "/moon.svg") return Day(request);
  if (path == "/plans") {
    return Plans({localizedString("appwidget_plans", platform::kTableCommon), plansPageContent()});
  }
  if (path == "/plan") {
    const auto plan = planPage(Parameter(request, "id"));
    return plan ? Plans(*plan) : NotFound();
  }
  if (path == "/open") return Open(Parameter(request, "url"));
  const auto after = [&](std::string_view start) { return path.substr(start.size()); };
  if (path.starts_with("/widget/")) return Widget(after("/widget/"), request);
  if (path.starts_with("/sample/")) return Sample(after("/sample/"), request);
  const auto file = options_.files.find(path.substr(1));
  if (file == options_.files.end()) return NotFound();
  WebResponse response;
  response.contentType = ContentTypeOf(file->first);
  response.body = file->second;
  response.etag = TagOf(file->second);
  return response;
}

WebResponse HomeSite::Page(const WebPage& page, int status) const {
  WebResponse response;
  response.status = status;
  response.contentType = "text/html; charset=utf-8";
  response.body = documentOf(page, options_.language);
  return response;
}

WebResponse HomeSite::Plans(const PlanPage& plans) const {
  WebPage page{plans.title, "plans-page", plans.content, "home.js", kPlansRefresh};
  page.refreshSeconds = kSecondsToPlans;
  return Page(page);
}

WebResponse HomeSite::Message(const std::string& title, const std::string& sentence,
                              int status) const {
  return Page({title, "message", pageHeading(title, "<p>" + htmlEscaped(sentence) + "</p>\n")},
              status);
}

WebResponse HomeSite::NotFound() const {
  return Message(localizedString("web_page_missing_title", kTableApp),
                 localizedString("web_page_missing", kTableApp), 404);
}

WebResponse HomeSite::SvgOf(const std::shared_ptr<const std::string>& svg) const {
  WebResponse response;
  response.contentType = kSvg;
  response.sharedBody = svg;
  response.etag = TagOf(*svg);
  return response;
}

WebResponse HomeSite::Plain(const std::string& id, bool isPicture, const WebRequest& request) try {
  const ShownWidget* const shown = scheduler_.find(id);
  if (shown == nullptr) {
    std::string ids;
    for (const ShownWidget& one : scheduler_.shown()) {
      ids += (ids.empty() ? "" : ", ") + one.widget.id;
    }
    return ErrorJson(stringWithFormat(localizedString("home_error_unknown", platform::kTableCommon),
                                      {id, ids.empty() ? "--" : ids}),
                     404);
  }
  const ColorScheme scheme = isPicture ? GivenScheme(request) : ColorScheme::dark;
  const double scale = isPicture ? GivenScale(request) : 1.0;
  if (shown->isPlaceholder) {
    // Who shows a picture for hours must not get one of sample data.
    WebResponse response = ErrorJson(localizedString("web_loading", kTableApp), 503);
    response.retryAfter = kSecondsToFirstEntry;
    return response;
  }
  WebResponse response;
  response.contentType = isPicture ? kPng : kJson;
  response.sharedBody = isPicture
                            ? pngs_.pngOf(*shown, scheme, scale)
                            : std::make_shared<const std::string>(options_.writeRecord(*shown));
  response.etag = TagOf(*response.sharedBody);
  return response;
} catch (const BadParameter& bad) {
  return ErrorJson(stringWithFormat(localizedString("error_bad_option", kTableApp),
                                    {bad.name, Parameter(request, bad.name),
                                     localizedString(bad.expected, kTableApp)}),
                   400);
}

WebResponse HomeSite::Widget(const std::string& name, const WebRequest& request) {
  for (const std::string_view extension : {".png", ".json"}) {
    if (name.ends_with(extension)) {
      return Plain(name.substr(0, name.size() - extension.size()), extension == ".png", request);
    }
  }
  constexpr std::string_view kExtension = ".svg";
  const bool isPicture = name.ends_with(kExtension);
  const ShownWidget* const shown =
      scheduler_.find(isPicture ? name.substr(0, name.size() - kExtension.size()) : name);
  if (shown == nullptr) return NotFound();
  if (isPicture) return SvgOf(pictures_.pictureOf(*shown, SchemeOf(request)).svg);
  WebResponse response;
  response.contentType = "text/html; charset=utf-8";
  response.body = widgetItem(*shown, pictures_);
  return response;
}

WebResponse HomeSite::Sample(const std::string& name, const WebRequest& request) {
  for (const auto& configuration : widgets::LumenquestWidgets::configurations()) {
    for (const widgets::WidgetFamily family : configuration.supportedFamilies) {
      if (name == configuration.kind + "-" + familyName(family) + ".svg") {
        return SvgOf(pictures_.sampleOf(configuration.kind, family, SchemeOf(request)).svg);
      }
    }
  }
  return NotFound();
}

const ShownWidget* HomeSite::WidgetOfDay(const std::string& id, bool isSun) const {
  if (!id.empty()) return scheduler_.find(id);
  const ShownWidget* first = nullptr;
  const ShownWidget* other = nullptr;
  for (const ShownWidget& shown : scheduler_.shown()) {
    if (shown.isPlaceholder || LocationDataOf(shown.entry) == nullptr) continue;
    const bool followsDevice = !shown.widget.place;
    if (!TellsOf(shown.widget.kind, isSun)) {
      if (followsDevice && other == nullptr) other = &shown;
    } else if (followsDevice) {
      return &shown;
    } else if (first == nullptr) {
      first = &shown;
    }
  }
  return first != nullptr ? first : other;
}

WebResponse HomeSite::Day(const WebRequest& request) {
  const bool isPicture = request.path == "/moon.svg";
  if (isPicture && moon_) {
    // The picture of the page that was answered just now.
    WebResponse drawn = SvgOf(moon_);
    if (Parameter(request, "v") == drawn.etag) return drawn;
  }
  const std::string id = Parameter(request, "widget");
  const bool isSun = request.path == "/sun";
  const ShownWidget* const shown = WidgetOfDay(id, isSun);
  if (!id.empty() && shown == nullptr) return NotFound();
  const std::string title =
      localizedString(isSun ? "appwidget_sun" : "appwidget_moon", platform::kTableCommon);
  const std::optional<DayPlace> place = PlaceOf(shown);
  if (!place && isPicture) return NotFound();
  if (!place) {
    const bool isComing = shown != nullptr && shown->isPlaceholder && shown->widget.place;
    WebPage page{title, "message",
                 pageHeading(title, "<p>" + webText(isComing ? "web_loading" : "web_no_location") +
                                        "</p>\n"),
                 "home.js", " data-refresh=\"2\""};
    page.refreshSeconds = 2;
    return Page(page);
  }
  const platform::PlaceZone zone(place->timeZone);
  const PlaceDay day = computePlaceDay(*place, isSun ? nullptr : &nextVisibleDates_);
  if (!isSun) moon_ = std::make_shared<const std::string>(options_.drawImage(MoonImage(day)));
  if (isPicture) return SvgOf(moon_);
  WebPage page;
  page.title = title + " \u2013 " + widgets::view::isolated(place->title);
  page.kind = "day";
  page.script = "home.js";
  page.attributes = " data-refresh=\"60\"";
  page.refreshSeconds = 60;
  if (isSun) {
    page.main = sunPageContent(day, options_.language.isRightToLeft);
  } else {
    // Under the same address an open page would go on showing the picture that it has.
    const std::string widget = id.empty() ? "" : "widget=" + percentEncoded(id) + "&";
    page.main = moonPageContent(day, "/moon.svg?" + widget + "v=" + TagOf(*moon_));
  }
  return Page(page);
}

WebResponse HomeSite::Open(const std::string& url) const {
  const std::string page = pageOfDeepLink(url, "");
  if (page.empty()) return NotFound();
  WebResponse response = WebResponse::ofStatus(302);
  response.location = page;
  return response;
}

}  // namespace lumenquest::host
