#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <set>
#include <string>

#include "postblend/post_blend_interface.h"
#include "tests/support/TestSupport.h"

namespace {

TEST(EntryTest, OnlyVersionTwoZeroIsServed) {
  pctest::resetSharedState();
  pctest::LogCapture log;
  for (auto [major, minor] : {std::pair{2, 1}, std::pair{1, 0}, std::pair{3, 0}}) {
    EXPECT_EQ(GetScPostBlendInterface(major, minor), nullptr);
    EXPECT_TRUE(log.has("Invalid major_version " + std::to_string(major) + " minor_version " +
                        std::to_string(minor)));
  }
  std::unique_ptr<postblend::ScPostBlendInterface> plugin(GetScPostBlendInterface(2, 0));
  ASSERT_NE(plugin, nullptr);
  // Never initialised: bypass is the default, so everything answers 0 without a line.
  log.clear();
  postblend::ScPayload payload;
  payload.prop = 1;
  EXPECT_EQ(plugin->GetProperty(&payload), 0);
  EXPECT_EQ(plugin->ProcessOps(postblend::kScModeRenderIntent, payload, &payload), 0);
  EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(EntryTest, PluginExportsExactlyTheEntry) {
  const std::string lib = std::string(PC_BUILD_DIR) + "/libPanelCorvane.so";
  FILE* pipe = popen(("nm -D --defined-only --just-symbols " + lib).c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::set<std::string> symbols;
  for (char line[1024]; fgets(line, sizeof(line), pipe) != nullptr;) {
    const std::string name(line, strcspn(line, "@\r\n"));
    // Symbols of the toolchain's own start-up and sanitizer runtimes are not the plugin's.
    if (name.rfind("_", 0) != 0 || name.rfind("_Z", 0) == 0) symbols.insert(name);
  }
  pclose(pipe);
  EXPECT_EQ(symbols, std::set<std::string>{"GetScPostBlendInterface"});
}

}  // namespace
