#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace lumenquest::host {

/// A request whose form, size and origin the server has found in order.
struct WebRequest {
  /// GET, HEAD or POST. What answers a GET answers a HEAD: the server leaves the body out.
  std::string method;
  /// Decoded: begins with a slash; UTF-8 without control characters and backslashes; no segment is
  /// ".", ".." or, but for the last, empty.
  std::string path;
  /// Decoded. Of a name that is given several times, the last.
  std::map<std::string, std::string> query;
  /// Names in lower case; values of a name given several times are joined with ", ".
  std::map<std::string, std::string> headers;
  std::string body;

  /// The empty text where there is no such header; the name in lower case.
  std::string header(const std::string& name) const;
};

struct WebResponse {
  int status = 200;
  std::string contentType{};
  std::string body{};
  /// In the place of `body`: bytes that somebody keeps and many are sent, such as a picture's.
  std::shared_ptr<const std::string> sharedBody{};
  /// Without quotation marks. A client that has this version already is answered 304 with no body.
  std::string etag{};
  /// Where to go instead, for the statuses 201 and 3xx.
  std::string location{};
  /// With the status 405: "GET, HEAD".
  std::string allow{};
  /// Seconds, with the status 503.
  int retryAfter = 0;

  /// A status that says it all. A status of 400 and above without a body gets a page with a
  /// sentence in the user's language.
  static WebResponse ofStatus(int status) {
    WebResponse response;
    response.status = status;
    return response;
  }
};

/// Where to listen.
struct ListenAddress {
  /// An IP literal without brackets, or a name.
  std::string host = "127.0.0.1";
  /// 0: any free one.
  std::uint16_t port = 0;
};

/// "127.0.0.1:8080", "[::1]:8080", "localhost:0"; nothing when the text is no such thing.
std::optional<ListenAddress> parseListenAddress(std::string_view text);

/// The fields of a query (application/x-www-form-urlencoded), decoded; nothing when an escape is
/// broken, or the text is no UTF-8 or has a NUL. Of a name given several times, the last.
std::optional<std::map<std::string, std::string>> parseQuery(std::string_view text);

}  // namespace lumenquest::host
