// The colour manager's calls: SetProperty, GetProperty and ProcessOps with arbitrary version,
// len, prop and op values. A payload points into a buffer of the fuzzed size (allocated to
// exactly that size, so a read past it is caught); where the buffer is large enough for the
// record the property or op takes, it holds such a record with fuzzed fields (gamut, intent,
// metadata, asset names and their order), as the colour manager builds them.
#include <fuzzer/FuzzedDataProvider.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "core/PanelCorvane.h"
#include "fuzz/support/FuzzSupport.h"

using namespace postblend;

namespace {

constexpr const char* kAssets[] = {"PostBlendGamut", "PostBlendPCC",      "PostBlendGC",
                                   "PostBlendIGC",   "PostBlendPa",       "PostBlendDither",
                                   "PostBlendPaDither", "PostBlendHdrBlob", "HwCapIgcDither"};

std::string assetName(FuzzedDataProvider& in) {
  return in.ConsumeIntegralInRange<int>(0, 9) == 0 ? in.ConsumeRandomLengthString(24)
                                                   : in.PickValueInArray(kAssets);
}

// A buffer of exactly `size` bytes; when it can hold a T, one is built in it (and destroyed with
// the buffer), else it holds raw fuzzed bytes.
class PayloadBuffer {
 public:
  PayloadBuffer(FuzzedDataProvider& in, size_t size) : mBytes(new unsigned char[size ? size : 1]) {
    const std::vector<uint8_t> raw = in.ConsumeBytes<uint8_t>(size);
    std::copy(raw.begin(), raw.end(), mBytes.get());
    mSize = size;
  }
  ~PayloadBuffer() {
    if (mDestroy) mDestroy(mBytes.get());
  }
  template <typename T>
  T* build() {
    if (mSize < sizeof(T) || mDestroy) return nullptr;
    T* record = new (mBytes.get()) T();
    mDestroy = [](unsigned char* p) { reinterpret_cast<T*>(p)->~T(); };
    return record;
  }
  uintptr_t address() const { return reinterpret_cast<uintptr_t>(mBytes.get()); }
  size_t size() const { return mSize; }

 private:
  std::unique_ptr<unsigned char[]> mBytes;
  size_t mSize = 0;
  void (*mDestroy)(unsigned char*) = nullptr;
};

ScPayload payloadOver(FuzzedDataProvider& in, const PayloadBuffer& buffer) {
  ScPayload p;
  p.version = in.ConsumeBool() ? 24u : in.ConsumeIntegral<uint32_t>();
  p.len = in.ConsumeIntegralInRange<uint32_t>(0, static_cast<uint32_t>(buffer.size()));
  p.payload = in.ConsumeIntegralInRange<int>(0, 15) == 0 ? 0 : buffer.address();
  return p;
}

void fillRequest(FuzzedDataProvider& in, ModeRenderInputParams* r) {
  r->color_mode.gamut = in.ConsumeBool() ? in.PickValueInArray({1u, 12u}) : in.ConsumeIntegral<uint32_t>();
  r->color_mode.gamma = in.ConsumeIntegral<uint32_t>();
  r->color_mode.intent = in.ConsumeBool() ? in.ConsumeIntegralInRange<uint32_t>(0, 310)
                                          : in.ConsumeIntegral<uint32_t>();
  for (int n = in.ConsumeIntegralInRange<int>(0, 4); n > 0; --n)
    r->color_mode.hw_assets.push_back(assetName(in));
  r->color_mode.name = in.ConsumeRandomLengthString(16);
  r->valid_meta_data = in.ConsumeBool();
  r->meta_data.range = in.ConsumeIntegral<uint32_t>();
  r->meta_data.transfer = in.ConsumeIntegral<uint32_t>();
  r->meta_data.colorPrimaries = in.ConsumeIntegral<uint32_t>();
  r->meta_data.dynamicMetaDataValid = in.ConsumeBool();
}

// Assets in fuzzed order and number; a name fixes its record's type, as for the colour manager.
void fillResult(FuzzedDataProvider& in, HwConfigOutputParams* out) {
  for (int n = in.ConsumeIntegralInRange<int>(0, 8); n > 0; --n) {
    const std::string name = assetName(in);
    std::shared_ptr<HwConfigPayload> record;
    if (name == "PostBlendGamut") {
      record = std::make_shared<GamutConfig>();
    } else if (in.ConsumeIntegralInRange<int>(0, 7) != 0) {
      record = std::make_shared<HwConfigPayload>();
    }
    if (record) record->enabled = in.ConsumeBool();
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
  for (int step = 0; step < 6 && in.remaining_bytes() > 0; ++step) {
    PanelCorvane* panel = in.ConsumeBool() ? device.primary : device.secondary;
    const int call = in.ConsumeIntegralInRange<int>(0, 2);
    const uint32_t prop = in.ConsumeBool() ? in.PickValueInArray({1u, 2u, 9u, 769u})
                                           : in.ConsumeIntegral<uint32_t>();
    PayloadBuffer buffer(in, in.ConsumeIntegralInRange<size_t>(0, 160));
    if (call == 0) {
      ScPayload p = payloadOver(in, buffer);
      p.prop = prop;
      panel->SetProperty(p);
    } else if (call == 1) {
      if (prop == 1) buffer.build<ColorModeList>();
      ScPayload p = payloadOver(in, buffer);
      p.prop = prop;
      panel->GetProperty(in.ConsumeIntegralInRange<int>(0, 15) == 0 ? nullptr : &p);
    } else {
      const ScOps op = static_cast<ScOps>(in.ConsumeBool() ? in.ConsumeIntegralInRange<int>(0, 1)
                                                           : in.ConsumeIntegral<int>());
      if (auto* request = buffer.build<ModeRenderInputParams>()) fillRequest(in, request);
      ScPayload input = payloadOver(in, buffer);
      HwConfigOutputParams result;
      fillResult(in, &result);
      ScPayload output;
      output.len = sizeof(result);
      output.payload = in.ConsumeIntegralInRange<int>(0, 15) == 0 ? 0 : reinterpret_cast<uintptr_t>(&result);
      panel->ProcessOps(op, input, in.ConsumeIntegralInRange<int>(0, 15) == 0 ? nullptr : &output);
    }
  }
  pcfuzz::resetSharedState();
  return 0;
}
