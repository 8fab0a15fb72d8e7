#pragma once

#include <memory>
#include <string>

namespace lumenquest::adapters {

/// A PNG file that is written as its rows come: eight bits a channel, sRGB with transparency.
///
/// What fails throws std::runtime_error.
class PngFile {
 public:
  /// `scale`: pixels a point, at 96 points an inch.
  PngFile(int width, int height, double scale);
  ~PngFile();

  /// The next row, from above: `width` pixels 0xAARRGGBB, their colours multiplied by alpha.
  void addRow(const unsigned char* premultiplied);
  /// The file, once all rows are there.
  std::string finish();

 private:
  struct Writer;

  std::unique_ptr<Writer> writer_;
};

}  // namespace lumenquest::adapters
