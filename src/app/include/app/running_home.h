#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "adapters/held_file.h"
#include "app/option_values.h"

namespace lumenquest::app {

/// Tells other processes of this user where a host listens, as long as it does.
class HomeAnnouncement {
 public:
  HomeAnnouncement(std::uint16_t port, const std::string& url);

 private:
  std::optional<adapters::HeldFile> file_;
};

/// The page of the running host to which a deep link leads; nothing given: its home screen. Where
/// none is running the user's service is started, which takes seconds. Throws UsageError for what
/// is no deep link, std::runtime_error when no host is running then either.
std::string runningPage(const OptionText& deepLink);

}  // namespace lumenquest::app
