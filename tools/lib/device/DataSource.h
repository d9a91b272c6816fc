// Which optical data a panel's tables were made from, and why. The table cache's trailer says
// which: source 0 the panel's own ("local") data, 1 the golden data because the panel did not
// match its factory data, 2 the golden data although it matched (its local files failed). The
// plugin's log of the table job says why: the identity comparison and the files that failed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/lib/device/TableJobLog.h"

namespace pctool {

struct DataSource {
  enum class Kind { Unknown, Local, Golden, MatchedGolden };
  Kind kind = Kind::Unknown;
  int trailer = -1;  // the cache trailer's source word; -1 without a readable cache
  std::string why;   // one line
  std::vector<std::string> odfPaths;  // device paths of the four sets used; empty when unknown

  // "local", "golden", "golden although the identity matched", "unknown".
  std::string word() const;
  // "golden (identity not matched: panel_id holds ..., ...)".
  std::string statement() const;
};

// `trailer` is the cache's source word (negative without a cache); `job` the panel's last
// table job in the plugin's log, or nullptr when there is no log.
DataSource describeDataSource(int trailer, const TableJob* job, uint32_t panel, const std::string& displayName);

// The source word of a panel's cache under the device tree `dir`; false with a reason when
// there is no readable cache.
bool readCacheSource(const std::string& dir, uint32_t panel, uint32_t& source, std::string& error);

}  // namespace pctool
