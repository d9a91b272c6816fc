// What the control services' commands do: the HIDL command table (configureSet, configureGet),
// the panel-instance command set(in_cmd) that both services reach, the colour-mode and MixLut3D
// commands, and the state dump. They change the shared state of PanelCorvaneBase and act on the
// plugin object they reach only through ControlTarget and the panel-instance operations.
#pragma once

#include <hidl/HidlSupport.h>

#include <cstdint>

#include "services/ControlTarget.h"

namespace postblend {
namespace control {

using Args = ::android::hardware::hidl_vec<int32_t>;

int32_t configureSet(ControlTarget& target, int32_t command, const Args& args);
// The value configureGet answers for `type`; false when it gives no answer at all.
bool configureGet(ControlTarget& target, int32_t type, const Args& args, int32_t* value);
int set(ControlTarget& target, int in_cmd);
int setScreenColorMode(ControlTarget& target, int mode);
int cmd10000(int cmd);
// The shared state, one DEBUG line per value, then dump() of both panels; `fn` names the
// command in the lines.
void dumpState(const char* fn);

}  // namespace control
}  // namespace postblend
