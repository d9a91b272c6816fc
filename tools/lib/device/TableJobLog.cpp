#include "tools/lib/device/TableJobLog.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>

#include "tools/lib/common/FileAccess.h"

namespace pctool {

namespace {

bool startsWith(const std::string& s, const std::string& head) { return s.compare(0, head.size(), head) == 0; }

// "MM-DD HH:MM:SS.mmm  PID  TID L TAG: TEXT"
bool parseHead(const std::string& line, PluginLogLine& out) {
  if (line.size() < 20 || line[2] != '-' || line[5] != ' ' || line[8] != ':' || line[14] != '.') return false;
  const char* p = line.c_str() + 18;
  char* end = nullptr;
  std::strtol(p, &end, 10);  // pid
  if (end == p) return false;
  p = end;
  const long tid = std::strtol(p, &end, 10);
  if (end == p || *end != ' ') return false;
  p = end + 1;
  if (!*p || !std::strchr("VDIWEF", *p) || p[1] != ' ') return false;
  const std::string rest(p + 2);
  const size_t colon = rest.find(": ");
  if (colon == std::string::npos) return false;
  out.tid = tid;
  out.level = *p;
  out.tag = rest.substr(0, colon);
  while (!out.tag.empty() && out.tag.back() == ' ') out.tag.pop_back();
  out.text = rest.substr(colon + 2);
  return true;
}

std::string after(const std::string& text, const std::string& head) { return text.substr(head.size()); }

}  // namespace

bool readPluginLog(const std::string& path, std::vector<PluginLogLine>& out, std::string& error) {
  out.clear();
  if (!checkInputFile(path, error)) return false;
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (static_cast<uint64_t>(in.tellg()) > kMaxLogBytes) {
    error = "larger than " + std::to_string(kMaxLogBytes >> 20) + " MiB";
    return false;
  }
  in.seekg(0);
  std::string line;
  size_t read = 0;
  while (std::getline(in, line)) {
    read += line.size() + 1;
    if (read > kMaxLogBytes) {
      error = "larger than " + std::to_string(kMaxLogBytes >> 20) + " MiB";
      return false;
    }
    PluginLogLine l;
    if (parseHead(line, l)) {
      out.push_back(std::move(l));
    } else if (!out.empty()) {
      out.back().text += "\n" + line;
    }
  }
  return true;
}

std::string TableJob::identityText() const {
  switch (identity) {
    case Identity::Matched: return "identity matched";
    case Identity::NotMatched:
      if (!fileStamp.empty() && !serialStamp.empty())
        return "identity not matched: panel_id holds " + fileStamp + ", the panel's serial number gives " +
               serialStamp;
      return "identity not matched";
    case Identity::NoStamp: return "identity unknown: no panel_id stamp";
    case Identity::NoSerial: return "identity unknown: the panel's serial number could not be read";
    case Identity::Unknown: break;
  }
  return "identity check not in the log";
}

std::vector<TableJob> tableJobs(const std::vector<PluginLogLine>& lines) {
  std::vector<TableJob> jobs;
  std::map<long, size_t> open;             // thread -> its current job
  std::map<long, std::string> announced;   // a regeneration names its panel before the check
  std::map<long, std::string> lastOpened;  // thread -> last odf path opened, for a CRC line
  for (const PluginLogLine& l : lines) {
    const std::string& t = l.text;
    if (startsWith(t, "1-readFactorPanelId: ")) {
      jobs.emplace_back();
      jobs.back().tid = l.tid;
      jobs.back().displayName = announced[l.tid];
      announced.erase(l.tid);
      if (t.find("failed to open panel_id!") != std::string::npos) jobs.back().identity = TableJob::Identity::NoStamp;
      open[l.tid] = jobs.size() - 1;
      continue;
    }
    if (l.tag == "PanelCorvane" && startsWith(t, "1-generateCfgFile: ") && t.find(' ', 19) == std::string::npos &&
        t.find("Warning") == std::string::npos) {
      announced[l.tid] = after(t, "1-generateCfgFile: ");
      continue;
    }
    auto it = open.find(l.tid);
    if (it == open.end()) continue;
    TableJob& job = jobs[it->second];
    if ((startsWith(t, "1-loadCfgFile: ") && l.tag == "PanelCorvaneBE") ||
        (startsWith(t, "1-generateCfgFile: ") && l.tag == "PanelCorvaneFE" && t.find(',') == std::string::npos &&
         t.find(' ', 19) == std::string::npos)) {
      if (job.displayName.empty()) job.displayName = t.substr(t.find(": ") + 2);
    } else if (t == "1-transferAndCmp: PSN_OK.") {
      job.identity = TableJob::Identity::Matched;
    } else if (startsWith(t, "1-transferAndCmp: device: ")) {
      // "device: STAMP(n) -> ID(m)": the serial number's stamp, then the file's.
      std::string rest = after(t, "1-transferAndCmp: device: ");
      const size_t arrow = rest.find(" -> ");
      if (arrow != std::string::npos) {
        job.serialStamp = rest.substr(0, rest.rfind('(', arrow));
        std::string file = rest.substr(arrow + 4);
        job.fileStamp = file.substr(0, file.rfind('('));
        while (!job.fileStamp.empty() && (job.fileStamp.back() == '\n' || job.fileStamp.back() == ' '))
          job.fileStamp.pop_back();
      }
      if (job.identity == TableJob::Identity::Unknown) job.identity = TableJob::Identity::NotMatched;
    } else if (t.find("PSN_ERROR") != std::string::npos || t.find("Fail to open /dev/tarnu_display") != std::string::npos ||
               t.find("GET_SERIAL_NUMBER error") != std::string::npos) {
      job.identity = TableJob::Identity::NoSerial;
    } else if (startsWith(t, "1-readODF: open ")) {
      std::string path = after(t, "1-readODF: open ");
      const std::string failed = " failed!";
      if (path.size() > failed.size() && path.compare(path.size() - failed.size(), failed.size(), failed) == 0) {
        job.odfFaults.push_back(path.substr(0, path.size() - failed.size()) + " missing");
      } else {
        lastOpened[l.tid] = path;
      }
    } else if (startsWith(t, "1-readODF: CRC CHECK:")) {
      std::string v = after(t, "1-readODF: CRC CHECK:");
      const size_t q = v.find(" ?= ");
      std::string detail = q == std::string::npos ? v : "stored " + v.substr(0, q) + ", computed " + v.substr(q + 4);
      job.odfFaults.push_back(lastOpened[l.tid] + " fails its CRC (" + detail + ")");
    } else if (t == "1-onLoad3dLut: loadCfgFile done!") {
      job.fromCache = true;
    } else if (t == "1-onLoad3dLut: generateCfgFile done!" || t == "1-generateCfgFile: unmatched,golden." ||
               t == "1-generateCfgFile: matched,golden." || t == "1-generateCfgFile: matched,local.") {
      job.generated = true;
    }
  }
  return jobs;
}

const TableJob* lastJobOf(const std::vector<TableJob>& jobs, const std::string& displayName) {
  for (auto it = jobs.rbegin(); it != jobs.rend(); ++it)
    if (it->displayName == displayName) return &*it;
  return nullptr;
}

}  // namespace pctool
