#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "adapters/cairo_canvas.h"
#include "adapters/clocks.h"
#include "adapters/icu_services.h"
#include "adapters/printable_text.h"
#include "adapters/rfc3339.h"
#include "app/gallery.h"
#include "app/runtime.h"
#include "app/widget_picture.h"
#include "app/widget_request.h"
#include "events/today_view_model.h"
#include "platform/localized_strings.h"
#include "widgets/view/style.h"

namespace lumenquest::app {

namespace view = widgets::view;

namespace {

using platform::CLAuthorizationStatus;
using platform::stringWithFormat;
using widgets::WidgetFamily;

struct GalleryOptions {
  OptionText folder;
  OptionText scale;
  OptionText locale;
};

struct WidgetSize {
  const char* kind;
  WidgetFamily family;
};
constexpr WidgetSize kSunSmall{"SunWidget", WidgetFamily::systemSmall};
constexpr WidgetSize kSunMedium{"SunWidget", WidgetFamily::systemMedium};
constexpr WidgetSize kMoonSmall{"MoonWidget", WidgetFamily::systemSmall};
constexpr WidgetSize kMoonMedium{"MoonWidget", WidgetFamily::systemMedium};
constexpr WidgetSize kGalacticCenter{"GalacticCenterSmallWidget", WidgetFamily::systemSmall};
constexpr WidgetSize kLarge{"LumenquestWidget", WidgetFamily::systemLarge};
constexpr WidgetSize kPlansSmall{"PlansWidget", WidgetFamily::systemSmall};
constexpr WidgetSize kPlansMedium{"PlansWidget", WidgetFamily::systemMedium};

/// A state of the sky: where and when it is to be seen.
struct Scene {
  const char* name;
  const char* titleKey;
  double latitude;
  double longitude;
  const char* instant;
  std::vector<WidgetSize> widgets;
  /// Whether the place is the device's own.
  bool isCurrentLocation = false;
};

const std::vector<Scene>& Scenes() {
  static const std::vector<WidgetSize> all{kSunSmall,   kSunMedium,      kMoonSmall,
                                           kMoonMedium, kGalacticCenter, kLarge};
  static const std::vector<WidgetSize> moon{kMoonSmall, kMoonMedium, kLarge};
  // Lake Bled, the ice of Spitsbergen, the outback under the galactic centre, Atacama.
  static const std::vector<Scene> scenes{
      {"golden-hour", "gallery_golden_hour", 46.3625, 14.0936, "2027-05-12T17:45:00Z", all},
      {"blue-hour", "gallery_blue_hour", -25.34, 131.03, "2027-07-03T08:55:00Z", all},
      {"day", "gallery_day", 38.57, -109.55, "2027-09-20T18:00:00Z", all},
      {"night", "gallery_night", -22.91, -68.2, "2027-06-05T04:00:00Z", all},
      {"polar-day", "gallery_polar_day", 78.22, 15.65, "2027-06-21T22:00:00Z", all},
      {"polar-night", "gallery_polar_night", 78.22, 15.65, "2027-12-21T11:00:00Z", all},
      {"no-galactic-centre",
       "gallery_no_galactic_centre",
       64.15,
       -21.94,
       "2027-02-20T20:00:00Z",
       {kMoonMedium, kGalacticCenter, kLarge}},
      {"supermoon", "gallery_supermoon", 46.3625, 14.0936, "2026-12-24T01:28:00Z", moon},
      {"new-moon", "gallery_phases", 46.3625, 14.0936, "2027-02-06T16:00:00Z", moon},
      {"first-quarter", "gallery_phases", 46.3625, 14.0936, "2027-02-14T18:00:00Z", moon},
      {"full-moon", "gallery_phases", 46.3625, 14.0936, "2027-02-20T23:20:00Z", moon},
      {"last-quarter", "gallery_phases", 46.3625, 14.0936, "2027-02-28T05:17:00Z", moon},
      {"current-location", "gallery_current_location", 46.3625, 14.0936, "2027-05-12T17:45:00Z",
       all, true},
  };
  return scenes;
}

std::string FileName(const WidgetSize& widget, const std::string& state) {
  std::string name = std::string(widget.kind) + "-" + host::nameOf(widget.family) + "-" + state;
  return name;
}

/// The entry that a widget's own provider makes, following the host's scheme.
Exhibit Located(const Scene& scene, const WidgetSize& widget) {
  WidgetRequest request;
  request.widget.kind = widget.kind;
  request.widget.family = widget.family;
  if (!scene.isCurrentLocation) {
    request.widget.place =
        widgets::IntentPlacemark{{{scene.latitude, scene.longitude}}, "", std::nullopt};
  }
  return {FileName(widget, scene.name), askWidget(request).entry, widget.family};
}

Section LocatedSection(const Scene& scene, const std::string& locale) {
  RuntimeOptions runtime;
  runtime.locale = locale;
  runtime.clock = std::make_shared<adapters::FixedClock>(*adapters::parseRfc3339(scene.instant));
  runtime.hasOwnSettings = true;
  runtime.here = platform::CLLocationCoordinate2D{scene.latitude, scene.longitude};
  installServices(runtime);
  Section section{appText(scene.titleKey), {}};
  for (const WidgetSize& widget : scene.widgets) {
    section.exhibits.push_back(Located(scene, widget));
  }
  return section;
}

/// Entries without a place: every widget of the sky, in every family.
Section PlacelessSection(const char* name, const char* titleKey,
                         const widgets::RecordSources& sources) {
  const platform::NSDate now = platform::NSDate::date();
  const widgets::SunLightWidgetData sun(sources);
  const widgets::MoonWidgetData moon(sources);
  const widgets::GalacticCenterWidgetData centre(sources);
  return {
      appText(titleKey),
      {{FileName(kSunSmall, name), widgets::SunTimelineEntry{now, sun, {}, {}, {}},
        kSunSmall.family},
       {FileName(kSunMedium, name), widgets::SunTimelineEntry{now, sun, {}, {}, {}},
        kSunMedium.family},
       {FileName(kMoonSmall, name), widgets::MoonTimelineEntry{now, moon, {}, {}},
        kMoonSmall.family},
       {FileName(kMoonMedium, name), widgets::MoonTimelineEntry{now, moon, centre, {}},
        kMoonMedium.family},
       {FileName(kGalacticCenter, name), widgets::GalacticCenterTimelineEntry{now, centre, {}},
        kGalacticCenter.family},
       {FileName(kLarge, name), widgets::SunTimelineEntry{now, sun, {}, {}, {}}, kLarge.family}}};
}

/// A record that knows the next date, as one of another calculator's may.
Section NextVisibleSection(const std::string& locale) {
  const Scene scene{"next-visible", "gallery_next_visible", 46.3625,
                    14.0936,        "2026-11-22T20:30:00Z", {kMoonMedium, kGalacticCenter, kLarge}};
  Section section = LocatedSection(scene, locale);
  events::TodayViewModel calculator;
  calculator.setCurrentLocation(platform::CLLocation{{scene.latitude, scene.longitude}});
  calculator.calculateNightData();
  for (Exhibit& exhibit : section.exhibits) {
    std::visit(
        [&](auto& entry) {
          if constexpr (std::is_same_v<std::decay_t<decltype(entry)>,
                                       widgets::GalacticCenterTimelineEntry>) {
            entry.data.dateNextVisibility = calculator.dateNextVisiblity;
          } else if constexpr (requires { entry.gcData; }) {
            entry.gcData->dateNextVisibility = calculator.dateNextVisiblity;
          }
        },
        exhibit.entry);
  }
  return section;
}

Section PlansSection(const char* name, const char* titleKey, std::vector<widgets::PlanItem> plans) {
  const widgets::PlansTimelineEntry entry{platform::NSDate::date(), std::move(plans),
                                          widgets::ThemeStyleEnum::themeSystem};
  return {appText(titleKey),
          {{FileName(kPlansSmall, name), entry, kPlansSmall.family},
           {FileName(kPlansMedium, name), entry, kPlansMedium.family}}};
}

std::vector<widgets::PlanItem> SamplePlans() {
  const auto plan = [](const char* key, const char* date, const char* zone, const char* id) {
    return widgets::PlanItem{appText(key), *adapters::parseRfc3339(date),
                             platform::NSTimeZone{zone}, id};
  };
  return {plan("gallery_plan_1", "2027-05-12T18:05:00Z", "Europe/Ljubljana", "1"),
          plan("gallery_plan_2", "2027-06-05T03:30:00Z", "America/Santiago", "2"),
          plan("gallery_plan_3", "2027-08-02T10:07:00Z", "Africa/Cairo", "3"),
          plan("gallery_plan_4", "2027-09-20T00:45:00Z", "America/Denver", "4")};
}

/// A located widget of each kind and family, and plans.
std::vector<Exhibit> EveryWidget(const char* sceneName, const std::string& locale) {
  Scene scene = Scenes().front();
  scene.name = sceneName;
  std::vector<Exhibit> exhibits = LocatedSection(scene, locale).exhibits;
  const Section plans = PlansSection(sceneName, "gallery_four_plans", SamplePlans());
  exhibits.insert(exhibits.end(), plans.exhibits.begin(), plans.exhibits.end());
  return exhibits;
}

/// Widgets whose theme is not the host's scheme.
Section ThemeSection(const std::string& locale) {
  Section section{appText("gallery_themes"), {}};
  for (const auto& [name, theme] :
       {std::pair("theme-dark", widgets::ThemeStyleEnum::themeDark),
        std::pair("theme-light", widgets::ThemeStyleEnum::themeLight)}) {
    for (Exhibit& exhibit : EveryWidget(name, locale)) {
      // A name of its own: before C++20's later corrections no lambda may refer to a binding.
      std::visit([chosen = theme](auto& entry) { entry.theme = chosen; }, exhibit.entry);
      section.exhibits.push_back(std::move(exhibit));
    }
  }
  return section;
}

/// Where systems know no tinting the host's wish for it changes nothing.
Section EarlierSystemSection(const std::string& locale) {
  Section section{appText("gallery_earlier_system"), EveryWidget("earlier-system", locale),
                  view::WidgetRenderingMode::accented};
  section.system = {17, 0};
  return section;
}

/// What a host that tints makes of some of the exhibits.
Section TintedSection(const std::vector<Section>& sections) {
  Section tinted{appText("gallery_tinted"), {}, view::WidgetRenderingMode::accented};
  for (const char* state : {"-golden-hour", "-supermoon", "-four-plans", "-denied", "-time-out"}) {
    for (const Section& section : sections) {
      for (const Exhibit& exhibit : section.exhibits) {
        if (!exhibit.fileName.ends_with(state)) continue;
        tinted.exhibits.push_back(exhibit);
        tinted.exhibits.back().fileName += "-accented";
      }
    }
  }
  return tinted;
}

}  // namespace

std::vector<Section> exhibition(const std::string& locale) {
  std::vector<Section> sections;
  for (const Scene& scene : Scenes()) {
    Section section = LocatedSection(scene, locale);
    if (sections.empty() || sections.back().title != section.title) {
      sections.push_back(std::move(section));
    } else {
      // Scenes of one heading stand side by side.
      std::vector<Exhibit>& exhibits = sections.back().exhibits;
      exhibits.insert(exhibits.end(), section.exhibits.begin(), section.exhibits.end());
    }
  }
  sections.push_back(NextVisibleSection(locale));
  sections.push_back(ThemeSection(locale));
  sections.push_back(PlansSection("no-plans", "gallery_no_plans", {}));
  sections.push_back(PlansSection("four-plans", "gallery_four_plans", SamplePlans()));
  sections.push_back(PlacelessSection("denied", "gallery_denied",
                                      {nullptr, CLAuthorizationStatus::denied, {}, {}, true}));
  const events::WidgetAstrolib nowhere;
  sections.push_back(
      PlacelessSection("time-out", "gallery_time_out",
                       {&nowhere, CLAuthorizationStatus::authorizedWhenInUse, {}, {}, true}));
  sections.push_back(TintedSection(sections));
  sections.push_back(EarlierSystemSection(locale));
  return sections;
}

namespace {

view::Environment EnvironmentOf(const Section& section, const Exhibit& exhibit,
                                view::Environment environment) {
  environment.family = exhibit.family;
  environment.renderingMode = section.renderingMode;
  environment.system = section.system;
  return environment;
}

/// Draws exhibits in rows under the headings of their sections, or only tells how high that gets.
class Sheet {
 public:
  /// Two sections of every widget of the sky side by side.
  static constexpr double kWidth = 3480.0;

  explicit Sheet(platform::Canvas* canvas) : canvas_(canvas) {}

  /// Beside the section before it where there is room.
  void Add(const Section& section, const view::Environment& environment) {
    constexpr double kHeading = 24.0;
    double width = 0.0;
    for (const Exhibit& exhibit : section.exhibits) {
      width += view::sizeOf(exhibit.family).width + (width > 0.0 ? kGap : 0.0);
    }
    width = std::min(width, kWidth - 2.0 * kMargin);
    if (x_ + width > kWidth - kMargin) {
      y_ += rowHeight_ + kMargin;
      x_ = kMargin;
      rowHeight_ = 0.0;
    }
    if (canvas_ != nullptr) {
      canvas_->drawText(section.title, {kHeading, platform::FontWeight::semibold},
                        Foreground(environment), {x_, y_, width, kHeading});
    }
    double x = x_;
    double y = y_ + 1.8 * kHeading;
    double height = 0.0;
    for (const Exhibit& exhibit : section.exhibits) {
      const platform::CGSize size = view::sizeOf(exhibit.family);
      if (x + size.width > x_ + width) {
        y += height + kGap;
        x = x_;
        height = 0.0;
      }
      if (canvas_ != nullptr) Draw(exhibit, section, environment, {x, y});
      x += size.width + kGap;
      height = std::max(height, size.height);
    }
    rowHeight_ = std::max(rowHeight_, y + height - y_);
    x_ += width + kMargin;
  }

  double height() const { return y_ + rowHeight_ + kMargin; }

  static platform::UIColor Foreground(const view::Environment& environment) {
    return environment.colorScheme == platform::ColorScheme::dark
               ? platform::UIColor{0.92, 0.93, 0.95, 1.0}
               : platform::UIColor{0.15, 0.16, 0.19, 1.0};
  }
  static platform::UIColor Ground(const view::Environment& environment) {
    return environment.colorScheme == platform::ColorScheme::dark
               ? platform::UIColor{0.16, 0.18, 0.22, 1.0}
               : platform::UIColor{0.86, 0.85, 0.82, 1.0};
  }

 private:
  static constexpr double kMargin = 28.0;
  static constexpr double kGap = 18.0;

  void Draw(const Exhibit& exhibit, const Section& section, const view::Environment& environment,
            platform::CGPoint origin) {
    view::Environment own = EnvironmentOf(section, exhibit, environment);
    const view::Element element = host::viewOf(exhibit.entry, own);
    canvas_->save();
    canvas_->concatenate(platform::CGAffineTransform::translation(origin.x, origin.y));
    drawWidget(element, view::sizeOf(exhibit.family), own, *canvas_);
    canvas_->restore();
  }

  platform::Canvas* canvas_;
  double x_ = kMargin;
  double y_ = kMargin;
  double rowHeight_ = 0.0;
};

/// Whether the host's scheme makes a difference: not where it tints, nor against a theme.
bool FollowsScheme(const Exhibit& exhibit, const view::Environment& environment) {
  const bool hasTheme = std::visit(
      [](const auto& entry) { return entry.theme != widgets::ThemeStyleEnum::themeSystem; },
      exhibit.entry);
  return !environment.isTinted() && !hasTheme;
}

std::string RunGallery(const GalleryOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  if (!options.folder) {
    throw UsageError(
        stringWithFormat(appText("error_missing_option"), {"DIR", appText("expect_folder")}));
  }
  if (options.folder->empty()) throwBadOption("DIR", "", "expect_folder");
  const double scale = parseScale(options.scale);
  const std::filesystem::path folder = *options.folder;
  makeFolder(folder);

  const std::vector<Section> sections = exhibition(locale);
  view::Environment environment;
  if (adapters::isRightToLeft(locale)) {
    environment.layoutDirection = view::LayoutDirection::rightToLeft;
  }
  int count = 0;
  for (const auto scheme : {platform::ColorScheme::dark, platform::ColorScheme::light}) {
    environment.colorScheme = scheme;
    const std::string suffix = scheme == platform::ColorScheme::dark ? "-dark" : "-light";
    for (const Section& section : sections) {
      for (const Exhibit& exhibit : section.exhibits) {
        view::Environment own = EnvironmentOf(section, exhibit, environment);
        const bool followsScheme = FollowsScheme(exhibit, own);
        if (!followsScheme && scheme != platform::ColorScheme::dark) continue;  // is there already
        const view::Element element = host::viewOf(exhibit.entry, own);
        const std::string file = exhibit.fileName + (followsScheme ? suffix : "") + ".png";
        const PictureOptions picture{view::sizeOf(exhibit.family), scale, ""};
        writePicture((folder / file).string(),
                     pictureOf(element, own, PictureFormat::png, picture));
        ++count;
      }
    }
    Sheet measure(nullptr);
    for (const Section& section : sections) measure.Add(section, environment);
    adapters::CairoCanvas canvas({Sheet::kWidth, measure.height()}, 1.0);
    canvas.fill(platform::UIBezierPath::rect({0.0, 0.0, Sheet::kWidth, measure.height()}),
                Sheet::Ground(environment));
    Sheet sheet(&canvas);
    for (const Section& section : sections) sheet.Add(section, environment);
    writePicture((folder / ("contact-sheet" + suffix + ".png")).string(), canvas.pngBytes());
    ++count;
  }
  return stringWithFormat(appText("gallery_done"), {count, folder.string()}) + "\n";
}

}  // namespace

void addGalleryCommand(CommandSet& commands) {
  GalleryOptions& o = commands.Keep<GalleryOptions>();
  commands.Add("gallery", {"help_usage_gallery", "help_gallery", "help_gallery_examples"},
               {{"DIR", "", "help_folder", "expect_folder", &o.folder},
                scaleOption(o.scale),
                localeOption(o.locale)},
               [&o] { return RunGallery(o); });
}

}  // namespace lumenquest::app
