#include "config/PanelSwitches.h"

#include "config/PropertyReader.h"

namespace postblend {

namespace {
int32_t intOr(const PropertyEntries& entries, const char* key, int32_t def) {
  auto it = entries.find(key);
  return it == entries.end() ? def : propertyInt(it->second);
}
}  // namespace

PanelSwitches panelSwitches(const PropertyEntries& entries) {
  PanelSwitches s;
  s.logLevel = intOr(entries, "LogLevel", 1);
  s.paramVersion = intOr(entries, "ParamVersion", 0);
  s.fwVersion = intOr(entries, "FWVersion", 0);
  s.calibration = switchOn(intOr(entries, "PanelCalibration", 0));
  s.nitsCalibration = switchOn(intOr(entries, "PanelNitsCalibration", 0));
  s.gammaCorrection = switchOn(intOr(entries, "GammaCorrection", 0));
  s.cmDebug = switchOn(intOr(entries, "CMDebug", 0));
  s.use100nits = switchOn(intOr(entries, kIn100nitsKey, 0));
  s.hardenedTables = switchOn(intOr(entries, "HardenedTables", 0));
  return s;
}

}  // namespace postblend
