#pragma once

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/drawing.h"

namespace lumenquest::testing {

/// Letters of a size: each half as wide as high, lines 1.25 times as high. Words are broken at
/// blanks and never within.
class BlockLetters final : public platform::TextMeasurer {
 public:
  platform::TextMetrics measure(const std::string& text, const platform::TextStyle& style,
                                double width) override {
    ++measurements;
    const double letter = style.size / 2.0;
    std::vector<double> lines{0.0};
    double word = 0.0;
    const auto endWord = [&] {
      const double joined = lines.back() + (lines.back() > 0.0 ? letter : 0.0) + word;
      if (joined <= width || lines.back() == 0.0) {
        lines.back() = joined;
      } else {
        lines.push_back(word);
      }
      word = 0.0;
    };
    for (const char c : text) {
      const bool isContinuation = (static_cast<unsigned char>(c) & 0xC0u) == 0x80u;
      if (c == ' ') {
        endWord();
      } else if (!isContinuation) {
        word += letter;
      }
    }
    endWord();
    const auto limit = static_cast<std::size_t>(style.lineLimit);
    bool isTruncated = lines.size() > limit;
    lines.resize(std::min(lines.size(), limit));
    double widest = *std::max_element(lines.begin(), lines.end());
    isTruncated = isTruncated || widest > width;
    widest = std::min(widest, std::max(width, 0.0));
    const auto count = static_cast<int>(lines.size());
    return {{widest, count * 1.25 * style.size}, style.size, count, isTruncated};
  }

  int measurements = 0;
};

/// Colours and pictures that the test names; a colour's red part is 1 in the light scheme.
class FewAssets final : public platform::AssetCatalog {
 public:
  std::shared_ptr<const platform::UIImage> imageNamed(const std::string& name) override {
    const auto found = images.find(name);
    return found == images.end() ? nullptr : found->second;
  }
  std::optional<platform::UIColor> colorNamed(const std::string& name,
                                              platform::ColorScheme scheme) override {
    const auto found = colors.find(name);
    if (found == colors.end()) return std::nullopt;
    platform::UIColor color = found->second;
    color.red = scheme == platform::ColorScheme::light ? 1.0 : 0.0;
    return color;
  }

  std::map<std::string, std::shared_ptr<const platform::UIImage>> images;
  std::map<std::string, platform::UIColor> colors;
};

/// Keeps what is drawn; a gradient as if each of its colours were drawn by itself.
class Recorder final : public platform::Canvas {
 public:
  struct Fill {
    platform::UIBezierPath path;
    platform::UIColor color;
  };
  struct Line {
    platform::UIColor color;
    platform::Stroke stroke;
  };
  struct Word {
    std::string text;
    platform::TextStyle style;
    platform::UIColor color;
    platform::CGRect rect;
    std::string link;
  };

  void save() override { states_.push_back(transform_); }
  void restore() override {
    transform_ = states_.back();
    states_.pop_back();
  }
  void concatenate(const platform::CGAffineTransform& next) override {
    transform_ = next.then(transform_);
  }
  void clip(const platform::UIBezierPath&) override {}
  void fill(const platform::UIBezierPath& path, const platform::Paint& paint) override {
    for (const auto& color : Colors(paint)) fills.push_back({path.transformed(transform_), color});
  }
  void stroke(const platform::UIBezierPath&, const platform::Paint& paint,
              const platform::Stroke& stroke) override {
    for (const auto& color : Colors(paint)) lines.push_back({color, stroke});
  }
  void drawText(const std::string& text, const platform::TextStyle& style,
                const platform::UIColor& color, const platform::CGRect& rect) override {
    words.push_back({text, style, color, rect, link_});
  }
  void beginLink(const std::string& url) override { link_ = url; }
  void endLink() override { link_.clear(); }

  std::vector<Fill> fills;
  std::vector<Line> lines;
  std::vector<Word> words;

 private:
  static std::vector<platform::UIColor> Colors(const platform::Paint& paint) {
    if (const auto* const color = std::get_if<platform::UIColor>(&paint)) return {*color};
    std::vector<platform::UIColor> colors;
    for (const auto& stop : std::get<platform::Gradient>(paint).stops) colors.push_back(stop.color);
    return colors;
  }

  platform::CGAffineTransform transform_;
  std::vector<platform::CGAffineTransform> states_;
  std::string link_;
};

}  // namespace lumenquest::testing
