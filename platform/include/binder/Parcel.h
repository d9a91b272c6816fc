// android::Parcel: the flat buffer of a binder call. Values are 4-byte aligned; a read past
// the end fails with NOT_ENOUGH_DATA (or yields 0) and never reads outside the data.
#pragma once

#include <utils/Errors.h>
#include <utils/String16.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace android {

class Parcel {
 public:
  // A parcel never grows past this (a device's binder buffer is smaller still).
  static constexpr size_t kMaxDataSize = 1 << 20;

  Parcel() = default;

  const uint8_t* data() const { return mData.data(); }
  size_t dataSize() const { return mData.size(); }
  size_t dataAvail() const { return mPos < mData.size() ? mData.size() - mPos : 0; }
  size_t dataPosition() const { return mPos; }
  size_t dataCapacity() const { return mData.capacity(); }
  status_t setDataSize(size_t size);
  // Any position is accepted; reads from beyond the end fail.
  void setDataPosition(size_t pos) const { mPos = pos; }
  status_t setData(const uint8_t* buffer, size_t len);
  void freeData();

  status_t write(const void* data, size_t len);
  status_t writeInt32(int32_t val);
  status_t writeUint32(uint32_t val);
  status_t writeInt64(int64_t val);
  status_t writeUint64(uint64_t val);
  status_t writeFloat(float val);
  status_t writeDouble(double val);
  status_t writeBool(bool val) { return writeInt32(val ? 1 : 0); }
  // Length in UTF-16 units, the units and a terminating 0, padded.
  status_t writeString16(const String16& str);
  status_t writeInterfaceToken(const String16& interface);

  status_t read(void* outData, size_t len) const;
  status_t readInt32(int32_t* pArg) const;
  int32_t readInt32() const;
  status_t readUint32(uint32_t* pArg) const;
  uint32_t readUint32() const;
  status_t readInt64(int64_t* pArg) const;
  int64_t readInt64() const;
  status_t readUint64(uint64_t* pArg) const;
  uint64_t readUint64() const;
  status_t readFloat(float* pArg) const;
  float readFloat() const;
  status_t readDouble(double* pArg) const;
  double readDouble() const;
  status_t readBool(bool* pArg) const;
  bool readBool() const;
  status_t readString16(String16* pArg) const;
  String16 readString16() const;
  bool enforceInterface(const String16& interface) const;

 private:
  std::vector<uint8_t> mData;
  mutable size_t mPos = 0;
};

}  // namespace android
