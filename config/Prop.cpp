#define LOG_TAG "PanelCorvane"

#include "config/Prop.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "base/DeviceIo.h"
#include "base/Log.h"
#include "config/PropertyReader.h"

namespace postblend {

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
    out->reserve(std::min<size_t>(static_cast<size_t>(st.st_size), kMaxPropertyBytes + 1));
  }
  char chunk[1024];
  for (;;) {
    // One byte past the limit is enough for the parser to tell an oversized file.
    const size_t room = kMaxPropertyBytes + 1 - out->size();
    ssize_t n = read(fd, chunk, std::min(sizeof(chunk), room));
    if (n <= 0) break;  // a read error ends the file like its end does
    out->append(chunk, static_cast<size_t>(n));
    if (out->size() > kMaxPropertyBytes) break;
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
  // The file is taken as it is; what the reader finds odd is the workbench's to tell.
  for (PropertyLine& line : readProperties(content).accepted) {
    PC_LOGD_AS("parsePropertyFile", "%s=%s,\n", line.key.c_str(), line.value.c_str());
    mEntries.emplace(std::move(line.key), std::move(line.value));  // first occurrence wins
    ++mCount;
  }
  return mCount;
}

const std::string* Prop::find(const char* key) const {
  if (mCount == 0 || key == nullptr) return nullptr;
  auto it = mEntries.find(key);
  return it == mEntries.end() ? nullptr : &it->second;
}

PanelSwitches Prop::switches() const {
  return mCount == 0 ? PanelSwitches{} : panelSwitches(mEntries);
}

uint32_t Prop::GetPanelId(const char* name) {
  if (mCount == 0) return 0;
  const std::string* v = find(name);
  if (v == nullptr) {
    PC_LOGE_AS("GetPanelId", "can not find %s\n", name ? name : "");
    return 0;
  }
  return panelIndexOf(*v);
}

int32_t Prop::GetLogLevel() { return switches().logLevel; }
int32_t Prop::GetParamVersion() { return switches().paramVersion; }
int32_t Prop::GetFWVersion() { return switches().fwVersion; }
bool Prop::IsPanelCalibrationOn() { return switches().calibration; }
bool Prop::IsPanelNitsCalibrationOn() { return switches().nitsCalibration; }
bool Prop::IsGammaCorrectionOn() { return switches().gammaCorrection; }
bool Prop::IsCMDebugOn() { return switches().cmDebug; }

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
  return propertyInt(*v);
}

bool Prop::readSharedInt(const char* key, int def, int* value) {
  std::lock_guard<std::mutex> lock(PanelCorvaneBase::base_lock_);
  Prop* prop = PanelCorvaneBase::sProp.load(std::memory_order_relaxed);
  if (prop == nullptr) return false;
  *value = prop->GetValueByKey(key, def);
  return true;
}

}  // namespace postblend
