#pragma once

#include <string>

#include "platform/drawing.h"

namespace lumenquest::adapters {

/// Measures texts as the canvases set them: the same lines, and no pixel grid, so that a text is as
/// wide at every scale. For one thread, as the canvases are.
///
/// Broken UTF-8 counts as U+FFFD, a tab as a space, and other control characters as absent. A text
/// without characters is one line of no width.
class PangoTextMeasurer final : public platform::TextMeasurer {
 public:
  platform::TextMetrics measure(const std::string& text, const platform::TextStyle& style,
                                double width) override;
};

/// The language of the texts measured and drawn from now on, a BCP 47 tag ("ja", "zh-TW"): it
/// decides which shapes characters have that several scripts share.
void setTextLanguage(const std::string& language);
/// That language; empty before it is known.
std::string textLanguage();

}  // namespace lumenquest::adapters
