// Table generation fed with arbitrary optical data (127 floats) and an arbitrary target (20
// numbers: NaN, infinities, zeros, huge values all come up). Whatever it is given, generation
// must end, stay inside its table and hand the hardware codes of 0..4095 only. Input: one byte
// (bit 0 gamma correction on, bit 1 the shortened protect-white pass of the verbose log level),
// then the floats, little-endian; missing ones are zero.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/PanelCorvaneBase.h"
#include "frontend/PanelCorvaneFE.h"
#include "fuzz/support/FuzzSupport.h"
#include "postblend/color_records.h"

using postblend::lut3d_info;
using postblend::PanelCorvaneBase;
using postblend::PanelCorvaneFE;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  pcfuzz::quietPlatform();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  pcfuzz::resetSharedState();
  PanelCorvaneBase::sIsGammaCorrectionOn = (data[0] & 1) != 0;
  PanelCorvaneBase::sDebug = (data[0] & 2) != 0 ? 0x02 : 0;
  ++data;
  --size;

  PanelCorvaneBase::OpticalDataFile odf{};
  PanelCorvaneBase::TargetParm target{};
  const size_t odfBytes = sizeof(odf.values);
  std::memcpy(odf.values, data, size < odfBytes ? size : odfBytes);
  if (size > odfBytes) {
    const size_t rest = size - odfBytes;
    std::memcpy(target.values, data + odfBytes, rest < sizeof(target.values) ? rest : sizeof(target.values));
  }

  PanelCorvaneBase owner;
  PanelCorvaneFE fe(&owner, 0);
  auto lut = std::make_unique<lut3d_info>();
  fe.generateLut3D(odf, target, lut.get(), 0);
  for (uint32_t i = 0; i < postblend::kLut3dEntries; ++i) {
    for (int c = 0; c < 3; ++c) {
      if (lut->entries[i].out[c] > 4095) {
        std::fprintf(stderr, "entry %u channel %d: code %u outside 0..4095\n", i, c,
                     static_cast<unsigned>(lut->entries[i].out[c]));
        std::abort();
      }
    }
  }
  PanelCorvaneBase::sDebug = 0;
  return 0;
}
