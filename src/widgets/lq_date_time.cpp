#include "widgets/lq_date_time.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>
#include <utility>

#include "platform/assertion.h"
#include "platform/ns_calendar.h"

namespace lumenquest::widgets {

namespace {

using Integer = std::int64_t;

/// JD − MJD.
constexpr double kMjdOffset = 2400000.5;
constexpr double kDaysPerJulianCentury = 36525.0;
constexpr double kSecondsPerDay = 86400.0;
/// 2^63, the first number beyond.
constexpr double kIntegerEnd = 9223372036854775808.0;

// Integer terms that do not wrap around.

Integer Sum(Integer a, Integer b) {
  using Limits = std::numeric_limits<Integer>;
  LUMENQUEST_ASSERT(b > 0 ? a <= Limits::max() - b : a >= Limits::min() - b);
  return a + b;
}

/// `factor` is positive.
Integer Product(Integer factor, Integer a) {
  using Limits = std::numeric_limits<Integer>;
  LUMENQUEST_ASSERT(Limits::min() / factor <= a && a <= Limits::max() / factor);
  return factor * a;
}

/// Towards zero.
Integer IntegerPart(double x) {
  LUMENQUEST_ASSERT(-kIntegerEnd <= x && x < kIntegerEnd);
  return static_cast<Integer>(x);
}

double Double(Integer x) { return static_cast<double>(x); }

/// Days before each month of a common year, by its number. decimalYear() and with it ΔT are scaled
/// to these very entries, so the day that is missing from July on stays missing.
constexpr std::array<Integer, 13> kDaysBeforeMonth{0,   0,   31,  59,  90,  120, 151,
                                                   180, 211, 242, 272, 303, 333};

/// ΔT in seconds over the years before `end`, from the end of the row before: a polynomial in
/// (year − origin) / unit.
struct DeltaTPolynomial {
  double end;
  double origin;
  double unit;
  /// Of ascending powers.
  std::array<double, 8> coefficients;
};

constexpr double kNoEnd = std::numeric_limits<double>::infinity();

// clang-format off
/// Espenak and Meeus (2006), the terms as they are printed there.
constexpr std::array<DeltaTPolynomial, 14> kDeltaT{{
    // end, origin,  unit, coefficients
    {-500.0, 1820.0, 100.0, {-20.0, 0.0, 32.0}},
    { 500.0,    0.0, 100.0, {10583.6, -1014.41, 33.78311, -5.952053, -0.1798452, 0.022174192, 0.0090316521}},
    {1600.0, 1000.0, 100.0, {1574.2, -556.01, 71.23472, 0.319781, -0.8503463, -0.005050998, 0.0083572073}},
    {1700.0, 1600.0,   1.0, {120.0, -0.9808, -0.01532, 1.0 / 7129.0}},
    {1800.0, 1700.0,   1.0, {8.83, 0.1603, -0.0059285, 0.00013336, -1.0 / 1174000.0}},
    {1860.0, 1800.0,   1.0, {13.72, -0.332447, 0.0068612, 0.0041116, -0.00037436, 0.0000121272, -0.0000001699, 0.000000000875}},
    {1900.0, 1860.0,   1.0, {7.62, 0.5737, -0.251754, 0.01680668, -0.0004473624, 1.0 / 233174.0}},
    {1920.0, 1900.0,   1.0, {-2.79, 1.494119, -0.0598939, 0.0061966, -0.000197}},
    {1941.0, 1920.0,   1.0, {21.20, 0.84493, -0.076100, 0.0020936}},
    {1961.0, 1950.0,   1.0, {29.07, 0.407, -1.0 / 233.0, 1.0 / 2547.0}},
    {1986.0, 1975.0,   1.0, {45.45, 1.067, -1.0 / 260.0, -1.0 / 718.0}},
    {2005.0, 2000.0,   1.0, {63.86, 0.3345, -0.060374, 0.0017275, 0.000651814, 0.00002373599}},
    {2050.0, 2000.0,   1.0, {62.92, 0.32217, 0.005589}},
    {kNoEnd, 1820.0, 100.0, {-20.0, 0.0, 32.0}},
}};
// clang-format on

double DeltaTSeconds(double year) {
  // From 2050 to 2150 the parabola is led over from the expression before it.
  const double transition = 2050.0 <= year && year < 2150.0 ? -0.5628 * (2150.0 - year) : 0.0;
  const DeltaTPolynomial* row = kDeltaT.data();
  while (year >= row->end) ++row;
  const double t = (year - row->origin) / row->unit;
  double sum = 0.0;
  for (auto c = row->coefficients.rbegin(); c != row->coefficients.rend(); ++c) sum = sum * t + *c;
  return sum + transition;
}

/// Beyond these days around MJD 0 a calendar's 32-bit day numbers end; some two million years.
constexpr double kCalendarReach = 7e8;

}  // namespace

double LQDateTime::time() const { return Double(hour_) + minutes_ / 60.0; }

double LQDateTime::modifiedJulianDay() const {
  Integer y = year_;
  Integer m = month_;
  if (m < 3) {
    m += 12;
    y = Sum(y, -1);
  }
  const Integer date = Sum(Sum(Product(10000, y), Product(100, m)), day_);
  const Integer leapDays = date < 15821005 ? Sum(y, 4716) / 4 - 1181 : y / 400 - y / 100 + y / 4;
  const Integer monthDays = IntegerPart(30.6001 * Double(Sum(m, 1)));
  const Integer midnight = Sum(Sum(Sum(Sum(Product(365, y), -679004), leapDays), monthDays), day_);
  return Double(midnight) + Double(hour_) / 24.0 + minutes_ / 1440.0;
}

double LQDateTime::julianDay() const { return modifiedJulianDay() + kMjdOffset; }

double LQDateTime::julianEphemerisDay() const { return julianDay() + deltaT(); }

void LQDateTime::fromModifiedJulianDay(double mjd) { fromJulianDay(mjd + kMjdOffset); }

void LQDateTime::fromJulianDay(double jd) {
  const double fromMidnight = jd + 0.5;
  const double wholeDays = std::floor(fromMidnight);
  const Integer z = IntegerPart(wholeDays);

  Integer a = z;
  if (z >= 2299161) {
    const Integer alpha = IntegerPart((Double(z) - 1867216.25) / 36524.25);
    a = Sum(z, 1 + alpha - alpha / 4);
  }
  const Integer b = Sum(a, 1524);
  const Integer c = IntegerPart((Double(b) - 122.1) / 365.25);
  const Integer d = IntegerPart(365.25 * Double(c));
  const Integer e = IntegerPart(Double(b - d) / 30.6001);

  day_ = b - d - IntegerPart(30.6001 * Double(e));
  month_ = e < 14 ? e - 1 : e - 13;
  year_ = month_ > 2 ? c - 4716 : c - 4715;

  const double seconds = (fromMidnight - wholeDays) * kSecondsPerDay;
  const double hours = std::floor(seconds / 3600.0);
  hour_ = IntegerPart(hours);
  minutes_ = (seconds - hours * 3600.0) / 60.0;
}

double LQDateTime::julianCenturies() const { return mjdToJulianCenturies(modifiedJulianDay()); }

double LQDateTime::julianEphemerisCenturies() const {
  return (modifiedJulianDay() - MJD_J2000 + deltaT()) / kDaysPerJulianCentury;
}

double LQDateTime::mjdToJulianCenturies(double mjd) {
  return (mjd - MJD_J2000) / kDaysPerJulianCentury;
}

double LQDateTime::siderealTimeAtGreenwich(double mjd) {
  const double d0 = Double(IntegerPart(mjd));
  const double T = mjdToJulianCenturies(d0);
  const double ut = (mjd - d0) * 24.0;
  double gmst = ut * 1.0027379093 + 6.697374558 +
                T * (8640184.812866 + T * (0.093104 + T * -6.2e-6)) / 3600.0;
  gmst = gmst - std::floor(gmst / 24.0) * 24.0;
  if (gmst < 0.0) gmst += 24.0;
  return gmst;
}

bool LQDateTime::isLeapYear() const {
  return (year_ % 4 == 0 && year_ % 100 != 0) || year_ % 400 == 0;
}

double LQDateTime::decimalYear() const {
  LUMENQUEST_ASSERT(0 <= month_ && month_ <= 12);
  Integer days = Sum(kDaysBeforeMonth[static_cast<std::size_t>(month_)], day_);
  if (isLeapYear() && month_ > 2) days = Sum(days, 1);
  return Double(year_) + Double(days) / 365.0;
}

double LQDateTime::deltaT() const { return DeltaTSeconds(decimalYear()) / kSecondsPerDay; }

bool LQDateTime::isValid() const { return year_ != kUnset && month_ != kUnset && day_ != kUnset; }

bool LQDateTime::beforeOrEquals(const LQDateTime& other) const {
  return std::tie(year_, month_, day_, hour_, minutes_) <=
         std::tie(other.year_, other.month_, other.day_, other.hour_, other.minutes_);
}

bool LQDateTime::afterOrEquals(const LQDateTime& other) const {
  return other.beforeOrEquals(*this);
}

int LQDateTime::comapreTo(const LQDateTime& other) const {
  if (*this == other) return 0;
  return beforeOrEquals(other) ? -1 : 1;
}

std::optional<platform::NSDate> LQDateTime::toDate() const { return toDate(false); }

std::optional<platform::NSDate> LQDateTime::toDate(bool withSeconds) const {
  Integer minute = 0;
  Integer second = 0;
  if (withSeconds) {
    minute = IntegerPart(minutes_);
    second = IntegerPart((minutes_ - Double(minute)) * 60.0);
  } else {
    minute = IntegerPart(minutes_ + 0.5);
  }
  for (const Integer field : {year_, month_, day_, hour_, minute}) {
    if (!std::in_range<int>(field)) return std::nullopt;
  }
  if (!(std::fabs(modifiedJulianDay()) < kCalendarReach)) return std::nullopt;

  platform::NSDateComponents components;
  components.year = static_cast<int>(year_);
  components.month = static_cast<int>(month_);
  components.day = static_cast<int>(day_);
  components.hour = static_cast<int>(hour_);
  components.minute = static_cast<int>(minute);
  components.second = static_cast<int>(second);
  return platform::NSCalendar::gmtCachedCalendar().dateFromComponents(components);
}

}  // namespace lumenquest::widgets
