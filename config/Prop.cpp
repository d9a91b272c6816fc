#define LOG_TAG "PanelCorvane"

#include "config/Prop.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "base/DeviceIo.h"
#include "base/Log.h"

namespace snapdragoncolor {

namespace {
// A property file is a handful of lines; anything far larger is not one.
constexpr size_t kMaxFileBytes = 1 << 20;
}  // namespace

bool Prop::Init() {
  std::string content;
  if (!readFileToString(kPath, &content)) return false;
  mCount = 0;
  parsePropertyFile(content);
  return true;
}

bool Prop::readFileToString(const char* path, std::string* out) {
  int fd = devio::open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  out->clear();
  struct stat st {};
  if (fstat(fd, &st) == 0 && st.st_size >= 1) {
    out->reserve(std::min<size_t>(static_cast<size_t>(st.st_size), kMaxFileBytes));
  }
  char chunk[1024];
  for (;;) {
    ssize_t n = read(fd, chunk, sizeof(chunk));
    if (n <= 0) break;  // a read error ends the file like its end does
    out->append(chunk, static_cast<size_t>(n));
    if (out->size() >= kMaxFileBytes) break;
  }
  close(fd);
  return true;
}

uint32_t Prop::split(const std::string& content, std::vector<std::string>& lines) {
  uint32_t added = 0;
  size_t start = 0;
  for (;;) {
    size_t nl = content.find('\n', start);
    if (nl == std::string::npos) break;  // text after the last line feed is not a line
    lines.emplace_back(content, start, nl - start);
    ++added;
    start = nl + 1;
  }
  return added;
}

uint32_t Prop::parsePropertyFile(std::string& content) {
  std::vector<std::string> lines;
  split(content, lines);
  for (const std::string& line : lines) {
    if (line.empty() || line[0] == '#') continue;
    size_t eq = line.find('=');
    if (eq == std::string::npos) continue;
    std::string key = line.substr(0, eq);
    std::string value = line.substr(eq + 1);
    PC_LOGD_AS("parsePropertyFile", "%s=%s,\n", key.c_str(), value.c_str());
    mEntries.emplace(std::move(key), std::move(value));  // first occurrence wins
    ++mCount;
  }
  return mCount;
}

const std::string* Prop::find(const char* key) const {
  if (mCount == 0 || key == nullptr) return nullptr;
  auto it = mEntries.find(key);
  return it == mEntries.end() ? nullptr : &it->second;
}

int32_t Prop::intOr(const char* key, int32_t def) const {
  const std::string* v = find(key);
  return v ? static_cast<int32_t>(strtol(v->c_str(), nullptr, 10)) : def;
}

uint32_t Prop::GetPanelId(const char* name) {
  if (mCount == 0) return 0;
  const std::string* v = find(name);
  if (v == nullptr) {
    PC_LOGE_AS("GetPanelId", "can not find %s\n", name ? name : "");
    return 0;
  }
  // The hundreds digit chooses the panel: 100-199 is the secondary one.
  uint32_t id = static_cast<uint32_t>(strtol(v->c_str(), nullptr, 10));
  return (id >= 100 && id < 200) ? 1 : 0;
}

int32_t Prop::GetLogLevel() { return intOr("LogLevel", 1); }
int32_t Prop::GetParamVersion() { return intOr("ParamVersion", 0); }
int32_t Prop::GetFWVersion() { return intOr("FWVersion", 0); }
bool Prop::IsPanelCalibrationOn() { return intOr("PanelCalibration", 0) == 1; }
bool Prop::IsPanelNitsCalibrationOn() { return intOr("PanelNitsCalibration", 0) == 1; }
bool Prop::IsGammaCorrectionOn() { return intOr("GammaCorrection", 0) == 1; }
bool Prop::IsCMDebugOn() { return intOr("CMDebug", 0) == 1; }

const char* Prop::GetValueByKey(const char* key) {
  if (mCount == 0) return nullptr;
  const std::string* v = find(key);
  if (v == nullptr) {
    PC_LOGE_AS("GetValueByKey", "can not find %s\n", key ? key : "");
    return nullptr;
  }
  return v->c_str();
}

int Prop::GetValueByKey(const char* key, int defaultValue) {
  if (mCount == 0) return defaultValue;
  const std::string* v = find(key);
  if (v == nullptr) {
    PC_LOGE_AS("GetValueByKey", "can not find %s defVal:%d\n", key ? key : "", defaultValue);
    return defaultValue;
  }
  return static_cast<int>(strtol(v->c_str(), nullptr, 10));
}

bool Prop::readSharedInt(const char* key, int def, int* value) {
  std::lock_guard<std::mutex> lock(PanelCorvaneBase::base_lock_);
  Prop* prop = PanelCorvaneBase::sProp.load(std::memory_order_relaxed);
  if (prop == nullptr) return false;
  *value = prop->GetValueByKey(key, def);
  return true;
}

}  // namespace snapdragoncolor
