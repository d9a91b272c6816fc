// PanelCorvaneFE::generateLut3D: Lut3dGeneration.h's arithmetic with the switches read from the
// shared state, the trace section, and an observer that writes each stage's log lines and dump
// files in the order the stages happen.
#define LOG_TAG "PanelCorvaneFE"

#include <string>

#include "base/Log.h"
#include "base/Trace.h"
#include "frontend/Lut3dGeneration.h"
#include "frontend/NumericLog.h"
#include "frontend/PanelCorvaneFE.h"

namespace postblend {

namespace {
class Lut3dLog : public fe::Lut3dObserver {
 public:
  Lut3dLog(const PanelCorvaneBase::OpticalDataFile& odf, int index, unsigned panel)
      : mOdf(odf), mIndex(index), mPanel(panel) {}
  bool verbose() const { return mVerbose; }

  void conversionReady(const fe::Conversion& c) override {
    felog::conversion(c, mOdf, mVerbose, dbgOn(kDbgEntry));
  }
  void gammaTableReady(fe::GammaPass pass, const fe::GammaTable& table,
                       const fe::GammaKnots& knots) override {
    if (pass != fe::GammaPass::Intermediate) return;  // the final pass is silent
    if (mVerbose) felog::gammaKnots(knots);
    if (dbgOn(kDbgDump)) felog::dumpGammaTable(table);
  }
  void mainPassDone(const lut3d_info& lut) override {
    if (!dbgOn(kDbgDump)) return;
    std::string path = "/data/vendor/display/lut3d0-P0-orignal-before-gamma.txt";
    const size_t at = path.find("lut3d") + 5;
    path[at] = (char)('0' + mIndex);
    path[at + 3] = (char)('0' + mPanel);
    felog::dumpLut(path, lut);
  }
  void protectWhiteStarting(const lut3d_info& lut) override {
    if (mVerbose) felog::greyAxis(lut, false);
  }
  void protectWhiteDone(const lut3d_info& lut) override {
    if (mVerbose) felog::greyAxis(lut, true);
    if (!dbgOn(kDbgDump)) return;
    std::string path = "/data/vendor/display/lut3d00-orignal.txt";
    const size_t at = path.find("lut3d") + 5;
    path[at] = (char)('0' + mIndex);
    path[at + 1] = mPanel == 1 ? '1' : '0';
    felog::dumpLut(path, lut);
  }

 private:
  const PanelCorvaneBase::OpticalDataFile& mOdf;
  const int mIndex;
  const unsigned mPanel;
  // One reading for the whole table: it also decides the shortened protect-white pass.
  const bool mVerbose = dbgOn(kDbgVerbose);
};
}  // namespace

void PanelCorvaneFE::generateLut3D(OpticalDataFile& odf, TargetParm& target, lut3d_info* lut,
                                   int index) {
  ScopedTrace trace("generateLut3D");
  Lut3dLog log(odf, index, mPanelIndex);
  fe::Lut3dSwitches switches;
  switches.gammaCorrection = sIsGammaCorrectionOn;
  // Under verbose logging the pass stops after the first grey node, as the factory tool does.
  switches.shortProtectWhite = log.verbose();
  fe::generateLut3D(odf, target, switches, *lut, &log);
}

}  // namespace postblend
