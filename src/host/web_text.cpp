#include "host/web_text.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace lumenquest::host {

namespace {

struct FreeText {
  void operator()(char* text) const { g_free(text); }
};

constexpr std::array<std::pair<std::string_view, char>, 5> kEntities{
    {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&#39;", '\''}}};

}  // namespace

std::string htmlEscaped(const std::string& text) {
  const std::unique_ptr<char, FreeText> valid(
      g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
  std::string html;
  for (const char* at = valid.get(); *at != '\0'; at = g_utf8_next_char(at)) {
    const gunichar c = g_utf8_get_char(at);
    const auto* const entity =
        std::find_if(kEntities.begin(), kEntities.end(),
                     [&](const auto& one) { return static_cast<gunichar>(one.second) == c; });
    if (entity != kEntities.end()) {
      html += entity->first;
    } else if (c == '\t' || c == '\n' || (c >= 0x20 && !(c >= 0x7F && c < 0xA0))) {
      html.append(at, static_cast<std::size_t>(g_utf8_next_char(at) - at));
    }
  }
  return html;
}

std::string htmlUnescaped(const std::string& html) {
  std::string text;
  for (std::size_t at = 0; at < html.size();) {
    const std::string_view rest = std::string_view(html).substr(at);
    const auto* const entity =
        std::find_if(kEntities.begin(), kEntities.end(),
                     [&](const auto& one) { return rest.starts_with(one.first); });
    if (entity != kEntities.end()) {
      text += entity->second;
      at += entity->first.size();
    } else {
      text += html[at++];
    }
  }
  return text;
}

std::string bdi(const std::string& text) { return "<bdi>" + htmlEscaped(text) + "</bdi>"; }

std::string percentEncoded(const std::string& text) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    if (g_ascii_isalnum(c) != 0 || c == '-' || c == '.' || c == '_' || c == '~') {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15u]};
  }
  return encoded;
}

std::string percentDecoded(const std::string& text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '%' && i + 2 < text.size() ? g_ascii_xdigit_value(text[i + 1]) : -1;
    const int low = high >= 0 ? g_ascii_xdigit_value(text[i + 2]) : -1;
    if (low >= 0) {
      decoded += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      decoded += text[i];
    }
  }
  return decoded;
}

}  // namespace lumenquest::host
