#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/ns_error.h"

namespace lumenquest::platform {

/// A small file that several processes read and change.
class TextFile {
 public:
  virtual ~TextFile() = default;

  /// By which its user finds it, such as a path.
  virtual std::string name() const = 0;

  /// The whole text; absent when there is no file.
  virtual Outcome<std::optional<std::string>> contents() const = 0;

  /// Hands over the text and writes what comes back, if it is another; nobody else changes the file
  /// meanwhile, and whoever reads it sees the old text or the new one. When `change` throws, the
  /// file stays as it was. Absent: done.
  virtual std::optional<NSError> update(
      const std::function<std::string(const std::optional<std::string>& text)>& change) = 0;
};

}  // namespace lumenquest::platform
