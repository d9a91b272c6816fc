// The colour manager's calls: SetProperty, GetProperty and ProcessOps with any version, len, prop
// and op. A payload points at fuzzed bytes of the fuzzed size (allocated to exactly that size, so
// a read past them is caught) or, where that size holds the record the call takes, at one with
// fuzzed fields (gamut, intent, metadata, asset names and order), as the colour manager builds it.
// One input byte turns the hardened-tables switch on; then every table a frame hands over must be
// a table (codes within 0..4095, not all zero).
#include <fuzzer/FuzzedDataProvider.h>

#include <memory>
#include <string>

#include "fuzz/support/FuzzSupport.h"

using namespace postblend;

namespace {

constexpr const char* kAssets[] = {"PostBlendGamut",    "PostBlendPCC",     "PostBlendGC",
                                   "PostBlendIGC",      "PostBlendPa",      "PostBlendDither",
                                   "PostBlendPaDither", "PostBlendHdrBlob", "HwCapIgcDither"};

std::string assetName(FuzzedDataProvider& in) {
  return in.ConsumeIntegralInRange<int>(0, 9) == 0 ? in.ConsumeRandomLengthString(24)
                                                   : in.PickValueInArray(kAssets);
}

void fillRequest(FuzzedDataProvider& in, ModeRenderInputParams* r) {
  r->color_mode.gamut =
      in.ConsumeBool() ? in.PickValueInArray({1u, 12u}) : in.ConsumeIntegral<uint32_t>();
  r->color_mode.gamma = in.ConsumeIntegral<uint32_t>();
  r->color_mode.intent = in.ConsumeBool() ? in.ConsumeIntegralInRange<uint32_t>(0, 310)
                                          : in.ConsumeIntegral<uint32_t>();
  for (int n = in.ConsumeIntegralInRange<int>(0, 4); n > 0; --n)
    r->color_mode.hw_assets.push_back(assetName(in));
  r->color_mode.name = in.ConsumeRandomLengthString(16);
  r->valid_meta_data = in.ConsumeBool();
  r->meta_data = {in.ConsumeIntegral<uint32_t>(), in.ConsumeIntegral<uint32_t>(),
                  in.ConsumeIntegral<uint32_t>(), in.ConsumeBool()};  // only logged
}

// Assets in fuzzed order and number; a name fixes its record's type, as for the colour manager.
void fillResult(FuzzedDataProvider& in, HwConfigOutputParams* out) {
  for (int n = in.ConsumeIntegralInRange<int>(0, 8); n > 0; --n) {
    const std::string name = assetName(in);
    std::shared_ptr<HwConfigPayload> record =
        name == "PostBlendGamut"                    ? std::make_shared<GamutConfig>()
        : in.ConsumeIntegralInRange<int>(0, 7) != 0 ? std::make_shared<HwConfigPayload>()
                                                    : nullptr;
    if (record) record->enabled = in.ConsumeBool();
    if (name == "PostBlendGamut") pcfuzz::markUnhanded(static_cast<GamutConfig&>(*record));
    out->payload.emplace_back(name, record);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  pcfuzz::runningDevice();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  pcfuzz::TwoPanels& device = pcfuzz::runningDevice();
  pcfuzz::resetSharedState();
  FuzzedDataProvider in(data, size);
  PanelCorvaneBase::sHardenedTables = in.ConsumeBool();
  for (int step = 0; step < 6 && in.remaining_bytes() > 0; ++step) {
    PanelCorvane* panel = in.ConsumeBool() ? device.primary : device.secondary;
    const int call = in.ConsumeIntegralInRange<int>(0, 2);
    const uint32_t prop =
        in.ConsumeBool() ? in.PickValueInArray({1u, 2u, 9u, 769u}) : in.ConsumeIntegral<uint32_t>();
    // The record: the one the call takes when the fuzzed size holds it, else that many fuzzed
    // bytes, allocated to exactly that size.
    const size_t bytes = in.ConsumeIntegralInRange<size_t>(0, 160);
    auto exact = std::make_unique<uint8_t[]>(bytes);
    in.ConsumeData(exact.get(), bytes);
    ColorModeList list;
    ModeRenderInputParams request;
    void* record = exact.get();
    if (call == 1 && prop == 1 && bytes >= sizeof(list)) record = &list;
    if (call == 2 && bytes >= sizeof(request)) {
      fillRequest(in, &request);
      record = &request;
    }
    ScPayload p{
        in.ConsumeBool() ? 24u : in.ConsumeIntegral<uint32_t>(),
        in.ConsumeIntegralInRange<uint32_t>(0, static_cast<uint32_t>(bytes)), call == 2 ? 0 : prop,
        in.ConsumeIntegralInRange<int>(0, 15) == 0 ? 0 : reinterpret_cast<uintptr_t>(record)};
    const bool none = in.ConsumeIntegralInRange<int>(0, 15) == 0;  // no payload, no output
    if (call == 0) {
      panel->SetProperty(p);
    } else if (call == 1) {
      panel->GetProperty(none ? nullptr : &p);
    } else {
      const ScOps op = static_cast<ScOps>(in.ConsumeBool() ? in.ConsumeIntegralInRange<int>(0, 1)
                                                           : in.ConsumeIntegral<int>());
      HwConfigOutputParams result;
      fillResult(in, &result);
      ScPayload output{
          24, sizeof(result), 0,
          in.ConsumeIntegralInRange<int>(0, 15) == 0 ? 0 : reinterpret_cast<uintptr_t>(&result)};
      panel->ProcessOps(op, p, none ? nullptr : &output);
      for (const auto& asset : result.payload) {
        if (asset.first == "PostBlendGamut") pcfuzz::checkHanded(static_cast<GamutConfig&>(*asset.second));
      }
    }
  }
  return 0;
}
