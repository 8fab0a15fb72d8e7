#include "png_file.h"

#include <png.h>

#include <cmath>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace lumenquest::adapters {

namespace {

constexpr std::size_t kLongestFault = 160;

}  // namespace

/// The library leaves by longjmp() where it fails, past all destructors: whoever calls it in this
/// file has none to run.
struct PngFile::Writer {
  Writer() = default;
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { png_destroy_write_struct(&png, &info); }

  bool Begin(png_uint_32 height, png_uint_32 pixelsPerMeter);
  bool Write(const unsigned char* row);
  bool End();
  [[noreturn]] void Throw() const;

  std::string bytes;
  char fault[kLongestFault] = "out of memory";
  png_uint_32 width = 0;
  png_structp png = nullptr;
  png_infop info = nullptr;
  std::vector<unsigned char> row;
};

namespace {

void Append(png_structp png, png_bytep data, png_size_t length) {
  bool isAppended = true;
  try {
    static_cast<std::string*>(png_get_io_ptr(png))
        ->append(reinterpret_cast<const char*>(data), length);
  } catch (const std::bad_alloc&) {
    isAppended = false;
  }
  if (!isAppended) png_error(png, "out of memory");
}

void Flush(png_structp) {}

void Fail(png_structp png, png_const_charp message) {
  std::snprintf(static_cast<char*>(png_get_error_ptr(png)), kLongestFault, "%s", message);
  png_longjmp(png, 1);
}

void Ignore(png_structp, png_const_charp) {}

/// Red, green, blue and alpha of a pixel, the colours as they were before they were multiplied.
void Separate(std::uint32_t pixel, unsigned char* to) {
  const std::uint32_t alpha = pixel >> 24;
  if (alpha == 255) {  // nearly all
    to[0] = static_cast<unsigned char>(pixel >> 16);
    to[1] = static_cast<unsigned char>(pixel >> 8);
    to[2] = static_cast<unsigned char>(pixel);
    to[3] = 255;
    return;
  }
  for (int channel = 0; channel < 3; ++channel) {
    const std::uint32_t value = (pixel >> (16 - 8 * channel)) & 0xFFu;
    to[channel] = static_cast<unsigned char>(alpha == 0 ? 0 : (value * 255u + alpha / 2) / alpha);
  }
  to[3] = static_cast<unsigned char>(alpha);
}

}  // namespace

bool PngFile::Writer::Begin(png_uint_32 height, png_uint_32 pixelsPerMeter) {
  png = png_create_write_struct(PNG_LIBPNG_VER_STRING, fault, Fail, Ignore);
  if (png == nullptr) return false;
  info = png_create_info_struct(png);
  if (info == nullptr) return false;
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, &bytes, Append, Flush);
  // Flat panels with texts: filters only make them larger, and higher levels take twice as long
  // for a seventh less.
  constexpr int kLevel = 3;
  png_set_compression_level(png, kLevel);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
  png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
  png_set_pHYs(png, info, pixelsPerMeter, pixelsPerMeter, PNG_RESOLUTION_METER);
  png_write_info(png, info);
  return true;
}

bool PngFile::Writer::Write(const unsigned char* data) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_write_row(png, data);
  return true;
}

bool PngFile::Writer::End() {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_write_end(png, nullptr);
  return true;
}

void PngFile::Writer::Throw() const {
  throw std::runtime_error(std::string("the picture cannot be written: ") + fault);
}

PngFile::PngFile(int width, int height, double scale) : writer_(std::make_unique<Writer>()) {
  constexpr double kPointsPerMeter = 96.0 / 0.0254;
  writer_->width = static_cast<png_uint_32>(width);
  writer_->row.resize(4 * static_cast<std::size_t>(width));
  if (!writer_->Begin(static_cast<png_uint_32>(height),
                      static_cast<png_uint_32>(std::lround(kPointsPerMeter * scale)))) {
    writer_->Throw();
  }
}

PngFile::~PngFile() = default;

void PngFile::addRow(const unsigned char* premultiplied) {
  unsigned char* to = writer_->row.data();
  for (png_uint_32 x = 0; x < writer_->width; ++x) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, premultiplied + 4 * x, sizeof pixel);
    Separate(pixel, to + 4 * x);
  }
  if (!writer_->Write(writer_->row.data())) writer_->Throw();
}

std::string PngFile::finish() {
  if (!writer_->End()) writer_->Throw();
  return std::move(writer_->bytes);
}

}  // namespace lumenquest::adapters
