#include "app/plans_command.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "adapters/clocks.h"
#include "adapters/files.h"
#include "adapters/glib_main_queue.h"
#include "adapters/icalendar.h"
#include "adapters/printable_text.h"
#include "adapters/rfc3339.h"
#include "app/places_command.h"
#include "app/runtime.h"
#include "app/table.h"
#include "platform/database.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"
#include "platform/ns_string.h"
#include "platform/planning.h"

namespace lumenquest::app {

namespace {

using Json = nlohmann::ordered_json;
using adapters::CalendarEvent;
using adapters::printableText;
using platform::CLLocationCoordinate2D;
using platform::NSDate;
using platform::NSManagedObjectContext;
using platform::NSTimeZone;
using platform::Planning;
using platform::stringWithFormat;
using Plans = std::vector<std::shared_ptr<Planning>>;

struct PlansOptions {
  OptionText name;
  OptionText date;
  PlaceOptions place;
  bool all = false;
  std::vector<std::string> identifiers;
  OptionText file;
  OptionText at;
  OptionText locale;
  OptionText format;
};

/// How much of a plan's identifier is shown, and the least of it that names a plan.
constexpr std::size_t kShownIdentifier = 8;
constexpr std::size_t kLeastIdentifier = 4;

/// Keeps what the database has to say about a store that cannot be opened.
class StoreErrors final : public platform::DatabaseDelegate {
 public:
  void databasePersistentStoreCoordinatorDidGetError(const std::string& message,
                                                     const std::string&) override {
    text = message;
  }
  std::string text;
};

/// The plans' context, its store open; throws with what is wrong when it cannot be.
NSManagedObjectContext& OpenPlans() {
  platform::Database& database = platform::Database::sharedInstance();
  const auto errors = std::make_shared<StoreErrors>();
  database.setDelegate(errors);
  const auto context = database.managedObjectContext();
  if (!context->persistentStoreCoordinator()->persistentStore()) {
    throw std::runtime_error(errors->text);
  }
  return *context;
}

/// The same as the application opens it, with what an older version left to be done.
NSManagedObjectContext& OpenPlansForChanges(const std::string& locale) {
  installServices({locale, nullptr, StoreRole::owner});
  NSManagedObjectContext& context = OpenPlans();
  // Each time, as the one after the migration may have been cut short.
  platform::Database::sharedInstance().performUpdatesFrom3To4();
  return context;
}

[[noreturn]] void ThrowNotWritten(const platform::NSError& error) {
  throw std::runtime_error(
      stringWithFormat(appText("error_plans_write"), {error.localizedDescription()}));
}

void Save(NSManagedObjectContext& context) {
  if (const auto error = context.save()) ThrowNotWritten(*error);
}

Plans Fetch(NSManagedObjectContext& context, std::optional<platform::NSPredicate> predicate) {
  platform::NSFetchRequest request{platform::kEntityPlanning, std::move(predicate),
                                   platform::kAttributeDate};
  const auto fetched = context.executeFetchRequest(request);
  if (fetched.error) throw std::runtime_error(fetched.error->localizedDescription());
  Plans plans;
  for (const auto& object : fetched.value) {
    plans.push_back(std::static_pointer_cast<Planning>(object));
  }
  return plans;
}

std::optional<NSTimeZone> ZoneOf(const Planning& plan) {
  const auto name = plan.timezone();
  return name ? NSTimeZone::timeZoneWithName(*name) : std::nullopt;
}

std::optional<CLLocationCoordinate2D> CoordinateOf(const Planning& plan) {
  if (!plan.latitude() || !plan.longitude()) return std::nullopt;
  return CLLocationCoordinate2D{*plan.latitude(), *plan.longitude()};
}

/// A moment: a timestamp with its offset, or a local date and time, "2027-03-01 20:00", which has
/// to exist in the zone.
NSDate ParsePlanDate(const OptionText& given, const NSTimeZone& zone) {
  if (!given) {
    throw UsageError(
        stringWithFormat(appText("error_missing_option"), {"--date", appText("expect_plan_date")}));
  }
  std::optional<NSDate> date = adapters::parseRfc3339(*given);
  if (!date) {
    std::string text = *given;
    if (text.size() > 10 && text[10] == ' ') text[10] = 'T';
    if (text.size() == 16) text += ":00";
    // Read as if in UTC, for its fields.
    const auto fields = adapters::parseRfc3339(text + "Z");
    if (!fields) throwBadOption("--date", *given, "expect_plan_date");
    platform::CalendarService& calendars = platform::Services::current().calendars();
    const auto local = calendars.gregorianCalendar(zone);
    const auto utc = calendars.gregorianCalendar(NSTimeZone::gmt());
    const platform::NSDateComponents components = utc->componentsFromDate(*fields);
    date = local->dateFromComponents(components);
    const platform::NSDateComponents back = local->componentsFromDate(*date);
    if (back.hour != components.hour || back.minute != components.minute ||
        back.day != components.day) {
      throw UsageError(
          stringWithFormat(appText("error_plan_date_skipped"), {printableText(*given), zone.name}));
    }
  }
  if (!adapters::isCalendarDate(*date)) throwBadOption("--date", *given, "expect_plan_date");
  return *date;
}

std::string DateText(const Planning& plan) {
  if (!plan.date()) return "--";
  platform::NSDateFormatter& formatter =
      platform::Formatters::sharedInstance().shortDateTimeFormatter();
  formatter.setTimeZone(ZoneOf(plan).value_or(NSTimeZone::localTimeZone()));
  return formatter.stringFromDate(*plan.date());
}

Json ToJson(const Planning& plan) {
  const auto value = [](const auto& optional) {
    return optional ? Json(*optional) : Json(nullptr);
  };
  return {{"uniqueIdentifier", value(plan.uniqueIdentifier())},
          {"name", value(plan.name())},
          {"date", plan.date() ? Json(adapters::formatRfc3339(*plan.date())) : Json(nullptr)},
          {"timezone", value(plan.timezone())},
          {"latitude", value(plan.latitude())},
          {"longitude", value(plan.longitude())}};
}

std::vector<std::string> ToRow(const Planning& plan) {
  const auto coordinate = CoordinateOf(plan);
  return {printableText(plan.uniqueIdentifier().value_or("").substr(0, kShownIdentifier)),
          DateText(plan), printableText(plan.timezone().value_or("--")),
          printableText(plan.name().value_or(""), 60),
          coordinate ? platform::LocationUtils::latLonStringWithCoordinate(*coordinate) : "--"};
}

std::string Show(const Plans& plans, const PlansOptions& options) {
  if (parseFormat(options.format) == OutputFormat::json) {
    Json list = Json::array();
    for (const auto& plan : plans) list.push_back(ToJson(*plan));
    // Broken UTF-8 in a store that others write to is shown, not fatal.
    return list.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  }
  if (plans.empty()) {
    return platform::localizedString("plan_no_scheduled", platform::kTableCommon) + "\n";
  }
  Table table;
  for (const auto& plan : plans) table.Row(ToRow(*plan));
  return table.Text();
}

std::string AddPlan(const PlansOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  // Blanks around it no calendar file would keep.
  const std::string name = platform::stringByTrimmingWhitespace(options.name.value_or(""));
  if (name.empty()) {
    throw UsageError(
        stringWithFormat(appText("error_missing_option"), {"NAME", appText("expect_plan_name")}));
  }
  if (!adapters::isText(name)) throwBadOption("NAME", name, "expect_plan_name");
  parseFormat(options.format);
  const ChosenPlace place = choosePlace(options.place, locale);
  const NSDate date = ParsePlanDate(options.date, place.timeZone);

  NSManagedObjectContext& context = OpenPlansForChanges(locale);
  const auto plan = std::static_pointer_cast<Planning>(
      context.insertNewObjectForEntityForName(platform::kEntityPlanning));
  plan->setValue(name, platform::kAttributeName);
  plan->setValue(date, platform::kAttributeDate);
  plan->setValue(place.timeZone.name, platform::kAttributeTimezone);
  plan->setValue(place.location.coordinate.latitude, platform::kAttributeLatitude);
  plan->setValue(place.location.coordinate.longitude, platform::kAttributeLongitude);
  Save(context);
  return Show({plan}, options);
}

std::string ListPlans(const PlansOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  const NSDate now = parseInstant(options.at);
  parseFormat(options.format);
  installServices({locale, std::make_shared<adapters::FixedClock>(now)});
  NSManagedObjectContext& context = OpenPlans();
  std::optional<platform::NSPredicate> fromToday;
  if (!options.all) {
    fromToday = platform::NSPredicate::greaterThanOrEqual(platform::kAttributeDate,
                                                          NSDate::dateWithStartDateTime(now));
  }
  return Show(Fetch(context, std::move(fromToday)), options);
}

/// The plan that a beginning of its identifier names.
std::shared_ptr<Planning> PlanCalled(const std::string& given, const Plans& plans) {
  const auto upper = [](std::string text) {
    for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
  };
  const std::string prefix = upper(given);
  Plans found;
  for (const auto& plan : plans) {
    const std::string identifier = plan->uniqueIdentifier().value_or("");
    if (identifier == given) return plan;
    if (prefix.size() >= kLeastIdentifier && upper(identifier).starts_with(prefix)) {
      found.push_back(plan);
    }
  }
  if (found.size() == 1) return found.front();
  if (found.empty()) {
    throw UsageError(stringWithFormat(appText("error_unknown_plan"), {printableText(given)}));
  }
  std::string candidates;
  for (const auto& plan : found) {
    if (!candidates.empty()) candidates += "; ";
    candidates += printableText(*plan->uniqueIdentifier()) + " " +
                  printableText(plan->name().value_or("")) + ", " + DateText(*plan);
  }
  throw UsageError(
      stringWithFormat(appText("error_ambiguous_plan"), {printableText(given), candidates}));
}

std::vector<Suggestion> SuggestPlans(const std::string&) {
  std::vector<Suggestion> suggestions;
  for (const auto& plan : Fetch(OpenPlans(), std::nullopt)) {
    suggestions.push_back({plan->uniqueIdentifier().value_or("").substr(0, kShownIdentifier),
                           plan->name().value_or("")});
  }
  return suggestions;
}

std::string RemovePlans(const PlansOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  if (options.identifiers.empty()) {
    throw UsageError(stringWithFormat(appText("error_missing_option"),
                                      {"ID", appText("expect_plan_identifier")}));
  }
  parseFormat(options.format);
  NSManagedObjectContext& context = OpenPlansForChanges(locale);
  const Plans plans = Fetch(context, std::nullopt);
  Plans removed;
  for (const std::string& identifier : options.identifiers) {
    const auto plan = PlanCalled(identifier, plans);
    if (std::find(removed.begin(), removed.end(), plan) == removed.end()) removed.push_back(plan);
  }
  for (const auto& plan : removed) context.deleteObject(plan);
  Save(context);
  return Show(removed, options);
}

std::string ReadInput(const OptionText& file) {
  if (!file) {
    throw UsageError(stringWithFormat(appText("error_missing_option"),
                                      {"FILE", appText("expect_calendar_file")}));
  }
  // A device has no end; a calendar of a hundred thousand plans has 30 MB.
  constexpr std::size_t kLargest = 256 * 1024 * 1024;
  std::string text;
  const auto isRead = [&](std::istream& stream) {
    std::array<char, 64 * 1024> part;
    while (text.size() <= kLargest &&
           (stream.read(part.data(), part.size()), stream.gcount() > 0)) {
      text.append(part.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (text.size() > kLargest) errno = EFBIG;
    return stream.eof();
  };
  errno = 0;
  std::ifstream stream;
  if (*file != "-") stream.open(*file, std::ios::binary);
  if (*file == "-" ? isRead(std::cin) : stream && isRead(stream)) return text;
  throw std::runtime_error(
      stringWithFormat(appText("error_file_read"),
                       {printableText(*file, 200), std::generic_category().message(errno)}));
}

/// Sets what differs; whether anything did.
bool Update(Planning& plan, const CalendarEvent& event, const NSTimeZone& zone) {
  bool changed = false;
  const auto set = [&](const auto& old, const auto& value, const char* key) {
    if (!value || old == value) return;
    plan.setValue(*value, key);
    changed = true;
  };
  set(plan.name(), event.name, platform::kAttributeName);
  // The format has whole seconds only: a plan on a part of one has not moved.
  if (event.start && (!plan.date() || std::floor(plan.date()->timeIntervalSince1970()) !=
                                          event.start->timeIntervalSince1970())) {
    set(plan.date(), event.start, platform::kAttributeDate);
  }
  set(plan.timezone(), std::optional(zone.name), platform::kAttributeTimezone);
  if (event.coordinate) {
    set(plan.latitude(), std::optional(event.coordinate->latitude), platform::kAttributeLatitude);
    set(plan.longitude(), std::optional(event.coordinate->longitude),
        platform::kAttributeLongitude);
  }
  return changed;
}

std::string ImportPlans(const PlansOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  const NSTimeZone defaultZone = parseTimeZone(options.place.timeZone);
  const auto gazetteer = openGazetteer(locale);
  // A place that is only named is looked up, as long as the name means one place.
  std::map<std::string, std::optional<CLLocationCoordinate2D>> named;
  const auto coordinateOf = [&](const CalendarEvent& event) {
    if (event.coordinate || !event.placeName || event.placeName->empty()) return event.coordinate;
    const auto [found, isNew] = named.try_emplace(*event.placeName);
    if (isNew) {
      try {
        found->second = resolvePlace(*event.placeName, locale).location->coordinate;
      } catch (const UsageError&) {
      }
    }
    return found->second;
  };
  const auto zoneOf = [&](const CalendarEvent& event) {
    const auto coordinate = coordinateOf(event);
    if (options.place.timeZone || !coordinate) return defaultZone;
    return gazetteer->timeZoneAt(*coordinate).value_or(defaultZone);
  };
  auto parsed = adapters::parseICalendar(ReadInput(options.file), zoneOf);
  if (parsed.error) {
    throw UsageError(stringWithFormat(
        appText("error_calendar"),
        {printableText(options.file.value_or(""), 200), parsed.error->localizedDescription()}));
  }

  NSManagedObjectContext& context = OpenPlansForChanges(locale);
  std::map<std::string, std::shared_ptr<Planning>> known;
  for (const auto& plan : Fetch(context, std::nullopt)) {
    if (const auto identifier = plan->uniqueIdentifier()) known[*identifier] = plan;
  }
  int added = 0, updated = 0, unchanged = 0;
  std::vector<std::string> withoutPlace;
  for (CalendarEvent& event : parsed.value.events) {
    event.coordinate = coordinateOf(event);
    if (!event.coordinate) withoutPlace.push_back(event.name.value_or(""));
    const NSTimeZone zone = event.timeZone ? *event.timeZone : zoneOf(event);
    std::shared_ptr<Planning>* const plan =
        event.identifier && !event.identifier->empty() ? &known[*event.identifier] : nullptr;
    if (plan != nullptr && *plan) {
      ++(Update(**plan, event, zone) ? updated : unchanged);
      continue;
    }
    const auto made = std::static_pointer_cast<Planning>(
        context.insertNewObjectForEntityForName(platform::kEntityPlanning));
    if (plan != nullptr) {
      made->setValue(*event.identifier, platform::kAttributeUniqueIdentifier);
      *plan = made;
    }
    Update(*made, event, zone);
    ++added;
  }

  // Calendars that give their events new identifiers at every export would fill the store. What is
  // removed is saved together with what was taken over, or nothing is.
  const std::size_t before = Fetch(context, std::nullopt).size();
  bool isDone = false;
  std::optional<platform::NSError> failure;
  platform::Database::sharedInstance().removeDuplicatesWithCompletion(
      [&](const std::optional<platform::NSError>& error) {
        failure = error;
        isDone = true;
      });
  adapters::GlibMainQueue::runUntil([&] { return isDone; });
  if (failure) ThrowNotWritten(*failure);
  // Another process may have added some meanwhile.
  const std::size_t duplicates = before - std::min(before, Fetch(context, std::nullopt).size());
  Save(context);

  const auto names = [](const std::vector<std::string>& list) {
    std::string text;
    for (const std::string& name : list) {
      if (!text.empty()) text += "; ";
      text += printableText(name, 40);
    }
    return text;
  };
  if (parseFormat(options.format) == OutputFormat::json) {
    return Json{{"added", added},
                {"updated", updated},
                {"unchanged", unchanged},
                {"duplicatesRemoved", duplicates},
                {"withoutPlace", withoutPlace},
                {"cancelled", parsed.value.cancelled},
                {"withoutStart", parsed.value.withoutStart}}
               .dump(2, ' ', false, Json::error_handler_t::replace) +
           "\n";
  }
  Table table;
  table.Row(appText("import_added"), std::to_string(added));
  table.Row(appText("import_updated"), std::to_string(updated));
  table.Row(appText("import_unchanged"), std::to_string(unchanged));
  if (duplicates > 0) table.Row(appText("import_duplicates"), std::to_string(duplicates));
  const auto list = [&](const char* key, const std::vector<std::string>& events) {
    if (!events.empty()) table.Row(appText(key), names(events));
  };
  list("import_without_place", withoutPlace);
  list("import_cancelled", parsed.value.cancelled);
  list("import_without_start", parsed.value.withoutStart);
  return table.Text();
}

std::string ExportPlans(const PlansOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  const NSDate now = parseInstant(options.at);
  installServices({locale, std::make_shared<adapters::FixedClock>(now)});
  const auto gazetteer = openGazetteer(locale);
  std::vector<CalendarEvent> events;
  std::vector<std::string> withoutDate;
  for (const auto& plan : Fetch(OpenPlans(), std::nullopt)) {
    CalendarEvent event;
    event.identifier = plan->uniqueIdentifier();
    event.name = plan->name();
    event.start = plan->date();
    event.timeZone = ZoneOf(*plan);
    event.coordinate = CoordinateOf(*plan);
    if (event.coordinate) {
      const auto places = gazetteer->reverseGeocodeLocation({*event.coordinate});
      if (!places.empty()) event.placeName = places.front().shortTitle();
    }
    if (!event.start || !adapters::isCalendarDate(*event.start)) {
      withoutDate.push_back(event.name.value_or(""));
    }
    events.push_back(std::move(event));
  }
  // A backup that silently leaves plans out would be worse than none.
  if (!withoutDate.empty()) {
    throw std::runtime_error(stringWithFormat(appText("error_export_without_date"),
                                              {printableText(withoutDate.front())}));
  }
  const std::string text = adapters::formatICalendar(events, now);
  if (!options.file || *options.file == "-") return text;
  if (const auto error = adapters::writeFileWhole(*options.file, text)) {
    throw std::runtime_error(
        stringWithFormat(appText("error_file_write"), {printableText(*options.file, 200), *error}));
  }
  return "";
}

}  // namespace

void addPlansCommands(CommandSet& commands) {
  PlansOptions& o = commands.Keep<PlansOptions>();
  const OptionSpec locale = localeOption(o.locale);
  const OptionSpec format = formatOption(o.format);
  CommandSet::Command& plans =
      commands.AddGroup("plans", {"help_usage_plans", "help_plans", "help_plans_examples"});
  commands.Add(plans, "add", {"help_usage_plans_add", "help_plans_add", "help_plans_examples"},
               {{"NAME", "", "help_plan_name", "expect_plan_name", &o.name},
                {"--date", "DATE", "help_plan_date", "expect_plan_date", &o.date},
                placeOption(o.place.place),
                latitudeOption(o.place.latitude),
                longitudeOption(o.place.longitude),
                timeZoneOption(o.place.timeZone),
                locale,
                format},
               [&o] { return AddPlan(o); });
  commands.Add(plans, "list", {"help_usage_plans_list", "help_plans_list", "help_plans_examples"},
               {{"--all", "", "help_plans_all", nullptr, &o.all}, atOption(o.at), locale, format},
               [&o] { return ListPlans(o); });
  commands.Add(
      plans, "remove", {"help_usage_plans_remove", "help_plans_remove", "help_plans_examples"},
      {{"ID", "", "help_plan_identifier", "expect_plan_identifier", &o.identifiers, SuggestPlans},
       locale,
       format},
      [&o] { return RemovePlans(o); });
  commands.Add(plans, "import",
               {"help_usage_plans_import", "help_plans_import", "help_plans_examples"},
               {{"FILE", "", "help_import_file", "expect_calendar_file", &o.file},
                timeZoneOption(o.place.timeZone),
                locale,
                format},
               [&o] { return ImportPlans(o); });
  commands.Add(
      plans, "export", {"help_usage_plans_export", "help_plans_export", "help_plans_examples"},
      {{"FILE", "", "help_export_file", "expect_calendar_file", &o.file}, atOption(o.at), locale},
      [&o] { return ExportPlans(o); });
}

}  // namespace lumenquest::app
