// HIDL call results: Status (transport outcome) and Return<T> (a value or a failed status).
#pragma once

#include <utils/Errors.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace android {
namespace hardware {

class Status {
 public:
  enum Exception {
    EX_NONE = 0,
    EX_SECURITY = -1,
    EX_BAD_PARCELABLE = -2,
    EX_ILLEGAL_ARGUMENT = -3,
    EX_NULL_POINTER = -4,
    EX_ILLEGAL_STATE = -5,
    EX_NETWORK_MAIN_THREAD = -6,
    EX_UNSUPPORTED_OPERATION = -7,
    EX_HAS_REPLY_HEADER = -128,
    EX_TRANSACTION_FAILED = -129,
  };

  Status() = default;
  static Status ok() { return Status(); }
  static Status fromExceptionCode(int32_t exceptionCode, const char* message = nullptr) {
    return Status(exceptionCode, exceptionCode == EX_TRANSACTION_FAILED ? UNKNOWN_ERROR : OK,
                  message);
  }
  static Status fromStatusT(status_t status) {
    return status == OK ? Status() : Status(EX_TRANSACTION_FAILED, status, nullptr);
  }

  bool isOk() const { return mException == EX_NONE; }
  int32_t exceptionCode() const { return mException; }
  status_t transactionError() const { return mErrorCode; }
  std::string description() const {
    if (isOk()) return "No error";
    return "Status(" + std::to_string(mException) + ", " + std::to_string(mErrorCode) + "): '" +
           mMessage + "'";
  }

 private:
  Status(int32_t exception, status_t error, const char* message)
      : mException(exception), mErrorCode(error), mMessage(message ? message : "") {}
  int32_t mException = EX_NONE;
  status_t mErrorCode = OK;
  std::string mMessage;
};

namespace details {

class return_status {
 public:
  return_status() = default;
  return_status(const Status& s) : mStatus(s) {}  // NOLINT
  bool isOk() const { return mStatus.isOk(); }
  bool isDeadObject() const {
    return !mStatus.isOk() && mStatus.exceptionCode() == Status::EX_TRANSACTION_FAILED &&
           mStatus.transactionError() == DEAD_OBJECT;
  }
  std::string description() const { return mStatus.description(); }

 protected:
  // Reading the value of a failed call is a programming error, fatal as on a device.
  void assertOk() const {
    if (isOk()) return;
    fprintf(stderr, "Attempted to retrieve value from failed HIDL call: %s\n",
            description().c_str());
    abort();
  }

 private:
  Status mStatus;
};

}  // namespace details

template <typename T>
class Return : public details::return_status {
 public:
  Return(T v) : details::return_status(), mVal(std::move(v)) {}  // NOLINT
  Return(const Status& s) : details::return_status(s), mVal() {}  // NOLINT
  Return(Return&& other) = default;
  Return& operator=(Return&& other) = default;
  Return(const Return&) = delete;
  Return& operator=(const Return&) = delete;

  T withDefault(T t) const { return isOk() ? mVal : t; }
  operator T() const {  // NOLINT
    assertOk();
    return mVal;
  }

 private:
  T mVal;
};

template <>
class Return<void> : public details::return_status {
 public:
  Return() : details::return_status() {}
  Return(const Status& s) : details::return_status(s) {}  // NOLINT
  Return(Return&& other) = default;
  Return& operator=(Return&& other) = default;
  Return(const Return&) = delete;
  Return& operator=(const Return&) = delete;
};

inline Return<void> Void() { return Return<void>(); }

}  // namespace hardware
}  // namespace android
