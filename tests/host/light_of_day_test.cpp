// The lights of a day.

#include "host/light_of_day.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "events/twilight.h"
#include "test_services.h"

namespace lumenquest::host {
namespace {

using ::testing::ElementsAre;
using testing::Instant;

constexpr Light kDay = Light::daytime, kGolden = Light::goldenHour, kBlue = Light::blueHour,
                kNautical = Light::nautical, kAstronomical = Light::astronomical,
                kNight = Light::night;

struct Place {
  ephemeris::PtSun sun;
  double start;
  double deltaT;

  Place(double latitude, double longitude, const char* midnight)
      : sun([&] {
          ephemeris::PtPosition observer;
          observer.latitude = latitude;
          observer.CalcObserverCoords();
          observer.longitude = longitude;
          return ephemeris::PtSun(observer);
        }()),
        start(Instant(midnight).modifiedJulianDay()),
        deltaT(Instant(midnight).ptDateTime().DeltaT()) {}

  std::vector<LightSpan> Spans() { return lightOfDay(sun, start, start + 1.0, deltaT); }
  std::vector<Light> Lights() {
    std::vector<Light> lights;
    for (const LightSpan& span : Spans()) lights.push_back(span.light);
    return lights;
  }
};

TEST(LightOfDay, EachLightFollowsTheOther) {
  const testing::TestServices services("2024-08-12T12:00:00Z");
  Place bled(46.36, 14.09, "2024-08-11T22:00:00Z");
  EXPECT_THAT(bled.Lights(), ElementsAre(kNight, kAstronomical, kNautical, kBlue, kGolden, kDay,
                                         kGolden, kBlue, kNautical, kAstronomical, kNight));
  const auto spans = bled.Spans();
  EXPECT_EQ(spans.front().mjdStart, bled.start);
  EXPECT_EQ(spans.back().mjdEnd, bled.start + 1.0);
  for (std::size_t i = 1; i < spans.size(); ++i) {
    EXPECT_EQ(spans[i].mjdStart, spans[i - 1].mjdEnd);
    EXPECT_LT(spans[i].mjdStart, spans[i].mjdEnd);
  }
  // The widgets' own instants, to the bit.
  const auto twilights =
      events::Twilight::calculateTwilightsForMjd(bled.start, bled.deltaT, bled.sun);
  EXPECT_EQ(spans[3].mjdStart, twilights.mjdCivilTwStart);
  EXPECT_EQ(spans[6].mjdStart, twilights.mjdGoldenHourStart);
}

TEST(LightOfDay, WhereTheSunDoesNotSetOrRise) {
  const testing::TestServices services("2024-06-20T12:00:00Z");
  EXPECT_THAT(Place(85.0, 0.0, "2024-06-21T00:00:00Z").Lights(), ElementsAre(kDay));
  EXPECT_THAT(Place(89.0, 0.0, "2024-12-21T00:00:00Z").Lights(), ElementsAre(kNight));
}

TEST(LightOfDay, DuskThatFallsTwiceInADay) {
  const testing::TestServices services("2024-07-20T12:00:00Z");
  // In early August night begins around midnight, summer time, in the middle of England.
  bool isSeen = false;
  for (int day = 0; day < 45 && !isSeen; ++day) {
    Place place(52.5, -1.5, "2024-07-10T23:00:00Z");
    place.start += day;
    const auto lights = place.Lights();
    isSeen = lights.size() > 2 && lights[0] == kAstronomical && lights[1] == kNight &&
             lights.back() == kNight;
  }
  EXPECT_TRUE(isSeen);
}

}  // namespace
}  // namespace lumenquest::host
