// The host's log lines, device paths, emulated driver, pauses and call stacks.
#include <android/log.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pchost/host.h>
#include <unistd.h>
#include <utils/CallStack.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <regex>
#include <sstream>

#include "tarnu_display/panel_ioctl.h"
#include "tests/support/TestSupport.h"

namespace {

constexpr unsigned long kSerialNumberIoctl = tarnu_display::kPanelIoctlGetSerialNumber;

TEST(HostLog, LinesFollowTheThreadtimeLayoutInTheLogFile) {
  pctest::TempRoot root;
  const std::string file = root.path() + "/log.txt";
  setenv("PANELCORVANE_LOG", file.c_str(), 1);
  pchost::setLogEcho(true);
  __android_log_print(ANDROID_LOG_DEBUG, "PanelCorvane", "1-%s: sDebug:%d\n", "dumpState", 3);
  __android_log_print(ANDROID_LOG_ERROR, "PanelCorvaneBE", "1-%s: no line feed", "load");
  unsetenv("PANELCORVANE_LOG");

  std::ifstream in(file);
  std::string line;
  const std::regex layout(R"(^\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\s+\d+\s+\d+ ([VDIWEF]) (\S+)\s*: (.*)$)");
  const std::pair<std::string, std::string> expected[] = {
      {"D", "PanelCorvane|1-dumpState: sDebug:3"}, {"E", "PanelCorvaneBE|1-load: no line feed"}};
  for (const auto& e : expected) {
    ASSERT_TRUE(std::getline(in, line));
    std::smatch m;
    ASSERT_TRUE(std::regex_match(line, m, layout)) << line;
    EXPECT_EQ(e.first, m[1].str());
    EXPECT_EQ(e.second, m[2].str() + "|" + m[3].str());
  }
  EXPECT_FALSE(std::getline(in, line)) << "one line per call, line feed stripped";
}

TEST(HostLog, SinkGetsTextWithoutTrailingLineFeed) {
  pctest::LogCapture log;
  __android_log_write(ANDROID_LOG_DEBUG, "T", "text\n\n");
  ASSERT_EQ(1u, log.lines().size());
  EXPECT_EQ("text", log.lines()[0].text);
  EXPECT_EQ(ANDROID_LOG_DEBUG, log.lines()[0].prio);
}

TEST(HostPaths, MappedUnderRootOnlyWhenSet) {
  unsetenv("PANELCORVANE_ROOT");
  pchost::setRootOverride(nullptr);
  EXPECT_EQ("/odm/etc/x", pchost::mapPath("/odm/etc/x"));
  pchost::setRootOverride("/tmp/r//");
  EXPECT_EQ("/tmp/r/odm/etc/x", pchost::mapPath("/odm/etc/x"));
  EXPECT_EQ("relative", pchost::mapPath("relative"));
  EXPECT_EQ("", pchost::mapPath(nullptr));
  pchost::setRootOverride(nullptr);
}

TEST(HostDriver, SerialNumberIoctlAnswersLineOfThePanel) {
  pctest::TempRoot root;
  EXPECT_LT(pchost::openPath("/dev/tarnu_display", O_RDONLY), 0) << "no driver file, no device";

  root.write("/dev/tarnu_display", "SN-PRIMARY\nSN-SECOND\r\n");
  int fd = pchost::openPath("/dev/tarnu_display", O_RDONLY);
  ASSERT_GE(fd, 0);
  struct Case {
    uint32_t panel;
    int result;
    const char* serial;
  } cases[] = {{0, 0, "SN-PRIMARY"}, {1, 0, "SN-SECOND"}, {5, -1, ""}};
  for (const auto& c : cases) {
    unsigned char buf[41] = {};
    std::memcpy(buf, &c.panel, sizeof(c.panel));
    EXPECT_EQ(c.result, pchost::ioctlDevice(fd, kSerialNumberIoctl, buf)) << c.panel;
    if (c.result == 0) {
      EXPECT_STREQ(c.serial, reinterpret_cast<char*>(buf));
    }
  }
  close(fd);
}

TEST(HostDriver, OverlongSerialIsCutToTheBuffer) {
  pctest::TempRoot root;
  root.write("/dev/tarnu_display", std::string(100, 'A'));
  int fd = pchost::openPath("/dev/tarnu_display", O_RDONLY);
  ASSERT_GE(fd, 0);
  unsigned char buf[41] = {};
  EXPECT_EQ(0, pchost::ioctlDevice(fd, kSerialNumberIoctl, buf));
  EXPECT_EQ(40u, strnlen(reinterpret_cast<char*>(buf), sizeof(buf)));
  close(fd);
}

TEST(HostSleep, ScaleZeroReturnsAtOnce) {
  pchost::setSleepScale(0);
  auto start = std::chrono::steady_clock::now();
  pchost::sleepSeconds(30);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  pchost::setSleepScale(-1);
}

int recurse(int depth) {
  if (depth == 0) {
    android::CallStack stack("StackTag");
    return static_cast<int>(stack.size());
  }
  volatile int keep = depth;  // read after the call: no tail call, every level is a frame
  int frames = recurse(depth - 1);
  return frames + (keep - depth);
}

TEST(HostCallStack, LogsOneBoundedLinePerFrame) {
  pctest::LogCapture log;
  const int frames = recurse(100);
  EXPECT_GT(frames, 0);
  EXPECT_LE(frames, android::CallStack::kMaxDepth);
  auto lines = log.lines();
  ASSERT_EQ(static_cast<size_t>(frames), lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    char head[32];
    snprintf(head, sizeof(head), "#%02zu pc ", i);
    EXPECT_EQ(0u, lines[i].text.rfind(head, 0)) << lines[i].text;
    EXPECT_EQ("StackTag", lines[i].tag);
    EXPECT_EQ(ANDROID_LOG_DEBUG, lines[i].prio);
  }
  log.clear();
  android::CallStack::logStack("Other", nullptr, ANDROID_LOG_ERROR);
  ASSERT_FALSE(log.lines().empty());
  EXPECT_EQ(ANDROID_LOG_ERROR, log.lines()[0].prio);
}

}  // namespace
