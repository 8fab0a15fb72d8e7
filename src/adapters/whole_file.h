#pragma once

#include <filesystem>
#include <functional>

#include "sqlite_connection.h"

namespace lumenquest::adapters {

/// Makes a database file whole under another name first, and gives it its own name last: who dies
/// in between leaves nothing that others would take for the file. Makes its folder too, for the
/// user alone. The file is in write-ahead mode. False: there is a file of that name already, and it
/// was left alone. Throws SqliteFailure or std::filesystem::filesystem_error; then there is none.
bool writeWhole(const std::filesystem::path& url,
                const std::function<void(SqliteConnection&)>& write);

/// Removes what processes that died in writeWhole() left beside the file. Never throws: what stays
/// takes room, and no more.
void sweepUnfinished(const std::filesystem::path& url);

}  // namespace lumenquest::adapters
