// Opens streams of events, asks for pages beside them at a steady rate, and prints how long answers
// and events take:
//   web_server_load [STREAMS [REQUESTS_PER_SECOND [SECONDS [PORT [PATH]]]]]
// Without a port it is the client of a server in its own process, whose memory it prints too; with
// one, of whatever listens there on this machine. Exits with 1 when anything fails or is refused.

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "running_web_server.h"
#include "test_services.h"
#include "web_client.h"

namespace {

using lumenquest::host::WebRequest;
using lumenquest::host::WebResponse;
using lumenquest::testing::RunningWebServer;
using lumenquest::testing::WebClient;
using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

double ResidentMib() {
  std::ifstream file("/proc/self/statm");
  long pages = 0;
  file >> pages >> pages;
  return static_cast<double>(pages * sysconf(_SC_PAGESIZE)) / (1 << 20);
}

void Print(const char* what, std::vector<double> times) {
  if (times.empty()) return;
  std::sort(times.begin(), times.end());
  const auto quantile = [&](double part) {
    return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
  };
  std::printf("%-10s %7zu   median %7.2f ms   99 %% %7.2f ms   longest %7.2f ms\n", what,
              times.size(), quantile(0.5), quantile(0.99), times.back());
}

/// What a page's picture weighs.
WebResponse Picture(const WebRequest&) {
  static const auto pixels = std::make_shared<const std::string>(60'000, 'p');
  WebResponse response;
  response.contentType = "image/png";
  response.sharedBody = pixels;
  return response;
}

}  // namespace

int main(int argc, char** argv) {
  const auto number = [&](int index, int standard) {
    return argc > index ? std::atoi(argv[index]) : standard;
  };
  const int streamCount = number(1, 1000);
  const int rate = std::max(number(2, 400), 1);
  const int seconds = std::max(number(3, 5), 1);
  const std::string path = argc > 5 ? argv[5] : "/";
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = files.rlim_max;
  setrlimit(RLIMIT_NOFILE, &files);

  const lumenquest::testing::TestServices services("2026-06-20T22:00:00Z");
  std::optional<RunningWebServer> own;
  if (argc <= 4) own.emplace(lumenquest::host::WebServerOptions{}, Picture);
  const auto port = own ? own->port() : static_cast<std::uint16_t>(number(4, 0));
  const std::string tail = " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n\r\n";
  int failures = 0;

  const auto begin = Clock::now();
  std::vector<WebClient> streams;
  for (int i = 0; i < streamCount; ++i) {
    streams.emplace_back(port);
    streams.back().Send("GET /events" + tail);
  }
  for (WebClient& stream : streams) {
    if (stream.WaitFor("retry:").find(" 200 ") == std::string::npos) ++failures;
  }
  std::printf("%d streams open after %.0f ms\n", streamCount, Milliseconds(Clock::now() - begin));

  std::vector<double> answers;
  std::vector<double> events;
  const int requests = rate * seconds;
  const double residentBefore = ResidentMib();
  const auto start = Clock::now();
  for (int i = 0; i < requests; ++i) {
    // Measured from when it was due: a client that waits its turn waits for the server too.
    const auto due = start + std::chrono::microseconds(1'000'000LL * i / rate);
    std::this_thread::sleep_until(due);
    WebClient client(port);
    if (client.Ask("GET " + path + tail).status != 200) ++failures;
    answers.push_back(Milliseconds(Clock::now() - due));
    if (own && i % rate == rate / 2) {
      const std::string data = "event " + std::to_string(i);
      const auto sent = Clock::now();
      own->Publish("widget", data);
      for (WebClient& stream : streams) {
        if (stream.WaitFor(data).find(data) == std::string::npos) ++failures;
      }
      events.push_back(Milliseconds(Clock::now() - sent));
    }
  }
  const double elapsed = Milliseconds(Clock::now() - start) / 1000.0;
  Print("answers", answers);
  Print("events", events);
  std::printf("%.0f requests/s asked for, %.0f/s answered, %d failed\n", static_cast<double>(rate),
              requests / elapsed, failures);
  if (own) {
    std::printf("resident memory %.1f MiB before, %.1f MiB after, client included\n",
                residentBefore, ResidentMib());
  }
  return failures == 0 ? 0 : 1;
}
