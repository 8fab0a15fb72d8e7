// Every widget in every state, set with the fonts of this machine: what does not fit where.

#include "app/gallery.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>

#include "app/widget_picture.h"
#include "boxes.h"
#include "command_fixture.h"
#include "platform/services.h"

namespace lumenquest::app {
namespace {

using host::AnyEntry;
using host::viewOf;
using platform::CGSize;
using testing::Call;
using testing::DataFolder;
using testing::Result;
using widgets::WidgetFamily;
namespace view = widgets::view;

/// On phones of all widths, the smallest first; the families' own sizes last.
std::vector<CGSize> SizesOf(WidgetFamily family) {
  struct Phone {
    double small;
    CGSize medium;
    double large;
  };
  constexpr Phone kPhones[] = {{141.0, {292.0, 141.0}, 311.0}, {148.0, {321.0, 148.0}, 324.0},
                               {155.0, {329.0, 155.0}, 345.0}, {158.0, {338.0, 158.0}, 354.0},
                               {159.0, {348.0, 157.0}, 357.0}, {169.0, {360.0, 169.0}, 376.0},
                               {170.0, {364.0, 170.0}, 382.0}};
  std::vector<CGSize> sizes;
  for (const auto& [small, medium, large] : kPhones) {
    if (family == WidgetFamily::systemSmall) sizes.push_back({small, small});
    if (family == WidgetFamily::systemMedium) sizes.push_back(medium);
    if (family == WidgetFamily::systemLarge) sizes.push_back({medium.width, large});
  }
  return sizes;
}

view::Environment In(const Section& section, WidgetFamily family, const std::string& locale) {
  view::Environment environment;
  environment.family = family;
  environment.renderingMode = section.renderingMode;
  if (locale == "he") environment.layoutDirection = view::LayoutDirection::rightToLeft;
  return environment;
}

/// The place's title, or the plans' names.
std::vector<std::string> UsersWords(const AnyEntry& entry) {
  return std::visit(
      [](const auto& kind) {
        std::vector<std::string> words;
        const auto add = [&](const std::optional<std::string>& given) {
          // As the views have it.
          const view::Element element = view::text(given.value_or(""));
          words.push_back(std::get<view::Text>(element.node()).text);
        };
        if constexpr (requires { kind.plans; }) {
          for (const widgets::PlanItem& plan : kind.plans) add(plan.name);
        } else {
          add(kind.data.locationData.address);
        }
        return words;
      },
      entry);
}

std::string Faults(const AnyEntry& entry, view::Environment environment, CGSize size,
                   bool mayUsersWordsGo) {
  const view::Element element = viewOf(entry, environment);
  return testing::faultsOf(
      layOut(element, size, environment, platform::Services::current().textMeasurer()),
      mayUsersWordsGo ? UsersWords(entry) : std::vector<std::string>());
}

class GalleryIn : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(, GalleryIn, ::testing::Values("en", "de", "fi", "ja", "he"),
                         [](const auto& locale) { return std::string(locale.param); });

TEST_P(GalleryIn, EverythingIsReadable) {
  const DataFolder data;
  const std::string locale = GetParam();
  const std::vector<Section> sections = exhibition(locale);
  for (const Section& section : sections) {
    for (const Exhibit& exhibit : section.exhibits) {
      const view::Environment environment = In(section, exhibit.family, locale);
      EXPECT_EQ(Faults(exhibit.entry, environment, view::sizeOf(exhibit.family), false), "")
          << exhibit.fileName;
      // On smaller phones users' own words may go, but the rest stays.
      for (const CGSize size : SizesOf(exhibit.family)) {
        EXPECT_EQ(Faults(exhibit.entry, environment, size, true), "")
            << exhibit.fileName << ", " << size.width << " x " << size.height;
      }
    }
  }
}

/// The entry with other words in place of those that users give.
AnyEntry WithWords(AnyEntry entry, const std::string& words) {
  std::visit(
      [&](auto& kind) {
        if constexpr (requires { kind.plans; }) {
          for (widgets::PlanItem& plan : kind.plans) plan.name = words;
        } else {
          kind.data.locationData.address = words;
        }
      },
      entry);
  return entry;
}

TEST(Gallery, HostileWordsStayInTheirBoxes) {
  const DataFolder data;
  std::string endless;
  while (endless.size() < 10000) endless += "Llanfair pwll ";
  // A family, a mountain, a flag.
  std::string emoji;
  while (emoji.size() < 300) {
    emoji += "\U0001F468\u200D\U0001F469\u200D\U0001F467\U0001F3D4\uFE0F\U0001F1F8\U0001F1EE";
  }
  const std::string hostile[] = {
      endless,
      std::string(10000, 'W'),
      "a\nb\nc\nd\ne\nf",
      "\u202E\u2066dleiH\u202D\u202A\u2067" + endless,  // overrides that are never closed
      emoji,
      "Z\u0300\u0301\u0302\u0303\u0304\u0305\u0306\u0307\u0308\u0309\u030A",
      "",
      "\xff\xfe\x80 not UTF-8",
      std::string("a\0b", 3),
  };
  for (const std::string locale : {"en", "he"}) {
    std::set<std::pair<std::size_t, WidgetFamily>> seen;
    for (const Section& section : exhibition(locale)) {
      for (const Exhibit& exhibit : section.exhibits) {
        if (UsersWords(exhibit.entry).empty()) continue;
        // Every widget once in each family.
        if (!seen.emplace(exhibit.entry.index(), exhibit.family).second) continue;
        for (const std::string& words : hostile) {
          const AnyEntry entry = WithWords(exhibit.entry, words);
          const view::Environment environment = In(section, exhibit.family, locale);
          for (const CGSize size :
               {view::sizeOf(exhibit.family), SizesOf(exhibit.family).front()}) {
            EXPECT_EQ(Faults(entry, environment, size, true), "")
                << exhibit.fileName << ": " << words.substr(0, 40);
          }
        }
      }
    }
  }
}

TEST(Gallery, DrawsAllIntoAFolder) {
  const DataFolder data;
  const testing::ScratchFolder folder;
  const std::string target = folder.path() + "/new/pictures";
  const Result result = Call({"gallery", target, "--locale", "en", "--scale", "1"});
  EXPECT_EQ(result.code, 0) << result.err;
  std::size_t pictures = 0;
  for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator(target)) ++pictures;
  EXPECT_EQ(result.out, std::to_string(pictures) + " pictures in " + target + "\n");
  const std::pair<const char*, bool> files[] = {
      {"contact-sheet-dark.png", true},
      {"contact-sheet-light.png", true},
      {"LumenquestWidget-systemLarge-polar-night-light.png", true},
      {"MoonWidget-systemSmall-supermoon-dark.png", true},
      {"PlansWidget-systemMedium-no-plans-dark.png", true},
      {"SunWidget-systemMedium-denied-dark.png", true},
      {"SunWidget-systemSmall-time-out-light.png", true},
      {"GalacticCenterSmallWidget-systemSmall-golden-hour-accented.png", true},
      // One picture is enough of what looks the same in both schemes.
      {"GalacticCenterSmallWidget-systemSmall-golden-hour-accented-dark.png", false},
      {"LumenquestWidget-systemLarge-theme-light-light.png", false},
  };
  for (const auto& [name, isThere] : files) {
    EXPECT_EQ(std::filesystem::exists(target + "/" + name), isThere) << name;
  }
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));
}

}  // namespace
}  // namespace lumenquest::app
