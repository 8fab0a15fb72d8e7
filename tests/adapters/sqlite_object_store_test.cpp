// Stores in SQLite files: several processes, sudden ends, files that are no stores.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "adapters/sqlite_user_defaults.h"
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
using ::testing::HasSubstr;
using testing::Role;
using testing::ScratchFolder;
using testing::UserModel;
using Model = std::shared_ptr<const NSManagedObjectModel>;

platform::StoreOptions Automatic() {
  platform::StoreOptions options;
  options.migratesAutomatically = true;
  options.infersMappingModel = true;
  return options;
}

platform::Outcome<std::shared_ptr<ObjectStore>> Open(const fs::path& url, Role role = Role::owner,
                                                     const Model& model = UserModel()) {
  return SqliteObjectStores(role, std::make_shared<RandomUUIDs>()).open(url, model, Automatic());
}

ObjectRecord Plan(const NSEntityDescription& entity, const std::string& name, double date,
                  std::vector<std::string> images = {}) {
  ObjectRecord record;
  record.values.resize(entity.attributes.size());
  record.values[*entity.indexOfAttribute("name")] = name;
  record.values[*entity.indexOfAttribute("date")] = NSDate(date);
  record.toMany = {std::move(images)};
  return record;
}

std::string NameOf(const ObjectRecord& record) {
  const auto model = UserModel();
  return std::get<std::string>(
      record.values[*model->entityNamed("Planning")->indexOfAttribute("name")]);
}

/// Runs `work` in a process of its own; its answer is the exit code.
pid_t Fork(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    // Whatever happens, the tests go on in the parent alone.
    try {
      ::_exit(work());
    } catch (...) {
      ::_exit(99);
    }
  }
  return child;
}

int ExitCode(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(SqliteObjectStore, KeepsAnyTextAndNumber) {
  const ScratchFolder folder;
  const auto model = UserModel();
  const NSEntityDescription& entity = *model->entityNamed("Planning");
  const std::vector<std::string> names{
      "",          "'; DROP TABLE Planning; --", std::string("a\0b", 3),
      "مخطط ليلة", "e\u0301\u0302 👩‍🚀",  std::string(10000, 'x'),
      "\xff\xfe"};
  SaveRequest request;
  for (const auto& name : names) {
    request.inserted.push_back({&entity, Plan(entity, name, -0.1, {name, "2", name})});
  }
  ASSERT_FALSE(Open(folder / "Lumenquest.sqlite").value->save(request).error);
  const auto found = Open(folder / "Lumenquest.sqlite", Role::reader).value->fetch({"Planning"});
  ASSERT_EQ(found.value.size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(found.value[i].values, request.inserted[i].record.values);
    EXPECT_EQ(found.value[i].toMany, request.inserted[i].record.toMany);
  }
}

TEST(SqliteObjectStore, FetchOfFourGoesThroughTheIndex) {
  const ScratchFolder folder;
  const auto model = UserModel();
  const NSEntityDescription& entity = *model->entityNamed("Planning");
  const auto store = Open(folder / "Lumenquest.sqlite").value;
  constexpr int kPlans = 100000;
  SaveRequest request;
  for (int i = 0; i < kPlans; ++i) {
    request.inserted.push_back({&entity, Plan(entity, std::to_string(i), (i * 7919) % kPlans)});
  }
  ASSERT_FALSE(store->save(request).error);
  const NSFetchRequest four{"Planning", NSPredicate::greaterThanOrEqual("date", NSDate(50000.0)),
                            "date", 4};
  const std::string plan = queryPlan(*store, four);
  EXPECT_THAT(plan, HasSubstr("USING INDEX index.Planning.date (date>?)"));
  EXPECT_THAT(plan, ::testing::Not(HasSubstr("TEMP B-TREE")));
  const auto reader = Open(folder / "Lumenquest.sqlite", Role::reader).value;
  auto best = std::chrono::steady_clock::duration::max();
  for (int i = 0; i < 20; ++i) {
    const auto start = std::chrono::steady_clock::now();
    const auto found = reader->fetch(four);
    best = std::min(best, std::chrono::steady_clock::now() - start);
    ASSERT_EQ(found.value.size(), 4U);
    for (std::size_t j = 0; j < 4; ++j) {
      EXPECT_EQ(found.value[j].values[*entity.indexOfAttribute("date")],
                AttributeValue(NSDate(50000.0 + static_cast<double>(j))));
    }
  }
  RecordProperty("fetch_microseconds",
                 std::to_string(std::chrono::duration<double, std::micro>(best).count()));
}

TEST(SqliteObjectStore, TheReaderMakesNoFileAndSeesOneThatComes) {
  const ScratchFolder folder;
  const fs::path url = folder / "group/Lumenquest.sqlite";
  const auto reader = Open(url, Role::reader);
  ASSERT_FALSE(reader.error);
  EXPECT_TRUE(reader.value->fetch({"Planning"}).value.empty());
  EXPECT_FALSE(fs::exists(folder / "group"));
  const auto model = UserModel();
  const auto& entity = *model->entityNamed("Planning");
  ASSERT_FALSE(Open(url).value->save({{{&entity, Plan(entity, "new", 0.0)}}, {}, {}}).error);
  EXPECT_EQ(reader.value->fetch({"Planning"}).value.size(), 1U);
  EXPECT_TRUE(reader.value->save({}).error);
}

TEST(SqliteObjectStore, FilesThatAreNoStoreStayAsTheyAre) {
  const ScratchFolder folder;
  const auto model = UserModel();
  const auto& entity = *model->entityNamed("Planning");
  SaveRequest request;
  for (int i = 0; i < 500; ++i) {
    request.inserted.push_back({&entity, Plan(entity, std::string(100, 'n'), i)});
  }
  ASSERT_FALSE(Open(folder / "good").value->save(request).error);
  const std::string good = Contents(folder / "good");
  ASSERT_GT(good.size(), 40000U);
  std::string garbled = good;
  std::fill(garbled.begin() + 4096, garbled.end(), 'z');
  // A single page, which a new plan would not come by.
  std::string torn = good;
  std::fill(torn.begin() + static_cast<std::ptrdiff_t>(good.size() / 8192 * 4096),
            torn.begin() + static_cast<std::ptrdiff_t>(good.size() / 8192 * 4096 + 4096), 'z');
  std::string foreign = good;
  foreign[68] = 'X';
  struct Case {
    const char* name;
    std::string bytes;
    const char* says;
  };
  for (const Case& c :
       {Case{"empty", "", "Store error"}, Case{"text", "hello", "Store error"},
        Case{"foreign", foreign, "Store error"}, Case{"garbled", garbled, "SQLite error"},
        Case{"cut", good.substr(0, 6000), "SQLite error"}}) {
    SCOPED_TRACE(c.name);
    const fs::path url = folder / c.name;
    std::ofstream(url, std::ios::binary) << c.bytes;
    for (const Role role : {Role::reader, Role::owner}) {
      const auto opened = Open(url, role);
      ASSERT_TRUE(opened.error);
      EXPECT_THAT(opened.error->description(), HasSubstr(c.says));
      EXPECT_THAT(opened.error->description(), HasSubstr(url.string()));
      EXPECT_EQ(opened.error->key, "file_error_damaged");
      EXPECT_EQ(Contents(url), c.bytes);
    }
  }
  std::ofstream(folder / "torn", std::ios::binary) << torn;
  const auto opened = Open(folder / "torn");
  ASSERT_TRUE(opened.error);
  EXPECT_EQ(opened.error->key, "file_error_damaged");
  EXPECT_EQ(Contents(folder / "torn"), torn);
  EXPECT_TRUE(Open(folder / "").error);
}

TEST(SqliteObjectStore, ReadsFromAReadOnlyFolderAndRefusesToWriteThere) {
  const ScratchFolder folder;
  const fs::path url = folder / "group/Lumenquest.sqlite";
  const auto model = UserModel();
  const auto& entity = *model->entityNamed("Planning");
  ASSERT_FALSE(Open(url).value->save({{{&entity, Plan(entity, "here", 0.0)}}, {}, {}}).error);
  const std::string before = Contents(url);
  fs::permissions(folder / "group", fs::perms(0555));
  fs::permissions(folder / "", fs::perms(0755));
  fs::permissions(url, fs::perms(0444));
  // For root nothing is read-only: the child is nobody.
  const int code = ExitCode(Fork([&] {
    if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) return 1;
    const auto reader = Open(url, Role::reader, model);
    if (reader.error || reader.value->fetch({"Planning"}).value.size() != 1) return 2;
    const auto owner = Open(url, Role::owner, model);
    if (!owner.error && !owner.value->save({{{&entity, Plan(entity, "no", 0.0)}}, {}, {}}).error) {
      return 3;
    }
    return Open(folder / "group/other", Role::owner, model).error ? 0 : 4;
  }));
  fs::permissions(folder / "group", fs::perms(0755));
  EXPECT_EQ(code, 0);
  EXPECT_EQ(Contents(url), before);
}

Model Versions(int current, std::vector<NSEntityDescription> entities, const Model& earlier) {
  auto model = std::make_shared<NSManagedObjectModel>();
  model->name = "Changing";
  model->version = current;
  model->entities = std::move(entities);
  if (earlier) model->earlierVersions = {earlier};
  return model;
}

TEST(SqliteObjectStore, MigratesWhatCanBeInferredAndNothingElse) {
  const ScratchFolder folder;
  const fs::path url = folder / "store";
  const NSEntityDescription kept{
      "Kept",
      "",
      {{"name", AttributeType::string, true}, {"goes", AttributeType::number, true}},
      {"images", "notes"}};
  const Model first =
      Versions(1, {kept, {"Gone", "", {{"a", AttributeType::string}}, {"images"}}}, nullptr);
  const auto old = Open(url, Role::owner, first).value;
  ASSERT_FALSE(old->save({{{&first->entities[0],
                            {0, 0, {std::string("x"), 2.0}, {{"1.jpg", "2.jpg"}, {"n"}}}}},
                          {},
                          {}})
                   .error);

  const Model retyped = Versions(2, {{"Kept", "", {{"name", AttributeType::integer}}, {}}}, first);
  const std::string before = Contents(url);
  EXPECT_THAT(Open(url, Role::owner, retyped).error->description(), HasSubstr("\"name\""));
  EXPECT_EQ(old->fetch({"Kept"}).value.size(), 1U);
  EXPECT_TRUE(Open(url, Role::owner, Versions(2, {kept}, nullptr)).error);

  const NSEntityDescription changed{
      "Kept",
      "",
      {{"count", AttributeType::integer, true}, {"name", AttributeType::string}},
      {"images"}};
  const Model second =
      Versions(2, {changed, {"Added", "", {{"b", AttributeType::date, true}}, {"images"}}}, first);
  const auto store = Open(url, Role::owner, second);
  ASSERT_FALSE(store.error) << store.error->description();
  const auto found = store.value->fetch({"Kept"}).value;
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].values, (std::vector<AttributeValue>{{}, std::string("x")}));
  EXPECT_EQ(found[0].toMany, (std::vector<std::vector<std::string>>{{"1.jpg", "2.jpg"}}));
  EXPECT_TRUE(store.value->fetch({"Added"}).value.empty());
  // Who still has the old model open reads what is left and can no longer write; who opens it with
  // the old model is told.
  const auto left = old->fetch({"Kept"}).value;
  ASSERT_EQ(left.size(), 1U);
  EXPECT_EQ(left[0].values, (std::vector<AttributeValue>{std::string("x"), {}}));
  EXPECT_TRUE(old->fetch({"Gone"}).value.empty());
  EXPECT_TRUE(old->save({}).error);
  EXPECT_THAT(Open(url, Role::owner, first).error->description(), HasSubstr("unknown_version"));
}

TEST(SqliteObjectStore, AnObjectChangedByAnotherIsNotOverwritten) {
  const ScratchFolder folder;
  const auto model = UserModel();
  const auto& entity = *model->entityNamed("Planning");
  const auto store = Open(folder / "store").value;
  const auto keys = store->save({{{&entity, Plan(entity, "a", 0.0)}}, {}, {}}).value;
  ObjectRecord mine = store->fetch({"Planning"}).value[0];
  ASSERT_FALSE(Open(folder / "store").value->save({{}, {{&entity, mine}}, {}}).error);
  for (const SaveRequest& late :
       {SaveRequest{{{&entity, Plan(entity, "b", 0.0)}}, {{&entity, mine}}, {}},
        SaveRequest{{{&entity, Plan(entity, "b", 0.0)}}, {}, {{&entity, mine}}}}) {
    EXPECT_THAT(store->save(late).error->description(), HasSubstr("store_error_conflict"));
    EXPECT_EQ(store->fetch({"Planning"}).value.size(), 1U);
  }
  ++mine.version;
  ASSERT_FALSE(store->save({{}, {}, {{&entity, mine}}}).error);
  // Gone is gone; and its key is not given again.
  EXPECT_FALSE(store->save({{}, {}, {{&entity, mine}}}).error);
  EXPECT_GT(store->save({{{&entity, Plan(entity, "c", 0.0)}}, {}, {}}).value[0], keys[0]);
}

TEST(SqliteObjectStore, TwoWritersAtOnceLoseNothing) {
  const ScratchFolder folder;
  const auto model = UserModel();
  const auto& entity = *model->entityNamed("Planning");
  constexpr int kSaves = 60;
  std::vector<pid_t> writers;
  for (const std::string name : {"a", "b"}) {
    // Both also try to make the store.
    writers.push_back(Fork([&] {
      const auto store = Open(folder / "group/store", Role::owner, model);
      if (store.error) return 1;
      for (int i = 0; i < kSaves; ++i) {
        if (store.value->save({{{&entity, Plan(entity, name, i)}}, {}, {}}).error) return 2;
      }
      return 0;
    }));
  }
  for (const pid_t writer : writers) EXPECT_EQ(ExitCode(writer), 0);
  const auto found = Open(folder / "group/store").value->fetch({"Planning"}).value;
  EXPECT_EQ(found.size(), 2U * kSaves);
  EXPECT_EQ(std::count_if(found.begin(), found.end(),
                          [](const auto& record) { return NameOf(record) == "a"; }),
            kSaves);
}

TEST(SqliteObjectStore, WithoutRoomTheOldStays) {
  const ScratchFolder folder;
  const auto model = UserModel();
  const auto& entity = *model->entityNamed("Planning");
  ASSERT_FALSE(
      Open(folder / "store").value->save({{{&entity, Plan(entity, "a", 0.0)}}, {}, {}}).error);
  // A limit on the size of files stands for the full disk.
  const int code = ExitCode(Fork([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    const auto store = Open(folder / "store", Role::owner, model);
    if (store.error) return 1;
    const rlimit limit{100000, 100000};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 2;
    SaveRequest request;
    for (int i = 0; i < 5000; ++i) {
      request.inserted.push_back({&entity, Plan(entity, std::string(100, 'b'), i)});
    }
    if (!store.value->save(request).error) return 3;
    return store.value->fetch({"Planning"}).value.size() == 1 ? 0 : 4;
  }));
  EXPECT_EQ(code, 0);
  const auto store = Open(folder / "store").value;
  EXPECT_EQ(store->fetch({"Planning"}).value.size(), 1U);
  EXPECT_FALSE(store->save({{{&entity, Plan(entity, "b", 0.0)}}, {}, {}}).error);
}

TEST(SqliteObjectStore, SweepsWhatTheDeadLeftAndNothingElse) {
  const ScratchFolder folder;
  const auto model = UserModel();
  const std::string uuid = "0123ABCD-0000-4000-8000-0123456789AB";
  const auto make = [&](const std::string& name) { std::ofstream(folder / name) << "x"; };
  for (const std::string name : {"store", "settings"}) {
    const auto open = [&] {
      if (name == "store") return !Open(folder / name).error;
      SqliteUserDefaults settings(folder / name);
      settings.setBool(true, "key");
      return settings.synchronize();
    };
    ASSERT_TRUE(open());
    const std::vector<std::string> strays{name + "." + uuid + ".new",
                                          name + "." + uuid + ".new-journal",
                                          name + "." + uuid + ".new-wal"};
    const std::vector<std::string> others{name + ".new", name + "." + uuid,
                                          name + ".my notes from the mountains in may.new",
                                          "another." + uuid + ".new"};
    for (const auto& stray : strays) make(stray);
    for (const auto& other : others) make(other);
    // While somebody makes a file there, all of them may be his.
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t maker = Fork([&] {
      const int held = ::open((folder / "").c_str(), O_RDONLY | O_DIRECTORY);
      if (::flock(held, LOCK_SH) != 0 || ::write(ready[1], "r", 1) != 1) return 1;
      return ::pause();
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ASSERT_TRUE(open());
    for (const auto& stray : strays) EXPECT_TRUE(fs::exists(folder / stray)) << stray;
    ::kill(maker, SIGKILL);
    EXPECT_EQ(ExitCode(maker), -SIGKILL);
    ASSERT_FALSE(Open(folder / "store", Role::reader).error);
    for (const auto& stray : strays) EXPECT_TRUE(fs::exists(folder / stray)) << stray;
    ASSERT_TRUE(open());
    for (const auto& stray : strays) EXPECT_FALSE(fs::exists(folder / stray)) << stray;
    for (const auto& other : others) EXPECT_TRUE(fs::exists(folder / other)) << other;
  }
}

/// Other files than the store's own in its folder.
std::size_t Strays(const fs::path& url) {
  const std::string own = url.filename().string();
  return static_cast<std::size_t>(
      std::count_if(fs::directory_iterator(url.parent_path()), {}, [&](const auto& entry) {
        const std::string name = entry.path().filename().string();
        return name != own && name != own + "-wal" && name != own + "-shm";
      }));
}

TEST(SqliteObjectStore, AKilledWriterLeavesItWhole) {
  const char* wanted = std::getenv("LUMENQUEST_SOAK");
  const int kills = wanted != nullptr ? std::atoi(wanted) : 50;
  const ScratchFolder folder;
  const fs::path url = folder / "group/Lumenquest.sqlite";
  const auto model = UserModel();
  const auto& entity = *model->entityNamed("Planning");
  std::mt19937 random(20240812);
  std::size_t before = 0;
  std::size_t confirmedInAll = 0;
  for (int kill = 0; kill < kills; ++kill) {
    // A new store now and then: making it is interrupted as well.
    if (kill % 10 == 0) {
      for (const char* companion : {"", "-wal", "-shm"}) fs::remove(url.string() + companion);
      before = 0;
    }
    // The child tells through the pipe of each save that was confirmed to it.
    int confirmed[2];
    ASSERT_EQ(::pipe(confirmed), 0);
    const pid_t writer = Fork([&] {
      for (int i = 0;; ++i) {
        // And so is opening it.
        const auto store = Open(url, Role::owner, model);
        if (store.error) return 1;
        const std::string name = std::to_string(kill) + "." + std::to_string(i);
        SaveRequest request;
        for (int part = 0; part < 3; ++part) {
          request.inserted.push_back({&entity, Plan(entity, name, i, {"1.jpg", "2.jpg"})});
        }
        if (store.value->save(request).error) return 2;
        if (::write(confirmed[1], "s", 1) != 1) return 3;
      }
    });
    ::close(confirmed[1]);
    // Every other time only when something is saved, however slow the disk.
    pollfd saved{confirmed[0], POLLIN, 0};
    if (kill % 2 == 1) ::poll(&saved, 1, 10000);
    // Making the store takes a few milliseconds.
    const int longest = kill % 10 == 0 ? 5000 : 40000;
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution<int>(0, longest)(random)));
    ::kill(writer, SIGKILL);
    EXPECT_EQ(ExitCode(writer), -SIGKILL);
    std::size_t saves = 0;
    for (char byte = 0; ::read(confirmed[0], &byte, 1) == 1;) ++saves;
    ::close(confirmed[0]);

    const auto reader = Open(url, Role::reader, model);
    ASSERT_FALSE(reader.error) << reader.error->description();
    const auto found = reader.value->fetch({"Planning"});
    ASSERT_FALSE(found.error) << found.error->description();
    ASSERT_EQ(found.value.size() % 3, 0U) << "half a save";
    // Each confirmed save is there, and at most the one that was on its way.
    ASSERT_GE(found.value.size(), before + 3 * saves);
    ASSERT_LE(found.value.size(), before + 3 * saves + 3);
    for (const ObjectRecord& record : found.value) ASSERT_EQ(record.toMany[0].size(), 2U);
    before = found.value.size();
    confirmedInAll += saves;
  }
  ASSERT_FALSE(Open(url).error);
  EXPECT_EQ(Strays(url), 0U);
  EXPECT_GT(confirmedInAll, 0U);
}

}  // namespace
}  // namespace lumenquest::adapters
