// One 17x17x17 table from one optical data record (the panel as measured) and one mode target.
// Target-linear RGB goes through M = Mp^-1 * Mt into panel-linear RGB, then through the output
// curve (the target's power p with gamma correction on, else the sRGB encode). With gamma
// correction on, each node is then remapped through the intermediate grey-level table by the
// value of its largest channel (hue kept, all-zero nodes untouched), and a protect-white pass
// recomputes the grey axis (levels 0..15) and the seven nodes next to white from their input
// codes (2.2 decode, M, power p) against the final table; white itself keeps its main-pass value.
// The shortened pass stops after grey node 0 and the corner.
//
// Rules: the main pass takes each node's matrix product from the grid tables of ColorMath.h;
// every scratch table is local to the call; the order of every operation is deliberate (results
// must agree to the last bit on every CPU). Nothing here logs or writes files: an observer sees
// each stage's result.
#pragma once

#include "base/PanelCorvaneBase.h"
#include "frontend/ColorMath.h"
#include "frontend/GammaTable.h"
#include "postblend/color_records.h"

namespace postblend {
namespace fe {

struct Lut3dSwitches {
  bool gammaCorrection = false;
  bool shortProtectWhite = false;  // stop the protect-white pass after grey node 0
};

// Every matrix of the conversion, in the order they are computed.
struct Conversion {
  Chromaticities target, panel;
  Mat3 targetPrimaries, targetPrimariesInverse;
  bool targetPrimariesRegular;  // false: the inverse is the partial identity of invert()
  Mat3 targetToXyz;             // Mt
  Mat3 panelPrimaries, panelPrimariesInverse;
  bool panelPrimariesRegular;
  Mat3 panelToXyz;  // Mp
  Mat3 xyzToPanel;  // Mp^-1
  bool panelToXyzRegular;
  Mat3 targetToPanel;  // M
};

Chromaticities targetChromaticities(const PanelCorvaneBase::TargetParm& target);
// x = X / ((X + Y) + Z), y likewise, of the measured red, green, blue and white.
Chromaticities panelChromaticities(const PanelCorvaneBase::OpticalDataFile& odf);
Conversion conversion(const PanelCorvaneBase::TargetParm& target,
                      const PanelCorvaneBase::OpticalDataFile& odf);

// Stages in the order they happen; the protect-white hooks and the gamma tables only with gamma
// correction on.
class Lut3dObserver {
 public:
  virtual ~Lut3dObserver() = default;
  virtual void conversionReady(const Conversion&) {}
  virtual void gammaTableReady(GammaPass, const GammaTable&, const GammaKnots&) {}
  virtual void mainPassDone(const lut3d_info&) {}
  virtual void protectWhiteStarting(const lut3d_info&) {}
  virtual void protectWhiteDone(const lut3d_info&) {}
};

// Fills the entries of `lut` (inputs and outputs); the header words are the caller's.
void generateLut3D(const PanelCorvaneBase::OpticalDataFile& odf,
                   const PanelCorvaneBase::TargetParm& target, const Lut3dSwitches& switches,
                   lut3d_info& lut, Lut3dObserver* observer = nullptr);

}  // namespace fe
}  // namespace postblend
