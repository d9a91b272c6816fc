#include "tests/tools/WorkbenchFixtures.h"

#include <algorithm>
#include <cstdlib>
#include <random>

#include "cache/Lut3DCacheManager.h"
#include "tools/lib/tables/DeviceGrid.h"

namespace pctest {

using postblend::lut3d_info;

std::vector<lut3d_info> identityTables(size_t n) {
  std::vector<lut3d_info> t(n);
  for (uint32_t k = 0; k < n; ++k) pctool::setIdentity(t[k], k);
  return t;
}

std::unique_ptr<lut3d_info> mixingTable() {
  auto lut = std::make_unique<lut3d_info>();
  pctool::setDeviceGrid(*lut, 0);
  std::mt19937 rng(3);
  std::uniform_int_distribution<int> noise(-150, 150);
  for (auto& e : lut->entries) {
    const int v[3] = {int(e.in[0] * 4 / 5 + e.in[2] / 6), int(e.in[1] * 2 / 3 + e.in[0] / 4),
                      int(4095 - e.in[2] * 3 / 4)};
    for (int c = 0; c < 3; ++c) e.out[c] = uint32_t(std::clamp(v[c] + noise(rng), 0, 4095));
  }
  return lut;
}

std::string cacheImage(const std::vector<lut3d_info>& t, uint32_t source, uint32_t panelId, uint32_t paramVersion,
                       uint32_t sumError) {
  const uint32_t n = static_cast<uint32_t>(t.size());
  const uint32_t trailer[4] = {
      source, panelId, paramVersion,
      postblend::Lut3DCacheManager::checkSum(t.data(), n, source, panelId, paramVersion) + sumError};
  return std::string(reinterpret_cast<const char*>(t.data()), n * sizeof(lut3d_info)) +
         std::string(reinterpret_cast<const char*>(trailer), sizeof trailer);
}

std::string lutText(const lut3d_info& lut, bool blueFastest) {
  std::string s;
  for (uint32_t i = 0; i < pctool::kEntries; ++i) {
    const uint32_t n = blueFastest ? pctool::entryIndex(i / 289, i / 17 % 17, i % 17) : i;
    const auto& e = lut.entries[n];
    for (uint32_t v : {e.in[0], e.in[1], e.in[2], e.out[0], e.out[1], e.out[2]}) s += std::to_string(v) + " ";
    s.back() = '\n';
  }
  return s;
}

bool haveProgram(const char* program) {
  return std::system((std::string("command -v ") + program + " > /dev/null 2>&1").c_str()) == 0;
}

std::string dataPath(const std::string& name) { return std::string(PC_SOURCE_DIR) + "/tests/data/tools/" + name; }

}  // namespace pctest
