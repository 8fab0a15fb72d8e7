#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "ephemeris/pt_moon.h"
#include "ephemeris/pt_position.h"
#include "ephemeris/pt_sun.h"
#include "events/body_info_event.h"
#include "events/milky_way.h"
#include "events/sun_event.h"
#include "events/twilight.h"
#include "platform/core_location.h"
#include "platform/ns_date.h"

namespace lumenquest::events {

/// What the calculators of a place's day share: the place, the bounds of its days, and the values
/// that both show.
class DayCalculator {
 public:
  const std::optional<platform::CLLocation>& currentLocation() const { return currentLocation_; }
  /// The place to compute for; nothing: no place, and no computation.
  void setCurrentLocation(const std::optional<platform::CLLocation>& location);

  /// Reads the clock and fixes yesterday, today and tomorrow in the cached calendar.
  void updateDates();

  /// A day's light phases from its crossings; sunrise and sunset stay 0.
  static SunEvent sunEventFromTwilight(const Twilights& twilights);

  /// The rise and set to show. The Sun's rise is tomorrow's from noon on once today's is past; the
  /// Moon's rise and set are tomorrow's four hours after they happened; and either is tomorrow's
  /// when today has none and tomorrow does.
  void calculateRiseSetForBody(ephemeris::PtPlanet& body, bool isSun, double* rise,
                               double* set) const;
  /// Stores both bodies' rise and set; a null body leaves its pair untouched.
  void calculateSunMoonRiseSetWithSun(ephemeris::PtSun* sun, ephemeris::PtMoon* andMoon);

  /// Whether the value is an instant, not one of the special values.
  static bool addEventWithMjd(double mjd);

  /// The first change of light after now among these crossings, named by the light that begins.
  std::shared_ptr<BodyInfoEvent> calculateNextLightWithSun(ephemeris::PtSun& sun,
                                                           const Twilights& twilights) const;
  /// The same among today's and, failing these, tomorrow's crossings.
  std::shared_ptr<BodyInfoEvent> calculateNextLightWithSun(ephemeris::PtSun& sun) const;

  /// Evaluations of the Sun's and the Moon's series by the last calculation, for benchmarks.
  std::int64_t positionsComputed() const { return positionsComputed_; }

  // MJD, UT.
  double mjdTodayAt0 = 0.0;
  double mjdTomorrowAt0 = 0.0;
  double mjdSunRise = 0.0;
  double mjdSunSet = 0.0;
  double mjdMoonRise = 0.0;
  double mjdMoonSet = 0.0;
  double mjdGcVisibilityStart = 0.0;
  double mjdGcVisibilityEnd = 0.0;
  /// Signed tilt of the galactic band at both ends of the visibility, radians.
  double gcVisibilityStartAngle = 0.0;
  double gcVisibilityEndAngle = 0.0;

  std::string currentLightType;
  std::optional<std::string> goldenHourInterval;
  std::optional<std::string> blueHourInterval;
  std::optional<std::string> astronomicalTwilightInterval;
  /// The phase's text with illumination.
  std::optional<std::string> moonPhase;
  std::optional<platform::NSDate> dateNextVisiblity;

 protected:
  ~DayCalculator() = default;

  void dropTwilights();
  /// Crossings of today, yesterday and tomorrow, all with today's ΔT.
  void calculateTwilights(ephemeris::PtSun& sun);
  void calculateIntervals();
  /// Tonight's window and the band's tilt at its ends. False when there is none.
  bool calculateGalacticCenterWindow(ephemeris::PtMilkyWay& milkyWay, ephemeris::PtSun& sun,
                                     platform::NSDate date);
  /// Whether the phase is a full Moon that counts as a supermoon.
  bool isSupermoonPhase(const MoonPhaseResult& phase, ephemeris::PtMoon& moon) const;
  /// The phase's text, under the supermoon's name when it is one.
  static std::string phaseText(const MoonPhaseResult& phase, bool isSupermoon);

  ephemeris::PtPosition currentPosition_;
  double mjdNow_ = 0.0;
  /// ΔT of today at 0 h, days.
  double deltaT_ = 0.0;
  platform::NSDate currentDate_;
  std::int64_t positionsComputed_ = 0;

 private:
  std::optional<platform::CLLocation> currentLocation_;
  double mjdTodayAtNoon_ = 0.0;
  double mjdYesterdayAt0_ = 0.0;
  std::optional<Twilights> todayTwilights_;
  std::optional<Twilights> yesterdayTwilights_;
  std::optional<Twilights> tomorrowTwilights_;
};

}  // namespace lumenquest::events
