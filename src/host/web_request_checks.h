#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/web_request.h"

namespace lumenquest::host {

/// The decoded path, or nothing when it is none that a page of ours could have, or tries tricks.
std::optional<std::string> decodedPath(std::string_view path);

/// "example:8080" or "[::1]:8080" as its parts; the port is 80 where none is given.
std::optional<ListenAddress> parseAuthority(std::string_view text);

/// Whether the authority is one of this server's addresses: any IP literal, localhost, the name it
/// was told to listen on or this machine's own, also under .local (RFC 6762), and its port. Another
/// name can be anybody's, pointed at this machine by its owner in order to read with a page of his
/// (DNS rebinding).
bool isOwnAuthority(std::string_view authority, const std::string& listenHost, std::uint16_t port);

/// Whether a request that changes something comes from a page of this server: browsers say so in
/// Origin or Sec-Fetch-Site, and no page can make them say anything else.
bool isFromOwnPage(const WebRequest& request);

/// Whether a JSON value is sent. What pages of other sites can send without asking first, forms and
/// plain texts, is none.
bool isJson(const std::string& contentType);

/// Whether the list of If-None-Match has the tag (without quotation marks) or is "*".
bool matchesEtag(std::string_view ifNoneMatch, const std::string& etag);

}  // namespace lumenquest::host
