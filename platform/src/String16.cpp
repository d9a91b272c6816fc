#include <utils/String16.h>
#include <utils/String8.h>

#include <cstdint>

namespace android {

namespace {

// Decodes UTF-8; a malformed or truncated sequence becomes U+FFFD and decoding goes on.
std::u16string fromUtf8(const char* s, size_t len) {
  std::u16string out;
  if (s == nullptr) return out;
  out.reserve(len);
  const auto* p = reinterpret_cast<const unsigned char*>(s);
  size_t i = 0;
  while (i < len) {
    uint32_t c = p[i];
    if (c < 0x80) {
      out.push_back(static_cast<char16_t>(c));
      ++i;
      continue;
    }
    size_t extra = (c & 0xE0) == 0xC0 ? 1 : (c & 0xF0) == 0xE0 ? 2 : (c & 0xF8) == 0xF0 ? 3 : 0;
    if (extra == 0 || len - i <= extra) {
      out.push_back(u'\uFFFD');
      ++i;
      continue;
    }
    uint32_t cp = c & (0x3F >> extra);
    bool ok = true;
    for (size_t k = 1; k <= extra; ++k) {
      if ((p[i + k] & 0xC0) != 0x80) {
        ok = false;
        break;
      }
      cp = (cp << 6) | (p[i + k] & 0x3F);
    }
    if (!ok || cp > 0x10FFFF) {
      out.push_back(u'\uFFFD');
      ++i;
      continue;
    }
    i += extra + 1;
    if (cp >= 0x10000) {
      cp -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp));
    }
  }
  return out;
}

size_t length16(const char16_t* s) {
  size_t n = 0;
  while (s != nullptr && s[n] != 0) ++n;
  return n;
}

}  // namespace

String16::String16(const char* utf8) : mData(fromUtf8(utf8, utf8 ? std::char_traits<char>::length(utf8) : 0)) {}
String16::String16(const char* utf8, size_t len) : mData(fromUtf8(utf8, len)) {}
String16::String16(const char16_t* o) : mData(o ? std::u16string(o, length16(o)) : std::u16string()) {}
String16::String16(const char16_t* o, size_t len) : mData(o ? std::u16string(o, len) : std::u16string()) {}
String16::String16(const String8& o) : mData(fromUtf8(o.c_str(), o.size())) {}

}  // namespace android
