#include "host/web_request.h"

#include <gio/gio.h>

#include <algorithm>
#include <charconv>

#include "web_request_checks.h"

namespace lumenquest::host {

namespace {

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = g_ascii_tolower(c);
  return lower;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

/// Undoes percent escapes; nothing when one is broken.
std::optional<std::string> Unescaped(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      plain += text[i];
      continue;
    }
    if (i + 2 >= text.size()) return std::nullopt;
    const int high = g_ascii_xdigit_value(text[i + 1]);
    const int low = g_ascii_xdigit_value(text[i + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    plain += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return plain;
}

/// A NUL is no part of a text here.
bool IsText(const std::string& text) {
  return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != 0;
}

bool IsIpLiteral(const std::string& host) {
  GInetAddress* const address = g_inet_address_new_from_string(host.c_str());
  if (address == nullptr) return false;
  g_object_unref(address);
  return true;
}

bool IsHostName(std::string_view text) {
  return !text.empty() && text.size() <= 253 && std::all_of(text.begin(), text.end(), [](char c) {
    return g_ascii_isalnum(c) || c == '-' || c == '.' || c == '_';
  });
}

std::optional<std::uint16_t> ParsePort(std::string_view text) {
  std::uint16_t port = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, port);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return port;
}

/// Splits "host:port" and "[host]:port"; the port may be absent with its colon.
std::optional<ListenAddress> SplitAuthority(std::string_view text, bool isPortNeeded) {
  ListenAddress address{.host = {}, .port = 80};
  std::string_view rest;
  if (text.starts_with('[')) {
    const std::size_t bracket = text.find(']');
    if (bracket == std::string_view::npos) return std::nullopt;
    address.host = text.substr(1, bracket - 1);
    if (address.host.find(':') == std::string::npos || !IsIpLiteral(address.host)) {
      return std::nullopt;
    }
    rest = text.substr(bracket + 1);
  } else {
    const std::size_t colon = std::min(text.find(':'), text.size());
    address.host = LowerCase(text.substr(0, colon));
    if (!IsHostName(address.host)) return std::nullopt;
    rest = text.substr(colon);
  }
  if (rest.empty()) return isPortNeeded ? std::nullopt : std::optional(address);
  if (rest.front() != ':') return std::nullopt;
  const auto port = ParsePort(rest.substr(1));
  if (!port) return std::nullopt;
  address.port = *port;
  return address;
}

}  // namespace

std::string WebRequest::header(const std::string& name) const {
  const auto found = headers.find(name);
  return found == headers.end() ? std::string() : found->second;
}

std::optional<ListenAddress> parseListenAddress(std::string_view text) {
  return SplitAuthority(text, true);
}

std::optional<std::map<std::string, std::string>> parseQuery(std::string_view text) {
  std::map<std::string, std::string> fields;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('&'), text.size());
    std::string field(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (field.empty()) continue;
    std::replace(field.begin(), field.end(), '+', ' ');
    const std::size_t equals = std::min(field.find('='), field.size());
    const auto name = Unescaped(std::string_view(field).substr(0, equals));
    const auto value =
        Unescaped(std::string_view(field).substr(std::min(equals + 1, field.size())));
    if (!name || !value || !IsText(*name) || !IsText(*value)) return std::nullopt;
    fields[*name] = *value;
  }
  return fields;
}

std::optional<std::string> decodedPath(std::string_view path) {
  const auto decoded = Unescaped(path);
  if (!decoded || !decoded->starts_with('/') || !IsText(*decoded)) return std::nullopt;
  const bool hasOddCharacter = std::any_of(decoded->begin(), decoded->end(), [](char c) {
    return g_ascii_iscntrl(c) || c == '\\' || c == '%';
  });
  // An escaped slash would make segments that nobody wrote.
  const std::size_t slashes = static_cast<std::size_t>(std::count(path.begin(), path.end(), '/'));
  if (hasOddCharacter ||
      static_cast<std::size_t>(std::count(decoded->begin(), decoded->end(), '/')) != slashes) {
    return std::nullopt;
  }
  for (std::size_t begin = 1; begin < decoded->size();) {
    const std::size_t end = std::min(decoded->find('/', begin), decoded->size());
    const std::string_view segment = std::string_view(*decoded).substr(begin, end - begin);
    if (segment.empty() || segment == "." || segment == "..") return std::nullopt;
    begin = end + 1;
  }
  return decoded;
}

std::optional<ListenAddress> parseAuthority(std::string_view text) {
  return SplitAuthority(text, false);
}

bool isOwnAuthority(std::string_view authority, const std::string& listenHost, std::uint16_t port) {
  const auto parsed = parseAuthority(authority);
  if (!parsed || parsed->port != port) return false;
  const std::string machine = LowerCase(g_get_host_name());
  const std::string unqualified = machine.substr(0, machine.find('.'));
  return parsed->host == "localhost" || parsed->host == LowerCase(listenHost) ||
         parsed->host == machine || parsed->host == unqualified + ".local" ||
         IsIpLiteral(parsed->host);
}

bool isFromOwnPage(const WebRequest& request) {
  const std::string origin = LowerCase(request.header("origin"));
  const std::string site = LowerCase(request.header("sec-fetch-site"));
  if (origin.empty() && site.empty()) return false;
  return (origin.empty() || origin == "http://" + LowerCase(request.header("host"))) &&
         (site.empty() || site == "same-origin");
}

bool isJson(const std::string& contentType) {
  const std::string type =
      LowerCase(Trimmed(std::string_view(contentType).substr(0, contentType.find(';'))));
  return type == "application/json";
}

bool matchesEtag(std::string_view ifNoneMatch, const std::string& etag) {
  if (Trimmed(ifNoneMatch) == "*") return true;
  const std::string quoted = '"' + etag + '"';
  while (!ifNoneMatch.empty()) {
    const std::size_t end = std::min(ifNoneMatch.find(','), ifNoneMatch.size());
    std::string_view tag = Trimmed(ifNoneMatch.substr(0, end));
    ifNoneMatch.remove_prefix(std::min(end + 1, ifNoneMatch.size()));
    // Weak or strong is the same here.
    if (tag.starts_with("W/")) tag.remove_prefix(2);
    if (tag == quoted) return true;
  }
  return false;
}

}  // namespace lumenquest::host
