#include "tools/lib/device/StaleCache.h"

#include <algorithm>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "tools/lib/device/PanelTables.h"
#include "tools/lib/device/PropertyFile.h"
#include "tools/lib/tables/TableDiff.h"
#include "tools/lib/tables/TableIndex.h"
#include "tools/lib/tables/TableSource.h"

namespace pctool {

std::string staleCacheNote(const std::string& dir, const std::string& displayName, uint32_t panel) {
  PropertyFile prop;
  CacheContents cache;
  std::string why;
  if (!prop.load(dir + postblend::Prop::kPath, why) ||
      !readCacheFile(dir + postblend::Lut3DCacheManager::cachePath(panel == 0 ? 0 : 1), cache, why) ||
      !cache.checkSumOk())
    return "";
  // The identity check as the cache's source word records it (the plugin took the cache only
  // when they agree); checking it again would add the backend's log lines to a session's log.
  const bool matched = cache.source != 1;
  DisplayTables now;
  loadDisplayTables(dir, prop.switches(), displayName, panel, now, &matched);
  const std::string head = "the cache predates the optical data or targets now in the device: ";
  if (now.tables.empty()) return head + "they give no tables (" + now.note + ")";
  if (cache.count < now.tables.size())
    return head + "they give " + std::to_string(now.tables.size()) + " tables, the cache holds " +
           std::to_string(cache.count);
  uint32_t most = 0, first = 0;
  for (size_t k = 0; k < now.tables.size(); ++k) {
    const uint32_t d = diffTables(cache.tables[k], now.tables[k]).maxAbs();
    if (d > 0 && most == 0) first = static_cast<uint32_t>(k);
    most = std::max(most, d);
  }
  if (most == 0) return "";
  return head + "the tables made from them differ from the cached ones by up to " + std::to_string(most) +
         " codes (first at table " + cacheTableName(first) + ")";
}

}  // namespace pctool
