// PanelCorvaneFE's grey-level remapping operations: GammaTable.h's arithmetic behind the front
// end's interface. The intermediate pass adds its verbose lines and its dump file; the final
// pass is silent.
#define LOG_TAG "PanelCorvaneFE"

#include <cstring>

#include "base/Log.h"
#include "frontend/GammaTable.h"
#include "frontend/NumericLog.h"
#include "frontend/PanelCorvaneFE.h"

namespace postblend {

void PanelCorvaneFE::GammaCorrection(OpticalDataFile odf, TargetParm target, unsigned int* table) {
  buildGammaTable(odf, target, false, table);
}

void PanelCorvaneFE::GammaCorrectionFinal(OpticalDataFile odf, TargetParm target,
                                          unsigned int* table) {
  buildGammaTable(odf, target, true, table);
}

void PanelCorvaneFE::buildGammaTable(const OpticalDataFile& odf, const TargetParm& target,
                                     bool final, unsigned int* table) {
  fe::GammaTable out;
  fe::GammaKnots knots;
  fe::buildGammaTable(odf, target, final ? fe::GammaPass::Final : fe::GammaPass::Intermediate, out,
                      &knots);
  std::memcpy(table, out.code, sizeof(out.code));
  if (final) return;
  if (dbgOn(kDbgVerbose)) felog::gammaKnots(knots);
  if (dbgOn(kDbgDump)) felog::dumpGammaTable(out);
}

}  // namespace postblend
