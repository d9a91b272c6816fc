// Gathers the report data of every panel in a device tree (a folder laid out like the device's
// partitions, as `mkdevice` writes it):
//   /odm/etc/PanelCorvane/<name>_1_max.odf        one per display name: finds the panels
//   /odm/etc/PanelCorvane/panelcorvane            <name>=N maps the name to panel 1 when N is
//                                                 100..199, else to panel 0
//   /mnt/vendor/persist/display/Loading_ON_1_max[_d1].odf   the panel's own data, preferred
//   /odm/etc/PanelCorvane/<name>_{Vivid,Nature,Cinema,LsRGB}.txt   mode targets
//   /data/vendor/display/cofc.fw, cofc2.fw        the panels' table caches
#pragma once

#include <string>
#include <vector>

#include "tools/lib/Report.h"

namespace pctool {

// Table name of cache index k: "0 Vivid 100-nit", "1 Vivid", ... "7 LsRGB".
std::string cacheTableName(uint32_t index);

// One report per panel found; unreadable pieces become notes on that panel's page. False when
// the folder holds no panel at all.
bool collectDeviceReports(const std::string& dir, std::vector<PanelReport>& out, std::string& error);

}  // namespace pctool
