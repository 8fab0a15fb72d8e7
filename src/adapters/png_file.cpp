#include "png_file.h"

#include <isa-l/igzip_lib.h>
#include <png.h>

#include <array>
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

/// The file is libpng's, the pixels in it are packed by ISA-L: flat panels with texts come out as
/// large as with zlib's lower levels, in a fifth of the time.
///
/// libpng leaves by longjmp() where it fails, past all destructors: whoever calls it in this file
/// has none to run.
struct PngFile::Writer {
  Writer() = default;
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { png_destroy_write_struct(&png, &info); }

  bool Begin(png_uint_32 height, png_uint_32 pixelsPerMeter);
  /// Packs `row`.
  bool Write();
  bool End();
  [[noreturn]] void Throw() const;

  std::string bytes;
  char fault[kLongestFault] = "out of memory";
  png_uint_32 width = 0;
  png_structp png = nullptr;
  png_infop info = nullptr;
  /// With the number of its filter before it: none, which only makes these pictures larger.
  std::vector<unsigned char> row;
  isal_zstream packer{};
  std::vector<unsigned char> packerMemory = std::vector<unsigned char>(ISAL_DEF_LVL1_DEFAULT);
  std::array<unsigned char, 32 * 1024> packed{};

 private:
  void TakePacked();
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
  png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
  png_set_pHYs(png, info, pixelsPerMeter, pixelsPerMeter, PNG_RESOLUTION_METER);
  png_write_info(png, info);
  isal_deflate_init(&packer);
  packer.level = 1;
  packer.level_buf = packerMemory.data();
  packer.level_buf_size = static_cast<std::uint32_t>(packerMemory.size());
  packer.gzip_flag = IGZIP_ZLIB;
  return true;
}

void PngFile::Writer::TakePacked() {
  do {
    packer.next_out = packed.data();
    packer.avail_out = static_cast<std::uint32_t>(packed.size());
    if (isal_deflate(&packer) != COMP_OK) png_error(png, "its pixels cannot be packed");
    const std::size_t length = packed.size() - packer.avail_out;
    if (length > 0) {
      png_write_chunk(png, reinterpret_cast<png_const_bytep>("IDAT"), packed.data(), length);
    }
  } while (packer.avail_out == 0);
}

bool PngFile::Writer::Write() {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  packer.next_in = row.data();
  packer.avail_in = static_cast<std::uint32_t>(row.size());
  TakePacked();
  return true;
}

bool PngFile::Writer::End() {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  packer.end_of_stream = 1;
  TakePacked();
  png_write_chunk(png, reinterpret_cast<png_const_bytep>("IEND"), nullptr, 0);
  return true;
}

void PngFile::Writer::Throw() const {
  throw std::runtime_error(std::string("the picture cannot be written: ") + fault);
}

PngFile::PngFile(int width, int height, double scale) : writer_(std::make_unique<Writer>()) {
  constexpr double kPointsPerMeter = 96.0 / 0.0254;
  writer_->width = static_cast<png_uint_32>(width);
  writer_->row.resize(1 + 4 * static_cast<std::size_t>(width));
  if (!writer_->Begin(static_cast<png_uint_32>(height),
                      static_cast<png_uint_32>(std::lround(kPointsPerMeter * scale)))) {
    writer_->Throw();
  }
}

PngFile::~PngFile() = default;

void PngFile::addRow(const unsigned char* premultiplied) {
  unsigned char* const to = writer_->row.data() + 1;
  for (png_uint_32 x = 0; x < writer_->width; ++x) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, premultiplied + 4 * x, sizeof pixel);
    Separate(pixel, to + 4 * x);
  }
  if (!writer_->Write()) writer_->Throw();
}

std::string PngFile::finish() {
  if (!writer_->End()) writer_->Throw();
  return std::move(writer_->bytes);
}

}  // namespace lumenquest::adapters
