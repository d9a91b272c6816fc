#define LOG_TAG "PanelCorvaneFE"

#include "frontend/NumericLog.h"

#include <fstream>

#include "base/DeviceIo.h"
#include "base/Log.h"
#include "base/LutGrid.h"
#include "frontend/OdfLayout.h"

namespace postblend {
namespace felog {

void inversion(const fe::Mat3& src, const fe::Mat3* inverse) {
  static const char* const kFn = "inverseMatrix";
  const auto& s = src.m;
  PC_LOGD_AS(kFn, "source matrix is:\n");
  for (int r = 0; r < 3; ++r) PC_LOGD_AS(kFn, "%f  %f  %f\n", s[r][0], s[r][1], s[r][2]);
  if (inverse == nullptr) return;
  const auto& d = inverse->m;
  PC_LOGD_AS(kFn, "inverse matrix is:\n");
  for (int r = 0; r < 3; ++r) PC_LOGD_AS(kFn, " %f  %f  %f\n", d[r][0], d[r][1], d[r][2]);
}

void rgbToXyz(const fe::Mat3& m) {
  for (int r = 0; r < 3; ++r) {
    PC_LOGD_AS("RGB2XYZ_Matrix", "RGB2XYZ_Matrix %f %f %f\n", m.m[r][0], m.m[r][1], m.m[r][2]);
  }
}

void rgbToXyzSteps(const fe::Mat3& primaries, const fe::Mat3& primariesInverse, bool regular,
                   const fe::Mat3& result) {
  inversion(primaries, regular ? &primariesInverse : nullptr);
  rgbToXyz(result);
}

void gammaKnots(const fe::GammaKnots& k) {
  static const char* const kFn = "GammaCorrection";
  PC_LOGD_AS(kFn, "brightness[0] = %f\n\n", 0.0);
  for (int j = 0; j < 7; ++j)
    PC_LOGD_AS(kFn, "brgihtness[%d] = %f\n\n", 512 * (j + 1), k.brightness[j]);
  PC_LOGD_AS(kFn, "brightness[4095] = %f\n\n", k.white);
  for (int j = 0; j < 7; ++j) PC_LOGD_AS(kFn, "gamma[%d] = %f\n\n", 512 * (j + 1), k.knotGamma[j]);
  PC_LOGD_AS(kFn, "gamma[0] = %f\n\n", k.gamma0);
  PC_LOGD_AS(kFn, "gamma[256] = %f\n\n", k.gamma256);
  PC_LOGD_AS(kFn, "targetGamma is %f\n\n", k.targetGamma);
}

void dumpGammaTable(const fe::GammaTable& table) {
  std::ofstream out(devio::path("/data/vendor/display/gamma-4096.txt"),
                    std::ios::out | std::ios::trunc);
  for (int i = 0; i < fe::kGammaSize; ++i) out << i << ' ' << table.code[i] << std::endl;
}

void conversion(const fe::Conversion& c, const PanelCorvaneBase::OpticalDataFile& odf, bool verbose,
                bool entry) {
  static const char* const kFn = "generateLut3D";
  if (verbose) {
    PC_LOGD_AS(kFn, "Target R G B W is:\n\n");
    for (const auto& xy : c.target.xy) PC_LOGD_AS(kFn, "%f %f\n\n", xy[0], xy[1]);
    static constexpr int kXyzAt[4] = {odf::kRedXyzAt, odf::kGreenXyzAt, odf::kBlueXyzAt,
                                      odf::kWhiteXyzAt};
    static const char* const kLabel[4] = {"R", "G", "B", "W"};
    for (int k = 0; k < 4; ++k) {
      const float* v = &odf.values[kXyzAt[k]];
      PC_LOGD_AS(kFn, "panel %s %f, %f, %f\n", kLabel[k], v[0], v[1], v[2]);
    }
    PC_LOGD_AS(kFn, "Panel R G B W is:\n\n");
    for (const auto& xy : c.panel.xy) PC_LOGD_AS(kFn, "%10.8f %10.8f\n\n", xy[0], xy[1]);
    rgbToXyzSteps(c.targetPrimaries, c.targetPrimariesInverse, c.targetPrimariesRegular,
                  c.targetToXyz);
    rgbToXyzSteps(c.panelPrimaries, c.panelPrimariesInverse, c.panelPrimariesRegular, c.panelToXyz);
    inversion(c.panelToXyz, c.panelToXyzRegular ? &c.xyzToPanel : nullptr);
  }
  if (entry) {
    for (const auto& row : c.targetToPanel.m)
      for (float v : row) PC_LOGD_AS(kFn, "matrixContent2Panel:%f \n", v);
  }
}

void greyAxis(const lut3d_info& lut, bool after) {
  for (uint32_t i = 0; i < kLut3dGridSize; ++i) {
    const lut3d_entry& e = lut.entries[lutEntryIndex(i, i, i)];
    const float rg = (float)e.out[0] / (float)e.out[1];
    const float bg = (float)e.out[2] / (float)e.out[1];
    if (after) {
      PC_LOGD_AS("generateLut3D",
                 "After Protect W: %4d %4d %4d %4d %4d %4d    %6.3f  %6.3f  %6.3f\n\n", e.in[0],
                 e.in[1], e.in[2], e.out[0], e.out[1], e.out[2], rg, 1.0, bg);
    } else {
      PC_LOGD_AS("generateLut3D",
                 "Before Protect W %4d %4d %4d %4d %4d %4d    %6.3f  %6.3f  %6.3f\n\n", e.in[0],
                 e.in[1], e.in[2], e.out[0], e.out[1], e.out[2], rg, 1.0, bg);
    }
  }
}

void dumpLut(const std::string& path, const lut3d_info& lut) {
  std::ofstream out(devio::path(path.c_str()), std::ios::out | std::ios::trunc);
  if (!out.is_open()) return;
  for (const lut3d_entry& e : lut.entries) {
    out << e.in[0] << ' ' << e.in[1] << ' ' << e.in[2] << ' ' << e.out[0] << ' ' << e.out[1] << ' '
        << e.out[2] << '\n';
  }
}

}  // namespace felog
}  // namespace postblend
