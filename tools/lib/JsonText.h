// Pieces of hand-written JSON (no dependency for a few flat records).
#pragma once

#include <string>

namespace pctool {

// A JSON string literal: quotes and backslashes escaped, control characters as \u00XX.
std::string jsonQuote(const std::string& s);
// A number with `decimals` places, or null when it is not finite.
std::string jsonNumber(double v, int decimals = 4);

}  // namespace pctool
