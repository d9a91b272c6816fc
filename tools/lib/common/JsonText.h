// The small pieces the workbench's hand-written JSON is made of (no dependency).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pctool {

// `decimals` places; "null" for a value that is not finite.
std::string jsonNumber(double v, int decimals = 4);
// A quoted, escaped JSON string.
std::string jsonString(const std::string& s);
std::string jsonStrings(const std::vector<std::string>& v);

template <typename T, size_t N>
std::string jsonArray(const T (&v)[N]) {
  std::string o = "[";
  for (size_t i = 0; i < N; ++i) o += (i ? "," : "") + std::to_string(v[i]);
  return o + "]";
}

}  // namespace pctool
