// What each index of a panel's table array holds, as the plugin's table plan lays it out
// (frontend/TablePlan.h): a 100-nit and a full-brightness table per mode, in mode order.
#pragma once

#include <cstdint>
#include <string>

namespace pctool {

// "Vivid 100-nit", "Vivid", "Nature 100-nit", ... "LsRGB"; "table" past the plan's modes.
std::string tableModeName(uint32_t index);
// The same after the index: "0 Vivid 100-nit", "1 Vivid", ... "7 LsRGB".
std::string cacheTableName(uint32_t index);

}  // namespace pctool
