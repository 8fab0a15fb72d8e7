#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/drawing.h"

namespace lumenquest::adapters {

/// Draws pixels: transparent at first, sRGB.
class CairoCanvas final : public platform::Canvas {
 public:
  /// `size` in points; `scale` in pixels a point, from 1 to 4, also in between. A last pixel that
  /// the size fills in part is there. Throws std::runtime_error for other scales, sizes that are
  /// not above 0, or more than 8192 pixels a side.
  CairoCanvas(platform::CGSize size, double scale);
  ~CairoCanvas() override;

  void save() override;
  void restore() override;
  void concatenate(const platform::CGAffineTransform& transform) override;
  void clip(const platform::UIBezierPath& path) override;
  void fill(const platform::UIBezierPath& path, const platform::Paint& paint) override;
  void stroke(const platform::UIBezierPath& path, const platform::Paint& paint,
              const platform::Stroke& stroke) override;
  void drawText(const std::string& text, const platform::TextStyle& style,
                const platform::UIColor& color, const platform::CGRect& rect) override;
  /// Its pixels are kept for the next canvas, a megabyte of them in all.
  void drawEmbedded(const platform::EmbeddedImage& embedded) override;

  /// Calls with each row of pixels, from above: 0xAARRGGBB, colours multiplied by alpha. Ends all
  /// saves. Throws as pngBytes().
  void forEachRow(const std::function<void(const unsigned char* row)>& take);
  /// What has been drawn, as a PNG file that says its colour space and the size of its pixels.
  /// Ends all saves. Throws std::runtime_error when drawing failed, for want of memory say.
  std::string pngBytes();

 private:
  struct Surface;
  class PixelCache;

  explicit CairoCanvas(std::unique_ptr<Surface> surface);

  bool DrawsNothing() const;
  void EndClips();

  std::unique_ptr<Surface> surface_;
};

}  // namespace lumenquest::adapters
