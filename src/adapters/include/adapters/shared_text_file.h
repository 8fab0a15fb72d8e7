#pragma once

#include <filesystem>

#include "platform/text_file.h"

namespace lumenquest::adapters {

/// A file of the user's, in a folder that is made with it for the user alone.
class SharedTextFile final : public platform::TextFile {
 public:
  explicit SharedTextFile(std::filesystem::path path) : path_(std::move(path)) {}

  /// The path, the user's own folder being "~": others may read it on a page, too.
  std::string name() const override;
  platform::Outcome<std::optional<std::string>> contents() const override;
  std::optional<platform::NSError> update(
      const std::function<std::string(const std::optional<std::string>& text)>& change) override;

 private:
  std::filesystem::path path_;
};

}  // namespace lumenquest::adapters
