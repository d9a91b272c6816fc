// The AIDL MixLut3D service object: forwards commands to a panel instance's set(). One per
// process, held by PanelCorvane::mAidl (PanelCorvane::MixLut3DAidl names this class).
#pragma once

#include <aidl/vendor/tarnu/hardware/display/MixLut3D/BnMixLut3D.h>

#include <vector>

namespace postblend {

class MixLut3DAidl : public ::aidl::vendor::tarnu::hardware::display::MixLut3D::BnMixLut3D {
 public:
  ::ndk::ScopedAStatus set(int32_t in_disp, int32_t in_cmd, int32_t* _aidl_return) override;
  ::ndk::ScopedAStatus sencept(int32_t in_a, int32_t in_b, const std::vector<int32_t>& in_in,
                               std::vector<int32_t>* out_out, int32_t* _aidl_return) override;
};

}  // namespace postblend
