#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "plans_fixture.h"
#include "platform/text_file.h"
#include "widget_world.h"

namespace lumenquest::testing {

/// A file that nobody else reads; a full disk when the test says so.
class TextInMemory final : public platform::TextFile {
 public:
  std::string name() const override { return "home.json"; }
  platform::Outcome<std::optional<std::string>> contents() const override { return text; }
  std::optional<platform::NSError> update(
      const std::function<std::string(const std::optional<std::string>&)>& change) override {
    if (isFull) return platform::NSError{"File", 1, "file_error_full", {"home.json"}};
    text = change(text);
    return std::nullopt;
  }

  std::optional<std::string> text;
  bool isFull = false;
};

/// Services of a user who has no folder for plans.
inline platform::Services::Adapters WithoutPlans() {
  platform::Services::Adapters with;
  with.uuids = std::make_shared<adapters::RandomUUIDs>();
  with.fileManager = std::make_shared<FakeFiles>(std::nullopt);
  with.models = std::make_shared<adapters::JsonModels>();
  with.persistentStores = std::make_shared<adapters::SqliteObjectStores>(Role::reader, with.uuids);
  return with;
}

}  // namespace lumenquest::testing
