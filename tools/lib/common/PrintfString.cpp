#include "tools/lib/common/PrintfString.h"

#include <cstdarg>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace pctool {

std::string printfString(const char* format, ...) {
  char buf[512];
  va_list args;
  va_start(args, format);
  const int n = std::vsnprintf(buf, sizeof buf, format, args);
  va_end(args);
  if (n < 0) return "";
  if (static_cast<size_t>(n) < sizeof buf) return std::string(buf, static_cast<size_t>(n));
  std::string out(static_cast<size_t>(n) + 1, '\0');
  va_start(args, format);
  std::vsnprintf(&out[0], out.size(), format, args);
  va_end(args);
  out.resize(static_cast<size_t>(n));
  return out;
}

namespace {

// The first figure of `v` from `least` decimals on that `good` accepts; 17 significant
// digits, which read back exactly, when none does.
template <typename Good>
std::string firstFigure(double v, int least, Good good) {
  if (!std::isfinite(v)) return printfString("%g", v);
  for (int d = least < 0 ? 0 : least; d <= 17; ++d) {
    const std::string s = printfString("%.*f", d, v);
    if (good(std::strtod(s.c_str(), nullptr))) return s;
  }
  return printfString("%.17g", v);
}

}  // namespace

std::string exactFigure(double v, int least) {
  return firstFigure(v, least, [v](double read) { return read == v; });
}

std::string decidingFigure(double v, double limit, int least) {
  return firstFigure(v, least, [&](double read) { return (read <= limit) == (v <= limit); });
}

}  // namespace pctool
