#include <gtest/gtest.h>

#include "core/PanelCorvane.h"
#include "frontend/PanelCorvaneFE.h"
#include "tests/core/CoreFixture.h"
#include "tools/lib/device/SyntheticDevice.h"

using postblend::Lut3DCacheManager;
using postblend::PanelCorvane;
using postblend::PanelCorvaneFE;

namespace {

class TableLoadingTest : public pctest::CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    PanelCorvaneFE::sIn100nits = -1;
  }
  void device(const pctool::SyntheticDeviceOptions& options = {}) {
    std::string error;
    ASSERT_TRUE(pctool::writeSyntheticDevice(root.path(), options, &error)) << error;
    root.write("/data/vendor/display/.keep", "");
  }
  // Starts the primary panel and waits for its loading job to finish.
  PanelCorvane* start() {
    PanelCorvane* p = make();
    p->Init("PanelCorvane_primary");
    EXPECT_TRUE(pctest::waitFor([&] { return log.countContaining("1-onLoad3dLut: panel:0 init (") > 0; }));
    EXPECT_TRUE(pctest::settle());
    return p;
  }
  // As a new process would: the old object gone, the cache memory state fresh.
  PanelCorvane* restart(PanelCorvane* p) {
    p->DeInit();
    pctest::resetCaches();
    log.clear();
    return start();
  }
};

TEST_F(TableLoadingTest, GeneratesOnFirstStartAndLoadsTheCacheAfterwards) {
  device();
  PanelCorvane* p = start();
  EXPECT_TRUE(p->tablesReady());
  EXPECT_TRUE(log.has("1-onLoad3dLut: generateCfgFile done!"));
  EXPECT_TRUE(log.has("1-onLoad3dLut: panel:0 init (1)"));
  EXPECT_TRUE(root.exists("/data/vendor/display/cofc.fw"));

  p = restart(p);
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
}

TEST_F(TableLoadingTest, CorruptCacheIsRegenerated) {
  device();
  PanelCorvane* p = start();
  std::string cache = root.read("/data/vendor/display/cofc.fw");
  cache[1000] ^= 0x01;
  root.write("/data/vendor/display/cofc.fw", cache);
  p = restart(p);
  EXPECT_TRUE(p->tablesReady());
  EXPECT_TRUE(log.has("1-onLoad3dLut: generateCfgFile done!"));
  EXPECT_EQ(root.read("/data/vendor/display/cofc.fw").size(), cache.size());
}

TEST_F(TableLoadingTest, FailedGenerationLeavesThePanelWithoutTables) {
  pctool::SyntheticDeviceOptions options;
  options.localData = false;
  device(options);
  root.remove("/odm/etc/PanelCorvane/PanelCorvane_primary_2_100nit.odf");
  PanelCorvane* p = start();
  EXPECT_FALSE(p->tablesReady());
  EXPECT_TRUE(log.has("1-generateCfgFile: failed to open local odf"));
  EXPECT_TRUE(log.has("1-generateCfgFile: failed to open golden odf"));
  EXPECT_TRUE(log.has("1-onLoad3dLut: panel:0 init (0)"));
  EXPECT_FALSE(log.has("1-onLoad3dLut: generateCfgFile done!"));
}

}  // namespace
