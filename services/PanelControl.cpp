// Panel-instance operations shared by the HIDL and AIDL services: colour mode, the MixLut3D
// commands, table regeneration and the state dump.
#define LOG_TAG "PanelCorvane"

#include "backend/PanelCorvaneBE.h"
#include "cache/Lut3DCacheManager.h"
#include "core/Log.h"
#include "core/PanelCorvane.h"
#include "core/PanelRegistry.h"
#include "frontend/PanelCorvaneFE.h"

namespace snapdragoncolor {

namespace {
constexpr int kModeAllOff = 100;
constexpr int kModeRegenerate = 104;
constexpr int kModeStatusQuery = 9999;

}  // namespace

void PanelCorvane::dumpState(const char* fn) {
  PC_LOGD_AS(fn, "sDebug:%d\n", static_cast<int>(sDebug.load()));
  PC_LOGD_AS(fn, "sCFGMode:%d\n", static_cast<int>(sCFGMode.load()));
  PC_LOGD_AS(fn, "sBrightness:%d\n", static_cast<int>(sBrightness.load()));
  PC_LOGD_AS(fn, "sDEStatus:%d\n", static_cast<int>(sDEStatus.load()));
  PC_LOGD_AS(fn, "sParamVersion:%d\n", static_cast<int>(sParamVersion.load()));
  PC_LOGD_AS(fn, "sFWVersion:%d\n", static_cast<int>(sFWVersion.load()));
  PC_LOGD_AS(fn, "sIsByPass:%d\n", static_cast<int>(sIsByPass.load()));
  PC_LOGD_AS(fn, "sIsLut3dHook:%d\n", static_cast<int>(sIsLut3dHook.load()));
  PC_LOGD_AS(fn, "sNeedUpdate:%d\n", static_cast<int>(sNeedUpdate.load()));
  PC_LOGD_AS(fn, "sIsHidlRegitsered:%d\n", static_cast<int>(sIsHidlRegitsered.load()));
  PC_LOGD_AS(fn, "sIsPanelNitsCalibrationOn:%d\n", static_cast<int>(sIsPanelNitsCalibrationOn.load()));
  PC_LOGD_AS(fn, "sIsPanelCalibrationOn:%d\n", static_cast<int>(sIsPanelCalibrationOn.load()));
  PC_LOGD_AS(fn, "sIsGammaCorrectionOn:%d\n", static_cast<int>(sIsGammaCorrectionOn.load()));
  PC_LOGD_AS(fn, "sIsCMDebugOn:%d\n", static_cast<int>(sIsCMDebugOn.load()));
  for (int index = 0; index < 2; ++index) {
    if (PanelRegistry::Pin p = PanelRegistry::pin(index)) p->dump();
  }
}

int PanelCorvane::set(int in_cmd) {
  PC_LOGD("in_cmd:%d\n", in_cmd);
  int result = 0;
  if (in_cmd <= 9999) {
    result = SetScreenColorMode(in_cmd);
  } else if (in_cmd <= 19999) {
    result = cmd10000(in_cmd);
  } else if (in_cmd <= 29999) {
    sDebug = static_cast<uint32_t>(in_cmd - 20000);
    PC_LOGD("sDebug %d\n", in_cmd - 20000);
  } else if (in_cmd <= 39999) {
    sBrightness = static_cast<uint32_t>(in_cmd - 30000);
    sNeedUpdate = true;
  }
  refresh();
  return result;
}

int PanelCorvane::cmd10000(int cmd) {
  switch (cmd) {
    case 10000:
      sIsByPass = false;
      PC_LOGD("MIXLUT3D_AIDL_CMD_ON\n");
      break;
    case 10001:
      sIsByPass = true;
      PC_LOGD("MIXLUT3D_AIDL_CMD_OFF\n");
      break;
    case 10002:
      sDEStatus = 0;
      PC_LOGD("MIXLUT3D_AIDL_CMD_DETAIL_OFF\n");
      break;
    case 10003:
      sDEStatus = 1;
      PC_LOGD("MIXLUT3D_AIDL_CMD_DETAIL_ON\n");
      break;
    case 10005:
      dumpState("cmd10000");
      return 0;
    default:
      return -2;
  }
  sNeedUpdate = true;
  return 0;
}

int PanelCorvane::SetScreenColorMode(int mode) {
  int result = 0;
  switch (mode) {
    case 100:
    case 102:
    case 103:
    case 110:
      sCFGMode = kModeAllOff;
      break;
    case 101:
      PC_LOGE("ignore 101\n");
      sCFGMode = -1;
      break;
    case kModeRegenerate:
      sCFGMode = kModeRegenerate;
      if (PanelRegistry::Pin p = PanelRegistry::pin(sCurrentPanel)) p->generateCfgFile();
      break;
    case kModeStatusQuery:
      PC_LOGD("MODE_IMIXLUT3D_STATUS %d\n", static_cast<int>(sIsByPass.load()));
      result = sIsByPass ? -1 : 0;
      break;
    default:
      sCFGMode = mode;
      break;
  }
  if (mFodOn) {
    PC_LOGD("fod on!\n");
    sCFGMode = kModeAllOff;
  }
  sNeedUpdate = true;
  return result;
}

void PanelCorvane::generateCfgFile() {
  // Held from the first line to the last: a second regeneration of the panel, its loading job,
  // a frame's copy and DeInit's release all wait (a frame does not wait: it finds the tables
  // not ready).
  std::lock_guard<std::mutex> tables(Lut3DCacheManager::tablesLock(mPanelIndex));
  std::shared_lock<std::shared_mutex> parts(mPartsLock);
  PC_LOGE("%s\n", mName);
  mTablesReady = false;
  if (!mBE || !mFE) return;
  bool matched = mBE->isPaneIdMatched();
  if (!matched) PC_LOGE("Warning: PanelId error !!!!!!!!!!\n");
  int result = mFE->generateCfgFile(matched ? 1 : -1);
  mLastGenResult = result;
  if (result < 0) {
    PC_LOGE("generateCfgFile %d\n", result);
    return;
  }
  mBE->calLut3dDelta();
  mTablesReady = true;
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

}  // namespace snapdragoncolor
