// The plugin object's operations that the control services reach: the HIDL interface's two
// methods and the panel-instance operations. The commands themselves live with the services;
// this is where they meet the object's tables, backend and front end.
#define LOG_TAG "PanelCorvane"

#include "backend/PanelCorvaneBE.h"
#include "base/Hardening.h"
#include "base/Log.h"
#include "base/PanelRegistry.h"
#include "cache/Lut3DCacheManager.h"
#include "cache/TablePublication.h"
#include "core/PanelCorvane.h"
#include "frontend/PanelCorvaneFE.h"
#include "services/ControlCommands.h"

namespace postblend {

using ::android::hardware::Return;
using ::android::hardware::Void;

PanelCorvaneBase& PanelCorvane::ControlPort::instance() { return mOwner; }
bool PanelCorvane::ControlPort::fodOn() const { return mOwner.fodOn(); }
void PanelCorvane::ControlPort::setFod(bool on) { mOwner.mFodOn = on; }
int32_t PanelCorvane::ControlPort::lastGenerationResult() const {
  return mOwner.lastGenerationResult();
}
void PanelCorvane::ControlPort::operateOriginalData() {
  std::shared_lock<std::shared_mutex> parts(mOwner.mPartsLock);
  if (mOwner.mFE) mOwner.mFE->operateOriginalData();
}

Return<int32_t> PanelCorvane::configureSet(int32_t command, const hidl_vec_i32& args) {
  PanelRegistry::Pin self = PanelRegistry::pinSelf(this);
  if (!self) return 0;  // the object is being destroyed
  return control::configureSet(mControl, command, args);
}

Return<void> PanelCorvane::configureGet(int32_t type, const hidl_vec_i32& args,
                                        configureGet_cb _hidl_cb) {
  PanelRegistry::Pin self = PanelRegistry::pinSelf(this);
  if (!self) return Void();  // the object is being destroyed
  int32_t value = -1;
  if (control::configureGet(mControl, type, args, &value)) _hidl_cb(value, hidl_vec_i32{0});
  return Void();
}

int PanelCorvane::set(int in_cmd) { return control::set(mControl, in_cmd); }
int PanelCorvane::SetScreenColorMode(int mode) {
  return control::setScreenColorMode(mControl, mode);
}
int PanelCorvane::cmd10000(int cmd) { return control::cmd10000(cmd); }
void PanelCorvane::dumpState(const char* fn) { control::dumpState(fn); }

void PanelCorvane::generateCfgFile() {
  // Held from the first line to the last: a second regeneration of the panel, its loading job
  // and DeInit's release wait. Frames do not: they go on with the set published before.
  std::lock_guard<std::mutex> tables(Lut3DCacheManager::tablesLock(mPanelIndex));
  std::shared_lock<std::shared_mutex> parts(mPartsLock);
  PC_LOGE("%s\n", mName);
  // A regeneration that fails leaves the published set: the tables it would have replaced.
  const auto keepIfPublished = [this] {
    mTablesReady = mTablesReady && TablePublication::published(mPanelIndex);
  };
  if (!mBE || !mFE || (hardened() && !ownsPanelTables())) return keepIfPublished();
  bool matched = mBE->isPaneIdMatched();
  if (!matched) PC_LOGE("Warning: PanelId error !!!!!!!!!!\n");
  int result = mFE->generateCfgFile(matched ? 1 : -1);
  mLastGenResult = result;
  if (result < 0) {
    PC_LOGE("generateCfgFile %d\n", result);
    return keepIfPublished();
  }
  mBE->calLut3dDelta();
  publishTables();
}

bool PanelCorvane::IsPaneIdMatched() {
  std::shared_lock<std::shared_mutex> parts(mPartsLock);
  return mBE ? mBE->isPaneIdMatched() : false;
}

void PanelCorvane::dump() {
  PC_LOGD("%s %s\n", __DATE__, __TIME__);
  std::shared_lock<std::shared_mutex> parts(mPartsLock);
  if (mBE) mBE->dump();
  if (mFE) mFE->dump();
}

}  // namespace postblend
