#include "host/widget_pictures.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "host/web_text.h"
#include "host/widget_source.h"
#include "widgets/deep_links.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::host {

namespace {

constexpr std::string_view kLinkStart = "<a href=\"";

std::string WithWidget(const std::string& page, const std::string& widgetId) {
  return widgetId.empty() ? page : page + "?widget=" + percentEncoded(widgetId);
}

/// What stands between a tag and its end; an SVG writer has escaped it.
std::string ContentOf(const std::string& svg, const std::string& tag) {
  const std::size_t begin = svg.find("<" + tag);
  const std::size_t start = begin == std::string::npos ? begin : svg.find('>', begin);
  const std::size_t end = start == std::string::npos ? start : svg.find("</" + tag + ">", start);
  return end == std::string::npos ? "" : svg.substr(start + 1, end - start - 1);
}

std::set<std::string> IdsOf(const std::vector<ShownWidget>& shown) {
  std::set<std::string> ids;
  for (const ShownWidget& one : shown) ids.insert(one.widget.id);
  return ids;
}

}  // namespace

std::string pageOfDeepLink(const std::string& deepLink, const std::string& widgetId) {
  if (deepLink == widgets::kSunLink) return WithWidget("/sun", widgetId);
  if (deepLink == widgets::kMoonLink) return WithWidget("/moon", widgetId);
  if (deepLink == widgets::kPlansLink) return "/plans";
  if (deepLink.starts_with(widgets::kPlanLinkStart)) {
    return "/plan?id=" +
           percentEncoded(percentDecoded(deepLink.substr(widgets::kPlanLinkStart.size())));
  }
  return "";
}

bool leadsToMoon(const std::string& kind) {
  return kind == widgets::MoonWidget().kind || kind == widgets::GalacticCenterWidget().kind;
}

std::string pageOfWidget(const PlacedWidget& widget) {
  if (widget.kind == widgets::PlansWidget().kind) return "/plans";
  return WithWidget(leadsToMoon(widget.kind) ? "/moon" : "/sun", widget.id);
}

const WidgetPicture& WidgetPictures::pictureOf(const ShownWidget& shown,
                                               platform::ColorScheme scheme) {
  Kept& kept = kept_[{shown.widget.id, scheme}];
  if (!kept.picture.svg || kept.version != shown.version || !(kept.widget == shown.widget)) {
    kept = {shown.widget, shown.version, Draw(shown, scheme)};
  }
  return kept.picture;
}

const WidgetPicture& WidgetPictures::sampleOf(const std::string& kind, widgets::WidgetFamily family,
                                              platform::ColorScheme scheme) {
  WidgetPicture& sample = samples_[{kind, family, scheme}];
  if (!sample.svg) {
    ShownWidget shown;
    shown.widget.kind = kind;
    shown.widget.family = family;
    WidgetSource::ofKind(kind)->ask(
        HostRequest::placeholder, shown.widget,
        [&](WidgetAnswer answer) { shown.entry = std::move(answer.entry); });
    sample = Draw(shown, scheme);
  }
  return sample;
}

void WidgetPictures::keepOnly(const std::vector<ShownWidget>& shown) {
  const std::set<std::string> ids = IdsOf(shown);
  std::erase_if(kept_, [&](const auto& one) { return !ids.contains(one.first.first); });
}

WidgetPicture WidgetPictures::Draw(const ShownWidget& shown, platform::ColorScheme scheme) const {
  const char* const suffix = scheme == platform::ColorScheme::dark ? "-d" : "-l";
  const std::string drawn = draw_(shown, scheme, "w-" + shown.widget.id + suffix);
  std::string svg;
  std::set<std::string> pages;
  std::size_t copied = 0;
  for (std::size_t at = drawn.find(kLinkStart); at != std::string::npos;
       at = drawn.find(kLinkStart, copied)) {
    const std::size_t start = at + kLinkStart.size();
    const std::size_t end = drawn.find('"', start);
    std::string page =
        pageOfDeepLink(htmlUnescaped(drawn.substr(start, end - start)), shown.widget.id);
    if (page.empty()) page = pageOfWidget(shown.widget);
    svg += drawn.substr(copied, start - copied) + htmlEscaped(page);
    pages.insert(std::move(page));
    copied = end;
    // A background can be clicked on but says nothing: neither keyboard nor screen reader stops
    // there.
    const std::string content = drawn.substr(end, drawn.find("</a>", end) - end);
    if (content.find("<text") == std::string::npos &&
        content.find("aria-label") == std::string::npos) {
      svg += "\" tabindex=\"-1\" aria-hidden=\"true";
    }
  }
  svg += drawn.substr(copied);
  WidgetPicture picture;
  picture.description = ContentOf(svg, "desc");
  picture.hasInnerLinks = pages.size() > 1;
  picture.svg = std::make_shared<const std::string>(std::move(svg));
  return picture;
}

std::shared_ptr<const std::string> WidgetPngs::pngOf(const ShownWidget& shown,
                                                     platform::ColorScheme scheme, double scale) {
  // Those of earlier entries will not be asked for again.
  kept_.remove_if([&](const Kept& kept) {
    return kept.widget.id == shown.widget.id &&
           (kept.version != shown.version || !(kept.widget == shown.widget));
  });
  const auto known = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& kept) {
    return kept.widget.id == shown.widget.id && kept.scheme == scheme && kept.scale == scale;
  });
  if (known != kept_.end()) {
    kept_.splice(kept_.end(), kept_, known);
    return kept_.back().png;
  }
  auto png = std::make_shared<const std::string>(draw_(shown, scheme, scale));
  kept_.push_back({shown.widget, shown.version, scheme, scale, png});
  std::size_t bytes = 0;
  for (const Kept& kept : kept_) bytes += kept.png->size();
  while (bytes > mostBytes_) {
    bytes -= kept_.front().png->size();
    kept_.pop_front();
  }
  return png;
}

void WidgetPngs::keepOnly(const std::vector<ShownWidget>& shown) {
  const std::set<std::string> ids = IdsOf(shown);
  kept_.remove_if([&](const Kept& kept) { return !ids.contains(kept.widget.id); });
}

}  // namespace lumenquest::host
