#include "frontend/TablePlan.h"

namespace postblend {
namespace fe {

const char* const kOdfSetNames[kOdfSets] = {"1_max", "2_max", "1_100nit", "2_100nit"};
const char* const kModeNames[kModes] = {"Vivid", "Nature", "Cinema", "LsRGB"};

const char* const kTargetSuffix[kTargetFiles] = {
    "_Vivid.txt",         "_Nature.txt",         "_Cinema.txt",         "_LsRGB.txt",
    "_Vivid_100nits.txt", "_Nature_100nits.txt", "_Cinema_100nits.txt", "_LsRGB_100nits.txt"};

const char* const kGoldenOdfSuffix[kOdfSets] = {"_1_max.odf", "_2_max.odf", "_1_100nit.odf",
                                                "_2_100nit.odf"};

const char* const kLocalOdf[2][kOdfSets] = {
    {"/mnt/vendor/persist/display/Loading_ON_1_max.odf",
     "/mnt/vendor/persist/display/Loading_ON_2_max.odf",
     "/mnt/vendor/persist/display/Loading_ON_1_100nit.odf",
     "/mnt/vendor/persist/display/Loading_ON_2_100nit.odf"},
    {"/mnt/vendor/persist/display/Loading_ON_1_max_d1.odf",
     "/mnt/vendor/persist/display/Loading_ON_2_max_d1.odf",
     "/mnt/vendor/persist/display/Loading_ON_1_100nit_d1.odf",
     "/mnt/vendor/persist/display/Loading_ON_2_100nit_d1.odf"}};

namespace {
constexpr int kOdfRow[kMaxTables] = {kOdf2low, kOdf2max, kOdf1low, kOdf1max,
                                     kOdf1low, kOdf1max, kOdf2low, kOdf2max};

// Table count from which targets were read; -1 when unusable.
int tableCount(const bool read[kTargetFiles], bool use100nits) {
  if (!read[0] || !read[1] || !read[2]) return -1;
  if (!use100nits) return read[3] ? 8 : 6;
  if (read[3]) return (read[4] && read[5] && read[6] && read[7]) ? 8 : -1;
  return (read[4] && read[5] && read[6] && !read[7]) ? 6 : -1;
}
}  // namespace

TableInputs tableInputs(int index, bool use100nits) {
  const int mode = index / 2;
  return {kOdfRow[index], (use100nits && index % 2 == 0) ? 4 + mode : mode};
}

TablePlan planTables(const bool targetRead[kTargetFiles], bool use100nits, int slots) {
  TablePlan plan = {};
  plan.count = tableCount(targetRead, use100nits);
  if (plan.count > slots) plan.count = slots < 0 ? 0 : slots;
  for (int i = 0; i < plan.count; ++i) plan.table[i] = tableInputs(i, use100nits);
  return plan;
}

std::string targetPath(const std::string& displayName, int file) {
  return std::string(kOdmDir) + displayName + kTargetSuffix[file];
}

std::string opticalDataPath(OdfOrigin origin, uint32_t panel, const std::string& displayName,
                            int set) {
  if (origin == OdfOrigin::Local) return kLocalOdf[panel == 0 ? 0 : 1][set];
  return std::string(kOdmDir) + displayName + kGoldenOdfSuffix[set];
}

uint32_t recordedSource(int match, bool golden) {
  if (match == -1) return 1;
  return match == 1 && golden ? 2 : 0;
}

}  // namespace fe
}  // namespace postblend
