#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "adapters/json_models.h"
#include "adapters/sqlite_object_store.h"
#include "adapters/uuids.h"
#include "adapters/xdg_file_manager.h"
#include "platform/database.h"
#include "platform/planning.h"
#include "queue_in_memory.h"
#include "scratch_folder.h"
#include "test_services.h"

namespace lumenquest::testing {

class FakeFiles final : public platform::FileManager {
 public:
  explicit FakeFiles(std::optional<std::filesystem::path> group) : group_(std::move(group)) {}
  std::vector<std::filesystem::path> documentDirectories() override {
    return {"/first", "/private"};
  }
  std::optional<std::filesystem::path> containerOfGroup(const std::string& id) override {
    return id == "group.lumenquest.lumenquest" ? group_ : std::nullopt;
  }
  std::optional<std::filesystem::path> resource(const std::string& name,
                                                const std::string& withExtension) override {
    // A test may have put a bundle of its own into the group's folder.
    const bool own = group_ && std::filesystem::exists(*group_ / "bundle");
    return adapters::XdgFileManager(own ? *group_ / "bundle" : LUMENQUEST_TEST_RESOURCES)
        .resource(name, withExtension);
  }

 private:
  std::optional<std::filesystem::path> group_;
};

using Role = adapters::SqliteObjectStores::Role;

/// Services with real stores in a group container of the test's choice.
struct PlansServices {
  explicit PlansServices(const std::optional<std::filesystem::path>& group, Role role = Role::owner,
                         const std::string& zone = "UTC")
      : services("2024-08-12T12:00:00Z", zone, "en_US", Adapters(group, role)) {}

  std::shared_ptr<QueueInMemory> queue = std::make_shared<QueueInMemory>();
  TestServices services;

 private:
  platform::Services::Adapters Adapters(const std::optional<std::filesystem::path>& group,
                                        Role role) {
    platform::Services::Adapters with;
    with.uuids = std::make_shared<adapters::RandomUUIDs>();
    with.fileManager = std::make_shared<FakeFiles>(group);
    with.models = std::make_shared<adapters::JsonModels>();
    with.persistentStores = std::make_shared<adapters::SqliteObjectStores>(role, with.uuids);
    with.mainQueue = queue;
    return with;
  }
};

inline std::shared_ptr<const platform::NSManagedObjectModel> UserModel() {
  return adapters::JsonModels()
      .modelWithContentsOfURL(std::filesystem::path(LUMENQUEST_TEST_RESOURCES) / "models" /
                              "Lumenquest.momd")
      .value;
}

}  // namespace lumenquest::testing
