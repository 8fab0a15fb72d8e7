#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/drawing.h"

namespace lumenquest::adapters {

/// Reads SVG's compact notation of numbers ("1.5.5-2") and paths; each function throws
/// std::invalid_argument with what is wrong.
/// Source: W3C, Scalable Vector Graphics (SVG) 2, chapter 9 and appendix B.2.
class SvgScanner {
 public:
  explicit SvgScanner(std::string_view text) : rest_(text) {}

  bool isAtEnd();
  /// The next letter, passed by; 0 when something else comes next.
  char letter();
  /// Passes a character by, if it comes next.
  bool skip(char c);
  void skipSpace();
  /// With the comma and space that may stand before it. Absent when no number comes next.
  std::optional<double> number();
  double neededNumber();
  /// An arc's flag: 0 or 1, which need nothing between them and the next number.
  bool neededFlag();
  std::string_view rest() const { return rest_; }

 private:
  void SkipSeparator();

  std::string_view rest_;
};

platform::UIBezierPath svgPath(std::string_view text);

/// A list of matrix(), translate(), rotate() and scale(), the last of which acts first.
platform::CGAffineTransform svgTransform(std::string_view text);

}  // namespace lumenquest::adapters
