// The native (service) side of IMixLut3D: a service object derives from BnMixLut3D and
// implements set and sencept.
#pragma once

#include <aidl/vendor/tarnu/hardware/display/MixLut3D/IMixLut3D.h>
#include <android/binder_ibinder.h>

namespace aidl {
namespace vendor {
namespace tarnu {
namespace hardware {
namespace display {
namespace MixLut3D {

class BnMixLut3D : public ::ndk::BnCInterface<IMixLut3D> {
 public:
  BnMixLut3D();
  ~BnMixLut3D() override;
  ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) final;
  ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) final;

 protected:
  ::ndk::SpAIBinder createBinder() override;
};

}  // namespace MixLut3D
}  // namespace display
}  // namespace hardware
}  // namespace tarnu
}  // namespace vendor
}  // namespace aidl
