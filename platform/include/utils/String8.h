// android::String8: a UTF-8 string, mostly for printing UTF-16 names.
#pragma once

#include <cstddef>
#include <string>

namespace android {

class String16;

class String8 {
 public:
  String8() = default;
  explicit String8(const char* o) : mData(o ? o : "") {}
  String8(const char* o, size_t len) : mData(o ? std::string(o, len) : std::string()) {}
  explicit String8(const String16& o);

  static String8 format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
  void append(const char* o) { mData += (o ? o : ""); }
  void append(const String8& o) { mData += o.mData; }

  size_t size() const { return mData.size(); }
  size_t length() const { return mData.size(); }
  bool empty() const { return mData.empty(); }
  const char* c_str() const { return mData.c_str(); }
  const char* string() const { return mData.c_str(); }

  bool operator==(const String8& o) const { return mData == o.mData; }
  bool operator!=(const String8& o) const { return mData != o.mData; }
  bool operator<(const String8& o) const { return mData < o.mData; }

 private:
  std::string mData;
};

}  // namespace android
