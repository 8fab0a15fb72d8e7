#pragma once

namespace lumenquest::widgets {

/// What a person configured a widget with.
class Intent {
 public:
  virtual ~Intent() = default;

 protected:
  Intent() = default;
  Intent(const Intent&) = default;
  Intent& operator=(const Intent&) = default;
};

}  // namespace lumenquest::widgets
