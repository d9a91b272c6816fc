// Which optical data and which target each table of a panel's generation uses, the files they
// come from, and what the generation records about its source. Tables come in pairs: 2k is the
// 100-nit table and 2k + 1 the full-brightness one of mode k (Vivid, Nature, Cinema, LsRGB). Vivid
// and LsRGB use the "_2_" measurements, Nature and Cinema the "_1_" ones; the 100-nit targets
// replace the standard ones of the even tables only when the 100-nit switch is 1:
//   0: 2low Vivid(_100nits)   1: 2max Vivid    2: 1low Nature(_100nits)  3: 1max Nature
//   4: 1low Cinema(_100nits)  5: 1max Cinema   6: 2low LsRGB(_100nits)   7: 2max LsRGB
#pragma once

#include <cstdint>
#include <string>

namespace postblend {
namespace fe {

// Optical data records, in the order they are read.
enum OdfSet { kOdf1max = 0, kOdf2max = 1, kOdf1low = 2, kOdf2low = 3 };
constexpr int kOdfSets = 4;
// Target files: the standard ones 0..3, their 100-nit counterparts 4..7 (mode + 4).
constexpr int kTargetFiles = 8;
constexpr int kMaxTables = 8;

// Names of the optical data sets in the order above, and of the modes (table pair k, target
// files k and k + 4).
extern const char* const kOdfSetNames[kOdfSets];  // "1_max", "2_max", "1_100nit", "2_100nit"
constexpr int kModes = 4;
extern const char* const kModeNames[kModes];  // "Vivid", "Nature", "Cinema", "LsRGB"

// Name parts: directory + display name + suffix for targets and golden data.
constexpr const char* kOdmDir = "/odm/etc/PanelCorvane/";
extern const char* const kTargetSuffix[kTargetFiles];  // "_Vivid.txt" ... "_LsRGB_100nits.txt"
extern const char* const kGoldenOdfSuffix[kOdfSets];   // "_1_max.odf" ... "_2_100nit.odf"
// The panel's own factory data: [0] the primary panel, [1] any other.
extern const char* const kLocalOdf[2][kOdfSets];

struct TableInputs {
  int odf;     // OdfSet
  int target;  // target file
};

// Targets a generation reads: the standard four, and the 100-nit four with the switch on.
inline int targetFilesToRead(bool use100nits) { return use100nits ? 8 : 4; }

TableInputs tableInputs(int index, bool use100nits);

struct TablePlan {
  int count;  // tables to generate, -1 when the targets read allow no generation
  TableInputs table[kMaxTables];
};

// From which target files were read and the panel's cache slots (never more tables than slots).
TablePlan planTables(const bool targetRead[kTargetFiles], bool use100nits, int slots);

// Device paths of a target file and of one optical data set.
enum class OdfOrigin { None, Local, Golden };
std::string targetPath(const std::string& displayName, int file);
std::string opticalDataPath(OdfOrigin origin, uint32_t panel, const std::string& displayName,
                            int set);

// The optical data a generation uses: the panel's own ("local") sets only when its identity
// matched (match 1), else or when any of them fails, the golden sets. An attempt stops at its
// first set that does not read (missing, short or failing its CRC) and counts only when all
// four read; both attempts share the records. `readSet(origin, set)` reads one set and says
// whether it is usable, `failed(origin)` hears of an attempt that was not. Returns the origin
// used, None when neither could be read.
template <typename ReadSet, typename Failed>
OdfOrigin readOpticalData(int match, ReadSet readSet, Failed failed) {
  for (OdfOrigin origin : {OdfOrigin::Local, OdfOrigin::Golden}) {
    if (origin == OdfOrigin::Local && match != 1) continue;
    int set = 0;
    while (set < kOdfSets && readSet(origin, set)) ++set;
    if (set == kOdfSets) return origin;
    failed(origin);
  }
  return OdfOrigin::None;
}

// The source word a generation records in the cache trailer: 1 when the identity did not match
// (match -1), 2 when it matched but the golden data was used, else 0 (local data).
uint32_t recordedSource(int match, bool golden);

}  // namespace fe
}  // namespace postblend
