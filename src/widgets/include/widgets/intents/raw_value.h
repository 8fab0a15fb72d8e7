#pragma once

#include <cstdint>
#include <optional>

namespace lumenquest::widgets {

/// The value of an enumeration from its number in a stored configuration, or nothing when none has
/// it. The enumeration counts from 0 without gaps, and `lastValue(Enumeration)` tells its last one.
template <typename Enumeration>
constexpr std::optional<Enumeration> fromRawValue(std::int64_t rawValue) {
  if (rawValue < 0 || rawValue > static_cast<std::int64_t>(lastValue(Enumeration{}))) {
    return std::nullopt;
  }
  return static_cast<Enumeration>(rawValue);
}

}  // namespace lumenquest::widgets
