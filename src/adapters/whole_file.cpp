#include "whole_file.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>

#include "adapters/files.h"
#include "adapters/uuids.h"
#include "folder_lock.h"

namespace lumenquest::adapters {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kUnfinished = ".new";
constexpr std::size_t kUuidSize = 36;
/// The file itself, and what SQLite may have beside it.
constexpr std::array<std::string_view, 4> kCompanions{"", "-journal", "-wal", "-shm"};

bool IsUuid(std::string_view text) {
  return text.size() == kUuidSize && std::all_of(text.begin(), text.end(), [](char c) {
           return c == '-' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
         });
}

/// Whether the name is one that writeWhole() gives, or SQLite beside it.
bool IsUnfinished(std::string_view name, std::string_view ofFile) {
  if (!name.starts_with(ofFile) || name.size() <= ofFile.size() + 1 + kUuidSize) return false;
  name.remove_prefix(ofFile.size());
  if (name.front() != '.' || !IsUuid(name.substr(1, kUuidSize))) return false;
  name.remove_prefix(1 + kUuidSize);
  if (!name.starts_with(kUnfinished)) return false;
  name.remove_prefix(kUnfinished.size());
  return std::find(kCompanions.begin(), kCompanions.end(), name) != kCompanions.end();
}

}  // namespace

bool writeWhole(const fs::path& url, const std::function<void(SqliteConnection&)>& write) {
  const fs::path folder = fs::absolute(url).parent_path();
  if (const std::error_code error = makePrivateFolder(folder)) {
    throw fs::filesystem_error("no folder", folder, error);
  }
  // A file system without such locks has no sweepers either.
  const FolderLock lock(folder, LOCK_SH);
  const std::string unfinished =
      url.string() + "." + RandomUUIDs().UUIDString() + std::string(kUnfinished);
  const auto remove = [&] {
    std::error_code ignored;
    for (const std::string_view companion : kCompanions) {
      fs::remove(unfinished + std::string(companion), ignored);
    }
  };
  try {
    {
      SqliteConnection connection(unfinished, SqliteConnection::Mode::create);
      write(connection);
      // Last, so that nothing of the file is in a log that does not get its name.
      connection.Run("PRAGMA journal_mode = WAL");
    }
    // A link, unlike a rename, never replaces a file.
    const bool linked = ::link(unfinished.c_str(), url.c_str()) == 0;
    const int reason = errno;
    remove();
    if (!linked && reason != EEXIST) {
      throw fs::filesystem_error("link", url, std::error_code(reason, std::generic_category()));
    }
    lock.Sync();
    return linked;
  } catch (...) {
    remove();
    throw;
  }
}

void sweepUnfinished(const fs::path& url) {
  std::error_code error;
  const fs::path folder = fs::absolute(url, error).parent_path();
  const FolderLock lock(folder, LOCK_EX | LOCK_NB);
  if (!lock.isHeld()) return;
  const std::string file = url.filename().string();
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (IsUnfinished(entry->path().filename().string(), file)) fs::remove(entry->path(), ignored);
  }
}

}  // namespace lumenquest::adapters
