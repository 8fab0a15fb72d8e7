#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/home_screen_file.h"
#include "host/scheduler.h"
#include "host/web_request.h"
#include "widgets/intents/intent_handler.h"

namespace lumenquest::host {

/// The site's interface for its scripts: JSON in, JSON out. What is wrong with a request is said in
/// one line, {"error": ...}, with the status 400, and has changed nothing.
///
///     GET  /api/home         the widgets shown; with "error" while the file cannot be read
///     GET  /api/places?q=TEXT
///     POST /api/home/add     {"kind", "family", "theme", "place", "id", "position"}, all but kind
///                            may be left out
///     POST /api/home/remove  {"id"}
///     POST /api/home/move    {"id", "position"}, counted from 0
///     POST /api/home/set     {"id"} and what is to change: "family", "theme", "place"
///
/// A place is {"name", "latitude", "longitude"}, or null for wherever the device is. One that was
/// searched for may have a "detail", which tells it from others of its name. A search for places
/// that takes its time is answered 202: ask again.
class HomeApi {
 public:
  /// Called with the home screen as it stands after each change.
  using Changed = std::function<void(const HomeScreen& screen)>;

  HomeApi(const Scheduler& scheduler, HomeScreenFile& file, Changed changed)
      : scheduler_(scheduler), file_(file), changed_(std::move(changed)) {}

  /// REQUIRES: the path begins with "/api/".
  WebResponse answer(const WebRequest& request);

 private:
  struct Search {
    std::string term;
    /// Absent: not answered yet.
    std::optional<widgets::LocationOptionsCollection> places;
  };

  WebResponse Places(const std::string& term);
  WebResponse Change(const std::string& operation, const std::string& body);

  const Scheduler& scheduler_;
  HomeScreenFile& file_;
  Changed changed_;
  /// The last ones; shared with their answers, which may come when nobody is here any more.
  std::vector<std::shared_ptr<Search>> searches_;
};

}  // namespace lumenquest::host
