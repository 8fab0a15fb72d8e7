#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "widgets/view/layout.h"
#include "widgets/view/style.h"

namespace lumenquest::testing {

/// A text of a view with its place.
struct PlacedText {
  std::string text;
  platform::CGRect rect;
  bool isTruncated = false;
  /// Of its letters, shrunk as they are.
  double size = 0.0;
};

/// "10:10 PM - 12:14 AM (+1)", "22.10 - 0.14 (+1)"; not "98.2%".
inline bool isTime(const std::string& text) {
  const auto isDigit = [&](std::size_t i) {
    return i < text.size() && text[i] >= '0' && text[i] <= '9';
  };
  for (std::size_t i = 1; i < text.size(); ++i) {
    const bool isMark = text[i] == ':' || text[i] == '.';
    const bool hasMinutes = isDigit(i + 1) && isDigit(i + 2) && !isDigit(i + 3);
    if (isMark && isDigit(i - 1) && hasMinutes) return true;
  }
  return false;
}

inline void collectTexts(const widgets::view::Box& box, std::vector<PlacedText>& texts) {
  if (const auto* const text = std::get_if<widgets::view::Text>(box.node)) {
    if (!text->text.empty()) {
      texts.push_back({text->text, box.rect, box.isTruncated, box.textStyle.size});
    }
  }
  for (const auto& child : box.children) collectTexts(child, texts);
}

/// What is wrong with a layout: texts that lost words but for those that may, times too small to be
/// read, texts that overlap, things outside the widget's panels. Empty when all is well. Half a
/// point is forgiven, as the layout does.
inline std::string faultsOf(const widgets::view::Box& root,
                            const std::vector<std::string>& mayLoseWords) {
  constexpr double kSlack = 0.5;
  constexpr double kLeastTime = 9.0;
  std::string faults;
  const auto describe = [](const platform::CGRect& r) {
    return "[" + std::to_string(r.x) + "," + std::to_string(r.y) + " " + std::to_string(r.width) +
           "x" + std::to_string(r.height) + "]";
  };
  std::vector<PlacedText> texts;
  collectTexts(root, texts);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const auto& a = texts[i].rect;
    const bool mayLose =
        std::find(mayLoseWords.begin(), mayLoseWords.end(), texts[i].text) != mayLoseWords.end();
    if (texts[i].isTruncated && !mayLose) faults += "truncated: " + texts[i].text + "\n";
    if (isTime(texts[i].text) && !mayLose && texts[i].size < kLeastTime - 1e-9) {
      faults += "too small: " + texts[i].text + " " + std::to_string(texts[i].size) + "\n";
    }
    for (std::size_t j = 0; j < i; ++j) {
      const auto& b = texts[j].rect;
      const double across = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
      const double down = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
      if (across > kSlack && down > kSlack) {
        faults += texts[j].text.substr(0, 40) + describe(b) + " lies on " +
                  texts[i].text.substr(0, 40) + describe(a) + "\n";
      }
    }
  }
  const platform::CGRect whole = root.rect.insetBy(widgets::view::kPanelMargin);
  const auto check = [&](const auto& self, const widgets::view::Box& box) -> void {
    const auto& r = box.rect;
    const bool isInside = r.x >= whole.x - kSlack && r.y >= whole.y - kSlack &&
                          r.x + r.width <= whole.x + whole.width + kSlack &&
                          r.y + r.height <= whole.y + whole.height + kSlack;
    const bool isThing = std::holds_alternative<widgets::view::Text>(*box.node) ||
                         std::holds_alternative<widgets::view::Image>(*box.node) ||
                         std::holds_alternative<widgets::view::Picture>(*box.node);
    if (!isInside && isThing) {
      const auto* const text = std::get_if<widgets::view::Text>(box.node);
      const auto* const image = std::get_if<widgets::view::Image>(box.node);
      faults += "outside: " +
                (text != nullptr    ? text->text.substr(0, 40)
                 : image != nullptr ? image->name
                                    : std::string("something")) +
                describe(r) + "\n";
    }
    for (const auto& child : box.children) self(self, child);
  };
  check(check, root);
  return faults;
}

}  // namespace lumenquest::testing
