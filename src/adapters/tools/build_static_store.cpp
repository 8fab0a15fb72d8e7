// Makes the store of reference data from the tables of resources/static at build time.
//   build_static_store MODEL FILE TABLE...

#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "adapters/json_models.h"
#include "adapters/sqlite_object_store.h"
#include "sqlite_connection.h"
#include "tab_table.h"

namespace lumenquest::adapters {
namespace {

namespace fs = std::filesystem;
using platform::AttributeType;
using platform::AttributeValue;
using platform::NSEntityDescription;
using platform::ObjectRecord;

/// The store's identifier is part of its objects' identifiers, so every build has the same.
class StaticStoreUUID final : public platform::UUIDService {
 public:
  std::string UUIDString() override { return "0984B9C5-F17D-4353-A324-61576B381754"; }
};

template <typename Value>
Value Require(platform::Outcome<Value> outcome) {
  if (outcome.error) throw std::runtime_error(outcome.error->description());
  return std::move(outcome.value);
}

AttributeValue Read(const std::string& text, AttributeType type) {
  if (text.empty()) return {};
  if (type == AttributeType::number) return parsed<double>(text);
  if (type == AttributeType::integer) return parsed<std::int64_t>(text);
  if (type == AttributeType::date) throw std::runtime_error("tables hold no dates");
  return text;
}

std::vector<ObjectRecord> ReadObjects(const std::string& path, const NSEntityDescription& entity) {
  std::vector<ObjectRecord> objects;
  std::vector<std::size_t> columns;
  readTable(path, [&](const std::vector<std::string>& fields) {
    if (columns.empty()) {
      for (const std::string& name : fields) {
        const auto index = entity.indexOfAttribute(name);
        if (!index) throw std::runtime_error("the model has no \"" + name + "\"");
        columns.push_back(*index);
      }
      return;
    }
    if (fields.size() > columns.size() || fields.empty() || fields.front().empty()) {
      throw std::runtime_error("expected " + std::to_string(columns.size()) +
                               " fields, the first not empty");
    }
    ObjectRecord object;
    object.values.resize(entity.attributes.size());
    object.toMany.resize(entity.toMany.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
      object.values[columns[i]] = Read(fields[i], entity.attributes[columns[i]].type);
    }
    objects.push_back(std::move(object));
  });
  return objects;
}

void Write(const fs::path& model, const std::vector<std::string>& tables, const fs::path& file) {
  const auto described = Require(JsonModels().modelWithContentsOfURL(model));
  platform::SaveRequest request;
  for (const std::string& table : tables) {
    const NSEntityDescription* entity = described->entityNamed(fs::path(table).stem().string());
    if (entity == nullptr) throw std::runtime_error(table + ": the model has no such entity");
    try {
      for (ObjectRecord& object : ReadObjects(table, *entity)) {
        request.inserted.push_back({entity, std::move(object)});
      }
    } catch (const std::runtime_error& error) {
      throw std::runtime_error(table + ": " + error.what());
    }
  }
  {
    SqliteObjectStores stores(SqliteObjectStores::Role::owner, std::make_shared<StaticStoreUUID>());
    Require(Require(stores.open(file, described, {}))->save(request));
  }
  // Nobody writes it any more, so reading it needs no log beside it.
  SqliteConnection(file, SqliteConnection::Mode::readWrite).Run("PRAGMA journal_mode = DELETE");
}

}  // namespace
}  // namespace lumenquest::adapters

int main(int argc, char** argv) {
  if (argc < 4) {
    std::cerr << "build_static_store: give the model, the file to write and the tables\n";
    return 2;
  }
  const std::string file = argv[2];
  // Under another name until it is whole.
  const std::string unfinished = file + ".new";
  try {
    std::filesystem::remove(unfinished);
    lumenquest::adapters::Write(argv[1], {argv + 3, argv + argc}, unfinished);
    std::filesystem::rename(unfinished, file);
  } catch (const std::exception& error) {
    std::cerr << "build_static_store: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
