#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "host/home_api.h"
#include "host/home_screen_file.h"
#include "host/place_day.h"
#include "host/plan_pages.h"
#include "host/scheduler.h"
#include "host/web_page.h"
#include "host/web_request.h"
#include "host/widget_pictures.h"

namespace lumenquest::host {

/// Draws a picture as an SVG document.
using DrawImage = std::function<std::string(const platform::UIImage& image)>;
/// What a widget shows as a JSON object, for programs.
using WriteRecord = std::function<std::string(const ShownWidget& shown)>;

/// What a site needs from around it.
struct HomeSiteOptions {
  DrawWidget drawWidget;
  DrawPng drawPng;
  WriteRecord writeRecord;
  DrawImage drawImage;
  /// The site's own files by their names: "style.css", "home.js", "edit.js", "icon.svg".
  std::map<std::string, std::string> files{};
  WebLanguage language{};
  /// Tells the pages that are open: "entry" with {"id", "version"} of a widget's new entry, "home"
  /// with {} after a change of the home screen.
  std::function<void(const std::string& event, const std::string& data)> publish =
      [](const std::string&, const std::string&) {};
};

/// The pages of a home screen: the widgets, the day that each leads to, the plans, and the page
/// that arranges the widgets. Every page can be read without scripts.
///
///     /                        the home screen
///     /edit                    adds, arranges and configures widgets
///     /sun /moon               ?widget=ID: the day of a widget's place
///     /plans /plan             ?id=ID of a plan's object
///     /open                    ?url=lumenquest://...: to the page of a deep link
///     /widget/ID /widget/ID.svg?scheme=dark|light
///     /widget/ID.png           ?scheme=dark|light&scale=1..4 (pixels a point, 2 when not given)
///     /widget/ID.json          what the widget says; with .png, for frames and programs: 503 until
///                              there is an entry, and what is wrong as {"error": "..."}
///     /sample/KIND-FAMILY.svg?scheme=dark|light
///     /api/...                 see HomeApi
///
/// Lives on the main queue.
class HomeSite {
 public:
  /// Both outlive the site.
  HomeSite(Scheduler& scheduler, HomeScreenFile& file, HomeSiteOptions options);

  WebResponse answer(const WebRequest& request);

  /// A widget has a new entry: for the scheduler's listener.
  void entryIsNew(const ShownWidget& shown);
  /// The home screen was changed, by somebody else than this site, and is shown already.
  void homeScreenIsNew();

 private:
  WebResponse Page(const WebPage& page, int status = 200) const;
  WebResponse Plans(const PlanPage& plans) const;
  WebResponse Message(const std::string& title, const std::string& sentence, int status) const;
  WebResponse NotFound() const;
  WebResponse SvgOf(const std::shared_ptr<const std::string>& svg) const;
  WebResponse Widget(const std::string& name, const WebRequest& request);
  /// A widget's picture or record for somebody who is no browser.
  WebResponse Plain(const std::string& id, bool isPicture, const WebRequest& request);
  WebResponse Sample(const std::string& name, const WebRequest& request);
  WebResponse Day(const WebRequest& request);
  /// Of this identifier; without one the widget whose place the page tells of: of those that lead
  /// there one that follows the device, else the first, else any other that follows the device.
  const ShownWidget* WidgetOfDay(const std::string& id, bool isSun) const;
  WebResponse Open(const std::string& url) const;

  Scheduler& scheduler_;
  HomeScreenFile& file_;
  HomeSiteOptions options_;
  WidgetPictures pictures_;
  WidgetPngs pngs_;
  HomeApi api_;
  NextVisibleDates nextVisibleDates_;
  /// Drawn last, for a page that asks for it next.
  std::shared_ptr<const std::string> moon_;
};

}  // namespace lumenquest::host
