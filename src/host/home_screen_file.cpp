#include "host/home_screen_file.h"

namespace lumenquest::host {

namespace {

HomeScreen Parsed(const std::optional<std::string>& text, const platform::TextFile& file) try {
  return text ? HomeScreen::fromJson(*text) : HomeScreen::standard();
} catch (const HomeScreenError& error) {
  throw HomeScreenError(file.name(), error);
}

void ThrowIfSet(const std::optional<platform::NSError>& error) {
  if (error) throw HomeScreenError(*error);
}

}  // namespace

HomeScreen HomeScreenFile::load() const {
  const auto text = file_->contents();
  ThrowIfSet(text.error);
  return Parsed(text.value, *file_);
}

HomeScreen HomeScreenFile::update(const std::function<void(HomeScreen& screen)>& change) {
  HomeScreen screen;
  ThrowIfSet(file_->update([&](const std::optional<std::string>& text) {
    screen = Parsed(text, *file_);
    change(screen);
    return screen.toJson();
  }));
  return screen;
}

std::optional<std::string> HomeScreenFile::problem() const try {
  load();
  return std::nullopt;
} catch (const HomeScreenError& error) {
  return error.what();
}

}  // namespace lumenquest::host
