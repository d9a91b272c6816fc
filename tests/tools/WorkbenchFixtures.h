// Tables, files and checks the workbench's tests share.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "postblend/color_records.h"

namespace pctest {

// `n` identity tables, table k with lut3d_id k.
std::vector<postblend::lut3d_info> identityTables(size_t n);
// Outputs leaning on the other channels, plus noise: an axis swap or a wrong tetrahedron shows.
std::unique_ptr<postblend::lut3d_info> mixingTable();
// A table cache as the plugin writes it, its checksum off by `sumError`.
std::string cacheImage(const std::vector<postblend::lut3d_info>& tables, uint32_t source, uint32_t panelId,
                       uint32_t paramVersion, uint32_t sumError = 0);
// A table as LUT text, one entry per line; `blueFastest` lists the entries in the wrong order.
std::string lutText(const postblend::lut3d_info& lut, bool blueFastest = false);
// Whether `program` is installed.
bool haveProgram(const char* program);
// The host path of a file under tests/data/tools/.
std::string dataPath(const std::string& name);

}  // namespace pctest
