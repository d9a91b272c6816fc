// What `simulate` leaves in its output folder: one .cube per distinct table a frame got, the
// report pages and the session log.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "postblend/color_records.h"
#include "tools/lib/device/TableJobLog.h"

namespace pctool {

class SimulateOutputs {
 public:
  explicit SimulateOutputs(std::filesystem::path out) : mOut(std::move(out)) {}
  // Remembers a table applied to `panel`; returns the .cube file name it is written to.
  std::string recordTable(int panel, const postblend::lut3d_info& lut);
  // Writes the .cube files and the report pages (the optical data's source and its reason
  // from `log`), and prints where they are. False when an output could not be written.
  bool finish(const std::vector<PluginLogLine>& log);

 private:
  struct Table {
    int panel;
    std::string file;
    postblend::lut3d_info lut;
  };
  std::filesystem::path mOut;
  std::map<uint64_t, Table> mTables;
};

}  // namespace pctool
