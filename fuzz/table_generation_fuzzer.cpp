// Table generation fed with arbitrary optical data (127 floats) and an arbitrary target (20
// numbers: NaN, infinities, zeros, huge values all come up). Whatever it is given, generation
// must end, stay inside its table and hand the hardware codes of 0..4095 only. Input: one byte
// (bit 0 gamma correction on, bit 1 the shortened protect-white pass of the verbose log level),
// then the floats, little-endian; missing ones are zero.
#include <algorithm>
#include <cstring>
#include <memory>

#include "frontend/PanelCorvaneFE.h"
#include "fuzz/support/FuzzSupport.h"

using postblend::PanelCorvaneBase;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  pcfuzz::quietPlatform();
  if (size == 0) return 0;
  PanelCorvaneBase::sIsGammaCorrectionOn = (data[0] & 1) != 0;
  PanelCorvaneBase::sDebug = (data[0] & 2) != 0 ? 0x02 : 0;
  const size_t n = size - 1;
  PanelCorvaneBase::OpticalDataFile odf{};
  PanelCorvaneBase::TargetParm target{};
  const size_t odfBytes = std::min(n, sizeof(odf.values));
  std::memcpy(odf.values, data + 1, odfBytes);
  std::memcpy(target.values, data + 1 + odfBytes, std::min(n - odfBytes, sizeof(target.values)));

  PanelCorvaneBase owner;
  postblend::PanelCorvaneFE fe(&owner, 0);
  auto lut = std::make_unique<postblend::lut3d_info>();
  fe.generateLut3D(odf, target, lut.get(), 0);
  for (uint32_t i = 0; i < postblend::kLut3dEntries; ++i) {
    const auto& out = lut->entries[i].out;
    if (std::max({out[0], out[1], out[2]}) > 4095) {
      std::fprintf(stderr, "entry %u: codes %u %u %u, not all in 0..4095\n", i, out[0], out[1],
                   out[2]);
      std::abort();
    }
  }
  return 0;
}
