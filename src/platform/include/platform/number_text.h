#pragma once

#include <string>

namespace lumenquest::platform {

/// A number in the user's digits, with so many decimals.
std::string numberText(double number, int decimals, bool isGrouped = false);

}  // namespace lumenquest::platform
