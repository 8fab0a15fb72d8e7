#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

namespace lumenquest::testing {

/// A client that sends any bytes at all and says what came back.
class WebClient {
 public:
  explicit WebClient(std::uint16_t port, int receiveBuffer = 0)
      : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    if (receiveBuffer != 0) {
      ::setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    isConnected_ =
        ::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  ~WebClient() { Close(); }
  WebClient(WebClient&& other) noexcept
      : socket_(std::exchange(other.socket_, -1)),
        isConnected_(other.isConnected_),
        isAtEnd_(other.isAtEnd_),
        received_(std::move(other.received_)) {}
  WebClient(const WebClient&) = delete;
  WebClient& operator=(const WebClient&) = delete;

  bool isConnected() const { return isConnected_; }
  int socket() const { return socket_; }
  void Close() {
    if (socket_ >= 0) ::close(std::exchange(socket_, -1));
  }

  /// False: the other end takes no more.
  bool Send(std::string_view text) {
    while (!text.empty()) {
      const ssize_t count = ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
      if (count <= 0) return false;
      text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }

  /// What has come and was not taken, once it holds the text; all that came, when the connection
  /// ends or the time is over first.
  const std::string& WaitFor(std::string_view text,
                             std::chrono::milliseconds time = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (received_.find(text) == std::string::npos && ReadMore(end)) {
    }
    return received_;
  }
  bool WaitForEnd(std::chrono::milliseconds time = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (ReadMore(end)) {
    }
    return isAtEnd_;
  }

  struct Response {
    /// 0: the connection ended without an answer.
    int status = 0;
    std::string head{};
    std::string body{};
    /// The header's value, or the empty text.
    std::string header(const std::string& name) const {
      const std::size_t begin = head.find("\r\n" + name + ": ");
      if (begin == std::string::npos) return {};
      const std::size_t value = begin + name.size() + 4;
      return head.substr(value, head.find("\r\n", value) - value);
    }
  };
  /// The next answer. `hasBody`: it is none to a HEAD.
  Response Read(bool hasBody = true) {
    Response response;
    WaitFor("\r\n\r\n");
    const std::size_t head = received_.find("\r\n\r\n");
    if (head == std::string::npos) return response;
    response.head = received_.substr(0, head + 2);
    received_.erase(0, head + 4);
    response.status = std::atoi(response.head.c_str() + response.head.find(' '));
    if (!hasBody || response.status == 304) return response;
    const auto length =
        static_cast<std::size_t>(std::atoi(response.header("Content-Length").c_str()));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (received_.size() < length && ReadMore(end)) {
    }
    response.body = received_.substr(0, length);
    received_.erase(0, length);
    return response;
  }
  Response Ask(std::string_view request) {
    Send(request);
    return Read(!request.starts_with("HEAD"));
  }

 private:
  bool ReadMore(std::chrono::steady_clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    pollfd poll{socket_, POLLIN, 0};
    if (isAtEnd_ || left.count() <= 0 || ::poll(&poll, 1, static_cast<int>(left.count())) <= 0) {
      return false;
    }
    char bytes[16384];
    const ssize_t count = ::recv(socket_, bytes, sizeof bytes, 0);
    isAtEnd_ = count <= 0;
    if (count > 0) received_.append(bytes, static_cast<std::size_t>(count));
    return count > 0;
  }

  int socket_;
  bool isConnected_ = false;
  bool isAtEnd_ = false;
  std::string received_;
};

}  // namespace lumenquest::testing
