#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace lumenquest::adapters {

/// Writes a file whole: under another name beside it, synced, then renamed over what was there.
/// Whoever looks sees the old file or the new one. Absent: done; else why not, in the words of the
/// operating system, and the old file is as it was.
std::optional<std::string> writeFileWhole(const std::filesystem::path& path,
                                          const std::string& contents);

/// A file's contents; empty when it cannot be read.
std::string contentsOfFile(const std::filesystem::path& path);

}  // namespace lumenquest::adapters
