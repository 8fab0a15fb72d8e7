#include "host/web_server.h"

#include <libsoup/soup.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <exception>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "glib_sources.h"
#include "outgoing_connection.h"
#include "platform/assertion.h"
#include "platform/services.h"
#include "web_error_page.h"
#include "web_request_checks.h"

namespace lumenquest::host {

namespace {

using Microseconds = gint64;

/// Files of the process beside connections: stores, libraries' own, what drawing opens.
constexpr std::size_t kOtherFiles = 192;
/// Connections beyond the limit that still get a sentence; more are cut off.
constexpr std::size_t kSurplus = 64;
constexpr int kRetryAfterSeconds = 5;
constexpr std::size_t kMaxHeaderCount = 100;
constexpr std::chrono::milliseconds kTick{250};
/// Time for a client to read why it is refused.
constexpr std::chrono::milliseconds kFarewell{2'000};
/// A peer that vanished without a word is noticed after this.
constexpr int kSilentPeerMilliseconds = 60'000;
/// The kernel takes twice this for a stream's client; by default it would grow to megabytes.
constexpr int kStreamBuffer = 32 * 1024;

using Headers = std::vector<std::pair<std::string, std::string>>;

Headers SafetyHeaders() {
  return {
      {"Content-Security-Policy",
       "default-src 'none'; script-src 'self'; style-src 'self' " + errorStyleSource() +
           "; img-src 'self' data:; connect-src 'self'; frame-ancestors 'none'; base-uri 'none'; "
           "form-action 'none'"},
      {"X-Content-Type-Options", "nosniff"},
      {"Referrer-Policy", "no-referrer"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
      {"Cross-Origin-Opener-Policy", "same-origin"},
  };
}

Microseconds After(std::chrono::milliseconds time) {
  return g_get_monotonic_time() + std::chrono::microseconds(time).count();
}

void Log(const std::string& message) {
  platform::Services::current().log().write("web server: " + message);
}

[[noreturn]] void Throw(int code, const char* key, std::vector<std::string> arguments,
                        const char* detail = "") {
  throw WebServerError({"WebServer", code, key, std::move(arguments), detail});
}

/// Raises the limit of open files to what is wanted, as far as the process may, and returns it.
std::size_t RaiseOpenFilesLimit(std::size_t wanted) {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 1024;
  if (limit.rlim_cur < wanted) {
    limit.rlim_cur = std::min<rlim_t>(wanted, limit.rlim_max);
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0) getrlimit(RLIMIT_NOFILE, &limit);
  }
  return static_cast<std::size_t>(limit.rlim_cur);
}

/// Several addresses for a name such as localhost, which has one of each family.
std::vector<Owned<GInetAddress>> AddressesOf(const std::string& host) {
  std::vector<Owned<GInetAddress>> addresses;
  if (GInetAddress* const literal = g_inet_address_new_from_string(host.c_str())) {
    addresses.emplace_back(literal);
    return addresses;
  }
  const Owned<GResolver> resolver(g_resolver_get_default());
  ErrorBox error;
  GList* const found =
      g_resolver_lookup_by_name(resolver.get(), host.c_str(), nullptr, error.out());
  if (found == nullptr) Throw(1, "error_listen_unknown_host", {host}, error.message());
  for (GList* item = found; item != nullptr; item = item->next) {
    addresses.emplace_back(G_INET_ADDRESS(g_object_ref(item->data)));
  }
  g_resolver_free_addresses(found);
  return addresses;
}

std::string Authority(const std::string& host, std::uint16_t port) {
  return (host.find(':') == std::string::npos ? host : '[' + host + ']') + ':' +
         std::to_string(port);
}

std::uint16_t PortOf(GSocket* socket) {
  const Owned<GSocketAddress> address(g_socket_get_local_address(socket, nullptr));
  return address ? g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(address.get()))
                 : std::uint16_t{0};
}

bool IsHeaderValue(const std::string& text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return g_ascii_iscntrl(c); });
}

}  // namespace

class WebServer::Impl {
 public:
  Impl(const WebServerOptions& options, Handler handler)
      : options_(options), handler_(std::move(handler)) {
    LimitToOpenFiles();
    Listen();
    unreadable_ = WebResponse::ofStatus(400);
    FillErrorPage(unreadable_);
    server_.reset(SOUP_SERVER(g_object_new(SOUP_TYPE_SERVER, "raw-paths", TRUE, nullptr)));
    g_signal_connect(server_.get(), "request-started", G_CALLBACK(OnStarted), this);
    g_signal_connect(server_.get(), "request-read", G_CALLBACK(OnRead), this);
    tick_ = Watch(kTick, [this] { OnTick(); });
    heartbeat_ = Watch(options_.heartbeat, [this] {
      SendToStreams(std::make_shared<const std::string>(": here\n\n"));
    });
  }

  ~Impl() {
    Stop();
    g_signal_handlers_disconnect_by_data(server_.get(), this);
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  std::uint16_t port() const { return port_; }
  std::string url() const {
    // All addresses of the machine are none that a browser could open.
    const std::string& host = options_.listen.host;
    return "http://" + Authority(host == "0.0.0.0" || host == "::" ? "localhost" : host, port_) +
           '/';
  }
  std::size_t streamCount() const { return streamCount_; }
  std::size_t connectionCount() const { return connections_.size(); }

  void Publish(const std::string& event, const std::string& data) {
    LUMENQUEST_ASSERT(!event.empty() && event.find_first_of("\r\n") == std::string::npos);
    std::string text = "id: " + std::to_string(++lastEvent_) + "\nevent: " + event + '\n';
    for (std::size_t begin = 0; begin <= data.size();) {
      const std::size_t end = std::min(data.find_first_of("\r\n", begin), data.size());
      text += "data: " + data.substr(begin, end - begin) + '\n';
      begin = end + (data.compare(end, 2, "\r\n") == 0 ? 2 : 1);
    }
    text += '\n';
    SendToStreams(std::make_shared<const std::string>(std::move(text)));
  }

  void Stop() {
    tick_.reset();
    heartbeat_.reset();
    listeners_.clear();
    // Closes what it still reads and answers; each tells OnGone.
    soup_server_disconnect(server_.get());
    std::vector<Connection*> taken;
    for (const auto& [stream, connection] : connections_) {
      if (connection->outgoing) taken.push_back(connection.get());
    }
    for (Connection* connection : taken) Drop(*connection);
    for (const auto& [stream, connection] : connections_) {
      g_object_weak_unref(G_OBJECT(stream), OnGone, this);
      g_object_set_data(G_OBJECT(connection->remote.get()), kConnectionKey, nullptr);
    }
    connections_.clear();
  }

 private:
  enum class State {
    /// A request is on its way, or awaited.
    asking,
    answering,
    stream,
    refused,
  };

  struct Connection {
    /// Not owned: who answers owns it, and we are told when it goes.
    GSocketConnection* stream = nullptr;
    Owned<GSocketAddress> remote{};
    State state = State::asking;
    /// When it is cut off; streams have none.
    std::optional<Microseconds> deadline{};
    /// One more than there are places for.
    bool isSurplus = false;
    /// As far as it has come.
    WebRequest request{};
    /// Set once the server alone speaks.
    std::unique_ptr<OutgoingConnection> outgoing{};
  };

  struct Listener {
    Owned<GSocket> socket;
    Watch watch{};
    ~Listener() {
      watch.reset();
      if (socket) g_socket_close(socket.get(), nullptr);
    }
    Listener(Owned<GSocket> listening) : socket(std::move(listening)) {}
    Listener(Listener&&) = default;
    Listener& operator=(Listener&&) = delete;
  };

  static constexpr const char* kConnectionKey = "lumenquest-connection";

  void LimitToOpenFiles() {
    const std::size_t wanted =
        options_.maxStreams + options_.maxConnections + kSurplus + kOtherFiles;
    const std::size_t limit = RaiseOpenFilesLimit(wanted);
    if (limit >= wanted) return;
    // What is left is shared in the same proportion.
    const std::size_t left = limit > kSurplus + kOtherFiles ? limit - kSurplus - kOtherFiles : 2;
    const std::size_t streams =
        left * options_.maxStreams / (options_.maxStreams + options_.maxConnections);
    options_.maxStreams = std::max<std::size_t>(streams, 1);
    options_.maxConnections = std::max<std::size_t>(left - streams, 1);
    Log("with " + std::to_string(limit) + " open files there are places for " +
        std::to_string(options_.maxStreams) + " streams");
  }

  void Listen() {
    port_ = options_.listen.port;
    ErrorBox error;
    for (const auto& address : AddressesOf(options_.listen.host)) {
      Owned<GSocket> socket(g_socket_new(g_inet_address_get_family(address.get()),
                                         G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP, error.out()));
      if (!socket) continue;
      const Owned<GSocketAddress> end(g_inet_socket_address_new(address.get(), port_));
      g_socket_set_blocking(socket.get(), FALSE);
      g_socket_set_listen_backlog(socket.get(), 1024);
      if (!g_socket_bind(socket.get(), end.get(), TRUE, error.out()) ||
          !g_socket_listen(socket.get(), error.out())) {
        if (error.is(G_IO_ERROR_ADDRESS_IN_USE)) {
          Throw(3, "error_listen_in_use", {Authority(options_.listen.host, port_)});
        }
        // A name may have an address of a family that this machine does not use.
        continue;
      }
      port_ = PortOf(socket.get());
      listeners_.emplace_back(std::move(socket));
    }
    if (listeners_.empty()) {
      Throw(2, "error_listen", {Authority(options_.listen.host, port_)}, error.message());
    }
    for (Listener& listener : listeners_) WatchListener(listener);
  }

  void WatchListener(Listener& listener) {
    GSocket* const socket = listener.socket.get();
    listener.watch = Watch(socket, G_IO_IN, [this, &listener] { Accept(listener); });
  }

  void Accept(Listener& listener) {
    // A few at a time, so that those who are in are not kept waiting.
    for (int i = 0; i < 32; ++i) {
      ErrorBox error;
      const Owned<GSocket> socket(g_socket_accept(listener.socket.get(), nullptr, error.out()));
      if (socket) {
        Admit(socket.get());
      } else if (error.is(G_IO_ERROR_WOULD_BLOCK)) {
        return;
      } else if (!error.is(G_IO_ERROR_CONNECTION_CLOSED)) {
        // Out of files or of memory. To ask again at once would keep the loop busy; the next tick
        // asks again.
        Log(std::string("cannot accept: ") + error.message());
        listener.watch.reset();
        return;
      }
    }
  }

  void Admit(GSocket* socket) {
    const std::size_t present = connections_.size() - streamCount_;
    if (present >= options_.maxConnections + kSurplus) return;
    Owned<GSocketAddress> local(g_socket_get_local_address(socket, nullptr));
    Owned<GSocketAddress> remote(g_socket_get_remote_address(socket, nullptr));
    // Gone again already.
    if (!local || !remote) return;
    g_socket_set_option(socket, IPPROTO_TCP, TCP_NODELAY, 1, nullptr);
    g_socket_set_option(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, kSilentPeerMilliseconds, nullptr);
    g_socket_set_keepalive(socket, TRUE);

    const Owned<GSocketConnection> stream(g_socket_connection_factory_create_connection(socket));
    auto connection = std::make_unique<Connection>();
    connection->stream = stream.get();
    connection->remote = std::move(remote);
    connection->deadline = After(options_.requestTime);
    connection->isSurplus = present >= options_.maxConnections;
    // The address object is what libsoup hands back with each request of this connection.
    g_object_set_data(G_OBJECT(connection->remote.get()), kConnectionKey, connection.get());
    g_object_weak_ref(G_OBJECT(stream.get()), OnGone, this);
    GSocketAddress* const peer = connection->remote.get();
    connections_[stream.get()] = std::move(connection);
    soup_server_accept_iostream(server_.get(), G_IO_STREAM(stream.get()), local.get(), peer,
                                nullptr);
  }

  /// libsoup finds the connection ended and lets it go.
  void CutOff(Connection& connection) {
    if (connection.outgoing) return Drop(connection);
    connection.deadline.reset();
    connection.state = State::refused;
    g_socket_shutdown(g_socket_connection_get_socket(connection.stream), TRUE, TRUE, nullptr);
  }

  /// Ends a connection on which the server alone speaks.
  void Drop(Connection& connection) {
    if (connection.state == State::stream) --streamCount_;
    connection.state = State::refused;
    // The stream goes with it, and with the stream this record.
    const auto outgoing = std::move(connection.outgoing);
  }

  static void OnGone(gpointer self, GObject* stream) {
    auto& connections = static_cast<Impl*>(self)->connections_;
    const auto found = connections.find(reinterpret_cast<GSocketConnection*>(stream));  // NOLINT
    if (found == connections.end()) return;
    g_object_set_data(G_OBJECT(found->second->remote.get()), kConnectionKey, nullptr);
    const auto gone = std::move(found->second);
    connections.erase(found);
  }

  void OnTick() {
    const Microseconds now = g_get_monotonic_time();
    std::vector<Connection*> late;
    for (const auto& [stream, connection] : connections_) {
      if (connection->deadline && *connection->deadline <= now) late.push_back(connection.get());
    }
    for (Connection* connection : late) CutOff(*connection);
    for (Listener& listener : listeners_) {
      if (!listener.watch) WatchListener(listener);
    }
  }

  static Connection* ConnectionOf(SoupServerMessage* message) {
    GSocketAddress* const remote = soup_server_message_get_remote_address(message);
    return remote == nullptr
               ? nullptr
               : static_cast<Connection*>(g_object_get_data(G_OBJECT(remote), kConnectionKey));
  }

  // Requests.

  /// Starts when its connection is accepted. One connection, one request: when a client ends a
  /// connection between two requests, libsoup 3.2's server keeps it for ever, descriptor and all.
  static void OnStarted(SoupServer*, SoupServerMessage* message, Impl* self) {
    Connection* const connection = ConnectionOf(message);
    if (connection == nullptr || connection->state == State::refused) return;
    // What libsoup cannot read it answers itself, with what is set here.
    SetContent(message, self->unreadable_);
    soup_message_headers_replace(soup_server_message_get_response_headers(message), "Connection",
                                 "close");
    soup_message_body_set_accumulate(soup_server_message_get_request_body(message), FALSE);
    g_signal_connect(message, "got-headers", G_CALLBACK(OnHeaders), self);
    g_signal_connect(message, "got-chunk", G_CALLBACK(OnChunk), self);
  }

  static void OnHeaders(SoupServerMessage* message, Impl* self) {
    Connection* const connection = ConnectionOf(message);
    if (connection == nullptr || connection->outgoing) return;
    SoupMessageHeaders* const headers = soup_server_message_get_request_headers(message);
    // Pictures and pages are sent whole: libsoup would build an answer of any size from a list of
    // overlapping ranges.
    soup_message_headers_remove(headers, "Range");
    if (soup_server_message_get_status(message) != 0) return;
    const auto refusal = self->Check(message, *connection);
    if (refusal) {
      self->Refuse(message, *connection, *refusal);
    } else if (connection->request.path == self->options_.eventsPath) {
      self->OpenStream(message, *connection);
    }
  }

  static void OnChunk(SoupServerMessage* message, GBytes* chunk, Impl* self) {
    Connection* const connection = ConnectionOf(message);
    if (connection == nullptr || connection->outgoing) return;
    gsize size = 0;
    const auto* const data = static_cast<const char*>(g_bytes_get_data(chunk, &size));
    std::string& body = connection->request.body;
    if (body.size() + size > self->options_.maxBody) {
      self->Refuse(message, *connection, WebResponse::ofStatus(413));
    } else if (size != 0) {
      body.append(data, size);
    }
  }

  static void OnRead(SoupServer*, SoupServerMessage* message, Impl* self) {
    Connection* const connection = ConnectionOf(message);
    if (connection == nullptr || soup_server_message_get_status(message) != 0) return;
    connection->state = State::answering;
    connection->deadline = After(self->options_.answerTime);
    const WebRequest request = std::exchange(connection->request, {});
    self->SetResponse(message, self->Answer(request), request);
  }

  /// What is wrong with a request, as its answer; otherwise the connection's request is filled.
  std::optional<WebResponse> Check(SoupServerMessage* message, Connection& connection) {
    WebRequest& request = connection.request;
    request = {};
    request.method = soup_server_message_get_method(message);
    if (connection.isSurplus) return Busy();
    if (!TakeHeaders(message, request)) return WebResponse::ofStatus(431);
    if (request.method != "GET" && request.method != "HEAD" && request.method != "POST") {
      return NotAllowed("GET, HEAD, POST");
    }

    GUri* const uri = soup_server_message_get_uri(message);
    const auto textOf = [](const char* text) { return std::string(text == nullptr ? "" : text); };
    const std::string path = textOf(g_uri_get_path(uri));
    const std::string query = textOf(g_uri_get_query(uri));
    if (path.size() + query.size() > options_.maxTarget) return WebResponse::ofStatus(414);
    // An absolute address in the request line counts like the header. Clients of HTTP/1.0 may leave
    // the header out; browsers, whose pages could be led here, do not.
    const bool isHostAbsent = !request.headers.contains("host");
    if (isHostAbsent && soup_server_message_get_http_version(message) != SOUP_HTTP_1_0) {
      return WebResponse::ofStatus(400);
    }
    const int uriPort = g_uri_get_port(uri);
    const std::string uriHost = textOf(g_uri_get_host(uri));
    if (g_uri_get_userinfo(uri) != nullptr) return WebResponse::ofStatus(400);
    if ((!isHostAbsent && !parseAuthority(request.header("host"))) || uriPort > 0xffff) {
      return WebResponse::ofStatus(400);
    }
    const auto isOwn = [&](const std::string& authority) {
      return isOwnAuthority(authority, options_.listen.host, port_);
    };
    if ((!isHostAbsent && !isOwn(request.header("host"))) ||
        !isOwn(Authority(uriHost,
                         uriPort < 0 ? std::uint16_t{80} : static_cast<std::uint16_t>(uriPort)))) {
      return Misdirected(message);
    }

    const auto plainPath = decodedPath(path.empty() ? "/" : path);
    const auto fields = parseQuery(query);
    if (!plainPath || !fields) return WebResponse::ofStatus(400);
    request.path = *plainPath;
    request.query = *fields;
    if (request.path == options_.eventsPath) return CheckStream(request);
    return CheckBody(message, request);
  }

  /// False: too many of them, or too large.
  bool TakeHeaders(SoupServerMessage* message, WebRequest& request) const {
    SoupMessageHeadersIter iterator;
    soup_message_headers_iter_init(&iterator, soup_server_message_get_request_headers(message));
    const char* name = nullptr;
    const char* value = nullptr;
    std::size_t size = 0;
    std::size_t count = 0;
    while (soup_message_headers_iter_next(&iterator, &name, &value)) {
      std::string key(name);
      for (char& c : key) c = g_ascii_tolower(c);
      size += key.size() + std::string_view(value).size();
      if (size > options_.maxHeaders || ++count > kMaxHeaderCount) return false;
      std::string& present = request.headers[key];
      present += (present.empty() ? "" : ", ") + std::string(value);
    }
    return true;
  }

  std::optional<WebResponse> CheckStream(const WebRequest& request) const {
    if (request.method == "POST") return NotAllowed("GET, HEAD");
    // Pages of other sites cannot read it, but they could take all places.
    const std::string site = request.header("sec-fetch-site");
    if (!site.empty() && site != "same-origin" && site != "none") {
      return WebResponse::ofStatus(403);
    }
    if (streamCount_ >= options_.maxStreams) return Busy();
    return std::nullopt;
  }

  std::optional<WebResponse> CheckBody(SoupServerMessage* message,
                                       const WebRequest& request) const {
    SoupMessageHeaders* const headers = soup_server_message_get_request_headers(message);
    // A body of two lengths ends where the one or the other reader believes.
    const std::string length = request.header("content-length");
    const std::string coding = request.header("transfer-encoding");
    if (!std::all_of(length.begin(), length.end(),
                     [](char c) { return g_ascii_isdigit(c) != 0; }) ||
        (!length.empty() && !coding.empty())) {
      return WebResponse::ofStatus(400);
    }
    if (soup_message_headers_get_content_length(headers) > static_cast<goffset>(options_.maxBody)) {
      return WebResponse::ofStatus(413);
    }
    if (request.method != "POST") return std::nullopt;
    if (!isFromOwnPage(request)) return WebResponse::ofStatus(403);
    if (!isJson(request.header("content-type"))) return WebResponse::ofStatus(415);
    return std::nullopt;
  }

  WebResponse Answer(const WebRequest& request) {
    try {
      WebResponse response = handler_(request);
      if (IsHeaderValue(response.contentType) && IsHeaderValue(response.etag) &&
          IsHeaderValue(response.location) && IsHeaderValue(response.allow)) {
        return response;
      }
      Log(request.method + ' ' + request.path + ": a header of the answer has a line break");
    } catch (const std::exception& failure) {
      Log(request.method + ' ' + request.path + ": " + failure.what());
    } catch (...) {
      Log(request.method + ' ' + request.path + ": unknown failure");
    }
    return WebResponse::ofStatus(500);
  }

  // Answers.

  static WebResponse Busy() {
    WebResponse response = WebResponse::ofStatus(503);
    response.retryAfter = kRetryAfterSeconds;
    return response;
  }
  static WebResponse NotAllowed(const char* methods) {
    WebResponse response = WebResponse::ofStatus(405);
    response.allow = methods;
    return response;
  }

  void FillErrorPage(WebResponse& response) const {
    if (response.status < 400 || !response.body.empty() || response.sharedBody) return;
    SetErrorPage(response, url());
  }

  void SetErrorPage(WebResponse& response, const std::string& url) const {
    response.contentType = "text/html; charset=utf-8";
    response.body = errorPage(response.status, url, options_.language);
  }

  /// Leads to the address by which the client came here: localhost is another machine to it.
  WebResponse Misdirected(SoupServerMessage* message) const {
    WebResponse response = WebResponse::ofStatus(421);
    GSocketAddress* const local = soup_server_message_get_local_address(message);
    if (local == nullptr || !G_IS_INET_SOCKET_ADDRESS(local)) return response;
    GInetAddress* const address = g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(local));
    char* const host = g_inet_address_to_string(address);
    SetErrorPage(response, "http://" + Authority(host, port_) + '/');
    g_free(host);
    return response;
  }

  static Headers HeadersOf(const WebResponse& response) {
    static const Headers safety = SafetyHeaders();
    Headers headers = safety;
    // With a version that can be asked for, an answer may be kept, but not shown unasked.
    headers.emplace_back("Cache-Control", response.etag.empty() ? "no-store" : "no-cache");
    if (!response.contentType.empty()) headers.emplace_back("Content-Type", response.contentType);
    if (!response.etag.empty()) headers.emplace_back("ETag", '"' + response.etag + '"');
    if (!response.location.empty()) headers.emplace_back("Location", response.location);
    if (!response.allow.empty()) headers.emplace_back("Allow", response.allow);
    if (response.retryAfter != 0) {
      headers.emplace_back("Retry-After", std::to_string(response.retryAfter));
    }
    return headers;
  }

  void SetResponse(SoupServerMessage* message, WebResponse response,
                   const WebRequest& request) const {
    FillErrorPage(response);
    if (response.status == 200 && !response.etag.empty() && request.method != "POST" &&
        matchesEtag(request.header("if-none-match"), response.etag)) {
      response.status = 304;
      response.body.clear();
      response.sharedBody.reset();
      response.contentType.clear();
    }
    soup_server_message_set_status(message, static_cast<guint>(response.status),
                                   phraseOf(response.status).c_str());
    SetContent(message, std::move(response));
  }

  static void SetContent(SoupServerMessage* message, WebResponse response) {
    SoupMessageHeaders* const headers = soup_server_message_get_response_headers(message);
    soup_message_headers_remove(headers, "Content-Type");
    for (const auto& [name, value] : HeadersOf(response)) {
      soup_message_headers_replace(headers, name.c_str(), value.c_str());
    }
    SoupMessageBody* const body = soup_server_message_get_response_body(message);
    soup_message_body_truncate(body);
    if (response.status == 304 || response.status == 204) {
      soup_message_headers_set_encoding(headers, SOUP_ENCODING_NONE);
      return;
    }
    auto* const shared = new std::shared_ptr<const std::string>(
        response.sharedBody ? std::move(response.sharedBody)
                            : std::make_shared<const std::string>(std::move(response.body)));
    GBytes* const bytes = g_bytes_new_with_free_func(
        (*shared)->data(), (*shared)->size(),
        [](gpointer held) { delete static_cast<std::shared_ptr<const std::string>*>(held); },
        shared);
    soup_message_body_append_bytes(body, bytes);
    g_bytes_unref(bytes);
    // For the answer to a HEAD too.
    soup_message_headers_set_content_length(headers, static_cast<goffset>(body->length));
  }

  static std::string HeadText(int status, Headers headers) {
    GDateTime* const now = g_date_time_new_now_utc();
    char* const date = soup_date_time_to_string(now, SOUP_DATE_HTTP);
    headers.emplace_back("Date", date);
    g_free(date);
    g_date_time_unref(now);
    headers.emplace_back("Connection", "close");
    std::string text = "HTTP/1.1 " + std::to_string(status) + ' ' + phraseOf(status) + "\r\n";
    for (const auto& [name, value] : headers) text += name + ": " + value + "\r\n";
    return text + "\r\n";
  }

  /// From now on the server alone speaks.
  void TakeOver(SoupServerMessage* message, Connection& connection) {
    // Whoever holds the message finds it answered.
    soup_server_message_set_status(message, 500, nullptr);
    GSocket* const socket = g_socket_connection_get_socket(connection.stream);
    Owned<GIOStream> stream(soup_server_message_steal_connection(message));
    connection.outgoing = std::make_unique<OutgoingConnection>(
        std::move(stream), socket, [this, &connection] { Drop(connection); });
  }

  void Refuse(SoupServerMessage* message, Connection& connection, WebResponse response) {
    FillErrorPage(response);
    Headers headers = HeadersOf(response);
    headers.emplace_back("Content-Length", std::to_string(response.body.size()));
    std::string text = HeadText(response.status, std::move(headers));
    if (connection.request.method != "HEAD") text += response.body;
    connection.request = {};
    connection.state = State::refused;
    connection.deadline = After(kFarewell);
    SendLast(message, connection, std::move(text));
  }

  void SendLast(SoupServerMessage* message, Connection& connection, std::string text) {
    TakeOver(message, connection);
    if (connection.outgoing->Send(std::make_shared<const std::string>(std::move(text)))) {
      connection.outgoing->Finish();
    } else {
      Drop(connection);
    }
  }

  void OpenStream(SoupServerMessage* message, Connection& connection) {
    WebResponse response;
    response.contentType = "text/event-stream";
    std::string text = HeadText(200, HeadersOf(response));
    const bool isHead = connection.request.method == "HEAD";
    connection.request = {};
    if (isHead) {
      connection.state = State::refused;
      connection.deadline = After(kFarewell);
      return SendLast(message, connection, std::move(text));
    }
    text += "retry: " + std::to_string(options_.retry.count()) + "\n\n";
    TakeOver(message, connection);
    connection.state = State::stream;
    connection.deadline.reset();
    ++streamCount_;
    g_socket_set_option(g_socket_connection_get_socket(connection.stream), SOL_SOCKET, SO_SNDBUF,
                        kStreamBuffer, nullptr);
    if (!connection.outgoing->Send(std::make_shared<const std::string>(std::move(text)))) {
      Drop(connection);
    }
  }

  void SendToStreams(const OutgoingConnection::Text& text) {
    std::vector<Connection*> lost;
    for (const auto& [stream, connection] : connections_) {
      if (connection->state != State::stream) continue;
      OutgoingConnection& outgoing = *connection->outgoing;
      if (outgoing.backlog() > options_.maxBacklog || !outgoing.Send(text)) {
        lost.push_back(connection.get());
      }
    }
    for (Connection* connection : lost) Drop(*connection);
  }

  WebServerOptions options_;
  Handler handler_;
  std::uint16_t port_ = 0;
  /// The answer to what is no request, in readiness.
  WebResponse unreadable_;
  std::vector<Listener> listeners_;
  Owned<SoupServer> server_;
  std::unordered_map<GSocketConnection*, std::unique_ptr<Connection>> connections_;
  std::size_t streamCount_ = 0;
  std::uint64_t lastEvent_ = 0;
  Watch tick_;
  Watch heartbeat_;
};

WebServer::WebServer(const WebServerOptions& options, Handler handler)
    : impl_(std::make_unique<Impl>(options, std::move(handler))) {}
WebServer::~WebServer() = default;

std::uint16_t WebServer::port() const { return impl_->port(); }
std::string WebServer::url() const { return impl_->url(); }
std::size_t WebServer::streamCount() const { return impl_->streamCount(); }
std::size_t WebServer::connectionCount() const { return impl_->connectionCount(); }
void WebServer::publish(const std::string& event, const std::string& data) {
  impl_->Publish(event, data);
}
void WebServer::stop() { impl_->Stop(); }

}  // namespace lumenquest::host
