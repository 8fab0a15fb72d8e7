#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/drawing.h"

namespace lumenquest::adapters {

/// Writes what is drawn as an SVG document, with texts as texts. They are broken and shortened as
/// the measurer has it, and stretched to the measured width, so that they keep their boxes where a
/// viewer has other fonts.
///
/// The same calls give the same document. Characters that XML forbids are dropped.
/// Source: W3C, Scalable Vector Graphics (SVG) 2; XML 1.0, section 2.2.
class SvgCanvas final : public platform::Canvas {
 public:
  /// `size` in points. `idPrefix` stands before every id, so that several documents can stand in
  /// one page: a letter, then letters, digits, - and _; throws std::runtime_error otherwise, and
  /// for a size that is not above 0.
  SvgCanvas(platform::CGSize size, std::string idPrefix);

  void save() override;
  void restore() override;
  void concatenate(const platform::CGAffineTransform& transform) override;
  void clip(const platform::UIBezierPath& path) override;
  void fill(const platform::UIBezierPath& path, const platform::Paint& paint) override;
  void stroke(const platform::UIBezierPath& path, const platform::Paint& paint,
              const platform::Stroke& stroke) override;
  void drawText(const std::string& text, const platform::TextStyle& style,
                const platform::UIColor& color, const platform::CGRect& rect) override;
  /// REQUIRES: links are not nested, and transforms and clips within a link or label are within a
  /// save() there.
  void beginLink(const std::string& url) override;
  void endLink() override;
  void beginLabel(const std::string& label) override;
  void endLabel() override;

  /// The document in textLanguage(), with a title and a description for those who cannot see it.
  /// UTF-8, without an XML declaration, so that it can be put into a page as well. What was begun
  /// must have been ended.
  std::string document(const std::string& title, const std::string& description) const;

 private:
  enum class Kind { save, transform, clip, link, label };
  /// What stands around the next shape. A tag is written only when something is drawn in it.
  struct Open {
    Kind kind = Kind::save;
    std::string tag;
    platform::CGAffineTransform transform{};
    bool isWritten = false;
    /// Of the coordinates inside, in points.
    double scale = 1.0;
  };

  void Push(Kind kind, std::string tag);
  void Pop();
  void End(Kind kind);
  void WriteOpenTags();
  /// Decimals that round by a hundredth of a point at most, a thirtieth of the finest pixels, in
  /// coordinates that are so much larger than those around.
  int Decimals(double innerScale = 1.0) const;
  /// The beginning of the element that has this outline; empty for one without points.
  static std::string Outline(const platform::UIBezierPath& path, int decimals);
  /// The attributes of a paint for "fill" or "stroke"; empty for one that shows nothing.
  std::string PaintAttributes(const std::string& name, const platform::Paint& paint);
  /// The id of a definition, which is kept once however often it is used.
  std::string Define(const std::string& name, const std::string& attributes,
                     const std::string& content);

  platform::CGSize size_;
  std::string idPrefix_;
  std::string body_;
  std::vector<Open> open_;
  std::string definitions_;
  std::map<std::string, std::string> idOfDefinition_;
  /// There is something to follow or to be read out one by one.
  bool hasParts_ = false;
};

}  // namespace lumenquest::adapters
