#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

namespace lumenquest::adapters {

/// Tells, on GLib's default main context, that files were changed, made, replaced or removed; once
/// for changes that come together; of a link, what it leads to as well. A file of no length is
/// none: readers of a database make such beside it and take them away.
class FileWatcher {
 public:
  /// The folders need not be there yet.
  FileWatcher(std::vector<std::filesystem::path> files, std::function<void()> changed);
  ~FileWatcher();
  FileWatcher(const FileWatcher&) = delete;
  FileWatcher& operator=(const FileWatcher&) = delete;

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace lumenquest::adapters
