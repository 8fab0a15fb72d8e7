// A few whole widgets against stored pictures, with the same fonts on every machine.
// script/pictures stores them anew.

#include "pictures.h"

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>

#include "command_fixture.h"

namespace lumenquest::app {
namespace {

using testing::Call;
using testing::DataFolder;
using testing::Pixels;
using testing::Result;

/// Before anybody asks for a font.
[[maybe_unused]] const int kPinned =
    setenv("FONTCONFIG_FILE", LUMENQUEST_TEST_DATA "/fonts.conf", 1);

bool HasFont(const char* family) {
  FcPattern* const pattern =
      FcPatternBuild(nullptr, FC_FAMILY, FcTypeString, family, static_cast<char*>(nullptr));
  FcObjectSet* const fields = FcObjectSetBuild(FC_FAMILY, static_cast<char*>(nullptr));
  FcFontSet* const found = FcFontList(nullptr, pattern, fields);
  const bool isThere = found != nullptr && found->nfont > 0;
  if (found != nullptr) FcFontSetDestroy(found);
  FcObjectSetDestroy(fields);
  FcPatternDestroy(pattern);
  return isThere;
}

/// A picture on grey, of numbers from 0 to 255.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::array<float, 3>> pixels;

  explicit Picture(const Pixels& from) : width(from.width), height(from.height) {
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const std::uint32_t p = from.at(x, y);
        const float ground = 128.0f * (1.0f - static_cast<float>(p >> 24) / 255.0f);
        pixels.push_back({static_cast<float>(p >> 16 & 255u) + ground,
                          static_cast<float>(p >> 8 & 255u) + ground,
                          static_cast<float>(p & 255u) + ground});
      }
    }
  }
  Picture(int w, int h) : width(w), height(h), pixels(static_cast<std::size_t>(w * h)) {}

  std::array<float, 3>& at(int x, int y) { return pixels[static_cast<std::size_t>(y * width + x)]; }
  const std::array<float, 3>& at(int x, int y) const {
    return pixels[static_cast<std::size_t>(y * width + x)];
  }
};

/// How far two pictures of one size are apart, of 255.
struct Difference {
  /// Of all pixels.
  double mean = 0.0;
  /// The largest after blurring by three points, about a stroke of a letter and its gap: edges that
  /// are smoothed in another way vanish, what has moved or is missing stays.
  double blurred = 0.0;
};

Difference Compare(const Picture& a, const Picture& b) {
  Picture difference(a.width, a.height);
  Difference result;
  for (std::size_t i = 0; i < a.pixels.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      difference.pixels[i][c] = a.pixels[i][c] - b.pixels[i][c];
      result.mean += std::fabs(static_cast<double>(difference.pixels[i][c]));
    }
  }
  result.mean /= 3.0 * static_cast<double>(a.pixels.size());
  // Twice along each axis: nearly a bell.
  constexpr int kReach = 3;
  for (int pass = 0; pass < 4; ++pass) {
    Picture next(a.width, a.height);
    for (int y = 0; y < a.height; ++y) {
      for (int x = 0; x < a.width; ++x) {
        for (int k = -kReach; k <= kReach; ++k) {
          const int u = std::clamp(x + (pass % 2 == 0 ? k : 0), 0, a.width - 1);
          const int v = std::clamp(y + (pass % 2 == 0 ? 0 : k), 0, a.height - 1);
          for (std::size_t c = 0; c < 3; ++c) {
            next.at(x, y)[c] += difference.at(u, v)[c] / (2 * kReach + 1);
          }
        }
      }
    }
    difference = next;
  }
  for (const auto& pixel : difference.pixels) {
    for (const float channel : pixel) {
      result.blurred = std::max(result.blurred, std::fabs(static_cast<double>(channel)));
    }
  }
  return result;
}

constexpr double kMostMean = 2.0;
constexpr double kMostBlurred = 12.0;

bool AreAlike(const Difference& d) { return d.mean <= kMostMean && d.blurred <= kMostBlurred; }

struct Stored {
  const char* name;
  std::vector<std::string> arguments;
};

const Stored kPictures[] = {
    {"sun-small", {"sun", "--latitude", "46.3625", "--longitude", "14.0936"}},
    {"sun-medium-hebrew",
     {"sun", "--family", "medium", "--latitude", "46.3625", "--longitude", "14.0936", "--locale",
      "he"}},
    {"moon-small-light",
     {"moon", "--scheme", "light", "--latitude", "46.3625", "--longitude", "14.0936"}},
    {"galactic-centre-small-accented",
     {"GalacticCenterSmallWidget", "--rendering", "accented", "--latitude", "46.3625",
      "--longitude", "14.0936", "--locale", "en-GB"}},
    {"lumenquest-large",
     {"LumenquestWidget", "--latitude", "-22.91", "--longitude", "-68.2", "--locale", "de"}},
    {"plans-medium",
     {"plans", "--family", "medium", "--request", "snapshot", "--theme", "system", "--scheme",
      "light"}},
};

std::string Draw(const Stored& picture, const std::string& scale) {
  std::vector<std::string> arguments{"render"};
  arguments.insert(arguments.end(), picture.arguments.begin(), picture.arguments.end());
  arguments.insert(arguments.end(), {"--at", "2027-05-12T17:45:00Z", "--scale", scale, "-o", "-"});
  const bool hasLocale =
      std::find(arguments.begin(), arguments.end(), "--locale") != arguments.end();
  if (!hasLocale) arguments.insert(arguments.end(), {"--locale", "en"});
  const Result result = Call(arguments);
  EXPECT_EQ(result.code, 0) << result.err;
  return result.out;
}

class StoredPictures : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("TZ", "UTC", 1);
    if (HasFont("DejaVu Sans")) return;
    constexpr const char* kMissing =
        "THE PICTURES WERE NOT COMPARED: the font DejaVu Sans is not here; script/bootstrap test "
        "installs it";
    if (std::getenv("CI") != nullptr) FAIL() << kMissing;
    GTEST_SKIP() << kMissing;
  }
  const DataFolder data_;
};

TEST_F(StoredPictures, LookAsEver) {
  const bool stores = std::getenv("LUMENQUEST_STORE_PICTURES") != nullptr;
  for (const Stored& picture : kPictures) {
    SCOPED_TRACE(picture.name);
    const std::string file =
        std::string(LUMENQUEST_TEST_DATA) + "/pictures/" + picture.name + ".png";
    const std::string png = Draw(picture, "2");
    if (stores) {
      std::ofstream(file, std::ios::binary) << png;
      continue;
    }
    const std::string expected = testing::Contents(file);
    ASSERT_FALSE(expected.empty()) << "script/pictures draws " << file;
    const Picture now{Pixels(png)};
    const Picture before{Pixels(expected)};
    ASSERT_EQ(now.width, before.width);
    ASSERT_EQ(now.height, before.height);
    const Difference difference = Compare(now, before);
    const std::string drawn = ::testing::TempDir() + picture.name + ".png";
    if (!AreAlike(difference)) std::ofstream(drawn, std::ios::binary) << png;
    EXPECT_TRUE(AreAlike(difference))
        << "mean " << difference.mean << " of " << kMostMean << ", blurred " << difference.blurred
        << " of " << kMostBlurred << ": compare " << drawn
        << "; if it is meant to look like this, script/pictures stores it";
  }
}

}  // namespace
}  // namespace lumenquest::app
