#include <binder/Parcel.h>

#include <cstring>

namespace android {

namespace {

constexpr size_t pad4(size_t len) { return (len + 3) & ~size_t{3}; }

template <typename T>
T readOrZero(const Parcel& p, status_t (Parcel::*reader)(T*) const) {
  T value{};
  return (p.*reader)(&value) == OK ? value : T{};
}

}  // namespace

status_t Parcel::setDataSize(size_t size) {
  if (size > kMaxDataSize) return NO_MEMORY;
  mData.resize(size);
  if (mPos > size) mPos = size;
  return OK;
}

status_t Parcel::setData(const uint8_t* buffer, size_t len) {
  if (len > kMaxDataSize) return NO_MEMORY;
  if (buffer == nullptr && len != 0) return BAD_VALUE;
  mData.assign(buffer, buffer + len);
  mPos = 0;
  return OK;
}

void Parcel::freeData() {
  std::vector<uint8_t>().swap(mData);
  mPos = 0;
}

status_t Parcel::write(const void* data, size_t len) {
  if (data == nullptr && len != 0) return BAD_VALUE;
  const size_t padded = pad4(len);
  if (len > kMaxDataSize || mPos > kMaxDataSize - padded) return NO_MEMORY;
  if (mData.size() < mPos + padded) mData.resize(mPos + padded);
  if (len != 0) std::memcpy(&mData[mPos], data, len);
  std::memset(mData.data() + mPos + len, 0, padded - len);
  mPos += padded;
  return OK;
}

status_t Parcel::writeInt32(int32_t val) { return write(&val, sizeof(val)); }
status_t Parcel::writeUint32(uint32_t val) { return write(&val, sizeof(val)); }
status_t Parcel::writeInt64(int64_t val) { return write(&val, sizeof(val)); }
status_t Parcel::writeUint64(uint64_t val) { return write(&val, sizeof(val)); }
status_t Parcel::writeFloat(float val) { return write(&val, sizeof(val)); }
status_t Parcel::writeDouble(double val) { return write(&val, sizeof(val)); }

status_t Parcel::writeString16(const String16& str) {
  const size_t units = str.size();
  if (units > kMaxDataSize / sizeof(char16_t)) return NO_MEMORY;
  const size_t start = mPos;
  status_t err = writeInt32(static_cast<int32_t>(units));
  std::vector<char16_t> body(str.c_str(), str.c_str() + units + 1);  // with the terminator
  if (err == OK) err = write(body.data(), body.size() * sizeof(char16_t));
  if (err != OK) mPos = start;
  return err;
}

status_t Parcel::writeInterfaceToken(const String16& interface) {
  status_t err = writeInt32(0);  // strict-mode policy, unused on the host
  return err == OK ? writeString16(interface) : err;
}

status_t Parcel::read(void* outData, size_t len) const {
  const size_t padded = pad4(len);
  if (len > kMaxDataSize || mPos > mData.size() || mData.size() - mPos < padded)
    return NOT_ENOUGH_DATA;
  if (len != 0) std::memcpy(outData, &mData[mPos], len);
  mPos += padded;
  return OK;
}

status_t Parcel::readInt32(int32_t* pArg) const { return read(pArg, sizeof(*pArg)); }
status_t Parcel::readUint32(uint32_t* pArg) const { return read(pArg, sizeof(*pArg)); }
status_t Parcel::readInt64(int64_t* pArg) const { return read(pArg, sizeof(*pArg)); }
status_t Parcel::readUint64(uint64_t* pArg) const { return read(pArg, sizeof(*pArg)); }
status_t Parcel::readFloat(float* pArg) const { return read(pArg, sizeof(*pArg)); }
status_t Parcel::readDouble(double* pArg) const { return read(pArg, sizeof(*pArg)); }
int32_t Parcel::readInt32() const { return readOrZero(*this, &Parcel::readInt32); }
uint32_t Parcel::readUint32() const { return readOrZero(*this, &Parcel::readUint32); }
int64_t Parcel::readInt64() const { return readOrZero(*this, &Parcel::readInt64); }
uint64_t Parcel::readUint64() const { return readOrZero(*this, &Parcel::readUint64); }
float Parcel::readFloat() const { return readOrZero(*this, &Parcel::readFloat); }
double Parcel::readDouble() const { return readOrZero(*this, &Parcel::readDouble); }

status_t Parcel::readBool(bool* pArg) const {
  int32_t v = 0;
  status_t err = readInt32(&v);
  if (err == OK) *pArg = v != 0;
  return err;
}

bool Parcel::readBool() const { return readInt32() != 0; }

status_t Parcel::readString16(String16* pArg) const {
  const size_t start = mPos;
  int32_t units = 0;
  status_t err = readInt32(&units);
  if (err != OK) return err;
  // The length is checked against what is left before anything is allocated.
  if (units < 0 || static_cast<size_t>(units) >= dataAvail() / sizeof(char16_t)) {
    mPos = start;
    return units < 0 ? UNEXPECTED_NULL : NOT_ENOUGH_DATA;
  }
  std::vector<char16_t> body(static_cast<size_t>(units) + 1);
  err = read(body.data(), body.size() * sizeof(char16_t));
  if (err != OK || body.back() != 0) {
    mPos = start;
    return err != OK ? err : BAD_VALUE;
  }
  *pArg = String16(body.data(), static_cast<size_t>(units));
  return OK;
}

String16 Parcel::readString16() const {
  String16 s;
  readString16(&s);
  return s;
}

bool Parcel::enforceInterface(const String16& interface) const {
  int32_t policy = 0;
  String16 token;
  return readInt32(&policy) == OK && readString16(&token) == OK && token == interface;
}

}  // namespace android
