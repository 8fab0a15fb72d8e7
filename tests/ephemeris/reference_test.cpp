// Holds every operation of the engine against values that an independent implementation in another
// language computed (tests/data/README.md). The worst deviation of each operation is printed.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "ephemeris/constants.h"
#include "ephemeris/pt_date_time.h"
#include "ephemeris/pt_math.h"
#include "ephemeris/pt_milky_way.h"
#include "ephemeris/pt_moon.h"
#include "ephemeris/pt_moon_apogee_perigee.h"
#include "ephemeris/pt_phases_of_the_moon.h"
#include "ephemeris/pt_sun.h"

namespace ephemeris {
namespace {

using Json = nlohmann::json;

/// Units in the last place by which a number may differ: the machines' sine and cosine differ by
/// one, and the difference grows along a chain of operations.
constexpr double kUlps = 16.0;

PtPosition Observer(const Json& in) {
  PtPosition position;
  position.latitude = in.value("latitude", 0.0);
  position.longitude = in.value("longitude", 0.0);
  position.height = in.value("height", 0.0);
  position.horizonHeight = in.value("horizonHeight", 0.0);
  position.CalcObserverCoords();
  return position;
}

PtDateTime DateOf(const Json& in) {
  PtDateTime date;
  date.year = in.at("year");
  date.month = in.at("month");
  date.day = in.at("day");
  date.hour = in.at("hour");
  date.minute = in.at("minute");
  return date;
}

Json ToJson(const PtDateTime& date) {
  return {{"year", date.year},
          {"month", date.month},
          {"day", date.day},
          {"hour", date.hour},
          {"minute", date.minute}};
}

Json ToJson(const PtApogeePerigee& event) {
  Json out = ToJson(event.date);
  out["kind"] = event.kind;
  out["distance"] = event.distance;
  return out;
}

std::unique_ptr<PtPlanet> Body(const Json& in) {
  const std::string name = in.value("body", "milkyWay");
  if (name == "sun") return std::make_unique<PtSun>(Observer(in));
  if (name == "moon") return std::make_unique<PtMoon>(Observer(in));
  return std::make_unique<PtMilkyWay>(Observer(in));
}

Json Polar(Vector3D v) {
  return {{"phi", v[pol_index::phi]}, {"theta", v[pol_index::theta]}, {"r", v[pol_index::r]}};
}

Json Cartesian(const Vector3D& v) { return {v[index::x], v[index::y], v[index::z]}; }

using Operation = std::function<Json(const Json&)>;

const std::map<std::string, Operation>& Operations() {
  static const std::map<std::string, Operation> operations{
      {"PtDateTime.ModifiedJulianDay",
       [](const Json& in) {
         const PtDateTime date = DateOf(in);
         return Json{{"mjd", date.ModifiedJulianDay()}, {"jd", date.JulianDay()}};
       }},
      {"PtDateTime.FromModifiedJulianDay",
       [](const Json& in) {
         PtDateTime date;
         date.FromModifiedJulianDay(in.at("mjd"));
         return ToJson(date);
       }},
      {"PtDateTime.DeltaT",
       [](const Json& in) {
         return Json{{"deltaT", DateOf(in).DeltaT()}};
       }},
      {"PtDateTime.SiderealTimeAtGreenwich",
       [](const Json& in) {
         return Json{{"hours", PtDateTime::SiderealTimeAtGreenwich(in.at("mjd"))}};
       }},
      {"PtMath.QuadraticInterpolation",
       [](const Json& in) {
         constexpr double kUntouched = 1e99;
         double xe = 0.0, ye = 0.0, root1 = kUntouched, root2 = kUntouched;
         int nRoot = 0;
         PtMath::QuadraticInterpolation(in.at("yMinus"), in.at("y0"), in.at("yPlus"), xe, ye, root1,
                                        root2, nRoot);
         const auto orNull = [](double root) { return root == kUntouched ? Json() : Json(root); };
         return Json{{"xe", xe},
                     {"ye", ye},
                     {"root1", orNull(root1)},
                     {"root2", orNull(root2)},
                     {"nRoot", nRoot}};
       }},
      {"PtSun.GetEclipticPosition",
       [](const Json& in) {
         return Polar(PtSun(PtPosition()).GetEclipticPosition(in.at("T"), in.at("highPrecision")));
       }},
      {"PtMoon.GetEclipticPosition",
       [](const Json& in) {
         return Polar(PtMoon(PtPosition()).GetEclipticPosition(in.at("T"), in.at("highPrecision")));
       }},
      {"GetEquatorialPosition",
       [](const Json& in) {
         const auto body = Body(in);
         Json out = Polar(
             body->GetEquatorialPosition(in.at("mjd"), in.at("deltaT"), in.at("highPrecision")));
         out["mean"] = Cartesian(body->equatorialPosition());
         out["obliquity"] = body->obliquity();
         out["nutationInLongitude"] = body->nutationInLongitude();
         out["nutationInObliquity"] = body->nutationInObliquity();
         out["apparentSiderealTime"] = body->CalculateApparentSiderealTime(in.at("mjd"));
         return out;
       }},
      {"CalculateEclipticEquatorialAndHorizontalPositions",
       [](const Json& in) {
         const auto body = Body(in);
         body->CalculateEclipticEquatorialAndHorizontalPositions(in.at("mjd"), in.at("deltaT"),
                                                                 in.at("highPrecision"));
         return Json{{"azimuth", body->horizontalPosition().phi},
                     {"elevation", body->horizontalPosition().theta},
                     {"distance", body->horizontalPosition().r},
                     {"semidiameter", body->semidiameter()},
                     {"hourAngle", body->hourAngle()}};
       }},
      {"RefractionApparent",
       [](const Json& in) {
         return Json{{"r", PtSun(PtPosition()).RefractionApparent(in.at("h"))}};
       }},
      {"RefractionTrue",
       [](const Json& in) {
         PtSun sun{PtPosition()};
         return Json{{"r", sun.RefractionTrue(in.at("h"))},
                     {"apparent", sun.TrueToApparentElevation(in.at("h"), 0.0, 0.0)}};
       }},
      {"GetGeoElevation",
       [](const Json& in) {
         PtSun sun(Observer(in));
         const double horizonHeight = sun.observer()->horizonHeight;
         return Json{
             {"e", sun.GetGeoElevation(in.at("sinPi"), in.at("h"))},
             {"apparentToTrue", sun.ApparentToTrueElevation(in.at("h"), 0.0, horizonHeight)}};
       }},
      {"GetSinH",
       [](const Json& in) {
         const auto type = static_cast<AltitudeType>(in.at("type").get<int>());
         return Json{{"sinH", Body(in)->GetSinH(in.at("altitude"), type, in.at("distance"))}};
       }},
      {"FindEvents",
       [](const Json& in) {
         double rise = 0.0, set = 0.0;
         Body(in)->FindEvents(static_cast<SearchEvent>(in.at("event").get<int>()), in.at("mjd0"),
                              in.at("deltaT"), &rise, &set);
         return Json{{"rise", rise}, {"set", set}};
       }},
      {"PtMoon.CalculatePhase",
       [](const Json& in) {
         PtSun sun(Observer(in));
         PtMoon moon(Observer(in));
         sun.CalculateEclipticEquatorialAndHorizontalPositions(in.at("mjd"), in.at("deltaT"), true);
         moon.CalculateEclipticEquatorialAndHorizontalPositions(in.at("mjd"), in.at("deltaT"),
                                                                true);
         Vector3D vectors[] = {moon.eclipticPosition(), moon.equatorialPosition(),
                               sun.eclipticPosition(), sun.equatorialPosition()};
         MoonPhase phase;
         moon.CalculatePhase(&vectors[0], &vectors[1], &vectors[2], &vectors[3], moon.hourAngle(),
                             &phase);
         return Json{{"illumination", phase.illumination},
                     {"phaseAngle", phase.phaseAngle},
                     {"waxing", phase.waxing},
                     {"parallacticAngle", phase.parallacticAngle},
                     {"brightLimbZenithAngle", phase.brightLimbZenithAngle},
                     {"phaseType", static_cast<int>(phase.phaseType)}};
       }},
      {"PtPhasesOfTheMoon.CalculatePhase",
       [](const Json& in) {
         double before = 0.0, next = 0.0, following = 0.0;
         PtPhasesOfTheMoon().CalculatePhase(DateOf(in),
                                            static_cast<MoonPhaseType>(in.at("type").get<int>()),
                                            &before, &next, &following);
         return Json{{"before", before}, {"next", next}, {"following", following}};
       }},
      {"PtPhasesOfTheMoon.CalculatePhasesForMonth",
       [](const Json& in) {
         PtMoonPhases phases;
         PtPhasesOfTheMoon().CalculatePhasesForMonth(DateOf(in), &phases);
         Json list = Json::array();
         for (const auto& phase : phases) {
           Json entry = ToJson(phase->date);
           entry["type"] = static_cast<int>(phase->type);
           list.push_back(entry);
         }
         return Json{{"phases", list}};
       }},
      {"PtMoonApogeePerigee.CalculateForK",
       [](const Json& in) {
         PtApogeePerigee event;
         const bool ok = PtMoonApogeePerigee().CalculateForK(in.at("k"), &event);
         Json out = ok ? ToJson(event) : Json();
         out["ok"] = ok;
         return out;
       }},
      {"PtMoonApogeePerigee.CalculateValuesForYear",
       [](const Json& in) {
         std::vector<std::unique_ptr<PtApogeePerigee>> events;
         PtMoonApogeePerigee().CalculateValuesForYear(in.at("year"), &events);
         Json list = Json::array();
         for (const auto& event : events) list.push_back(ToJson(*event));
         return Json{{"events", list}};
       }},
      {"PtMilkyWay.CalculateMilkyWayPosition",
       [](const Json& in) {
         PtMilkyWay milkyWay(Observer(in));
         Vector3D centre, band;
         double tilt = 0.0, highestAzimuth = 0.0, signedTilt = 0.0;
         milkyWay.CalculateMilkyWayPosition(in.at("mjd"), in.at("deltaT"), &centre, &band, &tilt,
                                            &highestAzimuth, &signedTilt);
         return Json{{"azimuth", milkyWay.horizontalPosition().phi},
                     {"elevation", milkyWay.horizontalPosition().theta},
                     {"centreHorizontal", Cartesian(centre)},
                     {"bandDirection", Cartesian(band)},
                     {"tilt", tilt},
                     {"highestAzimuth", highestAzimuth},
                     {"signedTilt", signedTilt}};
       }},
      {"PtMilkyWay.FindRiseSet",
       [](const Json& in) {
         PtMilkyWay milkyWay(Observer(in));
         double rise = 0.0, set = 0.0, from = 0.0, to = 0.0;
         milkyWay.FindRiseSet(in.at("mjd0"), in.at("deltaT"), in.at("nightEnd"),
                              in.at("nightStart"), &rise, &set, &from, &to);
         return Json{{"rise", rise}, {"set", set}, {"visibleFrom", from}, {"visibleTo", to}};
       }},
      {"PtMilkyWay.FindVisibleFromTo",
       [](const Json& in) {
         double from = 0.0, to = 0.0;
         PtMilkyWay(PtPosition())
             .FindVisibleFromTo(in.at("rise"), in.at("set"), in.at("nightEnd"), in.at("nightStart"),
                                &from, &to);
         return Json{{"visibleFrom", from}, {"visibleTo", to}};
       }},
  };
  return operations;
}

/// Deviation in units in the last place of numbers of order one or of the value itself, whichever
/// is larger. Values near zero come out of differences of values of order one. A value that is
/// computed in single precision has larger units, and there, too, the machines' functions differ
/// (from version 2.41 on glibc's arc tangent is the nearest number, before it was close).
double Ulps(double actual, double expected, bool isSingle) {
  const double magnitude = std::max(1.0, std::fabs(expected));
  const double ulp = std::nextafter(magnitude, INFINITY) - magnitude;
  return std::fabs(actual - expected) / (isSingle ? ulp * 0x1p29 : ulp);
}

/// Compares all that the reference has; returns the worst deviation.
double Compare(const Json& actual, const Json& expected, const std::string& where) {
  double worst = 0.0;
  if (expected.is_object()) {
    for (const auto& [key, value] : expected.items()) {
      worst = std::max(worst, Compare(actual.at(key), value, where + "." + key));
    }
  } else if (expected.is_array()) {
    EXPECT_EQ(actual.size(), expected.size()) << where;
    for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i) {
      worst = std::max(worst, Compare(actual[i], expected[i], where + "[]"));
    }
  } else if (expected.is_number_float()) {
    worst = Ulps(actual.get<double>(), expected.get<double>(), where.ends_with(".highestAzimuth"));
    EXPECT_LE(worst, kUlps) << where << ": " << actual << " instead of " << expected;
  } else if (expected.is_string()) {
    // What JSON has no number for.
    const double value = actual.get<double>();
    const std::string text = std::isnan(value) ? "nan" : (value > 0.0 ? "inf" : "-inf");
    EXPECT_EQ(text, expected.get<std::string>()) << where;
  } else {
    EXPECT_EQ(actual, expected) << where;
  }
  return worst;
}

TEST(Reference, EveryOperationAgreesToTheLastBits) {
  std::ifstream file(LUMENQUEST_TEST_DATA "/engine_reference.jsonl");
  ASSERT_TRUE(file) << "reference data missing";
  std::map<std::string, std::pair<int, double>> summary;
  for (std::string line; std::getline(file, line);) {
    const Json entry = Json::parse(line);
    const std::string op = entry.at("op");
    ASSERT_TRUE(Operations().contains(op)) << op;
    const Json actual = Operations().at(op)(entry.at("in"));
    const double worst = Compare(actual, entry.at("out"), op + entry.at("in").dump());
    auto& [count, worstOfAll] = summary[op];
    ++count;
    worstOfAll = std::max(worstOfAll, worst);
  }
  EXPECT_EQ(summary.size(), Operations().size());
  for (const auto& [op, result] : summary) {
    std::printf("%-55s %4d cases, worst %4.1f ulps\n", op.c_str(), result.first, result.second);
  }
}

}  // namespace
}  // namespace ephemeris
