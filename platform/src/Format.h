// printf-style formatting into a std::string, shared by the log and String8.
#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>

namespace pchost {

inline std::string vformat(const char* fmt, va_list ap) {
  va_list copy;
  va_copy(copy, ap);
  int n = vsnprintf(nullptr, 0, fmt, copy);
  va_end(copy);
  std::string text(n > 0 ? static_cast<size_t>(n) : 0, '\0');
  if (n > 0) vsnprintf(&text[0], text.size() + 1, fmt, ap);
  return text;
}

}  // namespace pchost
