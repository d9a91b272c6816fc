// Gathers the report data of every panel in a device tree (a folder laid out like the device's
// partitions, as `mkdevice` writes it):
//   /odm/etc/PanelCorvane/panelcorvane            display names (<name>=N, panel 1 when N is
//                                                 100..199, else 0) and inParam100nits
//   /data/vendor/display/cofc.fw, cofc2.fw        the panels' table caches; the trailer names
//                                                 the optical data the tables came from
//   /mnt/vendor/persist/display/Loading_ON_*.odf  local optical data (source 0)
//   /odm/etc/PanelCorvane/<name>_*.odf            golden optical data (sources 1 and 2)
//   /odm/etc/PanelCorvane/<name>_<mode>[_100nits].txt   mode targets
// Panels are the display names of the property file that have golden data (<name>_1_max.odf).
#pragma once

#include <string>
#include <vector>

#include "tools/lib/device/TableJobLog.h"
#include "tools/lib/report/PanelReport.h"
#include "tools/lib/tables/TableIndex.h"  // cacheTableName

namespace pctool {

// One report per panel found; unreadable pieces become notes on that panel's page. A display
// whose files cannot be looked at goes to `unjudged` ("NAME: reason"), the others are still
// reported. `jobs` (the plugin's log, when there is one) says why the data came from where it
// did. False when the folder holds no panel that can be reported.
bool collectDeviceReports(const std::string& dir, std::vector<PanelReport>& out, std::vector<std::string>& unjudged,
                          std::string& error, const std::vector<TableJob>* jobs = nullptr);

}  // namespace pctool
