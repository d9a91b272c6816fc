// Table fixtures shared by the cache and backend tests.
#pragma once

#include <cstdint>

#include "cache/Lut3DCacheManager.h"

namespace pctest {

// Both panels as in a fresh process: tables released and their counts forgotten.
inline void resetLutCache() {
  using postblend::Lut3DCacheManager;
  for (unsigned p = 0; p < Lut3DCacheManager::kNumPanels; ++p) {
    Lut3DCacheManager::deInit(p);
    Lut3DCacheManager::sNumOfLut3D[p] = 0;
    Lut3DCacheManager::sPCFGPanel[p] = postblend::PanelCfgCache{};
  }
}

// Header id `id`, grid inputs, outputs `base` + channel + entry % 97.
inline void fillTable(postblend::lut3d_info& t, uint32_t id, uint32_t base) {
  t.flags = 0, t.lut3d_id = id, t.uniform = 1, t.num_entries = postblend::kLut3dEntries;
  for (uint32_t i = 0; i < postblend::kLut3dEntries; ++i) {
    const uint32_t level[3] = {i % 17, (i / 17) % 17, i / 289};
    for (uint32_t c = 0; c < 3; ++c) {
      t.entries[i].in[c] = level[c] == 16 ? 4095 : 256 * level[c];
      t.entries[i].out[c] = base + c + i % 97;
    }
  }
}

// Initialises `panel` and fills its table k with fillTable(k, 100 * k); returns the array.
inline postblend::lut3d_info* initFilledPanel(unsigned panel, bool cmDebug) {
  using postblend::Lut3DCacheManager;
  Lut3DCacheManager::init(panel, cmDebug ? 1 : 0);
  postblend::lut3d_info* luts = nullptr;
  const int n = Lut3DCacheManager::getLutArrayPointer(panel, &luts);
  for (int k = 0; k < n; ++k) fillTable(luts[k], static_cast<uint32_t>(k), 100u * k);
  return luts;
}

}  // namespace pctest
