// Interface vendor.tarnu.hardware.display.MixLut3D.IMixLut3D (version 1), in the shape the AIDL
// generator's NDK backend gives it.
#pragma once

#include <android/binder_interface_utils.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace aidl {
namespace vendor {
namespace tarnu {
namespace hardware {
namespace display {
namespace MixLut3D {

class IMixLut3D : public ::ndk::ICInterface {
 public:
  static const char* descriptor;
  IMixLut3D();
  ~IMixLut3D() override;

  static const int32_t version = 1;
  static inline const std::string hash = "5c0f3a9e7d21b846fa03c9e1d57b2a8460e3f19c";
  static constexpr uint32_t TRANSACTION_set = FIRST_CALL_TRANSACTION + 0;
  static constexpr uint32_t TRANSACTION_sencept = FIRST_CALL_TRANSACTION + 1;
  static constexpr uint32_t TRANSACTION_getInterfaceVersion = 16777214;
  static constexpr uint32_t TRANSACTION_getInterfaceHash = 16777213;

  // The interface behind a binder of this process, or null (the host has no remote proxies).
  static std::shared_ptr<IMixLut3D> fromBinder(const ::ndk::SpAIBinder& binder);
  static bool setDefaultImpl(const std::shared_ptr<IMixLut3D>& impl);
  static const std::shared_ptr<IMixLut3D>& getDefaultImpl();

  virtual ::ndk::ScopedAStatus set(int32_t in_disp, int32_t in_cmd, int32_t* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus sencept(int32_t in_a, int32_t in_b, const std::vector<int32_t>& in_in,
                                       std::vector<int32_t>* out_out, int32_t* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) = 0;

 private:
  static std::shared_ptr<IMixLut3D> default_impl;
};

class IMixLut3DDefault : public IMixLut3D {
 public:
  ::ndk::ScopedAStatus set(int32_t in_disp, int32_t in_cmd, int32_t* _aidl_return) override;
  ::ndk::ScopedAStatus sencept(int32_t in_a, int32_t in_b, const std::vector<int32_t>& in_in,
                               std::vector<int32_t>* out_out, int32_t* _aidl_return) override;
  ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) override;
  ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) override;
  ::ndk::SpAIBinder asBinder() override;
  bool isRemote() override;
};

}  // namespace MixLut3D
}  // namespace display
}  // namespace hardware
}  // namespace tarnu
}  // namespace vendor
}  // namespace aidl
