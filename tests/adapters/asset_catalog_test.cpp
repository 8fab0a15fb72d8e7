#include "adapters/asset_catalog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "contrast.h"
#include "scratch_folder.h"

namespace lumenquest::adapters {
namespace {

using platform::ColorScheme;
using platform::UIColor;

namespace fs = std::filesystem;

class AssetCatalogTest : public ::testing::Test {
 protected:
  void Write(const std::string& name, const std::string& contents) {
    std::ofstream(folder_ / name) << contents;
  }

  const testing::ScratchFolder folder_;
};

TEST_F(AssetCatalogTest, GivesColoursBySchemeAndPicturesByName) {
  Write("colors.json", R"({"a": {"light": "#fff", "dark": "#33669980"}})");
  Write("dot.svg",
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 4 2'><circle r='1'/></svg>");
  FileAssetCatalog catalog(folder_.path());
  EXPECT_EQ(catalog.colorNamed("a", ColorScheme::light), (UIColor{1, 1, 1, 1}));
  const auto dark = catalog.colorNamed("a", ColorScheme::dark);
  ASSERT_TRUE(dark);
  EXPECT_NEAR(dark->alpha, 128.0 / 255.0, 1e-12);
  EXPECT_FALSE(catalog.colorNamed("b", ColorScheme::light));

  const auto dot = catalog.imageNamed("dot");
  ASSERT_NE(dot, nullptr);
  EXPECT_EQ(dot->size, (platform::CGSize{4, 2}));
  fs::remove(folder_ / "dot.svg");
  EXPECT_EQ(catalog.imageNamed("dot"), dot);
  for (const char* name : {"none", "", "../dot", "dot.svg"}) {
    EXPECT_EQ(catalog.imageNamed(name), nullptr) << name;
  }
}

TEST_F(AssetCatalogTest, BadFilesAreNamed) {
  const auto message = [&] {
    try {
      FileAssetCatalog(folder_.path()).colorNamed("a", ColorScheme::light);
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  EXPECT_THAT(message(), ::testing::HasSubstr("colors.json: cannot be read"));
  const std::pair<const char*, const char*> cases[] = {
      {"{", "parse error"},
      {"[]", "must be an object"},
      {R"({"a": "#fff"})", "must have \"light\" and \"dark\""},
      {R"({"a": {"light": 3, "dark": "#fff"}})", "needs a \"light\" of the form #rrggbb"},
      {R"({"a": {"light": "#ffffg0", "dark": "#fff"}})", "needs a \"light\" of the form"},
  };
  for (const auto& [contents, expected] : cases) {
    Write("colors.json", contents);
    EXPECT_THAT(message(), ::testing::HasSubstr(expected)) << contents;
  }
  Write("bad.svg", "<svg");
  EXPECT_THROW(FileAssetCatalog(folder_.path()).imageNamed("bad"), std::runtime_error);
}

TEST(Art, TextsStandOutFromTheirBackgrounds) {
  FileAssetCatalog catalog(fs::path(LUMENQUEST_TEST_RESOURCES) / "art");
  const std::pair<const char*, double> contents[] = {
      {"contentPrimary", 4.5}, {"contentTertiary", 4.5}, {"accent", 3.0}};
  for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
    for (const char* background :
         {"WidgetBackground", "backgroundPrimary", "backgroundSecondary"}) {
      const auto below = catalog.colorNamed(background, scheme);
      ASSERT_TRUE(below) << background;
      for (const auto& [content, least] : contents) {
        const auto above = catalog.colorNamed(content, scheme);
        ASSERT_TRUE(above) << content;
        EXPECT_GE(testing::contrastOf(*above, *below), least)
            << content << " on " << background
            << (scheme == ColorScheme::dark ? ", dark" : ", light");
      }
    }
  }
}

TEST(Art, EveryPictureCanBeRead) {
  const fs::path folder = fs::path(LUMENQUEST_SOURCE_DIR) / "resources" / "art";
  FileAssetCatalog catalog(folder);
  for (const auto& file : fs::directory_iterator(folder)) {
    if (file.path().extension() != ".svg") continue;
    const auto image = catalog.imageNamed(file.path().stem().string());
    ASSERT_NE(image, nullptr) << file.path().filename();
    EXPECT_FALSE(image->shapes.empty()) << file.path().filename();
  }
}

}  // namespace
}  // namespace lumenquest::adapters
