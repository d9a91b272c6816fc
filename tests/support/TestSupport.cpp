#include "tests/support/TestSupport.h"

#include <pchost/host.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>

#include "base/Hardening.h"
#include "base/PanelCorvaneBase.h"
#include "config/Prop.h"

namespace pctest {

namespace {
std::mutex gMutex;
std::vector<LogLine> gLines;
}  // namespace

LogCapture::LogCapture() {
  clear();
  pchost::setLogEcho(getenv("PC_TEST_LOG_ECHO") != nullptr);
  pchost::setLogSink([](int prio, const char* tag, const char* text) {
    std::lock_guard<std::mutex> lock(gMutex);
    gLines.push_back({prio, tag, text});
  });
}

LogCapture::~LogCapture() {
  pchost::setLogSink(nullptr);
  pchost::setLogEcho(true);
}

std::vector<LogLine> LogCapture::lines() const {
  std::lock_guard<std::mutex> lock(gMutex);
  return gLines;
}

int LogCapture::count(const std::string& text, const std::string& tag) const {
  int n = 0;
  for (const auto& l : lines())
    if (l.text == text && (tag.empty() || l.tag == tag)) ++n;
  return n;
}

int LogCapture::countContaining(const std::string& part, const std::string& tag) const {
  int n = 0;
  for (const auto& l : lines())
    if (l.text.find(part) != std::string::npos && (tag.empty() || l.tag == tag)) ++n;
  return n;
}

void LogCapture::clear() {
  std::lock_guard<std::mutex> lock(gMutex);
  gLines.clear();
}

std::string LogCapture::dump() const {
  std::ostringstream os;
  for (const auto& l : lines()) os << l.prio << " " << l.tag << ": " << l.text << "\n";
  return os.str();
}

TempRoot::TempRoot() {
  std::string tmpl = (std::filesystem::temp_directory_path() / "pcroot-XXXXXX").string();
  char* made = mkdtemp(&tmpl[0]);
  mPath = made ? made : tmpl;
  pchost::setRootOverride(mPath.c_str());
}

TempRoot::~TempRoot() {
  pchost::setRootOverride(nullptr);
  std::error_code ec;
  std::filesystem::remove_all(mPath, ec);
}

void TempRoot::write(const std::string& devicePath, const std::string& content) const {
  writeBytes(devicePath, content.data(), content.size());
}

void TempRoot::writeBytes(const std::string& devicePath, const void* data, size_t size) const {
  std::filesystem::path p = host(devicePath);
  std::filesystem::create_directories(p.parent_path());
  std::ofstream out(p, std::ios::binary | std::ios::trunc);
  out.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
}

std::string TempRoot::read(const std::string& devicePath) const {
  std::ifstream in(host(devicePath), std::ios::binary);
  std::ostringstream os;
  os << in.rdbuf();
  return os.str();
}

bool TempRoot::exists(const std::string& devicePath) const {
  return std::filesystem::exists(host(devicePath));
}

void TempRoot::remove(const std::string& devicePath) const {
  std::error_code ec;
  std::filesystem::remove(host(devicePath), ec);
}

void resetSharedState() {
  using B = postblend::PanelCorvaneBase;
  pchost::setSleepScale(0);
  B::sDebug = 1;
  B::sIsByPass = true;
  B::sIsPanelCalibrationOn = false;
  B::sIsPanelNitsCalibrationOn = false;
  B::sIsGammaCorrectionOn = false;
  B::sIsCMDebugOn = false;
  B::sParamVersion = 0;
  B::sFWVersion = 0;
  B::sBrightness = 0;
  B::sCFGMode = -1;
  B::sDEStatus = -1;
  B::sNeedUpdate = false;
  B::sIsLut3dHook = false;
  B::sIsHidlRegitsered = false;
  B::sCurrentPanel = 0;
  B::sHardenedTables = false;
  postblend::resetHardenedNotices();
  B::sPrimaryPanel = nullptr;
  B::sSecondaryPanel = nullptr;
  std::lock_guard<std::mutex> lock(B::base_lock_);
  delete B::sProp.exchange(nullptr);
}

}  // namespace pctest
