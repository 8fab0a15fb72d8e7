#pragma once

namespace ephemeris {

/// Reports a programming error on the standard error stream, naming function, file, line and
/// expression, and ends the process. Active in every build type.
[[noreturn]] void assertionFailed(const char* function, const char* file, int line,
                                  const char* expression);

}  // namespace ephemeris

/// Stops the program when `expression` is false. For programming errors only; input that comes
/// from outside is checked where it comes in and answered with an error.
#define LUMENQUEST_ASSERT(expression)  \
  ((expression) ? static_cast<void>(0) \
                : ::ephemeris::assertionFailed(__func__, __FILE_NAME__, __LINE__, #expression))
