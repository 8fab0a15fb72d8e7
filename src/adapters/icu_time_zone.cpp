#include "icu_time_zone.h"

#include <absl/time/civil_time.h>
#include <absl/time/time.h>
#include <unicode/gregocal.h>

#include <cmath>

#include "icu_strings.h"

namespace lumenquest::adapters {

namespace {

constexpr double kMillisPerSecond = 1000.0;

class SystemTimeZone final : public icu::TimeZone {
 public:
  SystemTimeZone(const std::string& name, absl::TimeZone zone)
      : icu::TimeZone(FromUtf8(name)), zone_(zone) {}

  void getOffset(UDate date, UBool local, int32_t& rawOffset, int32_t& dstOffset,
                 UErrorCode& status) const override {
    if (U_FAILURE(status)) return;
    rawOffset = OffsetMillis(date, local);
    // Whether a change of offset is called summer time shows in no text of ours.
    dstOffset = 0;
  }

  int32_t getOffset(uint8_t era, int32_t year, int32_t month, int32_t day, uint8_t, int32_t millis,
                    UErrorCode& status) const override {
    if (U_FAILURE(status)) return 0;
    const int32_t astronomicalYear = era == icu::GregorianCalendar::AD ? year : 1 - year;
    const absl::CivilSecond civil(absl::CivilDay(astronomicalYear, month + 1, day));
    return OffsetMillis(WallMillis(civil) + millis, true);
  }

  int32_t getOffset(uint8_t era, int32_t year, int32_t month, int32_t day, uint8_t dayOfWeek,
                    int32_t millis, int32_t, UErrorCode& status) const override {
    return getOffset(era, year, month, day, dayOfWeek, millis, status);
  }

  int32_t getRawOffset() const override { return OffsetMillis(0.0, false); }
  void setRawOffset(int32_t) override {}
  UBool useDaylightTime() const override { return false; }
  UBool inDaylightTime(UDate, UErrorCode&) const override { return false; }

  SystemTimeZone* clone() const override { return new SystemTimeZone(*this); }

  static UClassID getStaticClassID() {
    static char classId = 0;
    return &classId;
  }
  UClassID getDynamicClassID() const override { return getStaticClassID(); }

 private:
  static double WallMillis(const absl::CivilSecond& civil) {
    return static_cast<double>(civil - absl::CivilSecond(1970, 1, 1)) * kMillisPerSecond;
  }

  int32_t OffsetMillis(UDate date, bool local) const {
    const auto seconds = static_cast<int64_t>(std::floor(date / kMillisPerSecond));
    if (!local) {
      return static_cast<int32_t>(zone_.At(absl::FromUnixSeconds(seconds)).offset * 1000);
    }
    // A time in a gap counts with the offset before it, so that it moves forward by the gap; a
    // repeated time counts as its first occurrence.
    const absl::CivilSecond wall = absl::CivilSecond(1970, 1, 1) + seconds;
    const int64_t utc = absl::ToUnixSeconds(zone_.At(wall).pre);
    return static_cast<int32_t>((seconds - utc) * 1000);
  }

  absl::TimeZone zone_;
};

}  // namespace

std::unique_ptr<icu::TimeZone> makeIcuTimeZone(const platform::NSTimeZone& zone) {
  if (zone == platform::NSTimeZone::gmt()) {
    return std::unique_ptr<icu::TimeZone>(icu::TimeZone::getGMT()->clone());
  }
  absl::TimeZone systemZone = absl::UTCTimeZone();
  absl::LoadTimeZone(zone.name, &systemZone);
  return std::make_unique<SystemTimeZone>(zone.name, systemZone);
}

}  // namespace lumenquest::adapters
