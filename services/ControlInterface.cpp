// The HIDL control interface: numbered commands that change the shared state at run time.
#define LOG_TAG "PanelCorvane"

#include <cstdlib>

#include "core/Log.h"
#include "core/PanelCorvane.h"
#include "core/PanelRegistry.h"
#include "core/Trace.h"
#include "frontend/PanelCorvaneFE.h"

namespace snapdragoncolor {

using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

enum Command : int32_t {
  kCmdBypass = 101,
  kCmdStateDump = 110,
  kCmdPanelIdCheck = 111,
  kCmdPanelIdCheckSecondary = 112,
  kCmdBrightness = 123,
  kCmdDisplayEngine = 191,
  kCmdNitsCalibration = 200,
  kCmdScreenColorMode = 518,
  kCmdLutProcessing = 666,
  kCmdOriginalData = 667,
  kCmdHookLut3d = 668,
  kCmdLogLevel = 911,
  kCmdFod = 919,
  kCmdDebugColor = 991,
};

constexpr int32_t kBrightnessRefreshMagnitude = 101;
constexpr int32_t kModeRegenerate = 104;

void argumentError(int32_t cmd) { PC_LOGE_AS("configureSet", "cmd(%d) arguments eror.\n", cmd); }

void logValues(const char* fn, const PanelCorvane::hidl_vec_i32& args) {
  for (size_t i = 0; i < args.size(); ++i) PC_LOGD_AS(fn, "value = %d \n", args[i]);
}

}  // namespace

Return<int32_t> PanelCorvane::configureSet(int32_t command, const hidl_vec_i32& args) {
  PanelRegistry::Pin self = PanelRegistry::pinSelf(this);
  if (!self) return 0;  // the object is being destroyed
  traceMark("configureSet");
  const size_t n = args.size();
  auto apply = [this]() {
    sNeedUpdate = true;
    refresh();
  };
  auto setBrightness = [this](int32_t value) {
    sBrightness = static_cast<uint32_t>(value);
    if (std::abs(static_cast<int64_t>(value)) >= kBrightnessRefreshMagnitude) {
      sNeedUpdate = true;
      refresh();
    }
  };

  switch (command) {
    case kCmdBypass:
      if (n != 1) {
        argumentError(command);
        break;
      }
      sIsByPass = args[0] == 0;
      PC_LOGD("sIsByPass: %d\n", static_cast<int>(sIsByPass.load()));
      apply();
      break;
    case kCmdStateDump:
      PanelCorvane::dumpState("configureSet");
      break;
    case kCmdPanelIdCheck:
      for (int index = 0; index < 2; ++index) {
        if (PanelRegistry::Pin p = PanelRegistry::pin(index)) p->IsPaneIdMatched();
      }
      break;
    case kCmdBrightness:
      if (n != 2) {
        PC_LOGE("cmd(%d) arguments error.\n", command);
        break;
      }
      if (dbgOn(kDbgVerbose)) PC_LOGD("HIDL_SET_BRIGHTNESS: disp_id %d, brightness %d\n", 0, args[1]);
      setBrightness(args[1]);
      break;
    case kCmdDisplayEngine:
      if (n != 1) {
        argumentError(command);
        break;
      }
      sDEStatus = args[0];
      PC_LOGD("HIDL_SET_DE_ENABLE_STATUS %d\n", args[0]);
      apply();
      break;
    case kCmdScreenColorMode:
      if (n != 2) {
        argumentError(command);
        break;
      }
      if (args[0] == 3) {
        if (dbgOn(kDbgVerbose)) {
          PC_LOGD("SET_SCREEN_COLOR_MODE: disp_id %d, brightness %d\n", 3, args[1]);
        }
        setBrightness(args[1]);
      } else if (args[0] == 0) {
        if (dbgOn(kDbgVerbose)) {
          PC_LOGD("SET_SCREEN_COLOR_MODE: disp_id %d, mode %d\n", 0,
                  static_cast<int>(sCFGMode.load()));
        }
        SetScreenColorMode(args[1]);
        refresh();
      }
      break;
    case kCmdOriginalData: {
      std::shared_lock<std::shared_mutex> parts(mPartsLock);
      if (mFE) mFE->operateOriginalData();
      break;
    }
    case kCmdFod:
      if (n != 2) {
        argumentError(command);
        break;
      }
      mFodOn = args[1] != 0;
      sCFGMode = args[1] != 0 ? 100 : -1;
      sNeedUpdate = true;
      // The hook handling follows on the same arguments; with two values it refuses them.
      argumentError(command);
      break;
    case kCmdHookLut3d:
      if (n != 1) {
        argumentError(command);
        break;
      }
      sIsLut3dHook = args[0] != 0;
      PC_LOGD("HIDL_SET_HOOK_LUT3D %d\n", static_cast<int>(sIsLut3dHook.load()));
      apply();
      break;
    case kCmdLogLevel:
      if (n != 1) {
        argumentError(command);
        break;
      }
      sDebug = static_cast<uint32_t>(args[0]);
      PC_LOGD("LOG level: %d\n", args[0]);
      break;
    case kCmdDebugColor:
      PC_LOGE("D: %f, %f, %f\n", 27.971588134765625, 0.0, 99.41669464111328);
      break;
    default:
      PC_LOGD("command = %d is not supported\n", command);
      logValues("configureSet", args);
      break;
  }
  return 0;
}

Return<void> PanelCorvane::configureGet(int32_t type, const hidl_vec_i32& args,
                                        configureGet_cb _hidl_cb) {
  PanelRegistry::Pin self = PanelRegistry::pinSelf(this);
  if (!self) return Void();  // the object is being destroyed
  logValues("configureGet", args);
  int32_t value = -1;
  switch (type) {
    case kCmdBypass:
    case kCmdLutProcessing:
      value = sIsByPass ? 0 : 1;
      break;
    case kCmdPanelIdCheck:
    case kCmdPanelIdCheckSecondary: {
      PanelRegistry::Pin p = PanelRegistry::pin(type == kCmdPanelIdCheck ? 0 : 1);
      value = p ? (p->IsPaneIdMatched() ? 1 : 0) : 0;
      break;
    }
    case kCmdBrightness:
      value = static_cast<int32_t>(sBrightness.load());
      break;
    case kCmdDisplayEngine:
      value = sDEStatus;
      break;
    case kCmdNitsCalibration:
      value = sIsPanelNitsCalibrationOn ? 1 : 0;
      break;
    case kCmdLogLevel:
      value = static_cast<int32_t>(sDebug.load());
      break;
    case kCmdFod:
      value = mFodOn ? 1 : 0;
      break;
    case kCmdScreenColorMode:
      if (args.size() != 2) {
        PC_LOGE("type(%d) arguments error.\n", type);
        return Void();
      }
      if (args[1] != kModeRegenerate) return Void();  // no answer at all
      value = mLastGenResult;
      break;
    default:
      break;
  }
  _hidl_cb(value, hidl_vec_i32{0});
  return Void();
}

}  // namespace snapdragoncolor
