// Whether a panel's table cache still holds the tables its device gives. The plugin takes a cache
// whatever became of the optical data and targets since it was written (it checks the length,
// checksum, ParamVersion and source word only), so a cache that predates the data goes on
// serving the old tables. The workbench generates the tables again in memory, as the plugin
// would without the cache, and compares them with the cached ones.
#pragma once

#include <cstdint>
#include <string>

namespace pctool {

// "" when the cached tables are the ones the device's data gives (or there is no cache to
// judge); else one line saying that the cache predates the data and by how much they differ.
std::string staleCacheNote(const std::string& dir, const std::string& displayName, uint32_t panel);

}  // namespace pctool
