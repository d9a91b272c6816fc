// The property file: any bytes parsed as the file, then every getter and the panel-index lookup
// asked (for the sample device's display names and for the text after the last line feed, which
// the parser ignores).
#include <string>

#include "config/Prop.h"
#include "config/PropertyReader.h"
#include "fuzz/support/FuzzSupport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  pcfuzz::quietPlatform();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string content(reinterpret_cast<const char*>(data), size);
  const size_t lastLine = content.rfind('\n');
  const std::string tail = content.substr(lastLine == std::string::npos ? 0 : lastLine + 1, 300);

  // The shared reader on its own: its diagnosis and the number rules on every value it kept.
  const postblend::PropertyRead read = postblend::readProperties(content);
  for (const auto& entry : read.accepted) {
    postblend::propertyInt(entry.value);
    postblend::panelIndexOf(entry.value);
  }

  postblend::Prop prop;
  prop.parsePropertyFile(content);
  for (const char* name : {"PanelCorvane_primary", "PanelCorvane_secondary", tail.c_str()})
    prop.GetPanelId(name);
  prop.GetLogLevel();
  prop.GetParamVersion();
  prop.GetFWVersion();
  prop.IsPanelCalibrationOn();
  prop.IsPanelNitsCalibrationOn();
  prop.IsGammaCorrectionOn();
  prop.IsCMDebugOn();
  prop.GetValueByKey(tail.c_str());
  prop.GetValueByKey(tail.c_str(), 7);
  prop.GetValueByKey("inParam100nits", 0);
  return 0;
}
