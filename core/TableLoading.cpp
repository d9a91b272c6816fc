// Message 3: make the panel's tables ready, from the cache when it is valid, else generated.
#define LOG_TAG "PanelCorvane"

#include "backend/PanelCorvaneBE.h"
#include "base/Hardening.h"
#include "base/Log.h"
#include "cache/Lut3DCacheManager.h"
#include "core/PanelCorvane.h"
#include "frontend/PanelCorvaneFE.h"

namespace postblend {

void PanelCorvane::onLoad3dLut() {
  // A regeneration started from a binder thread runs to its end first.
  std::lock_guard<std::mutex> tables(Lut3DCacheManager::tablesLock(mPanelIndex));
  std::shared_lock<std::shared_mutex> parts(mPartsLock);
  if (mTablesReady) return;  // a set is published
  if (!mBE || !mFE) return;
  if (hardened() && !ownsPanelTables()) return;
  int result = mBE->loadCfgFile(mBE->isPaneIdMatched());
  if (result == 0) {
    publishTables();
    PC_LOGD("loadCfgFile done!\n");
  } else if (mFE->generateCfgFile(result) >= 0) {
    mBE->calLut3dDelta();
    publishTables();
    PC_LOGD("generateCfgFile done!\n");
  }
  PC_LOGD("panel:%d init (%d)\n", static_cast<int>(mPanelIndex),
          static_cast<int>(mTablesReady.load()));
}

}  // namespace postblend
