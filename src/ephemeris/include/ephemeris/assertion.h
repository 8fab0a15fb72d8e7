#pragma once

namespace ephemeris {

/// Reports a programming error on the standard error stream, naming function, file, line and
/// expression, and ends the process. Active in every build type.
[[noreturn]] void assertionFailed(const char* function, const char* file, int line,
                                  const char* expression);

/// The part of a path behind its last slash.
constexpr const char* baseName(const char* path) {
  const char* name = path;
  for (; *path != '\0'; ++path) {
    if (*path == '/') name = path + 1;
  }
  return name;
}

}  // namespace ephemeris

/// Stops the program when `expression` is false. For programming errors only; input that comes
/// from outside is checked where it comes in and answered with an error.
#define LUMENQUEST_ASSERT(expression)                                                     \
  ((expression) ? static_cast<void>(0)                                                    \
                : ::ephemeris::assertionFailed(__func__, ::ephemeris::baseName(__FILE__), \
                                               __LINE__, #expression))
