#include "web_error_page.h"

#include <libsoup/soup.h>

#include <algorithm>
#include <array>

#include "host/web_page.h"
#include "host/web_text.h"
#include "platform/localized_strings.h"

namespace lumenquest::host {

namespace {

struct ErrorPage {
  int status;
  const char* phrase;
  /// Of the texts in the table of the command.
  const char* key;
  const char* titleKey = "web_error_title";
};
constexpr ErrorPage kErrorPages[] = {
    {400, "Bad Request", "web_bad_request"},
    {403, "Forbidden", "web_other_site"},
    {404, "Not Found", "web_page_missing", "web_page_missing_title"},
    {405, "Method Not Allowed", "web_method", "web_method_title"},
    {413, "Content Too Large", "web_body_too_large"},
    {414, "URI Too Long", "web_address_too_long"},
    {415, "Unsupported Media Type", "web_content_type"},
    {421, "Misdirected Request", "web_other_host"},
    {431, "Request Header Fields Too Large", "web_headers_too_large"},
    {500, "Internal Server Error", "web_failed"},
    {503, "Service Unavailable", "web_busy"},
};

/// The style sheet of the site is not to be had under another name, or while all places are taken.
constexpr const char* kStyle = R"(
:root { color-scheme: light dark; --top: #dbe7f3; --bottom: #f8e9d8; --card: #fbf8f2; --ink: #1e2229;
  --accent: #8f4a00; }
@media (prefers-color-scheme: dark) {
  :root { --top: #070b16; --bottom: #29304f; --card: #131824; --ink: #f1f3f6; --accent: #f2b84b; }
}
body { margin: 0; min-height: 100vh; background: linear-gradient(var(--top), var(--bottom)) fixed;
  color: var(--ink); font: 16px/1.45 Inter, system-ui, sans-serif; overflow-wrap: anywhere; }
main { max-width: 560px; margin: 0 auto; padding: 32px 16px; }
p { padding: 20px; border-radius: 22px; background: var(--card); }
a { color: var(--accent); }
)";

const ErrorPage* Find(int status) {
  const auto* const found = std::find_if(std::begin(kErrorPages), std::end(kErrorPages),
                                         [&](const ErrorPage& p) { return p.status == status; });
  return found == std::end(kErrorPages) ? nullptr : found;
}

std::string Link(const std::string& address, const std::string& text) {
  return "<a href=\"" + htmlEscaped(address) + "\">" + text + "</a>";
}

/// A sentence whose placeholder, if it has one, becomes a link.
std::string Linked(const std::string& sentence, const std::string& url) {
  const std::string link = "<bdi>" + Link(url, htmlEscaped(url)) + "</bdi>";
  const std::string linked = platform::stringWithFormat(sentence, {link});
  return linked == sentence ? sentence + ' ' + Link("/", webText("web_back")) : linked;
}

}  // namespace

std::string phraseOf(int status) {
  const ErrorPage* const page = Find(status);
  return page != nullptr ? page->phrase : soup_status_get_phrase(static_cast<guint>(status));
}

std::string errorPage(int status, const std::string& url, const WebLanguage& language) {
  const ErrorPage* page = Find(status);
  if (page == nullptr) page = Find(status < 500 ? 400 : 500);
  const std::string title = platform::localizedString(page->titleKey, platform::kTableApp);
  return documentBeginning(title + " \u2013 Lumenquest", language) +
         "<link rel=\"icon\" href=\"data:,\">\n<style>" + kStyle +
         "</style>\n</head>\n<body>\n<main>\n<h1>" + htmlEscaped(title) + "</h1>\n<p>" +
         Linked(webText(page->key), url) + "</p>\n</main>\n</body>\n</html>\n";
}

std::string errorStyleSource() {
  std::array<guint8, 32> digest{};
  gsize size = digest.size();
  GChecksum* const checksum = g_checksum_new(G_CHECKSUM_SHA256);
  g_checksum_update(checksum, reinterpret_cast<const guchar*>(kStyle), -1);  // NOLINT
  g_checksum_get_digest(checksum, digest.data(), &size);
  g_checksum_free(checksum);
  gchar* const encoded = g_base64_encode(digest.data(), size);
  const std::string source = "'sha256-" + std::string(encoded) + "'";
  g_free(encoded);
  return source;
}

}  // namespace lumenquest::host
