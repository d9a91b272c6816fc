// The colour manager's post-blend plugin interface, as the plugin sees it: the payload record,
// the property and op numbers, and the abstract object the plugin hands back.
#pragma once

#include <cstdint>
#include <string>

namespace postblend {

// Every property and op call carries one of these. `payload` is the address of the data record
// that `prop` (or the op) defines; `len` is that record's size.
struct ScPayload {
  uint32_t version = 24;  // the record's own size; anything else is a caller error
  uint32_t len = 0;
  uint32_t prop = 0;
  uint64_t payload = 0;
};
static_assert(sizeof(ScPayload) == 24, "ScPayload layout is fixed by the colour manager");

enum ScOps : uint32_t {
  kScModeRenderIntent = 0,
  kScModeSwAssets = 1,
  kScOpsMax,
};

enum ScProperty : uint32_t {
  kModeList = 1,
  kNeedsUpdate = 2,
  kSupportToneMap = 9,
  kSetPanelBrightness = 769,
};

class ScPostBlendInterface {
 public:
  virtual ~ScPostBlendInterface() {}
  virtual int Init(const std::string& panel_name) = 0;
  virtual int DeInit() = 0;
  virtual int SetProperty(const ScPayload& payload) = 0;
  virtual int GetProperty(ScPayload* payload) = 0;
  virtual int ProcessOps(ScOps op, const ScPayload& input, ScPayload* output) = 0;
};

// The one entry the colour manager looks up in the plugin library.
using GetScPostBlendInterfaceFn = ScPostBlendInterface* (*)(int major, int minor);

}  // namespace postblend

extern "C" postblend::ScPostBlendInterface* GetScPostBlendInterface(int major, int minor);
