#include "host/home_pages.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "host/web_text.h"
#include "platform/localized_strings.h"
#include "widgets/view/environment.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::host {

namespace {

using platform::ColorScheme;
using platform::kTableApp;
using platform::kTableCommon;
using platform::localizedString;
using platform::stringWithFormat;

std::string Attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + htmlEscaped(value) + "\"";
}

std::string NameOf(const PlacedWidget& widget) {
  const auto configuration = configurationOf(widget.kind);
  return configuration ? configuration->displayName : widget.kind;
}

std::string FamilyText(widgets::WidgetFamily family) {
  return localizedString(std::string("web_family_") + familyName(family), kTableApp);
}

std::string ThemeText(widgets::Enum theme) {
  return localizedString(std::string("web_theme_") + themeName(theme), kTableApp);
}

bool IsAboutPlace(const PlacedWidget& widget) {
  const auto configuration = configurationOf(widget.kind);
  return configuration && configuration->intent == widgets::ConfigurationIntent::locationSelector;
}

std::string PlaceText(const PlacedWidget& widget) {
  return widget.place ? widget.place->name : localizedString("my_location", kTableCommon);
}

/// " width=... height=..." in points.
std::string SizeOf(widgets::WidgetFamily family) {
  const platform::CGSize size = widgets::view::sizeOf(family);
  return Attribute("width", std::to_string(std::lround(size.width))) +
         Attribute("height", std::to_string(std::lround(size.height)));
}

/// An image in both schemes, of which the viewer shows that of his own.
std::string Pictured(const std::string& address, const std::string& more,
                     widgets::WidgetFamily family, const std::string& alternative) {
  const auto source = [&](const char* scheme) {
    return htmlEscaped(address + "?scheme=" + scheme + more);
  };
  return "<picture><source media=\"(prefers-color-scheme: light)\" srcset=\"" + source("light") +
         "\"><img src=\"" + source("dark") + "\"" + SizeOf(family) + " alt=\"" + alternative +
         "\"></picture>";
}

/// The schemes that a widget is drawn in; a theme of its own is one.
std::vector<std::pair<ColorScheme, const char*>> SchemesOf(const PlacedWidget& widget) {
  if (widget.theme == widgets::Enum::dark) return {{ColorScheme::dark, ""}};
  if (widget.theme == widgets::Enum::light) return {{ColorScheme::light, ""}};
  return {{ColorScheme::dark, " class=\"in-dark\""}, {ColorScheme::light, " class=\"in-light\""}};
}

std::string VersionQuery(const ShownWidget& shown) { return "&v=" + std::to_string(shown.version); }

std::string PictureOf(const ShownWidget& shown, const std::string& alternative) {
  const PlacedWidget& widget = shown.widget;
  const std::string address = "/widget/" + widget.id + ".svg";
  if (widget.theme == widgets::Enum::system) {
    return Pictured(address, VersionQuery(shown), widget.family, alternative);
  }
  return "<img src=\"" +
         htmlEscaped(address + "?scheme=" + themeName(widget.theme) + VersionQuery(shown)) + "\"" +
         SizeOf(widget.family) + " alt=\"" + alternative + "\">";
}

/// What the edit page's script says and asks, as attributes of <main>.
std::string EditWords() {
  std::string attributes;
  constexpr std::size_t kBeginning = sizeof "web_edit_" - 1;
  for (const char* const key :
       {"web_edit_added", "web_edit_removed", "web_edit_undo", "web_edit_moved", "web_edit_saved",
        "web_edit_failed", "web_edit_found", "web_edit_nothing_found", "web_edit_searching"}) {
    std::string name = std::string(key).substr(kBeginning);
    std::replace(name.begin(), name.end(), '_', '-');
    attributes += " data-" + name + "=\"" + webText(key) + "\"";
  }
  return attributes;
}

std::string Button(const char* action, const std::string& text, const std::string& label,
                   bool isDisabled = false) {
  return std::string("<button type=\"button\" data-action=\"") + action + "\"" +
         Attribute("aria-label", label) + (isDisabled ? " aria-disabled=\"true\"" : "") + ">" +
         text + "</button>\n";
}

std::string LabelFor(const char* key, const std::string& name) {
  return stringWithFormat(localizedString(key, kTableApp), {name});
}

struct Option {
  std::string value;
  std::string text;
  bool isSelected = false;
};

/// The widget's member named by the action, to be chosen among these.
std::string Choice(const char* action, const char* titleKey, const std::string& label,
                   const std::vector<Option>& options) {
  std::string html = "<label class=\"choice\"><span>" + webText(titleKey) +
                     "</span><select data-action=\"" + action + "\"" +
                     Attribute("aria-label", label) + ">";
  for (const Option& option : options) {
    html += "<option value=\"" + option.value + "\"" + (option.isSelected ? " selected" : "") +
            ">" + htmlEscaped(option.text) + "</option>";
  }
  return html + "</select></label>\n";
}

/// Nothing where the kind has one size.
std::string FamilyChoice(const PlacedWidget& widget, const std::string& name) {
  const auto configuration = configurationOf(widget.kind);
  if (!configuration || configuration->supportedFamilies.size() < 2) return "";
  std::vector<Option> options;
  for (const widgets::WidgetFamily family : configuration->supportedFamilies) {
    options.push_back({familyName(family), FamilyText(family), family == widget.family});
  }
  return Choice("family", "web_size", LabelFor("web_size_of", name), options);
}

std::string ThemeChoice(const PlacedWidget& widget, const std::string& name) {
  std::vector<Option> options;
  for (const widgets::Enum theme :
       {widgets::Enum::system, widgets::Enum::dark, widgets::Enum::light}) {
    options.push_back({themeName(theme), ThemeText(theme), theme == widget.theme});
  }
  return Choice("theme", "web_theme", LabelFor("web_theme_of", name), options);
}

std::string PlacedItem(const ShownWidget& shown, std::size_t index, std::size_t count) {
  const PlacedWidget& widget = shown.widget;
  const std::string name = NameOf(widget);
  // Two of a kind are told apart by their numbers in the list.
  const std::string title = stringWithFormat(localizedString("web_edit_widget", kTableApp),
                                             {name, std::to_string(index + 1)});
  std::string html = "<li class=\"placed " + std::string(familyName(widget.family)) + "\"" +
                     Attribute("data-id", widget.id) + Attribute("data-name", name) + ">\n";
  html +=
      "<div class=\"grip\" aria-hidden=\"true\"><svg width=\"16\" height=\"24\"><path d=\"M3 "
      "4h2v2h-2zM11 4h2v2h-2zM3 11h2v2h-2zM11 11h2v2h-2zM3 18h2v2h-2zM11 18h2v2h-2z\"/></svg>"
      "</div>\n<div class=\"thumb\">" +
      PictureOf(shown, "") + "</div>\n<div class=\"what\"><h3>" + htmlEscaped(name) + "</h3><p>" +
      htmlEscaped(FamilyText(widget.family)) + "</p></div>\n";
  html += "<div class=\"choices\">\n";
  if (IsAboutPlace(widget)) {
    html += "<div class=\"choice\"><span>" + webText("web_place") +
            "</span><button type=\"button\" data-action=\"place\" aria-haspopup=\"dialog\"" +
            Attribute("aria-label", stringWithFormat(localizedString("web_place_of", kTableApp),
                                                     {name, PlaceText(widget)})) +
            ">" + bdi(PlaceText(widget)) + "</button></div>\n";
  }
  html +=
      FamilyChoice(widget, name) + ThemeChoice(widget, name) + "</div>\n<div class=\"moves\">\n";
  html += Button("up", "<span aria-hidden=\"true\">\u2191</span>", LabelFor("web_move_up", title),
                 index == 0);
  html += Button("down", "<span aria-hidden=\"true\">\u2193</span>",
                 LabelFor("web_move_down", title), index + 1 == count);
  html +=
      Button("remove", "<span aria-hidden=\"true\">\u00D7</span>", LabelFor("web_remove", title));
  return html + "</div>\n</li>\n";
}

std::string Gallery() {
  std::string html = "<ul class=\"gallery\">\n";
  // By size, as the small ones pair up.
  for (const widgets::WidgetFamily family :
       {widgets::WidgetFamily::systemSmall, widgets::WidgetFamily::systemMedium,
        widgets::WidgetFamily::systemLarge}) {
    for (const auto& configuration : widgets::LumenquestWidgets::configurations()) {
      const auto& families = configuration.supportedFamilies;
      if (std::find(families.begin(), families.end(), family) == families.end()) continue;
      const std::string size = FamilyText(family);
      html += std::string("<li class=\"sample ") + familyName(family) +
              "\">\n<div class=\"thumb\">" +
              Pictured("/sample/" + configuration.kind + "-" + familyName(family) + ".svg", "",
                       family, "") +
              "</div>\n<h3>" + htmlEscaped(configuration.displayName) + " <span>" +
              htmlEscaped(size) + "</span></h3>\n<p>" + htmlEscaped(configuration.description) +
              "</p>\n<button type=\"button\" data-action=\"add\"" +
              Attribute("data-kind", configuration.kind) +
              Attribute("data-family", familyName(family)) +
              Attribute("data-name", configuration.displayName) +
              Attribute("aria-label", stringWithFormat(localizedString("web_add_widget", kTableApp),
                                                       {configuration.displayName, size})) +
              ">" + webText("web_add") + "</button>\n</li>\n";
    }
  }
  return html + "</ul>\n";
}

std::string PlaceDialog() {
  return "<dialog id=\"places\" aria-labelledby=\"places-title\">\n<h2 id=\"places-title\">" +
         webText("web_choose_place") +
         "</h2>\n<input id=\"places-search\" type=\"search\" role=\"combobox\" "
         "aria-expanded=\"true\" aria-controls=\"places-list\" aria-autocomplete=\"list\" "
         "autocomplete=\"off\" spellcheck=\"false\" aria-label=\"" +
         webText("web_search_place") + "\" placeholder=\"" + webText("web_search_place") +
         "\">\n<div id=\"places-list\" role=\"listbox\" aria-label=\"" +
         webText("web_choose_place") +
         "\"></div>\n<p id=\"places-message\" role=\"status\"></p>\n<button type=\"button\" "
         "data-action=\"cancel\">" +
         webText("web_cancel") + "</button>\n</dialog>\n";
}

using Block = std::vector<const ShownWidget*>;
using Blocks = std::vector<Block>;

/// What stands side by side on a phone: a wider widget alone, small ones in pairs. A small one that
/// finds no partner at once is joined by the next small one.
Blocks BlocksOf(const std::vector<ShownWidget>& shown) {
  Blocks blocks;
  std::optional<std::size_t> half;
  for (const ShownWidget& one : shown) {
    const bool isSmall = one.widget.family == widgets::WidgetFamily::systemSmall;
    if (isSmall && half) {
      blocks[*half].push_back(&one);
      half.reset();
      continue;
    }
    if (isSmall) half = blocks.size();
    blocks.push_back({&one});
  }
  return blocks;
}

std::size_t RowsOf(const Block& block) {
  return block.front()->widget.family == widgets::WidgetFamily::systemLarge ? 2 : 1;
}

/// Rows that each column takes.
using Heights = std::vector<std::size_t>;

/// As a browser balances columns: it takes the least height for which there are enough of them.
Heights FilledByColumns(const Blocks& blocks, std::size_t count) {
  for (std::size_t height = 2;; ++height) {
    Heights columns(1, 0);
    for (const Block& block : blocks) {
      if (columns.back() + RowsOf(block) > height) columns.push_back(0);
      columns.back() += RowsOf(block);
    }
    if (columns.size() > count) continue;
    columns.resize(count, 0);
    return columns;
  }
}

/// As a browser fills a grid: each block takes the next free cell in the order of reading.
Heights FilledByRows(const Blocks& blocks, std::size_t count) {
  Heights columns(count, 0);
  std::size_t cell = 0;
  for (const Block& block : blocks) {
    while (columns[cell % count] > cell / count) ++cell;
    columns[cell % count] = cell / count + RowsOf(block);
  }
  return columns;
}

/// Whether the blocks are better filled in column after column than row after row: with no gap but
/// below the last columns, and with none that the rows would have smaller.
bool FillsColumns(const Blocks& blocks, std::size_t count) {
  const auto badness = [](const Heights& columns) {
    const auto [least, most] = std::minmax_element(columns.begin(), columns.end());
    return std::tuple(*most, !std::is_sorted(columns.rbegin(), columns.rend()), *most - *least);
  };
  const Heights columns = FilledByColumns(blocks, count);
  return columns.back() > 0 && std::is_sorted(columns.rbegin(), columns.rend()) &&
         badness(columns) <= badness(FilledByRows(blocks, count));
}

}  // namespace

std::string widgetItem(const ShownWidget& shown, WidgetPictures& pictures) {
  const PlacedWidget& widget = shown.widget;
  const auto schemes = SchemesOf(widget);
  const WidgetPicture& picture = pictures.pictureOf(shown, schemes.front().first);
  std::string html = "<article class=\"widget " + std::string(familyName(widget.family)) +
                     (shown.isPlaceholder ? " is-placeholder" : "") + "\"" +
                     Attribute("data-id", widget.id) +
                     Attribute("data-version", std::to_string(shown.version)) + ">\n<h2>" +
                     htmlEscaped(NameOf(widget)) + "</h2>\n";
  // Sample data are no news to be read out.
  const std::string alternative =
      shown.isPlaceholder ? webText("web_loading") : picture.description;
  if (!picture.hasInnerLinks || shown.isPlaceholder) {
    return html + "<a class=\"face\" href=\"" + htmlEscaped(pageOfWidget(widget)) + "\">" +
           PictureOf(shown, alternative) + "</a>\n</article>\n";
  }
  // An image has no links: these stand in the page itself, once a scheme, of which one is shown.
  html += "<div class=\"face\">";
  for (const auto& [scheme, attribute] : schemes) {
    html +=
        std::string("<div") + attribute + ">" + *pictures.pictureOf(shown, scheme).svg + "</div>";
  }
  return html + "</div>\n</article>\n";
}

WebPage homePage(const std::vector<ShownWidget>& shown, WidgetPictures& pictures) {
  WebPage page;
  page.title = "Lumenquest";
  page.kind = "home";
  page.script = "home.js";
  page.refreshSeconds = 60;
  page.main = "<header class=\"top\"><h1>Lumenquest</h1><a class=\"edit\" href=\"/edit\">" +
              webText("web_edit") + "</a></header>\n";
  const Blocks blocks = BlocksOf(shown);
  std::size_t rows = 0;
  std::string html;
  std::string order;
  // A widget of another size stands in another place.
  for (const ShownWidget& one : shown) {
    order += (order.empty() ? "" : " ") + one.widget.id + ":" + familyName(one.widget.family);
  }
  for (const auto& block : blocks) {
    rows += RowsOf(block);
    html += "<div class=\"block\">\n";
    for (const ShownWidget* const one : block) html += widgetItem(*one, pictures);
    html += "</div>\n";
  }
  constexpr std::size_t kRowsOfTwoColumns = 6;
  const bool isFull = rows > kRowsOfTwoColumns;
  page.main += std::string("<div class=\"grid") + (isFull ? " is-full" : "") +
               (FillsColumns(blocks, 2) ? " fills-2" : "") +
               (isFull && FillsColumns(blocks, 3) ? " fills-3" : "") + "\"" +
               Attribute("data-order", order) + ">\n" + html + "</div>\n";
  if (shown.empty()) {
    page.main += "<p class=\"empty\">" + webText("web_empty") + " <a href=\"/edit\">" +
                 webText("web_add_some") + "</a></p>\n";
  }
  return page;
}

WebPage editPage(const std::vector<ShownWidget>& shown, const std::optional<std::string>& problem) {
  WebPage page;
  page.title = localizedString("web_edit_title", kTableApp);
  page.kind = "editing";
  page.script = "edit.js";
  page.attributes = EditWords();
  page.main = "<header class=\"heading\">\n<h1>" + htmlEscaped(page.title) +
              "</h1>\n<a class=\"done\" href=\"/\">" + webText("web_done") +
              "</a></header>\n<noscript><p class=\"card\">" + webText("web_edit_needs_script") +
              "</p></noscript>\n<p id=\"said\" role=\"status\"></p>\n<p id=\"failed\" "
              "role=\"alert\">" +
              htmlEscaped(problem.value_or("")) + "</p>\n";
  page.main +=
      "<section aria-labelledby=\"placed-title\">\n<h2 id=\"placed-title\" "
      "tabindex=\"-1\">" +
      webText("web_edit_placed") + "</h2>\n<ol id=\"placed\">\n";
  for (std::size_t i = 0; i < shown.size(); ++i) {
    page.main += PlacedItem(shown[i], i, shown.size());
  }
  page.main += "</ol>\n";
  if (shown.empty()) page.main += "<p class=\"empty\">" + webText("web_empty") + "</p>\n";
  page.main +=
      "</section>\n<section aria-labelledby=\"gallery-title\">\n<h2 "
      "id=\"gallery-title\">" +
      webText("web_edit_gallery") + "</h2>\n" + Gallery() + "</section>\n" + PlaceDialog();
  return page;
}

}  // namespace lumenquest::host
