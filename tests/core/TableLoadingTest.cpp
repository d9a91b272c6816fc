#include <gtest/gtest.h>

#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"
#include "tools/lib/device/SyntheticDevice.h"

using postblend::PanelCorvane;

namespace {

class TableLoadingTest : public pctest::CoreTest {};

TEST_F(TableLoadingTest, GeneratesOnFirstStartLoadsTheCacheAfterwardsAndRegeneratesACorruptOne) {
  writeDevice();
  PanelCorvane* p = start();
  EXPECT_TRUE(p->tablesReady());
  EXPECT_TRUE(log.has("1-onLoad3dLut: generateCfgFile done!"));
  EXPECT_TRUE(log.has("1-onLoad3dLut: panel:0 init (1)"));
  const std::string cache = root.read("/data/vendor/display/cofc.fw");
  ASSERT_FALSE(cache.empty());

  p->DeInit();  // as a new process would find it: the tables in memory gone, the files kept
  pctest::resetCaches();
  p = start();
  EXPECT_TRUE(p->tablesReady());
  EXPECT_TRUE(log.has("1-onLoad3dLut: loadCfgFile done!"));
  EXPECT_FALSE(log.has("1-onLoad3dLut: generateCfgFile done!"));

  // Message 3 once the tables are ready does nothing and says nothing; DeInit's wake-up comes
  // after it in the queue, so by the end of DeInit it has been handled.
  log.clear();
  p->load3dLut();
  p->DeInit();
  EXPECT_TRUE(log.has("1-onMessageReceived: unsupport msg!"));
  EXPECT_EQ(log.countContaining("onLoad3dLut"), 0);

  std::string corrupt = cache;
  corrupt[1000] ^= 0x01;
  root.write("/data/vendor/display/cofc.fw", corrupt);
  pctest::resetCaches();
  p = start();
  EXPECT_TRUE(p->tablesReady());
  EXPECT_TRUE(log.has("1-onLoad3dLut: generateCfgFile done!"));
  EXPECT_EQ(root.read("/data/vendor/display/cofc.fw"), cache) << "the same tables again";
}

TEST_F(TableLoadingTest, FailedGenerationLeavesThePanelWithoutTables) {
  pctool::SyntheticDeviceOptions options;
  options.localData = false;
  writeDevice(options);
  root.remove("/odm/etc/PanelCorvane/PanelCorvane_primary_2_100nit.odf");
  PanelCorvane* p = start();
  EXPECT_FALSE(p->tablesReady());
  EXPECT_TRUE(log.has("1-generateCfgFile: failed to open local odf"));
  EXPECT_TRUE(log.has("1-generateCfgFile: failed to open golden odf"));
  EXPECT_TRUE(log.has("1-onLoad3dLut: panel:0 init (0)"));
  EXPECT_FALSE(log.has("1-onLoad3dLut: generateCfgFile done!"));
}

}  // namespace
