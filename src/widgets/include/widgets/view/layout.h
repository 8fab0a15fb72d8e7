#pragma once

#include <vector>

#include "platform/drawing.h"
#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::widgets::view {

/// An element with its place.
struct Box {
  const Node* node = nullptr;
  platform::CGRect rect;
  /// Of a text: how it is set there, at the size to which it had to shrink.
  platform::TextStyle textStyle{};
  /// Of a text: words had to be left out.
  bool isTruncated = false;
  std::vector<Box> children;
};

/// Gives every element of a view its place in a box of this size. The elements have to outlive the
/// result.
///
/// A parent offers room, a child takes what it needs of it, and the parent places the child. In a
/// stack those who can change their length least are asked first, each for an even share of what is
/// left; spacers come last. Where people read from right to left, the whole is mirrored.
Box layOut(const Element& element, platform::CGSize size, const Environment& environment,
           platform::TextMeasurer& measurer);

/// Draws a view. A picture that the catalogue lacks is left out, a colour that it lacks is black.
void draw(const Box& box, platform::Canvas& canvas, const Environment& environment,
          platform::AssetCatalog& assets);

/// The view drawn whole into a box of this size.
void draw(const Element& element, platform::CGSize size, const Environment& environment,
          platform::TextMeasurer& measurer, platform::AssetCatalog& assets,
          platform::Canvas& canvas);

}  // namespace lumenquest::widgets::view
