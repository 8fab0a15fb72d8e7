// Stores in SQLite files: several processes, sudden ends, files that are no stores.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "child_process.h"
#include "plans_fixture.h"

namespace lumenquest::adapters {
namespace {

namespace fs = std::filesystem;
using platform::AttributeType;
using platform::AttributeValue;
using platform::NSDate;
using platform::NSEntityDescription;
using platform::NSFetchRequest;
using platform::NSManagedObjectModel;
using platform::NSPredicate;
using platform::ObjectRecord;
using platform::ObjectStore;
using platform::SaveRequest;
using testing::Contents;
using testing::ExitCode;
using testing::Fork;
using ::testing::HasSubstr;
using testing::Role;
using testing::ScratchFolder;
using testing::UserModel;
using Model = std::shared_ptr<const NSManagedObjectModel>;

platform::Outcome<std::shared_ptr<ObjectStore>> Open(const fs::path& url, Role role = Role::owner,
                                                     const Model& model = UserModel()) {
  return SqliteObjectStores(role, std::make_shared<RandomUUIDs>())
      .open(url, model, {.migratesAutomatically = true, .infersMappingModel = true});
}

/// With the user's model and a folder of its own.
class SqliteObjectStore : public ::testing::Test {
 protected:
  ObjectRecord Plan(const std::string& name, double date, std::vector<std::string> images = {}) {
    ObjectRecord record;
    record.values.resize(entity_.attributes.size());
    record.values[*entity_.indexOfAttribute("name")] = name;
    record.values[*entity_.indexOfAttribute("date")] = NSDate(date);
    record.toMany = {std::move(images)};
    return record;
  }
  SaveRequest New(const std::string& name, int count = 1) {
    SaveRequest request;
    for (int i = 0; i < count; ++i) {
      request.inserted.push_back({&entity_, Plan(name, i, {"1.jpg", "2.jpg"})});
    }
    return request;
  }
  std::size_t Count(Role role = Role::reader) {
    const auto store = Open(url_, role);
    if (store.error) return 0;
    return store.value->fetch({"Planning"}).value.size();
  }

  const ScratchFolder folder_;
  const fs::path url_ = folder_ / "group/Lumenquest.sqlite";
  const Model model_ = UserModel();
  const NSEntityDescription& entity_ = *model_->entityNamed("Planning");
};

TEST_F(SqliteObjectStore, KeepsAnyTextAndNumber) {
  const std::vector<std::string> names{
      "",          "'; DROP TABLE Planning; --", std::string("a\0b", 3),
      "مخطط ليلة", "e\u0301\u0302 👩‍🚀",  std::string(10000, 'x'),
      "\xff\xfe"};
  SaveRequest request;
  for (const auto& name : names) {
    request.inserted.push_back({&entity_, Plan(name, -0.1, {name, "2", name})});
  }
  ASSERT_FALSE(Open(url_).value->save(request).error);
  const auto found = Open(url_, Role::reader).value->fetch({"Planning"});
  ASSERT_EQ(found.value.size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(found.value[i].values, request.inserted[i].record.values);
    EXPECT_EQ(found.value[i].toMany, request.inserted[i].record.toMany);
  }
}

TEST_F(SqliteObjectStore, FetchOfFourGoesThroughTheIndex) {
  const auto store = Open(url_).value;
  constexpr int kPlans = 100000;
  SaveRequest request;
  for (int i = 0; i < kPlans; ++i) {
    request.inserted.push_back({&entity_, Plan(std::to_string(i), (i * 7919) % kPlans)});
  }
  ASSERT_FALSE(store->save(request).error);
  const NSFetchRequest four{"Planning", NSPredicate::greaterThanOrEqual("date", NSDate(50000.0)),
                            "date", 4};
  const std::string plan = queryPlan(*store, four);
  EXPECT_THAT(plan, HasSubstr("USING INDEX index.Planning.date (date>?)"));
  EXPECT_THAT(plan, ::testing::Not(HasSubstr("TEMP B-TREE")));
  const auto found = Open(url_, Role::reader).value->fetch(four);
  ASSERT_EQ(found.value.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(found.value[i].values[*entity_.indexOfAttribute("date")],
              AttributeValue(NSDate(50000.0 + static_cast<double>(i))));
  }
}

TEST_F(SqliteObjectStore, TheReaderMakesNoFileAndSeesOneThatComes) {
  const auto reader = Open(url_, Role::reader);
  ASSERT_FALSE(reader.error);
  EXPECT_TRUE(reader.value->fetch({"Planning"}).value.empty());
  EXPECT_FALSE(fs::exists(folder_ / "group"));
  ASSERT_FALSE(Open(url_).value->save(New("new")).error);
  EXPECT_EQ(reader.value->fetch({"Planning"}).value.size(), 1U);
  EXPECT_TRUE(reader.value->save({}).error);
}

TEST_F(SqliteObjectStore, FilesThatAreNoStoreStayAsTheyAre) {
  ASSERT_FALSE(Open(url_).value->save(New(std::string(100, 'n'), 500)).error);
  const std::string good = Contents(url_);
  ASSERT_GT(good.size(), 40000U);
  std::string garbled = good;
  std::fill(garbled.begin() + 4096, garbled.end(), 'z');
  // A single page, which a new plan would not come by.
  std::string torn = good;
  std::fill(torn.begin() + static_cast<std::ptrdiff_t>(good.size() / 8192 * 4096),
            torn.begin() + static_cast<std::ptrdiff_t>(good.size() / 8192 * 4096 + 4096), 'z');
  std::string foreign = good;
  foreign[68] = 'X';
  const struct {
    const char* name;
    std::string bytes;
    const char* says;
    std::vector<Role> roles = {Role::reader, Role::owner};
  } cases[] = {{"empty", "", "Store error"},
               {"text", "hello", "Store error"},
               {"foreign", foreign, "Store error"},
               {"garbled", garbled, "SQLite error"},
               {"cut", good.substr(0, 6000), "SQLite error"},
               {"torn", torn, "", {Role::owner}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const fs::path url = folder_ / c.name;
    std::ofstream(url, std::ios::binary) << c.bytes;
    for (const Role role : c.roles) {
      const auto opened = Open(url, role);
      ASSERT_TRUE(opened.error);
      EXPECT_THAT(opened.error->description(), HasSubstr(c.says));
      EXPECT_THAT(opened.error->description(), HasSubstr(url.string()));
      EXPECT_EQ(opened.error->key, "file_error_damaged");
      EXPECT_EQ(Contents(url), c.bytes);
    }
  }
  EXPECT_TRUE(Open(folder_ / "").error);
}

TEST_F(SqliteObjectStore, ReadsFromAReadOnlyFolderAndRefusesToWriteThere) {
  ASSERT_FALSE(Open(url_).value->save(New("here")).error);
  const std::string before = Contents(url_);
  fs::permissions(folder_ / "group", fs::perms(0555));
  fs::permissions(folder_ / "", fs::perms(0755));
  fs::permissions(url_, fs::perms(0444));
  // For root nothing is read-only: the child is nobody.
  const int code = ExitCode(Fork([&] {
    if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) return 1;
    if (Count() != 1) return 2;
    const auto owner = Open(url_, Role::owner, model_);
    if (!owner.error && !owner.value->save(New("no")).error) return 3;
    return Open(folder_ / "group/other", Role::owner, model_).error ? 0 : 4;
  }));
  fs::permissions(folder_ / "group", fs::perms(0755));
  EXPECT_EQ(code, 0);
  EXPECT_EQ(Contents(url_), before);
}

Model Versions(int current, std::vector<NSEntityDescription> entities, const Model& earlier) {
  auto model = std::make_shared<NSManagedObjectModel>();
  model->name = "Changing";
  model->version = current;
  model->entities = std::move(entities);
  if (earlier) model->earlierVersions = {earlier};
  return model;
}

TEST_F(SqliteObjectStore, MigratesWhatCanBeInferredAndNothingElse) {
  const NSEntityDescription kept{
      "Kept",
      "",
      {{"name", AttributeType::string, true}, {"goes", AttributeType::number, true}},
      {"images", "notes"}};
  const Model first =
      Versions(1, {kept, {"Gone", "", {{"a", AttributeType::string}}, {"images"}}}, nullptr);
  const auto old = Open(url_, Role::owner, first).value;
  ASSERT_FALSE(old->save({{{&first->entities[0],
                            {0, 0, {std::string("x"), 2.0}, {{"1.jpg", "2.jpg"}, {"n"}}}}},
                          {},
                          {}})
                   .error);

  const Model retyped = Versions(2, {{"Kept", "", {{"name", AttributeType::integer}}, {}}}, first);
  EXPECT_THAT(Open(url_, Role::owner, retyped).error->description(), HasSubstr("\"name\""));
  EXPECT_EQ(old->fetch({"Kept"}).value.size(), 1U);
  EXPECT_TRUE(Open(url_, Role::owner, Versions(2, {kept}, nullptr)).error);

  const NSEntityDescription changed{
      "Kept",
      "",
      {{"count", AttributeType::integer, true}, {"name", AttributeType::string}},
      {"images"}};
  const Model second =
      Versions(2, {changed, {"Added", "", {{"b", AttributeType::date, true}}, {"images"}}}, first);
  const auto store = Open(url_, Role::owner, second);
  ASSERT_FALSE(store.error) << store.error->description();
  const auto found = store.value->fetch({"Kept"}).value;
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].values, (std::vector<AttributeValue>{{}, std::string("x")}));
  EXPECT_EQ(found[0].toMany, (std::vector<std::vector<std::string>>{{"1.jpg", "2.jpg"}}));
  // Who still has the old model open reads what is left and can no longer write; who opens it with
  // the old model is told.
  const auto left = old->fetch({"Kept"}).value;
  ASSERT_EQ(left.size(), 1U);
  EXPECT_EQ(left[0].values, (std::vector<AttributeValue>{std::string("x"), {}}));
  EXPECT_TRUE(old->fetch({"Gone"}).value.empty());
  EXPECT_TRUE(old->save({}).error);
  EXPECT_THAT(Open(url_, Role::owner, first).error->description(), HasSubstr("unknown_version"));
}

TEST_F(SqliteObjectStore, AnObjectChangedByAnotherIsNotOverwritten) {
  const auto store = Open(url_).value;
  const auto keys = store->save(New("a")).value;
  ObjectRecord mine = store->fetch({"Planning"}).value[0];
  ASSERT_FALSE(Open(url_).value->save({{}, {{&entity_, mine}}, {}}).error);
  for (const SaveRequest& late :
       {SaveRequest{{{&entity_, Plan("b", 0.0)}}, {{&entity_, mine}}, {}},
        SaveRequest{{{&entity_, Plan("b", 0.0)}}, {}, {{&entity_, mine}}}}) {
    EXPECT_THAT(store->save(late).error->description(), HasSubstr("store_error_conflict"));
    EXPECT_EQ(store->fetch({"Planning"}).value.size(), 1U);
  }
  ++mine.version;
  ASSERT_FALSE(store->save({{}, {}, {{&entity_, mine}}}).error);
  // Gone is gone; and its key is not given again.
  EXPECT_FALSE(store->save({{}, {}, {{&entity_, mine}}}).error);
  EXPECT_GT(store->save(New("c")).value[0], keys[0]);
}

TEST_F(SqliteObjectStore, TwoWritersAtOnceLoseNothing) {
  constexpr int kSaves = 60;
  std::vector<pid_t> writers;
  for (const std::string name : {"a", "b"}) {
    // Both also try to make the store.
    writers.push_back(Fork([&] {
      const auto store = Open(url_, Role::owner, model_);
      if (store.error) return 1;
      for (int i = 0; i < kSaves; ++i) {
        if (store.value->save(New(name)).error) return 2;
      }
      return 0;
    }));
  }
  for (const pid_t writer : writers) EXPECT_EQ(ExitCode(writer), 0);
  EXPECT_EQ(Count(), 2U * kSaves);
}

TEST_F(SqliteObjectStore, WithoutRoomTheOldStays) {
  ASSERT_FALSE(Open(url_).value->save(New("a")).error);
  const int code = ExitCode(Fork([&] {
    const auto store = Open(url_, Role::owner, model_);
    if (store.error) return 1;
    testing::LimitFiles(100000);
    if (!store.value->save(New(std::string(100, 'b'), 5000)).error) return 2;
    return store.value->fetch({"Planning"}).value.size() == 1 ? 0 : 3;
  }));
  EXPECT_EQ(code, 0);
  EXPECT_EQ(Count(), 1U);
  EXPECT_FALSE(Open(url_).value->save(New("b")).error);
}

TEST_F(SqliteObjectStore, SweepsWhatTheDeadLeftAndNothingElse) {
  // One way of making files serves the stores and the settings.
  const std::string uuid = "0123ABCD-0000-4000-8000-0123456789AB";
  ASSERT_FALSE(Open(url_).error);
  const std::string name = url_.string();
  const std::string strays[] = {name + "." + uuid + ".new", name + "." + uuid + ".new-journal",
                                name + "." + uuid + ".new-wal"};
  const std::string others[] = {name + ".new", name + "." + uuid,
                                name + ".my notes from the mountains in may.new",
                                (folder_ / "group/another.").string() + uuid + ".new"};
  for (const auto& stray : strays) std::ofstream(stray) << "x";
  for (const auto& other : others) std::ofstream(other) << "x";
  // While somebody makes a file there, all of them may be his; readers sweep nothing.
  const int held = ::open((folder_ / "group").c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(::flock(held, LOCK_SH), 0);
  ASSERT_FALSE(Open(url_).error);
  ::close(held);
  ASSERT_FALSE(Open(url_, Role::reader).error);
  EXPECT_EQ(testing::FilesBeside(url_), 7);
  ASSERT_FALSE(Open(url_).error);
  EXPECT_EQ(testing::FilesBeside(url_), 4);
  for (const auto& other : others) EXPECT_TRUE(fs::exists(other)) << other;
}

TEST_F(SqliteObjectStore, AKilledWriterLeavesItWhole) {
  std::size_t before = 0;
  testing::KillWriters(
      url_,
      [&](std::int64_t, const auto& tell) {
        for (std::int64_t i = 0;; ++i) {
          // Opening it is interrupted as well.
          const auto store = Open(url_, Role::owner, model_);
          if (store.error || store.value->save(New(std::to_string(i), 3)).error) return 1;
          tell(i);
        }
      },
      [&](bool isNew, const std::vector<std::int64_t>& told) {
        if (isNew) before = 0;
        const auto reader = Open(url_, Role::reader, model_);
        EXPECT_FALSE(reader.error) << reader.error->description();
        const auto found = reader.value->fetch({"Planning"});
        EXPECT_FALSE(found.error) << found.error->description();
        EXPECT_EQ(found.value.size() % 3, 0U) << "half a save";
        // Each confirmed save is there, and at most the one that was on its way.
        EXPECT_GE(found.value.size(), before + 3 * told.size());
        EXPECT_LE(found.value.size(), before + 3 * told.size() + 3);
        for (const ObjectRecord& record : found.value) EXPECT_EQ(record.toMany[0].size(), 2U);
        before = found.value.size();
        return std::int64_t{0};
      });
  ASSERT_FALSE(Open(url_).error);
  EXPECT_EQ(testing::FilesBeside(url_), 0);
}

}  // namespace
}  // namespace lumenquest::adapters
