// The HIDL command table and the commands both control services reach. Argument errors are
// logged and change nothing (the misspelt "eror" is the interface's own text).
#define LOG_TAG "PanelCorvane"

#include "services/ControlCommands.h"

#include <cstdlib>

#include "base/Log.h"
#include "base/PanelCorvaneBase.h"
#include "base/PanelRegistry.h"
#include "base/Trace.h"

namespace postblend {
namespace control {

namespace {

using B = PanelCorvaneBase;

constexpr const char* kSet = "configureSet";
constexpr const char* kGet = "configureGet";
constexpr int32_t kBrightnessRefreshMagnitude = 101;
constexpr int kModeAllOff = 100;
constexpr int kModeRegenerate = 104;
constexpr int kModeStatusQuery = 9999;

// Numbers shared by configureSet and configureGet.
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

void argumentError(int32_t cmd) { PC_LOGE_AS(kSet, "cmd(%d) arguments eror.\n", cmd); }

void logValues(const char* fn, const Args& args) {
  for (size_t i = 0; i < args.size(); ++i) PC_LOGD_AS(fn, "value = %d \n", args[i]);
}

// Set the state, ask for a new frame configuration and a redraw.
void apply(ControlTarget& t) {
  B::sNeedUpdate = true;
  t.instance().refresh();
}

void setBrightness(ControlTarget& t, int32_t value) {
  B::sBrightness = static_cast<uint32_t>(value);
  if (std::abs(static_cast<int64_t>(value)) >= kBrightnessRefreshMagnitude) apply(t);
}

void runBypass(ControlTarget& t, const Args& a) {
  B::sIsByPass = a[0] == 0;
  PC_LOGD_AS(kSet, "sIsByPass: %d\n", static_cast<int>(B::sIsByPass.load()));
  apply(t);
}

void runStateDump(ControlTarget&, const Args&) { dumpState(kSet); }

void runPanelIdCheck(ControlTarget&, const Args&) {
  for (int index = 0; index < 2; ++index) {
    if (PanelRegistry::Pin p = PanelRegistry::pin(index)) p->IsPaneIdMatched();
  }
}

void runBrightness(ControlTarget& t, const Args& a) {
  if (dbgOn(kDbgVerbose))
    PC_LOGD_AS(kSet, "HIDL_SET_BRIGHTNESS: disp_id %d, brightness %d\n", 0, a[1]);
  setBrightness(t, a[1]);
}

void runDisplayEngine(ControlTarget& t, const Args& a) {
  B::sDEStatus = a[0];
  PC_LOGD_AS(kSet, "HIDL_SET_DE_ENABLE_STATUS %d\n", a[0]);
  apply(t);
}

// Selector 3 sets the brightness, 0 the colour mode; other selectors do nothing.
void runScreenColorMode(ControlTarget& t, const Args& a) {
  if (a[0] == 3) {
    if (dbgOn(kDbgVerbose))
      PC_LOGD_AS(kSet, "SET_SCREEN_COLOR_MODE: disp_id %d, brightness %d\n", 3, a[1]);
    setBrightness(t, a[1]);
  } else if (a[0] == 0) {
    if (dbgOn(kDbgVerbose)) {
      PC_LOGD_AS(kSet, "SET_SCREEN_COLOR_MODE: disp_id %d, mode %d\n", 0,
                 static_cast<int>(B::sCFGMode.load()));
    }
    setScreenColorMode(t, a[1]);
    t.instance().refresh();
  }
}

void runOriginalData(ControlTarget& t, const Args&) { t.operateOriginalData(); }

void runHookLut3d(ControlTarget& t, const Args& a) {
  B::sIsLut3dHook = a[0] != 0;
  PC_LOGD_AS(kSet, "HIDL_SET_HOOK_LUT3D %d\n", static_cast<int>(B::sIsLut3dHook.load()));
  apply(t);
}

void runLogLevel(ControlTarget&, const Args& a) {
  B::sDebug = static_cast<uint32_t>(a[0]);
  PC_LOGD_AS(kSet, "LOG level: %d\n", a[0]);
}

// The hook command's handling follows on the same arguments: with two values it refuses them.
void runFod(ControlTarget& t, const Args& a) {
  t.setFod(a[1] != 0);
  B::sCFGMode = a[1] != 0 ? kModeAllOff : -1;
  B::sNeedUpdate = true;
  argumentError(kCmdFod);
}

void runDebugColor(ControlTarget&, const Args&) {
  PC_LOGE_AS(kSet, "D: %f, %f, %f\n", 27.971588134765625, 0.0, 99.41669464111328);
}

// How many values a command takes. An empty list never passes: the commands that would accept
// it would read values that are not there.
enum class Count { kAny, kOne, kTwo };

struct CommandRow {
  int32_t number;
  Count count;
  bool plainErrorText;  // the brightness command spells its argument error correctly
  void (*run)(ControlTarget&, const Args&);
};

constexpr CommandRow kCommands[] = {
    {kCmdBypass, Count::kOne, false, runBypass},
    {kCmdStateDump, Count::kAny, false, runStateDump},
    {kCmdPanelIdCheck, Count::kAny, false, runPanelIdCheck},
    {kCmdBrightness, Count::kTwo, true, runBrightness},
    {kCmdDisplayEngine, Count::kOne, false, runDisplayEngine},
    {kCmdScreenColorMode, Count::kTwo, false, runScreenColorMode},
    {kCmdOriginalData, Count::kAny, false, runOriginalData},
    {kCmdHookLut3d, Count::kOne, false, runHookLut3d},
    {kCmdLogLevel, Count::kOne, false, runLogLevel},
    {kCmdFod, Count::kTwo, false, runFod},
    {kCmdDebugColor, Count::kAny, false, runDebugColor},
};

bool countFits(Count count, size_t n) {
  switch (count) {
    case Count::kOne:
      return n == 1;
    case Count::kTwo:
      return n == 2;
    case Count::kAny:
      break;
  }
  return true;
}

}  // namespace

int32_t configureSet(ControlTarget& target, int32_t command, const Args& args) {
  traceMark(kSet);
  for (const CommandRow& row : kCommands) {
    if (row.number != command) continue;
    if (!countFits(row.count, args.size())) {
      if (row.plainErrorText) {
        PC_LOGE_AS(kSet, "cmd(%d) arguments error.\n", command);
      } else {
        argumentError(command);
      }
    } else {
      row.run(target, args);
    }
    return 0;
  }
  PC_LOGD_AS(kSet, "command = %d is not supported\n", command);
  logValues(kSet, args);
  return 0;
}

bool configureGet(ControlTarget& target, int32_t type, const Args& args, int32_t* value) {
  logValues(kGet, args);
  *value = -1;
  switch (type) {
    case kCmdBypass:
    case kCmdLutProcessing:
      *value = B::sIsByPass ? 0 : 1;
      break;
    case kCmdPanelIdCheck:
    case kCmdPanelIdCheckSecondary: {
      PanelRegistry::Pin p = PanelRegistry::pin(type == kCmdPanelIdCheck ? 0 : 1);
      *value = p ? (p->IsPaneIdMatched() ? 1 : 0) : 0;
      break;
    }
    case kCmdBrightness:
      *value = static_cast<int32_t>(B::sBrightness.load());
      break;
    case kCmdDisplayEngine:
      *value = B::sDEStatus;
      break;
    case kCmdNitsCalibration:
      *value = B::sIsPanelNitsCalibrationOn ? 1 : 0;
      break;
    case kCmdLogLevel:
      *value = static_cast<int32_t>(B::sDebug.load());
      break;
    case kCmdFod:
      *value = target.fodOn() ? 1 : 0;
      break;
    case kCmdScreenColorMode:
      if (args.size() != 2) {
        PC_LOGE_AS(kGet, "type(%d) arguments error.\n", type);
        return false;
      }
      if (args[1] != kModeRegenerate) return false;  // no answer at all
      *value = target.lastGenerationResult();
      break;
    default:
      break;
  }
  return true;
}

int set(ControlTarget& target, int in_cmd) {
  PC_LOGD_AS("set", "in_cmd:%d\n", in_cmd);
  int result = 0;
  if (in_cmd <= 9999) {
    result = setScreenColorMode(target, in_cmd);
  } else if (in_cmd <= 19999) {
    result = cmd10000(in_cmd);
  } else if (in_cmd <= 29999) {
    B::sDebug = static_cast<uint32_t>(in_cmd - 20000);
    PC_LOGD_AS("set", "sDebug %d\n", in_cmd - 20000);
  } else if (in_cmd <= 39999) {
    B::sBrightness = static_cast<uint32_t>(in_cmd - 30000);
    B::sNeedUpdate = true;
  }
  target.instance().refresh();
  return result;
}

int cmd10000(int cmd) {
  constexpr const char* kFn = "cmd10000";
  switch (cmd) {
    case 10000:
      B::sIsByPass = false;
      PC_LOGD_AS(kFn, "MIXLUT3D_AIDL_CMD_ON\n");
      break;
    case 10001:
      B::sIsByPass = true;
      PC_LOGD_AS(kFn, "MIXLUT3D_AIDL_CMD_OFF\n");
      break;
    case 10002:
      B::sDEStatus = 0;
      PC_LOGD_AS(kFn, "MIXLUT3D_AIDL_CMD_DETAIL_OFF\n");
      break;
    case 10003:
      B::sDEStatus = 1;
      PC_LOGD_AS(kFn, "MIXLUT3D_AIDL_CMD_DETAIL_ON\n");
      break;
    case 10005:
      dumpState(kFn);
      return 0;
    default:
      return -2;
  }
  B::sNeedUpdate = true;
  return 0;
}

int setScreenColorMode(ControlTarget& target, int mode) {
  constexpr const char* kFn = "SetScreenColorMode";
  int result = 0;
  switch (mode) {
    case 100:
    case 102:
    case 103:
    case 110:
      B::sCFGMode = kModeAllOff;
      break;
    case 101:
      PC_LOGE_AS(kFn, "ignore 101\n");
      B::sCFGMode = -1;
      break;
    case kModeRegenerate:
      B::sCFGMode = kModeRegenerate;
      if (PanelRegistry::Pin p = PanelRegistry::pin(B::sCurrentPanel)) p->generateCfgFile();
      break;
    case kModeStatusQuery:
      PC_LOGD_AS(kFn, "MODE_IMIXLUT3D_STATUS %d\n", static_cast<int>(B::sIsByPass.load()));
      result = B::sIsByPass ? -1 : 0;
      break;
    default:
      B::sCFGMode = mode;
      break;
  }
  if (target.fodOn()) {
    PC_LOGD_AS(kFn, "fod on!\n");
    B::sCFGMode = kModeAllOff;
  }
  B::sNeedUpdate = true;
  return result;
}

void dumpState(const char* fn) {
  PC_LOGD_AS(fn, "sDebug:%d\n", static_cast<int>(B::sDebug.load()));
  PC_LOGD_AS(fn, "sCFGMode:%d\n", static_cast<int>(B::sCFGMode.load()));
  PC_LOGD_AS(fn, "sBrightness:%d\n", static_cast<int>(B::sBrightness.load()));
  PC_LOGD_AS(fn, "sDEStatus:%d\n", static_cast<int>(B::sDEStatus.load()));
  PC_LOGD_AS(fn, "sParamVersion:%d\n", static_cast<int>(B::sParamVersion.load()));
  PC_LOGD_AS(fn, "sFWVersion:%d\n", static_cast<int>(B::sFWVersion.load()));
  PC_LOGD_AS(fn, "sIsByPass:%d\n", static_cast<int>(B::sIsByPass.load()));
  PC_LOGD_AS(fn, "sIsLut3dHook:%d\n", static_cast<int>(B::sIsLut3dHook.load()));
  PC_LOGD_AS(fn, "sNeedUpdate:%d\n", static_cast<int>(B::sNeedUpdate.load()));
  PC_LOGD_AS(fn, "sIsHidlRegitsered:%d\n", static_cast<int>(B::sIsHidlRegitsered.load()));
  PC_LOGD_AS(fn, "sIsPanelNitsCalibrationOn:%d\n",
             static_cast<int>(B::sIsPanelNitsCalibrationOn.load()));
  PC_LOGD_AS(fn, "sIsPanelCalibrationOn:%d\n", static_cast<int>(B::sIsPanelCalibrationOn.load()));
  PC_LOGD_AS(fn, "sIsGammaCorrectionOn:%d\n", static_cast<int>(B::sIsGammaCorrectionOn.load()));
  PC_LOGD_AS(fn, "sIsCMDebugOn:%d\n", static_cast<int>(B::sIsCMDebugOn.load()));
  for (int index = 0; index < 2; ++index) {
    if (PanelRegistry::Pin p = PanelRegistry::pin(index)) p->dump();
  }
}

}  // namespace control
}  // namespace postblend
