// What the plugin's log says about each table job of a panel: the identity check, whether the
// tables came from the cache or were generated, and which optical data files failed (missing,
// CRC). The plugin writes every line as "TAG: 1-<function>: text"; a job starts with its
// identity check ("1-readFactorPanelId:") and is named by the display name that
// loadCfgFile or generateCfgFile logs. Lines of one job come from one thread; jobs of two
// panels interleave, so lines are grouped by thread id first.
#pragma once

#include <string>
#include <vector>

namespace pctool {

struct PluginLogLine {
  long tid = 0;
  char level = '?';  // V D I W E F
  std::string tag;
  std::string text;  // "1-<function>: ..." (may hold line feeds)
};

// Reads a log in logcat threadtime layout, as PANELCORVANE_LOG writes it; a line without the
// layout's head continues the line before (a text with a line feed in it). At most
// kMaxLogBytes are read.
constexpr size_t kMaxLogBytes = 64u << 20;
bool readPluginLog(const std::string& path, std::vector<PluginLogLine>& out, std::string& error);

struct TableJob {
  enum class Identity { Unknown, Matched, NotMatched, NoStamp, NoSerial };
  std::string displayName;
  long tid = 0;
  Identity identity = Identity::Unknown;
  std::string serialStamp, fileStamp;  // both sides of a failed comparison, when logged
  bool fromCache = false;              // "loadCfgFile done!"
  bool generated = false;              // "generateCfgFile done!" or a generation verdict
  std::vector<std::string> odfFaults;  // "PATH missing", "PATH fails its CRC (...)"

  // One line: "identity not matched (panel_id holds ..., the serial number gives ...)".
  std::string identityText() const;
};

// Every table job in log order.
std::vector<TableJob> tableJobs(const std::vector<PluginLogLine>& lines);

// The last job of `displayName`, or nullptr.
const TableJob* lastJobOf(const std::vector<TableJob>& jobs, const std::string& displayName);

}  // namespace pctool
