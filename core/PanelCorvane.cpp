// Lifecycle and dispatch of the colour manager's five operations.
#define LOG_TAG "PanelCorvane"

#include "core/PanelCorvane.h"

#include <utils/CallStack.h>

#include <cmath>
#include <cstring>

#include "backend/PanelCorvaneBE.h"
#include "base/DeviceIo.h"
#include "base/Hardening.h"
#include "base/Log.h"
#include "base/PanelRegistry.h"
#include "base/Trace.h"
#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "frontend/PanelCorvaneFE.h"

namespace postblend {

namespace {
constexpr uint32_t kPayloadVersion = 24;
constexpr uint32_t kOwnModeListHeader = 96;

void callStackIf(bool on) {
  if (on) android::CallStack stack(LOG_TAG);
}
}  // namespace

PanelCorvane::PanelCorvane() {
  callStackIf(dbgOn(kDbgCallStack));
  mPropHandlers[kModeList] = &PanelCorvane::GetModeList;
  mPropHandlers[kNeedsUpdate] = &PanelCorvane::GetNeedsUpdate;
  mPropHandlers[kSupportToneMap] = &PanelCorvane::GetSupportTonemap;
  mOpHandlers[kScModeRenderIntent] = &PanelCorvane::ProcessModeRenderIntent;
  mOpHandlers[kScModeSwAssets] = &PanelCorvane::ProcessModeSwAssets;
  mModeList.version = kOwnModeListHeader;
}

PanelCorvane::~PanelCorvane() {
  // Nothing may reach this object once it is gone: out of the registry first, then wait for the
  // service calls already inside it.
  PanelRegistry::withdraw(this);
  if (mHidlService) sIsHidlRegitsered = false;  // the next primary object registers itself
  stopWorker();
}

void PanelCorvane::stopWorker() {
  if (mThread == nullptr) return;
  mWorkerRunning = false;
  if (mQueue && mQueue->looper() != nullptr) mQueue->looper()->wake();
  mThread->join();
  mThread.clear();
}

int PanelCorvane::Init(const std::string& name) {
  if (!mOddScratch) mOddScratch.reset(new lut3d_info[kMaxTables / 2]());
  ColorMode standard;
  standard.gamut = 255;
  standard.gamma = 255;
  standard.intent = 65534;
  standard.name = "standard";
  mModeList.list.push_back(standard);
  mInitDone = true;

  {
    std::lock_guard<std::mutex> lock(base_lock_);
    if (sProp.load() == nullptr) {
      Prop* prop = new Prop();
      sProp = prop;
      sIsByPass = !prop->Init();
      const PanelSwitches sw = prop->switches();
      sIsPanelCalibrationOn = sw.calibration;
      sIsPanelNitsCalibrationOn = sw.nitsCalibration;
      sIsGammaCorrectionOn = sw.gammaCorrection;
      sIsCMDebugOn = sw.cmDebug;
      sDebug = static_cast<uint32_t>(sw.logLevel);
      sParamVersion = static_cast<uint32_t>(sw.paramVersion);
      sFWVersion = static_cast<uint32_t>(sw.fwVersion);
      sHardenedTables = sw.hardenedTables;
    }
  }

  if (sIsByPass) {
    PC_LOGD("bypass!\n");
    initHidlService();
    return 0;
  }
  PC_LOGD("init\n");

  stopWorker();  // joined before the parts lock: its last message may still be using them
  {
    std::unique_lock<std::shared_mutex> parts(mPartsLock);
    mWorkerRunning = true;
    mQueue = std::make_unique<impl::MessageQueue>();
    mQueue->init(this);
    mThread = android::sp<MessageQueueThread>(new MessageQueueThread(this));
    // The worker takes the name the buffer holds now, before the new name is copied in.
    mThread->run(mName, android::PRIORITY_DEFAULT, 0);
    mQueue->sendMessage(kMsgHelpServiceInit);

    std::strncpy(mName, name.c_str(), 256);
    mName[256] = '\0';
    {
      std::lock_guard<std::mutex> lock(base_lock_);
      if (Prop* prop = sProp.load()) mPanelIndex = prop->GetPanelId(mName);
    }

    if (!PanelRegistry::claim(mPanelIndex, this)) PC_LOGE("warning: reinit panel, cfg error!\n");

    if (sIsPanelCalibrationOn) {
      mBE = std::make_unique<PanelCorvaneBE>(this);
      mFE = std::make_unique<PanelCorvaneFE>(this, mPanelIndex);
      mQueue->sendMessage(kMsgLoad3dLut);
    }
  }

  PC_LOGD("%s DONE(%d)! logl:%d\n", mName, static_cast<int>(mTablesReady.load()),
          static_cast<int>(sDebug.load()));
  callStackIf(dbgOn(kDbgCallStack));
  return 0;
}

int PanelCorvane::DeInit() {
  PC_LOGD("Warning...\n");
  { android::CallStack stack(LOG_TAG); }
  {
    std::lock_guard<std::mutex> lock(mLock);
    if (mInitDone) {
      mInitDone = false;
      mWorkerRunning = false;
      if (mQueue) mQueue->sendMessage(kMsgWake);
      if (mThread != nullptr) {
        mThread->join();
        mThread.clear();
      }
      releaseTables();
      PC_LOGD("DeInit done!\n");
    }
    std::lock_guard<std::mutex> baseLock(base_lock_);
    delete sProp.exchange(nullptr);
  }
  devio::sleepSeconds(1);
  return 0;
}

void PanelCorvane::releaseTables() {
  // Waits for a job running on the worker or a binder thread before the memory goes; frames
  // let go of the withdrawn set on their own, and it is freed after the last.
  std::lock_guard<std::mutex> tables(Lut3DCacheManager::tablesLock(mPanelIndex));
  if (!hardened()) {
    Lut3DCacheManager::deInit(mPanelIndex);
    return;
  }
  if (ownsPanelTables()) {
    Lut3DCacheManager::deInit(mPanelIndex);
    // Forgotten too, so that the next object of this panel (a fold) makes its tables again.
    Lut3DCacheManager::sNumOfLut3D[mPanelIndex] = 0;
  }
  mTablesReady = false;
  PanelRegistry::release(this);
}

bool PanelCorvane::ownsPanelTables() {
  if (PanelRegistry::holds(mPanelIndex, this)) return true;
  if (hardenedFirst(HardenedCause::kNotPanelOwner)) {
    PC_LOGE("hardened: %s does not hold panel %d, its tables left alone\n", mName,
            static_cast<int>(mPanelIndex));
  }
  return false;
}

void PanelCorvane::publishTables() {
  mTablesReady = Lut3DCacheManager::publish(mPanelIndex);
}

int PanelCorvane::SetProperty(const ScPayload& payload) {
  if (dbgOn(kDbgEntry)) PC_LOGD("start\n");
  callStackIf(dbgOn(kDbgCallStack));
  traceMark("SetProperty");
  if (sIsByPass) {
    if (dbgOn(kDbgVerbose)) PC_LOGD("bypass!\n");
    return 0;
  }
  if (!mInitDone || payload.version != kPayloadVersion) {
    PC_LOGD("init_done_:%d payload.version: %d %d\n", static_cast<int>(mInitDone.load()),
            payload.version, kPayloadVersion);
    return 0;
  }
  if (payload.prop == kSetPanelBrightness) {
    if (payload.payload == 0 || payload.len < sizeof(double)) {
      PC_LOGE("payload error!\n");
      return 0;
    }
    double fraction;
    std::memcpy(&fraction, reinterpret_cast<const void*>(static_cast<uintptr_t>(payload.payload)),
                sizeof(fraction));
    double level = fraction * 10239.0 + 1.0;
    // Truncate toward zero, then clamp; NaN counts as the lowest level.
    uint32_t brightness = 0;
    if (level >= 8191.0) {
      brightness = 8191;
    } else if (level >= 1.0) {
      brightness = static_cast<uint32_t>(level);
    }
    sBrightness = brightness;
    if (dbgOn(kDbgVerbose)) PC_LOGD("brightness:%d\n", static_cast<int>(brightness));
  }
  return 0;
}

bool PanelCorvane::admitCall(const char* fn) {
  if (dbgOn(kDbgEntry)) PC_LOGD_AS(fn, "start\n");
  callStackIf(dbgOn(kDbgCallStack));
  if (sIsByPass) {
    if (dbgOn(kDbgVerbose)) PC_LOGD_AS(fn, "bypass!\n");
    return false;
  }
  if (!mInitDone) {
    PC_LOGD_AS(fn, "not init.\n");
    return false;
  }
  return true;
}

int PanelCorvane::GetProperty(ScPayload* payload) {
  if (!admitCall(__func__)) return 0;
  std::lock_guard<std::mutex> lock(mLock);
  if (!mInitDone) {
    PC_LOGD("not init!\n");
    return 0;
  }
  if (payload == nullptr || payload->version != kPayloadVersion) {
    PC_LOGE("payload error!\n");
    return 0;
  }
  if (payload->prop == kSetPanelBrightness && sIsPanelNitsCalibrationOn) {
    return kSetPanelBrightness;  // asks the colour manager for brightness updates
  }
  auto it = mPropHandlers.find(static_cast<ScProperty>(payload->prop));
  if (dbgOn(kDbgEntry)) PC_LOGD("%d\n", payload->prop);
  if (it == mPropHandlers.end() || it->second == nullptr) {
    PC_LOGD("prop is not supported:%d\n", payload->prop);
    return 0;
  }
  return (this->*(it->second))(payload);
}

int PanelCorvane::ProcessOps(ScOps op, const ScPayload& input, ScPayload* output) {
  if (!admitCall(__func__)) return 0;
  std::lock_guard<std::mutex> lock(mLock);
  traceMark("ProcessOps");
  if (dbgOn(kDbgVerbose)) PC_LOGD("Process Ops called, op = %d\n", static_cast<int>(op));
  if (output == nullptr || !mInitDone) {
    PC_LOGE("Invalid params init_done_ %d output %pK\n", static_cast<int>(mInitDone.load()),
            static_cast<void*>(output));
    return 0;
  }
  auto it = mOpHandlers.find(op);
  if (it == mOpHandlers.end() || it->second == nullptr) {
    PC_LOGE("Invalid ops %d\n", static_cast<int>(op));
    return 0;
  }
  return (this->*(it->second))(input, output);
}

}  // namespace postblend
