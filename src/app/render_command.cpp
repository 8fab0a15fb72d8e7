#include <cmath>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <stdexcept>

#include "adapters/icu_services.h"
#include "adapters/printable_text.h"
#include "app/gallery.h"
#include "app/suggestions.h"
#include "app/widget_picture.h"
#include "app/widget_request.h"
#include "host/widget_entry.h"
#include "platform/localized_strings.h"
#include "widgets/view/style.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::app {

namespace view = widgets::view;

namespace {

using platform::stringWithFormat;

struct RenderOptions {
  WidgetOptions widget;
  OptionText scheme;
  OptionText rendering;
  OptionText scale;
  OptionText size;
  OptionText output;
};

constexpr double kMostSide = 1000.0;

std::optional<double> Side(const std::string& text, double least) {
  const auto side = parseNumber(text);
  return side && *side >= least && *side <= kMostSide ? side : std::nullopt;
}

/// "364x170"; nothing given: the family's.
platform::CGSize ParseSize(const OptionText& text, widgets::WidgetFamily family) {
  if (!text) return view::sizeOf(family);
  const platform::CGSize least = view::leastSizeOf(family);
  const std::size_t times = text->find('x');
  if (times != std::string::npos) {
    const auto width = Side(text->substr(0, times), least.width);
    const auto height = Side(text->substr(times + 1), least.height);
    if (width && height) return {*width, *height};
  }
  const auto sizeText = [](platform::CGSize size) {
    return stringWithFormat(
        "%dx%d", {static_cast<std::int64_t>(size.width), static_cast<std::int64_t>(size.height)});
  };
  const std::string choices = stringWithFormat(appText("expect_size_of_family"),
                                               {sizeText(least), sizeText({kMostSide, kMostSide})});
  throwBadOptionExpecting("--size", *text, choices);
}

constexpr const char* kPngOnStandardOutput = "-";
constexpr const char* kSvgOnStandardOutput = "-.svg";

bool IsStandardOutput(const std::string& file) {
  return file == kPngOnStandardOutput || file == kSvgOnStandardOutput;
}

/// By the ending of its name, in letters of either case; absent for a name that no picture has.
std::optional<PictureFormat> NamedFormat(const std::string& file) {
  if (file == kPngOnStandardOutput) return PictureFormat::png;
  std::string extension = std::filesystem::path(file).extension().string();
  for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  if (extension == ".png") return PictureFormat::png;
  if (extension == ".svg") return PictureFormat::svg;
  return std::nullopt;
}

PictureFormat FormatOf(const OptionText& file) {
  if (!file) {
    throw UsageError(stringWithFormat(appText("error_missing_option"),
                                      {"--output", appText("expect_picture_file")}));
  }
  if (const auto format = NamedFormat(*file)) return *format;
  throwBadOption("--output", *file, "expect_picture_file");
}

/// What is asked for when all widgets are to be drawn.
void CheckAll(const RenderOptions& options) {
  if (!options.output) {
    throw UsageError(
        stringWithFormat(appText("error_missing_option"), {"--output", appText("expect_folder")}));
  }
  if (options.widget.family || options.size) throw UsageError(appText("error_all_sizes"));
  if (options.output->empty()) throwBadOption("--output", "", "expect_folder");
  if (NamedFormat(*options.output)) {
    throw UsageError(stringWithFormat(appText("error_all_folder"),
                                      {adapters::printableText(*options.output, 200)}));
  }
}

view::Environment ParseEnvironment(const RenderOptions& options, const std::string& locale) {
  view::Environment environment;
  environment.colorScheme = parseScheme(options.scheme);
  if (options.rendering && *options.rendering != "full") {
    if (*options.rendering != "accented") {
      throwBadOption("--rendering", *options.rendering, "expect_rendering");
    }
    environment.renderingMode = view::WidgetRenderingMode::accented;
  }
  if (adapters::isRightToLeft(locale)) {
    environment.layoutDirection = view::LayoutDirection::rightToLeft;
  }
  return environment;
}

/// The picture of what a widget answers.
std::string Rendered(const WidgetRequest& request, view::Environment environment,
                     PictureFormat format, const RenderOptions& options) {
  PictureOptions picture;
  picture.scale = parseScale(options.scale);
  picture.size = ParseSize(options.size, request.widget.family);
  for (const auto& widget : widgets::LumenquestWidgets::configurations()) {
    if (widget.kind == request.widget.kind) picture.title = widget.displayName;
  }
  environment.family = request.widget.family;
  const host::AnyEntry entry = askWidget(request).entry;
  const view::Element element = host::viewOf(entry, environment);
  return pictureOf(element, environment, format, picture);
}

/// Every widget in the largest family that it has, each into a PNG of its kind's name.
std::string RenderAll(WidgetRequest request, const view::Environment& environment,
                      const RenderOptions& options) {
  const std::filesystem::path folder = *options.output;
  makeFolder(folder);
  std::string files;
  for (const auto& widget : widgets::LumenquestWidgets::configurations()) {
    request.widget.kind = widget.kind;
    request.widget.family = widget.supportedFamilies.back();
    const std::string file = (folder / (widget.kind + ".png")).string();
    writePicture(file, Rendered(request, environment, PictureFormat::png, options));
    files += file + "\n";
  }
  return files;
}

std::string RunRender(const RenderOptions& given) {
  RenderOptions options = given;
  // Who names a scheme wants to see it: a widget without a theme is dark whatever the host's.
  if (options.scheme && !options.widget.theme) options.widget.theme = "system";
  const bool isAll = options.widget.kind == "all";
  if (isAll) {
    CheckAll(options);
    options.widget.kind = widgets::LumenquestWidgets::configurations().front().kind;
  }
  const PictureFormat format = isAll ? PictureFormat::png : FormatOf(options.output);
  parseScale(options.scale);
  const view::Environment environment =
      ParseEnvironment(options, checkedLocale(options.widget.locale));
  const WidgetRequest request = prepareWidgetRequest(options.widget, "memory");
  ParseSize(options.size, request.widget.family);
  if (isAll) return RenderAll(request, environment, options);
  const std::string contents = Rendered(request, environment, format, options);
  if (IsStandardOutput(*options.output)) return contents;
  writePicture(*options.output, contents);
  return "";
}

}  // namespace

void addPictureCommands(CommandSet& commands) {
  RenderOptions& o = commands.Keep<RenderOptions>();
  o.widget.mayBeAll = true;
  std::vector<OptionSpec> specs = widgetOptionSpecs(o.widget, "help_settings_kind_memory");
  specs.front().suggestions = [](const std::string& beginning) {
    std::vector<Suggestion> kinds = suggestKinds(beginning);
    kinds.push_back({"all", ""});
    return kinds;
  };
  const OptionSpec own[] = {
      {"--scheme", "light|dark", "help_scheme", "expect_scheme", &o.scheme},
      {"--rendering", "full|accented", "help_rendering", "expect_rendering", &o.rendering},
      scaleOption(o.scale),
      {"--size", "WxH", "help_size", "expect_size", &o.size},
      {"-o,--output", "FILE", "help_output", "expect_picture_file", &o.output}};
  specs.insert(specs.end(), std::begin(own), std::end(own));
  commands.Add("render", {"help_usage_render", "help_render", "help_render_examples"}, specs,
               [&o] { return RunRender(o); });
  addGalleryCommand(commands);
}

}  // namespace lumenquest::app
