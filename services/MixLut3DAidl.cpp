#define LOG_TAG "PanelCorvane"

#include "services/MixLut3DAidl.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "base/Log.h"
#include "base/PanelCorvaneBase.h"
#include "base/PanelRegistry.h"

namespace postblend {

::ndk::ScopedAStatus MixLut3DAidl::set(int32_t in_disp, int32_t in_cmd, int32_t* _aidl_return) {
  PC_LOGE("AIDL CALL:configure!!! %d\n", in_cmd);
  if (PanelRegistry::Pin panel = PanelRegistry::pin(in_disp)) {
    int32_t result = panel->set(in_cmd);
    if (_aidl_return != nullptr) *_aidl_return = result;
  }
  return ::ndk::ScopedAStatus::ok();
}

::ndk::ScopedAStatus MixLut3DAidl::sencept(int32_t /*in_a*/, int32_t /*in_b*/,
                                           const std::vector<int32_t>& in_in,
                                           std::vector<int32_t>* out_out,
                                           int32_t* /*_aidl_return*/) {
  // The caller packs a text into the ints; it need not be terminated within the vector.
  std::string text;
  if (!in_in.empty()) {
    const char* bytes = reinterpret_cast<const char*>(in_in.data());
    text.assign(bytes, strnlen(bytes, in_in.size() * sizeof(int32_t)));
  }
  PC_LOGE("%s\n", text.c_str());

  // The answer goes into the elements the caller supplied, never beyond: an empty vector gets
  // nothing.
  static constexpr char kAnswer[] = "You say world!";
  if (out_out != nullptr && !out_out->empty()) {
    size_t room = out_out->size() * sizeof(int32_t);
    std::memcpy(out_out->data(), kAnswer, std::min(room, sizeof(kAnswer) - 1));
  }
  return ::ndk::ScopedAStatus::ok();
}

}  // namespace postblend
