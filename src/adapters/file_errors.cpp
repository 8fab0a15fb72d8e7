#include "file_errors.h"

namespace lumenquest::adapters {

namespace {

const char* KeyOf(const SqliteFailure& failure) {
  // What processes share beside the file has a fixed size, for which there was no room.
  if (failure.code == SQLITE_IOERR_SHMSIZE) return "file_error_full";
  switch (failure.code & 0xFF) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_MISMATCH:
      return "file_error_damaged";
    case SQLITE_FULL:
      return "file_error_full";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "file_error_busy";
    case SQLITE_READONLY:
      return "file_error_read_only";
    case SQLITE_CANTOPEN:
      return "file_error_folder";
    default:
      return "file_error_unusable";
  }
}

}  // namespace

platform::NSError fileError(const SqliteFailure& failure, const std::filesystem::path& file) {
  return {"SQLite",        failure.code,   KeyOf(failure),
          {file.string()}, failure.what(), {{"path", file.string()}}};
}

platform::NSError fileError(const std::filesystem::filesystem_error& failure,
                            const std::filesystem::path& file) {
  return {"File",          failure.code().value(),   "file_error_unreachable",
          {file.string()}, failure.code().message(), {{"path", file.string()}}};
}

}  // namespace lumenquest::adapters
