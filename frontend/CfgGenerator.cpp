// Generation of a panel's table set: reads the modes' target files and the panel's four optical
// data files (the panel's own "local" factory data when it matches, else the "golden" data for
// the panel type), generates the tables into the panel's cache slots and saves the cache.
//
// Table i takes its optical data and target by this row:
//   0: 2low Vivid(_100nits)   1: 2max Vivid    2: 1low Nature(_100nits)  3: 1max Nature
//   4: 1low Cinema(_100nits)  5: 1max Cinema   6: 2low LsRGB(_100nits)   7: 2max LsRGB
// (the _100nits targets only when the 100-nit switch is 1).
#define LOG_TAG "PanelCorvaneFE"

#include <algorithm>
#include <cstring>

#include "base/Log.h"
#include "base/Trace.h"
#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "frontend/PanelCorvaneFE.h"

namespace snapdragoncolor {

std::atomic<int> PanelCorvaneFE::sIn100nits{-1};

namespace {
constexpr const char* kOdmDir = "/odm/etc/PanelCorvane/";
constexpr const char* kTargetSuffix[8] = {
    "_Vivid.txt",         "_Nature.txt",         "_Cinema.txt",         "_LsRGB.txt",
    "_Vivid_100nits.txt", "_Nature_100nits.txt", "_Cinema_100nits.txt", "_LsRGB_100nits.txt"};

// Optical records in reading order.
enum Odf { k1max = 0, k2max = 1, k1low = 2, k2low = 3, kNumOdf = 4 };
constexpr const char* kLocalOdf[2][kNumOdf] = {
    {"/mnt/vendor/persist/display/Loading_ON_1_max.odf",
     "/mnt/vendor/persist/display/Loading_ON_2_max.odf",
     "/mnt/vendor/persist/display/Loading_ON_1_100nit.odf",
     "/mnt/vendor/persist/display/Loading_ON_2_100nit.odf"},
    {"/mnt/vendor/persist/display/Loading_ON_1_max_d1.odf",
     "/mnt/vendor/persist/display/Loading_ON_2_max_d1.odf",
     "/mnt/vendor/persist/display/Loading_ON_1_100nit_d1.odf",
     "/mnt/vendor/persist/display/Loading_ON_2_100nit_d1.odf"}};
constexpr const char* kGoldenOdfSuffix[kNumOdf] = {"_1_max.odf", "_2_max.odf", "_1_100nit.odf",
                                                   "_2_100nit.odf"};

constexpr int kMaxTables = 8;
constexpr int kOdfRow[kMaxTables] = {k2low, k2max, k1low, k1max, k1low, k1max, k2low, k2max};

std::string joinPath(const char* dir, const std::string& name, const char* suffix) {
  return std::string(dir) + name + suffix;
}

// Table count from which targets were read (standard 0..3, 100-nit 4..7); -1 when unusable.
int tableCount(const bool read[8], bool use100nits) {
  if (!read[0] || !read[1] || !read[2]) return -1;
  if (!use100nits) return read[3] ? 8 : 6;
  if (read[3]) return (read[4] && read[5] && read[6] && read[7]) ? 8 : -1;
  return (read[4] && read[5] && read[6] && !read[7]) ? 6 : -1;
}
}  // namespace

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

int PanelCorvaneFE::generateCfgFile(int match) {
  int in100nits = 0;
  if (sIn100nits.load(std::memory_order_relaxed) == -1 &&
      Prop::readSharedInt("inParam100nits", 0, &in100nits)) {
    sIn100nits.store(in100nits, std::memory_order_relaxed);
  }
  const std::string name = displayName();
  PC_LOGD("%s\n", name.c_str());
  if (match == 0) return 0;

  ScopedTrace trace("generateCfgFile");
  const bool use100nits = sIn100nits.load(std::memory_order_relaxed) == 1;

  // Both kinds of record start zeroed; the optical records are shared by the local and the
  // golden attempt, so a short golden file leaves what the local attempt read.
  TargetParm targets[8] = {};
  bool read[8] = {};
  for (int k = 0; k < (use100nits ? 8 : 4); ++k) {
    const std::string path = joinPath(kOdmDir, name, kTargetSuffix[k]);
    read[k] = readTargetParm(targets[k], path.c_str()) == 0;
    if (read[k]) {
      PC_LOGE("read %s\n", path.c_str());
    } else {
      PC_LOGE("Failed to open %s\n", path.c_str());
    }
  }

  OpticalDataFile odf[kNumOdf] = {};
  auto readAll = [&](auto pathOf) {
    for (int k = 0; k < kNumOdf; ++k) {
      if (readODF(odf[k], pathOf(k).c_str()) != 0) return false;
    }
    return true;
  };
  bool golden = false;
  bool haveOdf = false;
  if (match == 1) {
    const unsigned set = mPanelIndex == 0 ? 0 : 1;
    haveOdf = readAll([&](int k) { return std::string(kLocalOdf[set][k]); });
    if (!haveOdf) PC_LOGE("failed to open local odf\n");
  }
  if (!haveOdf) {
    haveOdf = readAll([&](int k) { return joinPath(kOdmDir, name, kGoldenOdfSuffix[k]); });
    if (!haveOdf) {
      PC_LOGE("failed to open golden odf\n");
      return -1;
    }
    golden = true;
  }

  int n = tableCount(read, use100nits);
  if (n < 0) return -1;
  lut3d_info* luts = nullptr;
  const int slots = Lut3DCacheManager::getLutArrayPointer(mPanelIndex, &luts);
  // Never write past the slots the cache allocated for this panel.
  if (luts == nullptr || slots <= 0) return -1;
  n = std::min(n, slots);

  initPreCalLut3D();
  for (int i = 0; i < n; ++i) {
    lut3d_info& lut = luts[i];
    lut.flags = 0;
    lut.lut3d_id = (uint32_t)i;
    lut.uniform = 1;
    lut.num_entries = kLut3dEntries;
    const int target = (use100nits && i % 2 == 0) ? 4 + i / 2 : i / 2;
    generateLut3D(odf[kOdfRow[i]], targets[target], &lut, i);
  }

  PanelCfgCache& cfg = Lut3DCacheManager::sPCFGPanel[mPanelIndex];
  if (match == -1) {
    PC_LOGE("unmatched,golden.\n");
    cfg.source = 1;
  } else if (match == 1 && golden) {
    PC_LOGE("matched,golden.\n");
    cfg.source = 2;
  } else {
    PC_LOGE("matched,local.\n");
    cfg.source = 0;
  }
  cfg.panelId = mPanelIndex;
  cfg.paramVersion = sParamVersion.load(std::memory_order_relaxed);
  Lut3DCacheManager::saveCfgToFile(mPanelIndex);
  return golden ? 1 : 0;
}

}  // namespace snapdragoncolor
