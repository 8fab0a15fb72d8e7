#include <cstdio>

#include "ephemeris/pt_date_time.h"
#include "ephemeris/pt_sun.h"

int main() {
  ephemeris::PtDateTime noon;
  noon.year = 2024;
  noon.month = 6;
  noon.day = 20;
  noon.hour = 12;
  ephemeris::PtPosition greenwich;
  greenwich.latitude = 51.48;
  greenwich.CalcObserverCoords();
  ephemeris::PtSun sun(greenwich);
  sun.CalculateEclipticEquatorialAndHorizontalPositions(noon.ModifiedJulianDay(), noon.DeltaT(),
                                                        true);
  std::printf("%.2f\n", sun.horizontalPosition().theta);
  // 90° − 51.48° + 23.44° at noon of the solstice.
  return sun.horizontalPosition().theta > 61.9 && sun.horizontalPosition().theta < 62.0 ? 0 : 1;
}
