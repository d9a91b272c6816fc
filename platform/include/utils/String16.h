// android::String16: an immutable-looking UTF-16 string, as service names are passed.
#pragma once

#include <cstddef>
#include <string>

namespace android {

class String8;

class String16 {
 public:
  String16() = default;
  explicit String16(const char* utf8);
  String16(const char* utf8, size_t len);
  explicit String16(const char16_t* o);
  String16(const char16_t* o, size_t len);
  explicit String16(const String8& o);

  size_t size() const { return mData.size(); }
  const char16_t* c_str() const { return mData.c_str(); }
  const char16_t* string() const { return mData.c_str(); }
  bool empty() const { return mData.empty(); }

  bool operator==(const String16& o) const { return mData == o.mData; }
  bool operator!=(const String16& o) const { return mData != o.mData; }
  bool operator<(const String16& o) const { return mData < o.mData; }

 private:
  std::u16string mData;
};

}  // namespace android
