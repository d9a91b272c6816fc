#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"

using pctest::payloadFor;
using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;
using postblend::ScPayload;

namespace {

class DispatchTest : public pctest::CoreTest {};

TEST_F(DispatchTest, PropertiesAreAnsweredAndTheBrightnessScaledAndClamped) {
  PanelCorvane* p = running();
  const struct {
    double fraction;
    uint32_t level;
  } rows[] = {{1.0, 8191}, {0.0, 1},    {0.5, 5120},  {-1.0, 0},
              {2.0, 8191}, {0.8, 8191}, {0.25, 2560}, {std::nan(""), 0}};
  for (const auto& r : rows) {
    double value = r.fraction;
    PanelCorvaneBase::sBrightness = 77;
    p->SetProperty(payloadFor(&value, 769));
    EXPECT_EQ(PanelCorvaneBase::sBrightness, r.level) << r.fraction;
  }

  PanelCorvaneBase::sDebug = 1 | 0x02 | 0x04;
  postblend::ColorModeList list;
  ScPayload modes = payloadFor(&list, 1);
  EXPECT_EQ(p->GetProperty(&modes), 0);
  ASSERT_EQ(list.list.size(), 1u);
  EXPECT_EQ(list.list[0].name, "standard");
  EXPECT_EQ(list.list[0].intent, 65534u);
  bool flag = true;
  ScPayload tonemap = payloadFor(&flag, 9);
  p->GetProperty(&tonemap);
  EXPECT_FALSE(flag) << "the plugin does no tone mapping";

  // A brightness change asks for a new frame; the flag stays up until a frame is processed.
  bool needs = true;
  ScPayload update = payloadFor(&needs, 2);
  const struct {
    uint32_t brightness;
    bool needs;
  } steps[] = {{0, false}, {4000, true}, {0, true}};
  for (const auto& step : steps) {
    PanelCorvaneBase::sBrightness = step.brightness;
    p->GetProperty(&update);
    EXPECT_EQ(needs, step.needs) << step.brightness;
  }
  EXPECT_TRUE(log.has("1-GetNeedsUpdate: 0") && log.has("1-GetNeedsUpdate: brightness changed!"));
}

TEST_F(DispatchTest, MalformedCallsAreRefusedWithTheirLine) {
  PanelCorvane* p = running();
  PanelCorvaneBase::sBrightness = 77;
  postblend::HwConfigOutputParams result;
  for (const auto& r : pctest::dataRows("core/refused_calls.txt")) {
    SCOPED_TRACE(r[5]);
    const uint32_t code = static_cast<uint32_t>(std::stoul(r[1]));
    const size_t len = std::stoul(r[3]);
    auto held = std::make_unique<uint8_t[]>(len);  // exactly as long as the caller says
    std::fill_n(held.get(), len, 0xAB);
    ScPayload in =
        payloadFor(r[4] == "none" ? nullptr : held.get(), code, static_cast<uint32_t>(len));
    in.version = static_cast<uint32_t>(std::stoul(r[2]));
    ScPayload out = payloadFor(&result);
    const bool noarg = r[4] == "noarg";
    log.clear();
    int answer = r[0] == "set"   ? p->SetProperty(in)
                 : r[0] == "get" ? p->GetProperty(noarg ? nullptr : &in)
                                 : p->ProcessOps(static_cast<postblend::ScOps>(code), in,
                                                 noarg ? nullptr : &out);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(log.countContaining(r[5]), 1) << log.dump();
    EXPECT_TRUE(std::all_of(held.get(), held.get() + len, [](uint8_t b) { return b == 0xAB; }));
  }
  EXPECT_EQ(PanelCorvaneBase::sBrightness, 77u);
  EXPECT_EQ(p->previousMode(), -1) << "a refused request is not a frame";
  PanelCorvaneBase::sIsPanelNitsCalibrationOn = true;  // now the plugin asks for brightness
  ScPayload nits;
  nits.prop = 769;
  EXPECT_EQ(p->GetProperty(&nits), 769);
}

}  // namespace
