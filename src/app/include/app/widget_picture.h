#pragma once

#include <filesystem>
#include <string>

#include "app/command_set.h"
#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::app {

/// Draws a view as a host shows it: with round corners, and on a dark plate where it tints.
void drawWidget(const widgets::view::Element& view, platform::CGSize size,
                const widgets::view::Environment& environment, platform::Canvas& canvas);

enum class PictureFormat { png, svg };

/// Nothing given: dark. Throws UsageError.
platform::ColorScheme parseScheme(const OptionText& text);
/// Pixels a point, from 1 to 4; nothing given: 2. Throws UsageError.
double parseScale(const OptionText& text);
OptionSpec scaleOption(OptionText& value);

struct PictureOptions {
  platform::CGSize size;
  /// Pixels a point, of a PNG.
  double scale = 1.0;
  /// Of an SVG, for those who do not see it.
  std::string title;
  /// Before every id of an SVG, so that several can stand in one page.
  std::string idPrefix = "w";
};

/// A file's contents. Throws std::runtime_error when it is too large to be drawn.
std::string pictureOf(const widgets::view::Element& view,
                      const widgets::view::Environment& environment, PictureFormat format,
                      const PictureOptions& options);

/// Writes a file whole. Throws std::runtime_error, the old file left as it was.
void writePicture(const std::string& file, const std::string& contents);

/// Makes a folder where there is none. Throws std::runtime_error.
void makeFolder(const std::filesystem::path& folder);

/// `lumenquest render` and `lumenquest gallery`.
void addPictureCommands(CommandSet& commands);

}  // namespace lumenquest::app
