// The table cache file: arbitrary bytes and lengths, with FWVersion equal to the length so that
// the loader gets past its length check; a cache it accepts is then interpolated as a frame
// would. Input: one byte of switches (bit 0 panel, 1 CM debug, 2 matched, 3-4 parameter
// version), then the file. The workbench's reader of the same bytes is fuzzed by readers_fuzzer.
#include <mutex>

#include "cache/Lut3DCacheManager.h"
#include "fuzz/support/FuzzSupport.h"

using postblend::Lut3DCacheManager;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const unsigned panel = data[0] & 1;
  const bool cmDebug = (data[0] & 2) != 0;
  const bool matched = (data[0] & 4) != 0;
  const unsigned paramVersion = (data[0] >> 3) & 3;
  pcfuzz::writeDeviceFile(Lut3DCacheManager::cachePath(panel), data + 1, size - 1);

  std::lock_guard<std::mutex> tables(Lut3DCacheManager::tablesLock(panel));
  Lut3DCacheManager::deInit(panel);
  Lut3DCacheManager::sNumOfLut3D[panel] = 0;
  Lut3DCacheManager::init(panel, cmDebug ? 1 : 0);
  if (Lut3DCacheManager::loadCacheFromFile(panel, static_cast<unsigned>(size - 1), matched,
                                           paramVersion) == 0) {
    Lut3DCacheManager::calLut3dDelta(panel);
    for (unsigned brightness : {3499u, 3500u, 5120u, 8191u})
      for (unsigned index = 1; index < 8; index += 2)
        Lut3DCacheManager::calLut3d(panel, index, brightness);
  }
  return 0;
}
