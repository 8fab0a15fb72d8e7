#include "widgets/plans/plans_views.h"

#include "widgets/deep_links.h"
#include "widgets/view/style.h"

namespace lumenquest::widgets {

using namespace view;

namespace {

/// The name on as many lines at most.
Element Row(const PlanRow& row, int nameLines) {
  constexpr double kBar = 3.0;
  constexpr double kBarHeight = 26.0;
  const Element texts =
      vstack({text(row.name) | font(kBody) | minScale(0.9) | lineLimit(nameLines) | given(),
              text(row.date) | font(kBody) | color(named("contentTertiary")) | monospacedDigits() |
                  minScale(kLeastScale)},
             1.0, Alignment::start);
  const Element line =
      hstack({shape(named("accent"), kBar) | accented() | frame(kBar, kBarHeight), texts},
             2.0 * kGap, Alignment::start) |
      fillWidth();
  return row.link.empty() ? line : line | link(row.link);
}

}  // namespace

Element PlansWidgetEntryView(const PlansTimelineEntry& entry, const Environment& environment) {
  const PlansContent content = plansContent(entry, environment.family);
  Elements lines{hstack({image("plansIcon", kTitle) | color(named("contentTertiary")),
                         text(content.title) | font(kTitle) | color(named("contentTertiary")) |
                             minScale(kLeastScale)},
                        kGap) |
                 fillWidth()};
  if (content.columns.empty()) {
    lines.insert(lines.end(),
                 {spacer(),
                  text(content.nothingScheduled) | font(kBody) | lineLimit(3) |
                      align(platform::TextAlignment::center) | fillWidth(Alignment::center),
                  spacer()});
  } else {
    const auto table = [&](int nameLines, double gap) {
      Elements columns;
      for (const std::vector<PlanRow>& column : content.columns) {
        Elements rows;
        for (const PlanRow& row : column) rows.push_back(Row(row, nameLines));
        columns.push_back(vstack(std::move(rows), gap, Alignment::start) | fillWidth());
      }
      const bool hasRoomBeside =
          environment.family != WidgetFamily::systemSmall && columns.size() == 1;
      if (hasRoomBeside) columns.push_back(nothing() | fillWidth());
      return hstack(std::move(columns), kContentInset, Alignment::start);
    };
    lines.insert(lines.end(),
                 {spacer(kGap),
                  firstThatFits(Axis::vertical,
                                {table(2, 3.0 * kGap), table(1, 3.0 * kGap), table(1, kGap)}),
                  spacer()});
  }
  return widgetBackground(panel(vstack(std::move(lines), 0.0, Alignment::start),
                                "backgroundPrimary", environment),
                          environment) |
         link(kPlansLink);
}

}  // namespace lumenquest::widgets
