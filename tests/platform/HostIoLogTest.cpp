// The host's log lines, device paths, pauses, emulated driver and call stacks.
#include <android/log.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pchost/host.h>
#include <unistd.h>
#include <utils/CallStack.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <regex>

#include "tarnu_display/panel_ioctl.h"
#include "tests/support/TestSupport.h"

namespace {

// The workbench reads the plugin's log file back (logcat threadtime layout, one line per call).
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
  const std::regex layout(
      R"(^\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\s+\d+\s+\d+ ([VDIWEF]) (\S+)\s*: (.*)$)");
  for (const char* want :
       {"D PanelCorvane|1-dumpState: sDebug:3", "E PanelCorvaneBE|1-load: no line feed"}) {
    ASSERT_TRUE(std::getline(in, line));
    std::smatch m;
    ASSERT_TRUE(std::regex_match(line, m, layout)) << line;
    EXPECT_EQ(want, m[1].str() + " " + m[2].str() + "|" + m[3].str());
  }
  EXPECT_FALSE(std::getline(in, line)) << "one line per call, line feed stripped";
}

TEST(HostControls, PathsMappedUnderRootOnlyWhenSetAndPausesScaled) {
  unsetenv("PANELCORVANE_ROOT");
  pchost::setRootOverride(nullptr);
  EXPECT_EQ("/odm/etc/x", pchost::mapPath("/odm/etc/x"));
  pchost::setRootOverride("/tmp/r//");
  EXPECT_EQ("/tmp/r/odm/etc/x", pchost::mapPath("/odm/etc/x"));
  EXPECT_EQ("relative", pchost::mapPath("relative"));
  EXPECT_EQ("", pchost::mapPath(nullptr));
  pchost::setRootOverride(nullptr);
  pchost::setSleepScale(0);
  const auto start = std::chrono::steady_clock::now();
  pchost::sleepSeconds(30);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  pchost::setSleepScale(-1);
}

TEST(HostDriver, SerialNumberIoctlAnswersTheLineOfThePanelWithinTheBuffer) {
  pctest::TempRoot root;
  EXPECT_LT(pchost::openPath("/dev/tarnu_display", O_RDONLY), 0) << "no driver file, no device";
  root.write("/dev/tarnu_display", "SN-PRIMARY\nSN-SECOND\r\n" + std::string(100, 'A') + "\n");
  const int fd = pchost::openPath("/dev/tarnu_display", O_RDONLY);
  ASSERT_GE(fd, 0);
  const struct {
    uint32_t panel;
    int result;
    std::string serial;
  } rows[] = {{0, 0, "SN-PRIMARY"},          // the first line
              {1, 0, "SN-SECOND"},           // carriage return dropped
              {2, 0, std::string(40, 'A')},  // cut to the 40 characters of the buffer
              {5, -1, "\x05"}};              // no such line: the buffer is left alone
  for (const auto& r : rows) {
    unsigned char buf[41] = {};
    std::memcpy(buf, &r.panel, sizeof(r.panel));
    EXPECT_EQ(r.result, pchost::ioctlDevice(fd, tarnu_display::kPanelIoctlGetSerialNumber, buf));
    EXPECT_STREQ(r.serial.c_str(), reinterpret_cast<char*>(buf));
  }
  close(fd);
}

int recurse(int depth) {
  if (depth == 0) return static_cast<int>(android::CallStack("StackTag").size());
  volatile int keep = depth;  // read after the call: no tail call, every level is a frame
  return recurse(depth - 1) + (keep - depth);
}

TEST(HostCallStack, LogsOneLinePerFrameUpToItsDepth) {
  pctest::LogCapture log;
  const int frames = recurse(100);
  EXPECT_EQ(android::CallStack::kMaxDepth, frames);
  const auto lines = log.lines();
  ASSERT_EQ(static_cast<size_t>(frames), lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    char head[32];
    snprintf(head, sizeof(head), "#%02zu pc ", i);
    EXPECT_EQ(0u, lines[i].text.rfind(head, 0)) << lines[i].text;
    EXPECT_TRUE(lines[i].tag == "StackTag" && lines[i].prio == ANDROID_LOG_DEBUG);
  }
}

}  // namespace
