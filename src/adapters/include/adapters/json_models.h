#pragma once

#include <filesystem>
#include <memory>

#include "platform/object_store.h"

namespace lumenquest::adapters {

/// Reads models from JSON: {"model": name, "current": version, "versions": [{"version": number,
/// "entities": [{"name", "class", "attributes": {name: "string", "number", "integer" or "date"},
/// "toMany": [name], "indexes": [attribute]}]}]}. The last three may be missing, and so may
/// "class".
class JsonModels final : public platform::ModelService {
 public:
  platform::Outcome<std::shared_ptr<const platform::NSManagedObjectModel>> modelWithContentsOfURL(
      const std::filesystem::path& url) override;
};

}  // namespace lumenquest::adapters
