// The plugin's key=value property file, "/odm/etc/PanelCorvane/panelcorvane", as typed
// answers. The format and its reader are in PropertyReader.h.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "config/PanelSwitches.h"

namespace postblend {

class Prop {
 public:
  static constexpr const char* kPath = "/odm/etc/PanelCorvane/panelcorvane";

  bool Init();
  bool readFileToString(const char* path, std::string* out);
  uint32_t parsePropertyFile(std::string& content);
  uint32_t split(const std::string& content, std::vector<std::string>& lines);

  uint32_t GetPanelId(const char* name);
  int32_t GetLogLevel();
  int32_t GetParamVersion();
  int32_t GetFWVersion();
  bool IsPanelCalibrationOn();
  bool IsPanelNitsCalibrationOn();
  bool IsGammaCorrectionOn();
  bool IsCMDebugOn();
  const char* GetValueByKey(const char* key);
  int GetValueByKey(const char* key, int defaultValue);

  uint32_t entryCount() const { return mCount; }
  // Every switch at once, as the typed getters answer them.
  PanelSwitches switches() const;

  // One integer key of the process's shared property file (PanelCorvaneBase::sProp), read under
  // base_lock_ because any DeInit may destroy it; false (`value` untouched) while none is loaded.
  static bool readSharedInt(const char* key, int def, int* value);

 private:
  // Silent lookup; null while no line was accepted.
  const std::string* find(const char* key) const;

  PropertyEntries mEntries;
  uint32_t mCount = 0;
};

}  // namespace postblend
