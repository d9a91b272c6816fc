// The two binder services as any client may call them: HIDL configureSet / configureGet with any
// command and arguments, AIDL set and sencept, frames in between, on a running plugin whose tables
// are ready (regeneration included). Levels far above 8191 extrapolate the full-brightness table
// by design, so without the hardened-tables switch the target checks only that everything ends
// without a sanitizer report; one input byte turns the switch on, and then every table a frame
// hands over must be a table (codes within 0..4095, not all zero).
#include <fuzzer/FuzzedDataProvider.h>

#include <functional>
#include <memory>
#include <vector>

#include "fuzz/support/FuzzSupport.h"
#include "services/MixLut3DAidl.h"

using postblend::PanelCorvane;
using Vec = PanelCorvane::hidl_vec_i32;

namespace {

// Command numbers the services know, so the fuzzer reaches them often; any other number too.
constexpr int32_t kKnown[] = {101,   110,   111,   112,   123,   191,   200,   518,   666,
                              667,   668,   911,   919,   991,   100,   104,   9999,  10000,
                              10001, 10002, 10003, 10004, 10005, 20001, 30050, 38000, 40000};

int32_t command(FuzzedDataProvider& in) {
  return in.ConsumeBool() ? in.PickValueInArray(kKnown) : in.ConsumeIntegral<int32_t>();
}

std::vector<int32_t> values(FuzzedDataProvider& in, size_t most, bool small) {
  std::vector<int32_t> v(in.ConsumeIntegralInRange<size_t>(0, most));
  for (int32_t& a : v)
    a = small && in.ConsumeBool() ? in.ConsumeIntegralInRange<int32_t>(-2, 110)
                                  : in.ConsumeIntegral<int32_t>();
  return v;
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
  postblend::PanelCorvaneBase::sHardenedTables = in.ConsumeBool();
  auto aidl = std::make_shared<PanelCorvane::MixLut3DAidl>();
  int32_t ret = 0;
  const std::function<void()> calls[] = {
      [&] { device.primary->configureSet(command(in), Vec(values(in, 4, true))); },
      [&] {
        device.primary->configureGet(command(in), Vec(values(in, 4, true)),
                                     [](int32_t, const Vec&) {});
      },
      [&] { aidl->set(in.ConsumeIntegralInRange<int32_t>(-1, 2), command(in), &ret); },
      [&] {
        const std::vector<int32_t> text = values(in, 8, false);
        std::vector<int32_t> answer(in.ConsumeIntegralInRange<size_t>(0, 5));
        aidl->sencept(in.ConsumeIntegral<int32_t>(), in.ConsumeIntegral<int32_t>(), text, &answer,
                      &ret);
      },
      [&] {  // a frame of either panel
        postblend::ModeRenderInputParams request;
        request.color_mode.gamut = in.ConsumeBool() ? 1 : 12;
        request.color_mode.intent = in.ConsumeIntegralInRange<uint32_t>(0, 310);
        postblend::HwConfigOutputParams result;
        auto gamut = std::make_shared<postblend::GamutConfig>();
        pcfuzz::markUnhanded(*gamut);
        result.payload.emplace_back("PostBlendGamut", gamut);
        const postblend::ScPayload inP{24, sizeof(request), 0,
                                       reinterpret_cast<uintptr_t>(&request)};
        postblend::ScPayload outP{24, sizeof(result), 0, reinterpret_cast<uintptr_t>(&result)};
        (in.ConsumeBool() ? device.primary : device.secondary)
            ->ProcessOps(postblend::kScModeRenderIntent, inP, &outP);
        pcfuzz::checkHanded(*gamut);
      },
  };
  for (int step = 0; step < 8 && in.remaining_bytes() > 0; ++step)
    calls[in.ConsumeIntegralInRange<int>(0, 4)]();
  return 0;
}
