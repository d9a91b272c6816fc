// Generation of a panel's table set: reads the modes' target files and the panel's four optical
// data files (the panel's own "local" factory data when it matches, else the "golden" data for
// the panel type), generates the tables TablePlan.h assigns into the panel's cache slots and
// saves the cache.
#define LOG_TAG "PanelCorvaneFE"

#include <cstring>

#include "base/Log.h"
#include "base/Trace.h"
#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "frontend/PanelCorvaneFE.h"
#include "frontend/TablePlan.h"

namespace postblend {

std::atomic<int> PanelCorvaneFE::sIn100nits{-1};

PanelCorvaneFE::PanelCorvaneFE(PanelCorvaneBase* owner, uint32_t panelIndex) : mOwner(owner) {
  mPanelIndex = panelIndex;
  if (owner != nullptr) {
    const size_t len = strnlen(owner->mName, sizeof(owner->mName) - 1);
    std::memcpy(mName, owner->mName, len);
    mName[len] = '\0';
  }
  std::memset(preCalLut3D, 0, sizeof(preCalLut3D));
  std::memset(preCalLutRGB, 0, sizeof(preCalLutRGB));
}

std::string PanelCorvaneFE::displayName() const {
  const char* name = mOwner != nullptr ? mOwner->mName : mName;
  return std::string(name, strnlen(name, sizeof(mName)));
}

void PanelCorvaneFE::dump() { PC_LOGD("%s %s\n", __DATE__, __TIME__); }

int PanelCorvaneFE::operateOriginalData() { return 0; }

void PanelCorvaneFE::fetch100nitsSwitch() {
  int in100nits = 0;
  if (sIn100nits.load(std::memory_order_relaxed) == -1 &&
      Prop::readSharedInt(kIn100nitsKey, 0, &in100nits)) {
    sIn100nits.store(in100nits, std::memory_order_relaxed);
  }
}

void PanelCorvaneFE::readTargets(const std::string& name, bool use100nits, TargetParm* targets,
                                 bool* read) {
  for (int k = 0; k < fe::targetFilesToRead(use100nits); ++k) {
    const std::string path = fe::targetPath(name, k);
    read[k] = readTargetParm(targets[k], path.c_str()) == 0;
    if (read[k]) {
      PC_LOGE_AS("generateCfgFile", "read %s\n", path.c_str());
    } else {
      PC_LOGE_AS("generateCfgFile", "Failed to open %s\n", path.c_str());
    }
  }
}

fe::OdfOrigin PanelCorvaneFE::readOpticalData(int match, const std::string& name,
                                              OpticalDataFile* odf) {
  return fe::readOpticalData(
      match,
      [&](fe::OdfOrigin origin, int set) {
        const std::string path = fe::opticalDataPath(origin, mPanelIndex, name, set);
        return readODF(odf[set], path.c_str()) == 0;
      },
      [](fe::OdfOrigin origin) {
        PC_LOGE_AS("generateCfgFile", "failed to open %s odf\n",
                   origin == fe::OdfOrigin::Local ? "local" : "golden");
      });
}

void PanelCorvaneFE::recordSource(int match, bool golden) {
  static const char* const kSays[3] = {"matched,local.", "unmatched,golden.", "matched,golden."};
  PanelCfgCache& cfg = Lut3DCacheManager::sPCFGPanel[mPanelIndex];
  cfg.source = fe::recordedSource(match, golden);
  PC_LOGE_AS("generateCfgFile", "%s\n", kSays[cfg.source]);
  cfg.panelId = mPanelIndex;
  cfg.paramVersion = sParamVersion.load(std::memory_order_relaxed);
}

int PanelCorvaneFE::generateCfgFile(int match) {
  fetch100nitsSwitch();
  const std::string name = displayName();
  PC_LOGD("%s\n", name.c_str());
  if (match == 0) return 0;

  ScopedTrace trace("generateCfgFile");
  const bool use100nits = switchOn(sIn100nits.load(std::memory_order_relaxed));

  // Both kinds of record start zeroed; the optical records are shared by the local and the
  // golden attempt, so a short golden file leaves what the local attempt read.
  TargetParm targets[fe::kTargetFiles] = {};
  bool read[fe::kTargetFiles] = {};
  readTargets(name, use100nits, targets, read);
  OpticalDataFile odf[fe::kOdfSets] = {};
  const fe::OdfOrigin origin = readOpticalData(match, name, odf);
  if (origin == fe::OdfOrigin::None) return -1;
  const bool golden = origin == fe::OdfOrigin::Golden;

  lut3d_info* luts = nullptr;
  const int slots = Lut3DCacheManager::getLutArrayPointer(mPanelIndex, &luts);
  // Never write past the slots the cache allocated for this panel.
  const fe::TablePlan plan = fe::planTables(read, use100nits, slots);
  if (plan.count < 0 || luts == nullptr || slots <= 0) return -1;

  for (int i = 0; i < plan.count; ++i) {
    lut3d_info& lut = luts[i];
    lut.flags = 0;
    lut.lut3d_id = (uint32_t)i;
    lut.uniform = 1;
    lut.num_entries = kLut3dEntries;
    generateLut3D(odf[plan.table[i].odf], targets[plan.table[i].target], &lut, i);
  }

  Lut3DCacheManager::sTablesMade[mPanelIndex] = static_cast<uint32_t>(plan.count);
  recordSource(match, golden);
  Lut3DCacheManager::saveCfgToFile(mPanelIndex);
  return golden ? 1 : 0;
}

}  // namespace postblend
