// The gazetteer behind the asynchronous geocoder.

#include "adapters/gazetteer_geocoder.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "queue_in_memory.h"

namespace lumenquest::adapters {
namespace {

using platform::CLLocation;
using platform::CLPlacemark;
using platform::NSError;
using platform::NSTimeZone;

const std::string kFile = LUMENQUEST_TEST_RESOURCES "/gazetteer.sqlite";

/// What a completion was called with.
struct Answer {
  int calls = 0;
  std::vector<CLPlacemark> placemarks;
  std::optional<NSError> error;

  platform::Geocoder::Completion Completion() {
    return [this](std::vector<CLPlacemark> found, std::optional<NSError> failure) {
      ++calls;
      placemarks = std::move(found);
      error = std::move(failure);
    };
  }
};

TEST(GazetteerGeocoder, AnswersOnTheQueueEvenWhenItIsGone) {
  const auto queue = std::make_shared<testing::QueueInMemory>();
  Answer forward, wilderness, nothing;
  {
    GazetteerGeocoder geocoder(std::make_shared<Gazetteer>(kFile, "en_US"), queue);
    geocoder.geocodeAddressString("Moab, Utah", forward.Completion());
    geocoder.reverseGeocodeLocation(CLLocation{{-23.7, -67.8}}, wilderness.Completion());
    geocoder.geocodeAddressString("qqqqzzzz", nothing.Completion());
    EXPECT_EQ(forward.calls + wilderness.calls + nothing.calls, 0);
  }
  queue->RunAll();
  for (const Answer* answer : {&forward, &wilderness, &nothing}) {
    EXPECT_EQ(answer->calls, 1);
    EXPECT_FALSE(answer->error);
  }
  ASSERT_FALSE(forward.placemarks.empty());
  EXPECT_EQ(forward.placemarks[0].shortTitle(), "Moab, United States");
  EXPECT_EQ(forward.placemarks[0].postalAddress,
            (platform::PostalAddress{"Moab", "Utah", "United States"}));
  // Far from every town there are hours, though no name.
  ASSERT_EQ(wilderness.placemarks.size(), 1u);
  EXPECT_EQ(wilderness.placemarks[0].timeZone, NSTimeZone{"America/Santiago"});
  EXPECT_EQ(wilderness.placemarks[0].cityTitle(), std::nullopt);
  EXPECT_TRUE(nothing.placemarks.empty());
}

TEST(GazetteerGeocoder, OpensAtTheFirstRequestAndAgainAfterAFailure) {
  const auto queue = std::make_shared<testing::QueueInMemory>();
  std::string path = kFile + ".not-there";
  int opened = 0;
  GazetteerGeocoder geocoder(
      [&] {
        ++opened;
        return std::make_shared<Gazetteer>(path, "en_US");
      },
      queue);
  Answer answer;
  geocoder.geocodeAddressString("Bled", answer.Completion());
  EXPECT_EQ(opened, 0);
  queue->RunAll();
  ASSERT_TRUE(answer.error);
  EXPECT_EQ(answer.error->domain, GazetteerGeocoder::kErrorDomain);
  EXPECT_EQ(answer.error->code, GazetteerGeocoder::kUnavailable);
  EXPECT_NE(answer.error->description().find(path), std::string::npos);

  path = kFile;
  for (int i = 0; i < 2; ++i) {
    geocoder.geocodeAddressString("Bled", answer.Completion());
    queue->RunAll();
    EXPECT_FALSE(answer.error);
    EXPECT_FALSE(answer.placemarks.empty());
  }
  EXPECT_EQ(opened, 2);
}

}  // namespace
}  // namespace lumenquest::adapters
