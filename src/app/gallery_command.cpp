#include <algorithm>
#include <filesystem>
#include <stdexcept>
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
};

const std::vector<Scene>& Scenes() {
  static const std::vector<WidgetSize> all{kSunSmall,   kSunMedium,      kMoonSmall,
                                           kMoonMedium, kGalacticCenter, kLarge};
  static const std::vector<WidgetSize> sun{kSunSmall, kSunMedium, kLarge};
  static const std::vector<WidgetSize> moon{kMoonSmall};
  // Lake Bled, the ice of Spitsbergen, the outback under the galactic centre, Atacama.
  static const std::vector<Scene> scenes{
      {"golden-hour", "gallery_golden_hour", 46.3625, 14.0936, "2027-05-12T17:45:00Z", all},
      {"blue-hour", "gallery_blue_hour", -25.34, 131.03, "2027-07-03T08:55:00Z", all},
      {"day", "gallery_day", 38.57, -109.55, "2027-09-20T18:00:00Z", all},
      {"night", "gallery_night", -22.91, -68.2, "2027-06-05T04:00:00Z", all},
      {"polar-day", "gallery_polar_day", 78.22, 15.65, "2027-06-21T22:00:00Z", sun},
      {"polar-night", "gallery_polar_night", 78.22, 15.65, "2027-12-21T11:00:00Z", sun},
      {"no-galactic-centre",
       "gallery_no_galactic_centre",
       64.15,
       -21.94,
       "2027-02-20T20:00:00Z",
       {kMoonMedium, kGalacticCenter, kLarge}},
      {"supermoon",
       "gallery_supermoon",
       46.3625,
       14.0936,
       "2026-12-24T01:28:00Z",
       {kMoonSmall, kMoonMedium, kLarge}},
      {"new-moon", "gallery_phases", 46.3625, 14.0936, "2027-02-06T16:00:00Z", moon},
      {"first-quarter", "gallery_phases", 46.3625, 14.0936, "2027-02-14T18:00:00Z", moon},
      {"full-moon", "gallery_phases", 46.3625, 14.0936, "2027-02-20T23:20:00Z", moon},
      {"last-quarter", "gallery_phases", 46.3625, 14.0936, "2027-02-28T05:17:00Z", moon},
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
  request.widget.place =
      widgets::IntentPlacemark{{{scene.latitude, scene.longitude}}, "", std::nullopt};
  return {FileName(widget, scene.name), askWidget(request).entry, widget.family};
}

Section LocatedSection(const Scene& scene, const std::string& locale) {
  RuntimeOptions runtime;
  runtime.locale = locale;
  runtime.clock = std::make_shared<adapters::FixedClock>(*adapters::parseRfc3339(scene.instant));
  runtime.hasOwnSettings = true;
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
  Section tinted = LocatedSection(Scenes().front(), locale);
  tinted.title = appText("gallery_tinted");
  tinted.renderingMode = view::WidgetRenderingMode::accented;
  for (Exhibit& exhibit : tinted.exhibits) exhibit.fileName += "-accented";
  sections.push_back(std::move(tinted));
  sections.push_back(PlansSection("no-plans", "gallery_no_plans", {}));
  sections.push_back(PlansSection("four-plans", "gallery_four_plans", SamplePlans()));
  sections.push_back(PlacelessSection("denied", "gallery_denied",
                                      {nullptr, CLAuthorizationStatus::denied, {}, {}, true}));
  const events::WidgetAstrolib nowhere;
  sections.push_back(
      PlacelessSection("time-out", "gallery_time_out",
                       {&nowhere, CLAuthorizationStatus::authorizedWhenInUse, {}, {}, true}));
  return sections;
}

namespace {

/// Draws exhibits in rows under the headings of their sections, or only tells how high that gets.
class Sheet {
 public:
  static constexpr double kWidth = 1760.0;

  explicit Sheet(platform::Canvas* canvas) : canvas_(canvas) {}

  void Add(const Section& section, const view::Environment& environment) {
    constexpr double kHeading = 18.0;
    y_ += kMargin;
    if (canvas_ != nullptr) {
      canvas_->drawText(section.title, {kHeading, platform::FontWeight::semibold},
                        Foreground(environment), {kMargin, y_, kWidth - 2.0 * kMargin, kHeading});
    }
    y_ += 1.8 * kHeading;
    double x = kMargin;
    double rowHeight = 0.0;
    for (const Exhibit& exhibit : section.exhibits) {
      const platform::CGSize size = view::sizeOf(exhibit.family);
      if (x + size.width > kWidth - kMargin) {
        y_ += rowHeight + kGap;
        x = kMargin;
        rowHeight = 0.0;
      }
      if (canvas_ != nullptr) {
        view::Environment own = environment;
        own.family = exhibit.family;
        own.renderingMode = section.renderingMode;
        const view::Element element = host::viewOf(exhibit.entry, own);
        canvas_->save();
        canvas_->concatenate(platform::CGAffineTransform::translation(x, y_));
        drawWidget(element, size, own, *canvas_);
        canvas_->restore();
      }
      x += size.width + kGap;
      rowHeight = std::max(rowHeight, size.height);
    }
    y_ += rowHeight;
  }

  double height() const { return y_ + kMargin; }

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

  platform::Canvas* canvas_;
  double y_ = 0.0;
};

std::string RunGallery(const GalleryOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  if (!options.folder) {
    throw UsageError(
        stringWithFormat(appText("error_missing_option"), {"DIR", appText("expect_folder")}));
  }
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
        view::Environment own = environment;
        own.family = exhibit.family;
        own.renderingMode = section.renderingMode;
        const view::Element element = host::viewOf(exhibit.entry, own);
        const PictureOptions picture{view::sizeOf(exhibit.family), scale, ""};
        writePicture((folder / (exhibit.fileName + suffix + ".png")).string(),
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
