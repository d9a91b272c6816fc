// The property file: any bytes parsed as the file, then every getter and the panel-index lookup
// asked (for the sample device's display names and for the text after the last line feed, which
// the parser ignores). The shared reader's own diagnosis is fuzzed by readers_fuzzer.
#include <string>

#include "config/Prop.h"
#include "fuzz/support/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  pcfuzz::quietPlatform();
  std::string content(reinterpret_cast<const char*>(data), size);         // the parser edits it
  const std::string tail = content.substr(content.rfind('\n') + 1, 300);  // npos + 1 is 0
  postblend::Prop prop;
  prop.parsePropertyFile(content);
  for (const char* name : {"PanelCorvane_primary", "PanelCorvane_secondary", tail.c_str()})
    prop.GetPanelId(name);
  // Every getter looks its key up and reads the value by the number rules.
  (void)(prop.GetLogLevel() + prop.GetParamVersion() + prop.GetFWVersion());
  (void)(prop.IsPanelCalibrationOn() + prop.IsPanelNitsCalibrationOn() +
         prop.IsGammaCorrectionOn() + prop.IsCMDebugOn());
  prop.GetValueByKey(tail.c_str());
  prop.GetValueByKey(tail.c_str(), 7);
  prop.GetValueByKey("inParam100nits", 0);
  return 0;
}
