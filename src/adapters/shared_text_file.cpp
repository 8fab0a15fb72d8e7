#include "adapters/shared_text_file.h"

#include <cstdlib>
#include <cstring>
#include <system_error>

#include "adapters/files.h"
#include "folder_lock.h"

namespace lumenquest::adapters {

namespace {

namespace fs = std::filesystem;

/// Far more than a home screen or its entries take: what is larger is something else.
constexpr std::uintmax_t kLargest = 8u << 20u;

platform::NSError Failure(const char* key, const fs::path& path, std::string detail) {
  return {"File", 1, key, {path.string()}, std::move(detail), {{"path", path.string()}}};
}

}  // namespace

std::string SharedTextFile::name() const {
  std::string path = path_.string();
  const char* const home = std::getenv("HOME");
  if (home != nullptr && *home != '\0' && path.starts_with(home + std::string("/"))) {
    path.replace(0, std::strlen(home), "~");
  }
  return path;
}

platform::Outcome<std::optional<std::string>> SharedTextFile::contents() const {
  std::error_code error;
  const fs::file_status status = fs::status(path_, error);
  if (status.type() == fs::file_type::not_found) return std::optional<std::string>();
  if (!fs::is_regular_file(status) || fs::file_size(path_, error) > kLargest) {
    return Failure("file_error_read", path_, error ? error.message() : "");
  }
  auto text = contentsOfFile(path_);
  if (!text) return Failure("file_error_read", path_, "");
  return text;
}

std::optional<platform::NSError> SharedTextFile::update(
    const std::function<std::string(const std::optional<std::string>& text)>& change) {
  const fs::path folder = path_.parent_path();
  if (const std::error_code error = makePrivateFolder(folder)) {
    return Failure("file_error_write", path_, error.message());
  }
  // Of the folder, as the file itself is replaced. A file system without locks has to do without.
  const FolderLock lock(folder, LOCK_EX);
  auto text = contents();
  if (text.error) return std::move(text.error);
  const std::string changed = change(text.value);
  if (changed == text.value) return std::nullopt;
  if (auto failure = writeFileWhole(path_, changed)) {
    return Failure("file_error_write", path_, std::move(*failure));
  }
  return std::nullopt;
}

}  // namespace lumenquest::adapters
