// The database of plans, on real stores.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <regex>
#include <set>

#include "plans_fixture.h"

namespace lumenquest::platform {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::PlansServices;
using testing::Role;
using testing::ScratchFolder;

std::vector<std::string> Names(const NSManagedObjectContext::Objects& objects) {
  std::vector<std::string> names;
  for (const auto& object : objects) names.push_back(object->stringForKey("name").value_or("-"));
  return names;
}

/// The attributes of an object of any entity; what is not set stays absent.
using Values = std::map<std::string, AttributeValue>;

std::shared_ptr<NSManagedObject> Add(const std::string& entity, const Values& values,
                                     const std::vector<std::string>& images = {}) {
  auto object =
      Database::sharedInstance().managedObjectContext()->insertNewObjectForEntityForName(entity);
  for (const auto& [key, value] : values) object->setValue(value, key);
  if (!images.empty()) object->setMembers(images, "images");
  return object;
}

NSManagedObjectContext::Objects All(const std::string& entity) {
  const auto fetched =
      Database::sharedInstance().managedObjectContext()->executeFetchRequest({entity});
  EXPECT_FALSE(fetched.error);
  return fetched.value;
}

TEST(Database, KnowsItsFolderAndTakesAModelOfSeveralVersionsFirst) {
  const ScratchFolder folder;
  const fs::path models = folder / "bundle/models";
  fs::create_directories(models);
  const PlansServices services(folder / "");
  const Database& database = Database::sharedInstance();
  EXPECT_EQ(database.applicationDocumentsDirectory(), "/private");
  for (const char* name : {"", "Lumenquest.mom", "Lumenquest.momd"}) {
    if (*name != 0) std::ofstream(models / name) << "{}";
    EXPECT_EQ(database.modelURL().filename(), name);
  }
}

TEST(Database, ANewPlanGetsAnIdentifierAndKeepsIt) {
  const ScratchFolder folder;
  const PlansServices services(folder / "group");
  const auto plan = std::dynamic_pointer_cast<Planning>(Add("Planning", {{"name", "Bled 🌌"}}));
  ASSERT_TRUE(plan);
  const std::string identifier = plan->uniqueIdentifier().value();
  EXPECT_TRUE(std::regex_match(
      identifier,
      std::regex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
      << identifier;
  const std::string temporary = plan->objectID().URIRepresentation();
  ASSERT_FALSE(Database::sharedInstance().managedObjectContext()->save());
  const std::string uri = plan->objectID().URIRepresentation();
  EXPECT_NE(uri, temporary);

  const PlansServices another(folder / "group", Role::reader);
  const auto found = All("Planning");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0]->stringForKey("uniqueIdentifier"), identifier);
  EXPECT_EQ(found[0]->objectID().URIRepresentation(), uri);
  EXPECT_EQ(found[0]->stringForKey("name"), "Bled 🌌");
}

TEST(Context, ShowsItsChangesBeforeTheyAreSaved) {
  const ScratchFolder folder;
  const PlansServices services(folder / "group");
  const auto context = Database::sharedInstance().managedObjectContext();
  for (int day = 0; day < 6; ++day) {
    Add("Planning",
        {{"name", std::string(1, static_cast<char>('a' + day))}, {"date", NSDate(86400.0 * day)}});
  }
  Add("Planning", {{"name", std::string("undated")}});
  ASSERT_FALSE(context->save());
  const NSFetchRequest four{"Planning", NSPredicate::greaterThanOrEqual("date", NSDate(86400.0)),
                            "date", 4};
  const auto first = context->executeFetchRequest(four).value;
  EXPECT_THAT(Names(first), ElementsAre("b", "c", "d", "e"));
  context->deleteObject(first[0]);
  context->deleteObject(first[0]);
  first[1]->setValue(NSDate(86400.0 * 9), "date");
  Add("Planning", {{"name", std::string("new")}, {"date", NSDate(86400.0 * 4.5)}});
  EXPECT_THAT(Names(context->executeFetchRequest(four).value), ElementsAre("d", "e", "new", "f"));
  EXPECT_THAT(Names(All("Planning")), ElementsAre("a", "c", "d", "e", "f", "undated", "new"));
  EXPECT_THAT(
      Names(context->executeFetchRequest({"Planning", NSPredicate::isAbsent("date")}).value),
      ElementsAre("undated"));
  context->reset();
  EXPECT_FALSE(context->hasChanges());
  EXPECT_THAT(Names(context->executeFetchRequest(four).value), ElementsAre("b", "c", "d", "e"));
  EXPECT_TRUE(context->executeFetchRequest({"Nothing"}).error);
  EXPECT_TRUE(context->executeFetchRequest({"Planning", std::nullopt, "nothing"}).error);

  Add("Planning", {{"latitude", std::nan("")}});
  const auto error = context->save();
  ASSERT_TRUE(error);
  EXPECT_THAT(error->description(), HasSubstr("latitude"));
  EXPECT_TRUE(context->hasChanges());
}

TEST(Database, RemovesWhatIsEqualAndNothingElse) {
  // Plans: below, in any combination.
  const Values poi{{"name", std::string("Hut")}, {"latitude", 1.0}, {"longitude", 0.0}};
  const Values camera{{"model", std::string("Field")},
                      {"sensorWidth", 36.0},
                      {"sensorHeight", 24.0},
                      {"megapixels", 45.0}};
  const struct {
    const char* name;
    const char* entity;
    Values first;
    Values change;  // of the second against the first
    bool isEqual;
  } cases[] = {
      {"poi", "CustomPoi", poi, {}, true},
      {"exactly 1e-7", "CustomPoi", poi, {{"longitude", 1e-7}}, false},
      {"poi of another name", "CustomPoi", poi, {{"name", std::string("Hütte")}}, false},
      {"camera", "CustomCamera", camera, {}, true},
      {"camera without model", "CustomCamera", camera, {{"model", {}}}, false},
      {"camera of another size", "CustomCamera", camera, {{"sensorWidth", 36.00000001}}, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const ScratchFolder folder;
    const PlansServices services(folder / "group");
    Add(c.entity, c.first);
    Values second = c.change;
    second.insert(c.first.begin(), c.first.end());
    Add(c.entity, second);
    const auto context = Database::sharedInstance().managedObjectContext();
    ASSERT_FALSE(context->save());
    // Something unsaved: it is saved along with a deletion, and left when there is none.
    Add("Planning", {});
    int completions = 0;
    Database::sharedInstance().removeDuplicatesWithCompletion([&](const auto& error) {
      EXPECT_FALSE(error);
      ++completions;
    });
    EXPECT_EQ(completions, 0);
    services.queue->RunAll();
    EXPECT_EQ(completions, 1);
    context->reset();
    EXPECT_EQ(All(c.entity).size(), c.isEqual ? 1U : 2U);
    EXPECT_EQ(All("Planning").size(), c.isEqual ? 1U : 0U);
  }
}

TEST(Database, RemovesExactlyWhatTheComparisonOfAllPairsFinds) {
  // The rule as it is meant, on few values, so that equals, near equals and chains of them abound.
  const auto equal = [](const NSManagedObject& a, const NSManagedObject& b) {
    const auto near = [&](const char* key) {
      return a.numberForKey(key) && b.numberForKey(key) &&
             std::fabs(*a.numberForKey(key) - *b.numberForKey(key)) < 1e-7;
    };
    return near("latitude") && near("longitude") && a.dateForKey("date") &&
           a.dateForKey("date") == b.dateForKey("date") && a.stringForKey("name") &&
           a.stringForKey("name") == b.stringForKey("name") &&
           a.membersForKey("images").size() == b.membersForKey("images").size();
  };
  // It lists an object once for each equal before it.
  const auto model = testing::UserModel();
  const Database::Objects three(3,
                                std::make_shared<NSManagedObject>(*model->entityNamed("Planning")));
  EXPECT_EQ(Database::duplicateObjectsInArray(three, [](const auto&, const auto&) { return true; })
                .size(),
            3U);

  std::mt19937 random(7);
  const auto pick = [&](std::size_t count) { return random() % count; };
  const AttributeValue dates[] = {NSDate(0.0), NSDate(-0.0), NSDate(1.0), {}};
  const AttributeValue names[] = {std::string("a"), std::string("a"), std::string(), {}};
  std::size_t removed = 0;
  std::size_t kept = 0;
  for (const double origin : {0.0, -46.0, 179.9999999, 5e6, 1e12}) {
    for (const double step : {0.9e-8, 2.5e-8, 5e-8, 1e-7}) {
      const ScratchFolder folder;
      const PlansServices services(folder / "group");
      for (int i = 0; i < 150; ++i) {
        const auto coordinate = [&]() -> AttributeValue {
          if (pick(40) == 0) return {};
          return origin + (static_cast<double>(pick(25)) - 12.0) * step;
        };
        Add("Planning",
            {{"latitude", coordinate()},
             {"longitude", coordinate()},
             {"date", dates[pick(4)]},
             {"name", names[pick(4)]},
             {"timezone", names[pick(4)]}},
            std::vector<std::string>(pick(2), "x.jpg"));
      }
      ASSERT_FALSE(Database::sharedInstance().managedObjectContext()->save());
      const auto all = All("Planning");
      const auto duplicates = Database::duplicateObjectsInArray(all, equal);
      NSManagedObjectContext::Objects expected;
      std::copy_if(all.begin(), all.end(), std::back_inserter(expected), [&](const auto& plan) {
        return std::find(duplicates.begin(), duplicates.end(), plan) == duplicates.end();
      });
      Database::sharedInstance().removeDuplicatesWithCompletion(
          [](const auto& error) { EXPECT_FALSE(error); });
      services.queue->RunAll();
      EXPECT_EQ(All("Planning"), expected) << origin << ' ' << step;
      kept += expected.size();
      removed += all.size() - expected.size();
    }
  }
  EXPECT_GT(removed, 200U);
  EXPECT_GT(kept, 200U);
}

TEST(Database, RemovesDuplicatesOfManyPlansInTimeThatGrowsWithTheirNumber) {
  // All the same; and as many, all in one spot of some centimetres, with few equals among them.
  const ScratchFolder folder;
  const PlansServices services(folder / "group");
  for (int i = 0; i < 40000; ++i) {
    const bool isSame = i % 2 == 0;
    Add("Planning", {{"latitude", 46.0 + (isSame ? 0.0 : 3e-8 * (i % 317))},
                     {"longitude", 14.0 + (isSame ? 0.0 : 3e-8 * (i / 317))},
                     {"date", NSDate(1.0)},
                     {"name", std::string(isSame ? "same" : "crowd")}});
  }
  ASSERT_FALSE(Database::sharedInstance().managedObjectContext()->save());
  Database::sharedInstance().removeDuplicatesWithCompletion(
      [](const auto& error) { EXPECT_FALSE(error); });
  const auto start = std::chrono::steady_clock::now();
  services.queue->RunAll();
  // A quarter of a second, where every pair would take more than a minute.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
  const std::vector<std::string> left = Names(All("Planning"));
  EXPECT_EQ(std::count(left.begin(), left.end(), "same"), 1);
}

TEST(Database, BringsAStoreFromVersion3To4) {
  const ScratchFolder folder;
  const fs::path url = folder / "group/Lumenquest.sqlite";
  {
    const PlansServices services(folder / "group");
    const auto old = testing::UserModel()->earlierVersion(3);
    const auto coordinator = std::make_shared<NSPersistentStoreCoordinator>(old);
    ASSERT_FALSE(coordinator->addPersistentStore(url, {}));
    // As the class of version 3 did: it knew no identifiers.
    const auto store = coordinator->persistentStore();
    SaveRequest request;
    for (const auto& entity : old->entities) {
      ObjectRecord record;
      record.values.resize(entity.attributes.size());
      record.values[0] = entity.attributes[0].type == AttributeType::string
                             ? AttributeValue(std::string("old"))
                             : AttributeValue(1.0);
      record.toMany.resize(entity.toMany.size());
      if (!record.toMany.empty()) record.toMany[0] = {"1.jpg", "2.jpg"};
      request.inserted.push_back({&entity, record});
    }
    ASSERT_FALSE(store->save(request).error);
  }
  {
    // The widgets read it as it is.
    const std::string before = testing::Contents(url);
    const PlansServices services(folder / "group", Role::reader);
    const auto plans = All("Planning");
    ASSERT_THAT(Names(plans), ElementsAre("old"));
    EXPECT_FALSE(plans[0]->stringForKey("uniqueIdentifier"));
    plans[0]->setValue(std::string("new"), "name");
    EXPECT_TRUE(Database::sharedInstance().managedObjectContext()->save());
    EXPECT_TRUE(Database::sharedInstance().isMigrationNeeded());
    EXPECT_EQ(testing::Contents(url), before);
  }
  const PlansServices services(folder / "group");
  Database& database = Database::sharedInstance();
  EXPECT_TRUE(database.isMigrationNeeded());
  database.performUpdatesFrom3To4();  // Nothing is there yet to be updated.
  database.managedObjectContext();
  EXPECT_FALSE(database.isMigrationNeeded());
  Add("Planning", {{"uniqueIdentifier", std::string("kept")}});
  ASSERT_FALSE(database.managedObjectContext()->save());
  database.performUpdatesFrom3To4();
  std::set<std::string> identifiers;
  for (const char* entity : {"Planning", "CustomPoi", "CustomCamera"}) {
    for (const auto& object : All(entity)) {
      identifiers.insert(object->stringForKey("uniqueIdentifier").value_or("none"));
    }
  }
  EXPECT_EQ(identifiers.size(), 4U);
  EXPECT_TRUE(identifiers.contains("kept"));
  EXPECT_FALSE(identifiers.contains("none"));
  EXPECT_EQ(All("Planning")[0]->membersForKey("images").size(), 2U);
}

TEST(Database, MovesAStoreAndLosesNothing) {
  const ScratchFolder folder;
  const PlansServices services(folder / "group");
  Database& database = Database::sharedInstance();
  Add("Planning", {{"name", std::string("moved")}});
  ASSERT_FALSE(database.managedObjectContext()->save());
  const std::string uri = All("Planning")[0]->objectID().URIRepresentation();
  EXPECT_TRUE(database.migrateDatabase(database.groupStoreURL(), folder / "new/Lumenquest.sqlite"));
  // Nothing is replaced, nothing made of nothing.
  EXPECT_FALSE(
      database.migrateDatabase(database.groupStoreURL(), folder / "new/Lumenquest.sqlite"));
  EXPECT_FALSE(database.migrateDatabase(folder / "missing", folder / "other/Lumenquest.sqlite"));
  EXPECT_FALSE(fs::exists(folder / "missing") || fs::exists(folder / "other"));

  const PlansServices moved(folder / "new");
  ASSERT_EQ(Names(All("Planning")), std::vector<std::string>{"moved"});
  EXPECT_EQ(All("Planning")[0]->objectID().URIRepresentation(), uri);
}

struct Observer final : DatabaseDelegate {
  void databasePersistentStoreCoordinatorDidGetError(const std::string& message,
                                                     const std::string& title) override {
    told.push_back(title + message);
  }
  std::vector<std::string> told;
};

TEST(Database, WithoutAStoreFetchesNothingAndSaysWhy) {
  const ScratchFolder folder;
  fs::create_directories(folder / "foreign");
  const std::string text = "not a store";
  std::ofstream(folder / "foreign/Lumenquest.sqlite") << text;
  for (const auto& group : {std::optional<fs::path>(), std::optional(folder / "foreign")}) {
    const PlansServices services(group);
    const auto observer = std::make_shared<Observer>();
    Database& database = Database::sharedInstance();
    database.setDelegate(observer);
    ASSERT_TRUE(database.managedObjectContext());
    EXPECT_TRUE(All("Planning").empty());
    EXPECT_THAT(observer->told, ElementsAre("<persistent_store_unresolved_error_title>"
                                            "<persistent_store_unresolved_error_message_ios>"));
    EXPECT_THAT(services.services.log->messages, ElementsAre(HasSubstr("Unresolved error")));
    Add("Planning", {});
    EXPECT_TRUE(database.managedObjectContext()->save());
    EXPECT_FALSE(database.isMigrationNeeded());
  }
  EXPECT_EQ(testing::Contents(folder / "foreign/Lumenquest.sqlite"), text);
}

TEST(Database, TheStaticStoreHoldsSensorFormatsToBeReadOnly) {
  const ScratchFolder folder;
  const fs::path shipped =
      fs::path(LUMENQUEST_TEST_RESOURCES) / "models" / "LumenquestStatic.sqlite";
  const std::string bytes = testing::Contents(shipped);
  for (const Role role : {Role::owner, Role::reader}) {
    const PlansServices services(folder / "", role);
    const auto context = Database::sharedInstance().staticManagedObjectContext();
    const auto found = context->executeFetchRequest({"SensorFormat", std::nullopt, "sensorWidth"});
    ASSERT_FALSE(found.error);
    EXPECT_THAT(services.services.log->messages, ElementsAre());
    ASSERT_GT(found.value.size(), 10U);
    std::set<std::string> models;
    for (const auto& format : found.value) {
      const double width = format->numberForKey("sensorWidth").value();
      const double height = format->numberForKey("sensorHeight").value();
      const std::string model = format->stringForKey("model").value();
      EXPECT_TRUE(models.insert(model).second) << model;
      // Formats are wide by a third to a half.
      EXPECT_NEAR(width / height, 1.43, 0.11) << model;
    }
    context->deleteObject(found.value[0]);
    EXPECT_TRUE(context->save());
  }
  EXPECT_EQ(testing::Contents(shipped), bytes);
  for (const char* beside : {"-wal", "-shm", "-journal"}) {
    EXPECT_FALSE(fs::exists(shipped.string() + beside)) << beside;
  }

  fs::create_directories(folder / "bundle");
  const PlansServices services(folder / "");
  const auto observer = std::make_shared<Observer>();
  Database::sharedInstance().setDelegate(observer);
  EXPECT_TRUE(Database::sharedInstance().staticManagedObjectContext());
  EXPECT_THAT(observer->told,
              ElementsAre("<static_persistent_store_unresolved_error_title>"
                          "<static_persistent_store_unresolved_error_message_ios>"));
}

}  // namespace
}  // namespace lumenquest::platform
