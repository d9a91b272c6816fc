// HIDL value types: hidl_vec<T> (a vector) and hidl_string.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace android {
namespace hardware {

template <typename T>
class hidl_vec {
 public:
  using value_type = T;
  using iterator = typename std::vector<T>::iterator;
  using const_iterator = typename std::vector<T>::const_iterator;

  hidl_vec() = default;
  explicit hidl_vec(size_t size) : mData(size) {}
  hidl_vec(std::initializer_list<T> list) : mData(list) {}
  hidl_vec(const std::vector<T>& other) : mData(other) {}      // NOLINT
  hidl_vec(std::vector<T>&& other) : mData(std::move(other)) {}  // NOLINT
  template <typename InputIterator>
  hidl_vec(InputIterator first, InputIterator last) : mData(first, last) {}

  hidl_vec& operator=(const std::vector<T>& other) {
    mData = other;
    return *this;
  }
  operator std::vector<T>() const { return mData; }  // NOLINT

  size_t size() const { return mData.size(); }
  void resize(size_t size) { mData.resize(size); }
  T* data() { return mData.data(); }
  const T* data() const { return mData.data(); }
  T& operator[](size_t index) { return mData[index]; }
  const T& operator[](size_t index) const { return mData[index]; }
  iterator begin() { return mData.begin(); }
  iterator end() { return mData.end(); }
  const_iterator begin() const { return mData.begin(); }
  const_iterator end() const { return mData.end(); }

  bool operator==(const hidl_vec& o) const { return mData == o.mData; }
  bool operator!=(const hidl_vec& o) const { return mData != o.mData; }

 private:
  std::vector<T> mData;
};

class hidl_string {
 public:
  hidl_string() = default;
  hidl_string(const char* s) : mData(s ? s : "") {}  // NOLINT
  hidl_string(const char* s, size_t length) : mData(s ? std::string(s, length) : std::string()) {}
  hidl_string(const std::string& s) : mData(s) {}  // NOLINT

  const char* c_str() const { return mData.c_str(); }
  size_t size() const { return mData.size(); }
  bool empty() const { return mData.empty(); }
  operator std::string() const { return mData; }  // NOLINT

  bool operator==(const hidl_string& o) const { return mData == o.mData; }
  bool operator!=(const hidl_string& o) const { return mData != o.mData; }
  bool operator<(const hidl_string& o) const { return mData < o.mData; }

 private:
  std::string mData;
};

}  // namespace hardware
}  // namespace android
