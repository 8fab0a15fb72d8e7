#pragma once

#include <string>

namespace lumenquest::host {

/// The language of all pages.
struct WebLanguage {
  /// A language tag, such as "de-AT".
  std::string tag = "en";
  bool isRightToLeft = false;
};

/// One page of the site, its parts being HTML but for the title.
struct WebPage {
  std::string title;
  /// Of the body, for the style sheet.
  std::string kind;
  std::string main;
  /// Name of a file of ours, or nothing.
  std::string script{};
  /// Attributes of <main>, each with a space before it.
  std::string attributes{};
  /// Seconds after which a viewer without scripts loads the page again; 0: never.
  int refreshSeconds = 0;
};

/// The first lines of each page's head, which goes on.
std::string documentBeginning(const std::string& title, const WebLanguage& language);
/// A whole document.
std::string documentOf(const WebPage& page, const WebLanguage& language);

/// A text of the table App, as HTML.
std::string webText(const std::string& key);

/// The heading of a page with the way back to the home screen. HTML.
std::string pageHeading(const std::string& title, const std::string& below = {});

}  // namespace lumenquest::host
