#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace lumenquest::adapters {

/// Writes a file whole: under another name beside it, synced, then renamed over what was there.
/// Whoever looks sees the old file or the new one. Absent: done; else why not, in the words of the
/// operating system, and the old file is as it was.
std::optional<std::string> writeFileWhole(const std::filesystem::path& path,
                                          const std::string& contents);

/// A file's contents; absent when it cannot be read.
std::optional<std::string> contentsOfFile(const std::filesystem::path& path);

/// The contents of a file that was installed with the program. Throws std::runtime_error when it
/// cannot be read.
std::string contentsOfResource(const std::filesystem::path& path);

/// Makes the folder and those above it that are missing, for their user alone: where somebody will
/// be and when is nobody else's business. Folders that are there stay as they are.
std::error_code makePrivateFolder(const std::filesystem::path& folder);

}  // namespace lumenquest::adapters
