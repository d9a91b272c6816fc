#include "tools/lib/common/PrintfString.h"

#include <cstdarg>
#include <cstdio>

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

}  // namespace pctool
