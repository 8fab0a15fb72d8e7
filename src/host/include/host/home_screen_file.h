#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/home_screen.h"
#include "platform/text_file.h"

namespace lumenquest::host {

/// The home screen in the user's configuration folder, read and changed by commands, by the page
/// and by hand.
class HomeScreenFile {
 public:
  explicit HomeScreenFile(std::shared_ptr<platform::TextFile> file) : file_(std::move(file)) {}

  /// The standard home screen where there is no file. Throws HomeScreenError.
  HomeScreen load() const;
  /// Changes the file as one step, however many change it at once, and returns what stands there
  /// now. A change that throws changes nothing. Throws HomeScreenError; a file that cannot be read
  /// is not written over.
  HomeScreen update(const std::function<void(HomeScreen& screen)>& change);
  /// Why the file cannot be read as it stands, in a sentence for the user; absent when it can.
  std::optional<std::string> problem() const;

 private:
  std::shared_ptr<platform::TextFile> file_;
};

}  // namespace lumenquest::host
