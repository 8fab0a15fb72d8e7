#pragma once

#include <filesystem>

#include "platform/ns_error.h"
#include "sqlite_connection.h"

namespace lumenquest::adapters {

/// What SQLite's failure means for the file and for its user.
platform::NSError fileError(const SqliteFailure& failure, const std::filesystem::path& file);
platform::NSError fileError(const std::filesystem::filesystem_error& failure,
                            const std::filesystem::path& file);

}  // namespace lumenquest::adapters
