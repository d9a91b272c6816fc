// The two binder services as any client may call them: HIDL configureSet / configureGet with
// arbitrary command numbers and argument vectors, AIDL set and sencept, with frames in between,
// on a running plugin whose tables are ready (regeneration included; pauses scaled to 0).
// Levels far above 8191 extrapolate the full-brightness table by design, so the target checks
// only that everything ends without a sanitizer report.
#include <fuzzer/FuzzedDataProvider.h>

#include <memory>
#include <vector>

#include "core/PanelCorvane.h"
#include "fuzz/support/FuzzSupport.h"
#include "services/MixLut3DAidl.h"

using postblend::PanelCorvane;
using Vec = PanelCorvane::hidl_vec_i32;

namespace {

// Command numbers the services know, so the fuzzer reaches them often; any other number too.
constexpr int32_t kKnown[] = {101, 110, 111, 112, 123, 191, 200, 518, 666, 667, 668, 911, 919,
                              991, 100, 101, 104, 9999, 10000, 10001, 10002, 10003, 10004,
                              10005, 20001, 30050, 38000, 40000};

int32_t command(FuzzedDataProvider& in) {
  return in.ConsumeBool() ? in.PickValueInArray(kKnown) : in.ConsumeIntegral<int32_t>();
}

Vec args(FuzzedDataProvider& in) {
  std::vector<int32_t> v(in.ConsumeIntegralInRange<size_t>(0, 4));
  for (int32_t& a : v) a = in.ConsumeBool() ? in.ConsumeIntegralInRange<int32_t>(-2, 110)
                                            : in.ConsumeIntegral<int32_t>();
  return Vec(v);
}

void frame(PanelCorvane* panel, FuzzedDataProvider& in) {
  postblend::ModeRenderInputParams request;
  request.color_mode.gamut = in.ConsumeBool() ? 1 : 12;
  request.color_mode.intent = in.ConsumeIntegralInRange<uint32_t>(0, 310);
  postblend::HwConfigOutputParams result;
  result.payload.emplace_back("PostBlendGamut", std::make_shared<postblend::GamutConfig>());
  postblend::ScPayload inP, outP;
  inP.len = sizeof(request);
  inP.payload = reinterpret_cast<uintptr_t>(&request);
  outP.len = sizeof(result);
  outP.payload = reinterpret_cast<uintptr_t>(&result);
  panel->ProcessOps(postblend::kScModeRenderIntent, inP, &outP);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  pcfuzz::runningDevice();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  pcfuzz::TwoPanels& device = pcfuzz::runningDevice();
  pcfuzz::resetSharedState();
  device.primary->configureSet(919, Vec{0, 0});  // the FOD flag off again
  FuzzedDataProvider in(data, size);
  auto aidl = std::make_shared<PanelCorvane::MixLut3DAidl>();
  for (int step = 0; step < 8 && in.remaining_bytes() > 0; ++step) {
    switch (in.ConsumeIntegralInRange<int>(0, 4)) {
      case 0:
        device.primary->configureSet(command(in), args(in));
        break;
      case 1:
        device.primary->configureGet(command(in), args(in), [](int32_t, const Vec&) {});
        break;
      case 2: {
        int32_t ret = 0;
        aidl->set(in.ConsumeIntegralInRange<int32_t>(-1, 2), command(in), &ret);
        break;
      }
      case 3: {
        std::vector<int32_t> text(in.ConsumeIntegralInRange<size_t>(0, 8));
        for (int32_t& t : text) t = in.ConsumeIntegral<int32_t>();
        std::vector<int32_t> answer(in.ConsumeIntegralInRange<size_t>(0, 5));
        int32_t ret = 0;
        aidl->sencept(in.ConsumeIntegral<int32_t>(), in.ConsumeIntegral<int32_t>(), text, &answer,
                      &ret);
        break;
      }
      default:
        frame(in.ConsumeBool() ? device.primary : device.secondary, in);
        break;
    }
  }
  // Keep the log mask sane for the next input: dumps and call stacks only slow the search.
  pcfuzz::resetSharedState();
  return 0;
}
