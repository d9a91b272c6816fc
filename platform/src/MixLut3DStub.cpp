// The generated stub library of vendor.tarnu.hardware.display.MixLut3D.IMixLut3D.
#include <aidl/vendor/tarnu/hardware/display/MixLut3D/BnMixLut3D.h>
#include <aidl/vendor/tarnu/hardware/display/MixLut3D/IMixLut3D.h>

namespace aidl {
namespace vendor {
namespace tarnu {
namespace hardware {
namespace display {
namespace MixLut3D {

namespace {

// Calls between processes do not exist on the host; clients call the local object.
binder_status_t onTransact(AIBinder* /*binder*/, transaction_code_t /*code*/,
                           const AParcel* /*in*/, AParcel* /*out*/) {
  return STATUS_UNKNOWN_TRANSACTION;
}

AIBinder_Class* clazz() {
  static AIBinder_Class* c = ::ndk::ICInterface::defineClass(IMixLut3D::descriptor, onTransact);
  return c;
}

}  // namespace

const char* IMixLut3D::descriptor = "vendor.tarnu.hardware.display.MixLut3D.IMixLut3D";
const int32_t IMixLut3D::version;

IMixLut3D::IMixLut3D() = default;
IMixLut3D::~IMixLut3D() = default;

std::shared_ptr<IMixLut3D> IMixLut3D::default_impl;

std::shared_ptr<IMixLut3D> IMixLut3D::fromBinder(const ::ndk::SpAIBinder& binder) {
  if (!AIBinder_associateClass(binder.get(), clazz())) return nullptr;
  std::shared_ptr<::ndk::ICInterface> interface = ::ndk::ICInterface::asInterface(binder.get());
  return interface ? std::static_pointer_cast<IMixLut3D>(interface) : nullptr;
}

bool IMixLut3D::setDefaultImpl(const std::shared_ptr<IMixLut3D>& impl) {
  if (IMixLut3D::default_impl || !impl) return false;
  IMixLut3D::default_impl = impl;
  return true;
}

const std::shared_ptr<IMixLut3D>& IMixLut3D::getDefaultImpl() { return IMixLut3D::default_impl; }

::ndk::ScopedAStatus IMixLut3DDefault::set(int32_t, int32_t, int32_t*) {
  return ::ndk::ScopedAStatus::fromStatus(STATUS_UNKNOWN_TRANSACTION);
}

::ndk::ScopedAStatus IMixLut3DDefault::sencept(int32_t, int32_t, const std::vector<int32_t>&,
                                               std::vector<int32_t>*, int32_t*) {
  return ::ndk::ScopedAStatus::fromStatus(STATUS_UNKNOWN_TRANSACTION);
}

::ndk::ScopedAStatus IMixLut3DDefault::getInterfaceVersion(int32_t* _aidl_return) {
  *_aidl_return = 0;
  return ::ndk::ScopedAStatus::ok();
}

::ndk::ScopedAStatus IMixLut3DDefault::getInterfaceHash(std::string* _aidl_return) {
  *_aidl_return = "";
  return ::ndk::ScopedAStatus::ok();
}

::ndk::SpAIBinder IMixLut3DDefault::asBinder() { return ::ndk::SpAIBinder(); }

bool IMixLut3DDefault::isRemote() { return false; }

BnMixLut3D::BnMixLut3D() = default;
BnMixLut3D::~BnMixLut3D() = default;

::ndk::SpAIBinder BnMixLut3D::createBinder() {
  AIBinder* binder = AIBinder_new(clazz(), static_cast<void*>(static_cast<::ndk::ICInterface*>(this)));
  return ::ndk::SpAIBinder(binder);
}

::ndk::ScopedAStatus BnMixLut3D::getInterfaceVersion(int32_t* _aidl_return) {
  *_aidl_return = IMixLut3D::version;
  return ::ndk::ScopedAStatus::ok();
}

::ndk::ScopedAStatus BnMixLut3D::getInterfaceHash(std::string* _aidl_return) {
  *_aidl_return = IMixLut3D::hash;
  return ::ndk::ScopedAStatus::ok();
}

}  // namespace MixLut3D
}  // namespace display
}  // namespace hardware
}  // namespace tarnu
}  // namespace vendor
}  // namespace aidl
