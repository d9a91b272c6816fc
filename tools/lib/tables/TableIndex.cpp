#include "tools/lib/tables/TableIndex.h"

#include "frontend/TablePlan.h"

namespace pctool {

namespace fe = postblend::fe;

std::string tableModeName(uint32_t index) {
  const std::string mode = index / 2 < fe::kModes ? fe::kModeNames[index / 2] : "table";
  return index % 2 == 0 ? mode + " 100-nit" : mode;
}

std::string cacheTableName(uint32_t index) { return std::to_string(index) + " " + tableModeName(index); }

}  // namespace pctool
