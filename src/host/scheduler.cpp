#include "host/scheduler.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <utility>

#include "host/entry_json.h"
#include "platform/localized_strings.h"
#include "platform/services.h"

namespace lumenquest::host {

namespace {

using Json = nlohmann::json;
using platform::NSDate;

/// How long a provider may take. The location services answer or give up within half a minute.
constexpr double kPatienceSeconds = 120.0;
/// After an answer that never came.
constexpr double kRetrySeconds = 300.0;
/// A reload instant that is over already, because the answer took long or the clock went on, is no
/// reason to ask without a pause.
constexpr double kLeastPauseSeconds = 1.0;
constexpr double kMostPauseSeconds = 30.0 * 60.0;

NSDate Later(NSDate date, double seconds) {
  return NSDate(date.timeIntervalSinceReferenceDate() + seconds);
}

/// A widget alone, as its home screen writes it: told apart by all that configures it.
std::string Described(const PlacedWidget& widget) {
  HomeScreen screen;
  screen.add(widget);
  return screen.toJson();
}

AnyEntry Placeholder(WidgetSource& source, const PlacedWidget& widget) {
  AnyEntry entry;
  source.ask(HostRequest::placeholder, widget,
             [&](WidgetAnswer answer) { entry = std::move(answer.entry); });
  return entry;
}

/// The entries of an earlier process by widget; none when the text is none of ours.
std::vector<std::pair<std::string, AnyEntry>> Remembered(const std::string& text,
                                                         const std::string& locale) try {
  std::vector<std::pair<std::string, AnyEntry>> entries;
  const Json json = Json::parse(text);
  if (json.at("locale") != locale) return {};
  for (const Json& one : json.at("entries")) {
    if (const auto entry = entryFromJson(one.at("entry").get<std::string>())) {
      entries.emplace_back(one.at("widget").get<std::string>(), *entry);
    }
  }
  return entries;
} catch (const Json::exception&) {
  return {};
}

}  // namespace

NSDate reloadDateOf(const widgets::TimelineReloadPolicy& policy, NSDate now) {
  if (policy.date) return std::max(*policy.date, Later(now, kLeastPauseSeconds));
  const NSDate midnight = NSDate::dateWithStartDateTime(now.dateByAddingNumberOfDays(1));
  return std::clamp(midnight, Later(now, kLeastPauseSeconds), Later(now, kMostPauseSeconds));
}

Scheduler::Scheduler(Options options) : options_(std::move(options)) {
  // So that a page of an earlier process does not take our entries for those it has. 52 bits, which
  // scripts hold whole.
  lastNumber_ = static_cast<std::uint64_t>(std::random_device{}()) << 20u;
  options_.alarm->onRing([this, isHere = std::weak_ptr(isHere_)](platform::Alarm::Reason reason) {
    if (!isHere.expired()) Ring(reason);
  });
}

Scheduler::~Scheduler() {
  if (isMemoryDue_) WriteMemory();
}

void Scheduler::onEntry(EntryListener listener) { onEntry_ = std::move(listener); }

void Scheduler::show(const HomeScreen& screen) {
  std::vector<std::pair<std::string, AnyEntry>> remembered;
  if (!std::exchange(isMemoryRead_, true) && options_.memory) {
    const auto text = options_.memory->contents();
    if (text.value) remembered = Remembered(*text.value, options_.locale);
  }
  std::vector<ShownWidget> shown;
  std::vector<Request> requests;
  std::vector<std::size_t> unasked;
  for (const PlacedWidget& widget : screen.widgets()) {
    const auto old = std::find_if(shown_.begin(), shown_.end(),
                                  [&](const ShownWidget& one) { return one.widget == widget; });
    if (old != shown_.end()) {
      requests.push_back(std::move(requests_[static_cast<std::size_t>(old - shown_.begin())]));
      shown.push_back(std::move(*old));
      // Found once: what is left of it would be equal to itself.
      old->widget.id.clear();
      continue;
    }
    unasked.push_back(shown.size());
    requests.push_back({WidgetSource::ofKind(widget.kind), ++lastNumber_});
    ShownWidget fresh{widget, {}, true, lastNumber_, {}};
    const auto kept = std::find_if(remembered.begin(), remembered.end(),
                                   [&](const auto& one) { return one.first == Described(widget); });
    if (kept != remembered.end()) {
      fresh.entry = kept->second;
      fresh.isPlaceholder = false;
    } else {
      fresh.entry = Placeholder(*requests.back().source, widget);
    }
    shown.push_back(std::move(fresh));
  }
  shown_ = std::move(shown);
  requests_ = std::move(requests);
  for (const std::size_t index : unasked) Ask(index);
  Remember();
  SetAlarm();
}

bool Scheduler::isShowing(const HomeScreen& screen) const {
  return std::equal(
      shown_.begin(), shown_.end(), screen.widgets().begin(), screen.widgets().end(),
      [](const ShownWidget& one, const PlacedWidget& widget) { return one.widget == widget; });
}

void Scheduler::reload(const std::function<bool(const PlacedWidget& widget)>& isMeant) {
  for (std::size_t i = 0; i < shown_.size(); ++i) {
    if (isMeant(shown_[i].widget)) Ask(i);
  }
  SetAlarm();
}

void Scheduler::reloadAll() {
  reload([](const PlacedWidget&) { return true; });
}

void Scheduler::restart() {
  for (std::size_t i = 0; i < shown_.size(); ++i) {
    requests_[i].source = WidgetSource::ofKind(shown_[i].widget.kind);
  }
  reloadAll();
}

const ShownWidget* Scheduler::find(const std::string& id) const {
  const auto found = std::find_if(shown_.begin(), shown_.end(),
                                  [&](const ShownWidget& one) { return one.widget.id == id; });
  return found == shown_.end() ? nullptr : &*found;
}

void Scheduler::Ask(std::size_t index) {
  Request& request = requests_[index];
  ShownWidget& shown = shown_[index];
  request.number = ++lastNumber_;
  request.isWaiting = true;
  shown.reloadDate = Later(NSDate::date(), kPatienceSeconds);
  request.source->ask(
      HostRequest::timeline, shown.widget,
      [this, isHere = std::weak_ptr(isHere_), number = request.number](WidgetAnswer answer) {
        if (!isHere.expired()) Take(number, std::move(answer));
      });
}

void Scheduler::Take(std::uint64_t number, WidgetAnswer answer) {
  const auto found = std::find_if(requests_.begin(), requests_.end(),
                                  [&](const Request& one) { return one.number == number; });
  if (found == requests_.end() || !found->isWaiting) return;
  found->isWaiting = false;
  ShownWidget& shown = shown_[static_cast<std::size_t>(found - requests_.begin())];
  shown.entry = std::move(answer.entry);
  shown.isPlaceholder = false;
  shown.version = number;
  const NSDate now = NSDate::date();
  shown.reloadDate = reloadDateOf(*answer.reloadPolicy, now);
  // A time that is "tomorrow" until midnight is today's after it, wherever the widget's midnight
  // is.
  const auto midnight = endOfDayShown(shown.entry);
  if (midnight && *midnight > now) shown.reloadDate = std::min(shown.reloadDate, *midnight);
  onEntry_(shown);
  Remember();
  SetAlarm();
}

void Scheduler::Ring(platform::Alarm::Reason reason) {
  if (reason == platform::Alarm::Reason::clockChanged) {
    reloadAll();
    return;
  }
  const NSDate now = NSDate::date();
  for (std::size_t i = 0; i < shown_.size(); ++i) {
    if (shown_[i].reloadDate > now) continue;
    if (requests_[i].isWaiting) {
      // Whoever never answered may hold things that will never answer.
      requests_[i] = {WidgetSource::ofKind(shown_[i].widget.kind), ++lastNumber_};
      shown_[i].reloadDate = Later(now, kRetrySeconds);
    } else {
      Ask(i);
    }
  }
  SetAlarm();
}

void Scheduler::SetAlarm() {
  const auto next = std::min_element(
      shown_.begin(), shown_.end(),
      [](const ShownWidget& a, const ShownWidget& b) { return a.reloadDate < b.reloadDate; });
  if (next != shown_.end()) options_.alarm->set(next->reloadDate);
}

void Scheduler::Remember() {
  if (!options_.memory || std::exchange(isMemoryDue_, true)) return;
  // Later, so that entries that come together are written together.
  platform::Services::current().mainQueue().async([this, isHere = std::weak_ptr(isHere_)] {
    if (!isHere.expired() && isMemoryDue_) WriteMemory();
  });
}

void Scheduler::WriteMemory() {
  isMemoryDue_ = false;
  Json entries = Json::array();
  for (const ShownWidget& shown : shown_) {
    if (shown.isPlaceholder) continue;
    entries.push_back({{"widget", Described(shown.widget)}, {"entry", entryToJson(shown.entry)}});
  }
  const std::string text = Json{{"locale", options_.locale}, {"entries", std::move(entries)}}.dump(
      1, ' ', false, Json::error_handler_t::replace);
  const auto error = options_.memory->update([&](const auto&) { return text; });
  // Once, not at every entry of a full disk.
  if (error && std::exchange(couldRemember_, false)) {
    platform::Services::current().log().write(error->description());
  }
  if (!error) couldRemember_ = true;
}

}  // namespace lumenquest::host
