#pragma once

#include <cairo.h>
#include <glib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/core_graphics.h"

namespace lumenquest::testing {

/// A PNG file's pixels.
class Pixels {
 public:
  explicit Pixels(const std::string& png) {
    struct Source {
      const std::string& bytes;
      std::size_t at = 0;
    } source{png};
    const auto read = [](void* closure, unsigned char* data, unsigned int length) {
      auto& from = *static_cast<Source*>(closure);
      if (from.bytes.size() - from.at < length) return CAIRO_STATUS_READ_ERROR;
      std::copy_n(from.bytes.data() + from.at, length, reinterpret_cast<char*>(data));
      from.at += length;
      return CAIRO_STATUS_SUCCESS;
    };
    cairo_surface_t* const loaded = cairo_image_surface_create_from_png_stream(read, &source);
    EXPECT_EQ(cairo_surface_status(loaded), CAIRO_STATUS_SUCCESS);
    width = cairo_image_surface_get_width(loaded);
    height = cairo_image_surface_get_height(loaded);
    surface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t* const context = cairo_create(surface_);
    cairo_set_source_surface(context, loaded, 0, 0);
    cairo_paint(context);
    cairo_destroy(context);
    cairo_surface_destroy(loaded);
    cairo_surface_flush(surface_);
  }
  ~Pixels() { cairo_surface_destroy(surface_); }
  Pixels(const Pixels&) = delete;
  Pixels& operator=(const Pixels&) = delete;

  /// 0xAARRGGBB, premultiplied.
  std::uint32_t at(int x, int y) const {
    const unsigned char* const row =
        cairo_image_surface_get_data(surface_) +
        static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface_);
    return reinterpret_cast<const std::uint32_t*>(row)[x];
  }

  /// The smallest box around all that is not transparent, in pixels.
  platform::CGRect ink() const {
    int left = width, top = height, right = 0, bottom = 0;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        if (at(x, y) >> 24 < 8) continue;
        left = std::min(left, x);
        right = std::max(right, x + 1);
        top = std::min(top, y);
        bottom = std::max(bottom, y + 1);
      }
    }
    return {double(left), double(top), double(right - left), double(bottom - top)};
  }

  int width = 0;
  int height = 0;

 private:
  cairo_surface_t* surface_ = nullptr;
};

/// An XML document's texts and attributes, in order; fails the test if it is not well-formed.
struct XmlContents {
  std::vector<std::string> texts;
  std::multimap<std::string, std::string> attributes;

  explicit XmlContents(const std::string& xml) {
    static constexpr GMarkupParser kParser{
        [](GMarkupParseContext*, const char*, const char** names, const char** values,
           gpointer data, GError**) {
          for (; *names != nullptr; ++names, ++values) {
            static_cast<XmlContents*>(data)->attributes.emplace(*names, *values);
          }
        },
        nullptr,
        [](GMarkupParseContext* context, const char* text, gsize length, gpointer data, GError**) {
          if (std::string(g_markup_parse_context_get_element(context)) != "text") return;
          static_cast<XmlContents*>(data)->texts.emplace_back(text, length);
        },
        nullptr, nullptr};
    GMarkupParseContext* const context =
        g_markup_parse_context_new(&kParser, G_MARKUP_DEFAULT_FLAGS, this, nullptr);
    GError* error = nullptr;
    if (g_markup_parse_context_parse(context, xml.data(), static_cast<gssize>(xml.size()),
                                     &error) == 0 ||
        g_markup_parse_context_end_parse(context, &error) == 0) {
      ADD_FAILURE() << error->message << " in " << xml;
      g_error_free(error);
    }
    g_markup_parse_context_free(context);
  }

  std::string attribute(const std::string& name) const {
    const auto found = attributes.find(name);
    return found == attributes.end() ? "" : found->second;
  }
};

}  // namespace lumenquest::testing
