// Front end: turns a panel's optical measurements and the display modes' colour targets into
// the panel's 3D tables.
//
// Every step of the table arithmetic is written in a fixed order with fixed precision (float
// unless a step says double, sums grouped as written, no fused multiply-add) because the tables
// must agree to the last bit with every other computation of them, on every CPU.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "base/PanelCorvaneBase.h"
#include "frontend/ColorMath.h"
#include "frontend/GammaTable.h"
#include "frontend/TablePlan.h"
#include "postblend/color_records.h"

namespace postblend {

class PanelCorvaneFE : public PanelCorvaneBase {
 public:
  static constexpr int kGridLevels = fe::kGridLevels;
  static constexpr int kGammaSize = fe::kGammaSize;

  // `owner` is the plugin object that created this front end (not owned); its display name
  // names the golden and target files.
  PanelCorvaneFE(PanelCorvaneBase* owner, uint32_t panelIndex);

  using PanelCorvaneBase::generateCfgFile;
  void dump() override;

  // match: 1 the factory data belongs to this panel, -1 it does not, 0 nothing to do.
  // Returns 0 when local data (or nothing) was used, 1 for golden data, -1 on failure.
  int generateCfgFile(int match);
  int operateOriginalData();

  // Optical data, target and error-check files.
  int readODF(OpticalDataFile& odf, const char* path);
  int readTargetParm(TargetParm& target, const char* path);
  // Part of the interface; nothing calls it.
  int readODFCheck(const char* path, ODFErrorCheck* check);

  // Colour-space arithmetic (ColorMath.h) with the log lines of the matrix steps.
  void RGB2XYZ_Matrix(float (*xy)[2], float (*m)[3]);
  void inverseMatrix(float (*src)[3], float (*dst)[3]);
  // 12-bit sRGB codes in, 12-bit sRGB codes out.
  void nonlinearRGB2Panel(int* rgb, float (*m)[3], int* out);
  // Linear values in, 12-bit sRGB codes out.
  void nonlinearRGB2Panel(float* linear, float (*m)[3], int* out);
  // 12-bit codes decoded with the 2.2 power law, encoded with the power `gamma`.
  void nonlinearRGB2Panel(int* rgb, float (*m)[3], float gamma, int* out);
  // Grid levels (0..16) in; the matrix comes from preCalLutRGB, `m` is not read.
  void nonlinearRGB2Panel(unsigned int* level, float (*m)[3], float gamma, int* out);
  void initPreCalLut3D();
  void initPreCalLutRGB(float (*m)[3]);
  unsigned max(unsigned a, unsigned b, unsigned c);

  // Grey-level remapping tables of 4096 entries (GammaTable.h), intermediate and final target
  // parameters; the intermediate pass logs and dumps.
  void GammaCorrection(OpticalDataFile odf, TargetParm target, unsigned int* table);
  void GammaCorrectionFinal(OpticalDataFile odf, TargetParm target, unsigned int* table);

  // One 17x17x17 table for one mode (Lut3dGeneration.h); `index` only names the debug dump files.
  // Reads the gamma-correction switch and the log mask; needs no initPreCalLut3D before it.
  void generateLut3D(OpticalDataFile& odf, TargetParm& target, lut3d_info* lut, int index);

  // The property "inParam100nits", fetched once per process by the first generation that finds
  // the property file loaded; -1 until then. 1 selects the 100-nit targets for even tables.
  static std::atomic<int> sIn100nits;

  // Linear light of each grid level, then each conversion-matrix element times it (17m + i).
  // Only the grid operations above use them; table generation keeps its own per call.
  float preCalLut3D[kGridLevels];
  float preCalLutRGB[9 * kGridLevels];

 private:
  // The steps of generateCfgFile.
  static void fetch100nitsSwitch();
  void readTargets(const std::string& name, bool use100nits, TargetParm* targets, bool* read);
  fe::OdfOrigin readOpticalData(int match, const std::string& name, OpticalDataFile* odf);
  void recordSource(int match, bool golden);

  // Shared by GammaCorrection (verbose lines and dump) and GammaCorrectionFinal (silent).
  void buildGammaTable(const OpticalDataFile& odf, const TargetParm& target, bool final,
                       unsigned int* table);
  std::string displayName() const;

  PanelCorvaneBase* mOwner;
};

}  // namespace postblend
