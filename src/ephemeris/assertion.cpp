#include "ephemeris/assertion.h"

#include <cstdio>
#include <cstdlib>

namespace ephemeris {

void assertionFailed(const char* function, const char* file, int line, const char* expression) {
  std::fprintf(stderr, "Assertion failed: (%s), function %s, file %s, line %d.\n", expression,
               function, file, line);
  std::abort();
}

}  // namespace ephemeris
