#include <utils/String16.h>
#include <utils/String8.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>

#include "Format.h"

namespace android {

namespace {

void putUtf8(std::string& out, uint32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

}  // namespace

String8::String8(const String16& o) {
  const char16_t* s = o.c_str();
  size_t n = o.size();
  for (size_t i = 0; i < n; ++i) {
    uint32_t c = s[i];
    // A lone surrogate becomes U+FFFD.
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < n && s[i + 1] >= 0xDC00 && s[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (s[i + 1] - 0xDC00);
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    putUtf8(mData, c);
  }
}

String8 String8::format(const char* fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  String8 result;
  result.mData = pchost::vformat(fmt, ap);
  va_end(ap);
  return result;
}

}  // namespace android
