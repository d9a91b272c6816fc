// What a control command needs of the plugin object it reaches, beyond the panel-instance
// operations every PanelCorvaneBase offers (refresh, set, generateCfgFile, IsPaneIdMatched,
// dump). The plugin object implements it; the command code never sees its backend or front end.
#pragma once

#include <cstdint>

namespace postblend {

class PanelCorvaneBase;

class ControlTarget {
 public:
  virtual PanelCorvaneBase& instance() = 0;
  virtual bool fodOn() const = 0;
  virtual void setFod(bool on) = 0;
  // Result of the last regeneration started through generateCfgFile, -1 before any.
  virtual int32_t lastGenerationResult() const = 0;
  // Command 667: the front end's work on the factory's original data.
  virtual void operateOriginalData() = 0;

 protected:
  ~ControlTarget() = default;
};

}  // namespace postblend
