// The plugin object handed to the colour manager, one per display. It is also the HIDL service
// object of the control interface and reaches its backend, front end and worker.
#pragma once

#include <IQService.h>
#include <utils/Thread.h>
#include <vendor/display/PanelCorvane/1.0/IPanelCorvane.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>

#include "base/PanelCorvaneBase.h"
#include "cache/TableSet.h"
#include "core/MessageQueue.h"
#include "services/ControlTarget.h"
#include "postblend/color_records.h"
#include "postblend/post_blend_interface.h"

namespace postblend {

class MixLut3DAidl;
class PanelCorvaneBE;
class PanelCorvaneFE;

class PanelCorvane : public ScPostBlendInterface,
                     public ::vendor::display::PanelCorvane::V1_0::IPanelCorvane,
                     public PanelCorvaneBase {
 public:
  using hidl_vec_i32 = ::android::hardware::hidl_vec<int32_t>;

  // Message numbers of the worker queue.
  enum : int { kMsgWake = 0, kMsgRefresh = 1, kMsgHelpServiceInit = 2, kMsgLoad3dLut = 3 };
  static constexpr int kScreenRefreshCommand = 20;

  PanelCorvane();
  ~PanelCorvane() override;

  // Colour manager operations.
  int Init(const std::string& name) override;
  int DeInit() override;
  int SetProperty(const ScPayload& payload) override;
  int GetProperty(ScPayload* payload) override;
  int ProcessOps(ScOps op, const ScPayload& input, ScPayload* output) override;

  // HIDL control interface.
  ::android::hardware::Return<int32_t> configureSet(int32_t command,
                                                    const hidl_vec_i32& args) override;
  ::android::hardware::Return<void> configureGet(int32_t type, const hidl_vec_i32& args,
                                                 configureGet_cb _hidl_cb) override;

  // Panel-instance operations the control services reach through sPrimaryPanel/sSecondaryPanel.
  void generateCfgFile() override;
  bool IsPaneIdMatched() override;
  void refresh() override;
  int set(int in_cmd) override;
  void dump() override;

  int SetScreenColorMode(int mode);
  int cmd10000(int cmd);
  // The shared state, one DEBUG line per value, then dump() of both panels; `fn` names the
  // caller in the lines.
  static void dumpState(const char* fn);

  // Worker.
  void initHelpService();
  void load3dLut();
  void onMessageReceived(int what);
  bool threadLoop();
  int onRefresh();
  void onHelpServiceInit();
  void onLoad3dLut();
  void initHidlService();
  void initAidlService();

  class MessageQueueThread : public android::Thread {
   public:
    explicit MessageQueueThread(PanelCorvane* owner) : android::Thread(true), mOwner(owner) {}
    bool threadLoop() override;

   private:
    PanelCorvane* mOwner;
  };

  using MixLut3DAidl = ::postblend::MixLut3DAidl;
  // Written once by the first primary object's worker; every object of panel index 0 starts the
  // services, so mAidl and the HIDL registration are checked and set under sServicesLock.
  static std::shared_ptr<MixLut3DAidl> mAidl;
  static std::mutex sServicesLock;

  // Property and op handlers.
  int GetModeList(ScPayload* payload);
  int GetNeedsUpdate(ScPayload* payload);
  int GetSupportTonemap(ScPayload* payload);
  int ProcessModeRenderIntent(const ScPayload& input, ScPayload* output);
  int ProcessModeSwAssets(const ScPayload& input, ScPayload* output);

  // Read by tests and the host tool.
  bool initDone() const { return mInitDone.load(std::memory_order_relaxed); }
  bool tablesReady() const { return mTablesReady.load(std::memory_order_relaxed); }
  int32_t lastGenerationResult() const { return mLastGenResult.load(std::memory_order_relaxed); }
  int32_t previousMode() const { return mPreMode; }
  bool fodOn() const { return mFodOn.load(std::memory_order_relaxed); }
  const ColorModeList& modeList() const { return mModeList; }
  impl::MessageQueue* queue() const { return mQueue.get(); }
  PanelCorvaneBE* backend() const { return mBE.get(); }
  PanelCorvaneFE* frontend() const { return mFE.get(); }

 private:
  using PropHandler = int (PanelCorvane::*)(ScPayload*);
  using OpHandler = int (PanelCorvane::*)(const ScPayload&, ScPayload*);

  // Entry logging and the bypass and init checks shared by GetProperty and ProcessOps.
  bool admitCall(const char* fn);
  // Stops a worker left running by an Init that was not followed by DeInit.
  void stopWorker();
  // Releases the panel's tables (DeInit), under the hardened switch only when this object holds
  // the panel's registry slot, which it then gives up.
  void releaseTables();
  // A job made the build area's tables ready: publishes them as the panel's set.
  void publishTables();
  // Hardened: whether this object may replace or release its panel's tables, saying once why
  // not.
  bool ownsPanelTables();
  int chooseMode(int gamut, int intent, int forced);
  // Hardened: a mode whose table the set never made is not taken; the previous one stays.
  int offeredMode(int mode, const TableSet* set);
  // The pinned set's even tables and this object's odd ones, refreshed from a new set.
  FrameTables frameTables(const TableSet* set);
  // After an interpolation rewrote odd table `mode` of `tables`: its verdict now.
  void judgeOddScratch(int mode, FrameTables& tables);

  // What the control commands may ask of this object.
  class ControlPort final : public ControlTarget {
   public:
    explicit ControlPort(PanelCorvane& owner) : mOwner(owner) {}
    PanelCorvaneBase& instance() override;
    bool fodOn() const override;
    void setFod(bool on) override;
    int32_t lastGenerationResult() const override;
    void operateOriginalData() override;

   private:
    PanelCorvane& mOwner;
  };

  ControlPort mControl{*this};
  // Fixed after construction.
  std::map<ScProperty, PropHandler> mPropHandlers;
  std::map<ScOps, OpHandler> mOpHandlers;
  // The object lock: serialises the colour manager's property and op calls with DeInit.
  std::mutex mLock;
  // Guards replacing the queue, backend and front end, and the display name they read. Init,
  // on the colour manager's thread, replaces them holding it exclusively; binder threads and the
  // worker use them holding it shared. The colour manager's thread, their only writer, reads
  // them without it. Taken after a panel's tables lock, never before.
  mutable std::shared_mutex mPartsLock;
  std::unique_ptr<impl::MessageQueue> mQueue;
  std::unique_ptr<PanelCorvaneBE> mBE;
  std::unique_ptr<PanelCorvaneFE> mFE;
  std::atomic<bool> mInitDone{false};
  // Colour manager's thread only.
  ColorModeList mModeList;
  std::atomic<bool> mWorkerRunning{false};
  // True once a job of this object published the panel's set (a regeneration that fails leaves
  // it as long as a set stays published). Changed only under the panel's tables lock; read
  // without it where a stale answer is safe.
  std::atomic<bool> mTablesReady{false};
  std::atomic<int32_t> mLastGenResult{-1};
  std::atomic<bool> mFodOn{false};
  // Colour manager's thread only (the render-intent front and GetNeedsUpdate).
  int32_t mPreGamut = -1;
  int32_t mPreIntent = -1;
  int32_t mPreMode = -1;
  uint32_t mLastTableBrightness = 0;
  // This object's odd tables (table 2k+1 at k), interpolated for the brightness; made by Init,
  // refreshed from a set whose generation differs from mScratchGeneration.
  std::unique_ptr<lut3d_info[]> mOddScratch;
  uint64_t mScratchGeneration = 0;
  // Their verdicts, where bit k of mOddJudged says verdict k is that of the scratch as it is now.
  TableVerdict mOddVerdict[kMaxTables / 2] = {};
  uint32_t mOddJudged = 0;
  // The worker only.
  android::sp<qService::IQService> mQService;
  // Colour manager's thread only (Init, DeInit, the destructor).
  android::sp<MessageQueueThread> mThread;
  // This object registered itself as the HIDL service.
  std::atomic<bool> mHidlService{false};
};

}  // namespace postblend
