#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"

using postblend::ColorModeList;
using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;
using postblend::ScOps;
using postblend::ScPayload;

namespace {

template <typename T>
ScPayload payloadFor(T* record, uint32_t prop = 0, uint32_t len = sizeof(T)) {
  ScPayload p;
  p.prop = prop;
  p.len = len;
  p.payload = reinterpret_cast<uintptr_t>(record);
  return p;
}

class DispatchTest : public pctest::CoreTest {
 protected:
  PanelCorvane* running(const std::string& extra = "") {
    writeProps(extra);
    PanelCorvane* p = make();
    p->Init("primary");
    return p;
  }
};

TEST_F(DispatchTest, BrightnessPropertyScalesAndClamps) {
  PanelCorvane* p = running();
  struct Case {
    double fraction;
    uint32_t level;
  } cases[] = {{1.0, 8191}, {0.0, 1}, {0.5, 5120}, {-1.0, 0}, {2.0, 8191}, {0.8, 8191}, {0.25, 2560}};
  for (const auto& c : cases) {
    double value = c.fraction;
    p->SetProperty(payloadFor(&value, 769));
    EXPECT_EQ(PanelCorvaneBase::sBrightness, c.level) << c.fraction;
  }
  double nan = std::nan("");
  p->SetProperty(payloadFor(&nan, 769));
  EXPECT_EQ(PanelCorvaneBase::sBrightness, 0u);

  ScPayload wrong = payloadFor(&nan, 769);
  wrong.version = 23;
  PanelCorvaneBase::sBrightness = 77;
  p->SetProperty(wrong);
  EXPECT_EQ(PanelCorvaneBase::sBrightness, 77u);
  EXPECT_TRUE(log.has("1-SetProperty: init_done_:1 payload.version: 23 24"));
}

TEST_F(DispatchTest, GetPropertyRefusesBadPayloadsAndAnswersBrightnessInterest) {
  PanelCorvane* p = running();
  EXPECT_EQ(p->GetProperty(nullptr), 0);
  ScPayload bad;
  bad.version = 23;
  EXPECT_EQ(p->GetProperty(&bad), 0);
  EXPECT_EQ(log.count("1-GetProperty: payload error!"), 2);

  ScPayload brightness;
  brightness.prop = 769;
  EXPECT_EQ(p->GetProperty(&brightness), 0);
  EXPECT_TRUE(log.has("1-GetProperty: prop is not supported:769"));
  PanelCorvaneBase::sIsPanelNitsCalibrationOn = true;
  EXPECT_EQ(p->GetProperty(&brightness), 769);

  ScPayload unknown;
  unknown.prop = 5;
  EXPECT_EQ(p->GetProperty(&unknown), 0);
  EXPECT_TRUE(log.has("1-GetProperty: prop is not supported:5"));
}

TEST_F(DispatchTest, ProcessOpsRefusesUnknownOpsAndMissingOutput) {
  PanelCorvane* p = running();
  ScPayload in, out;
  EXPECT_EQ(p->ProcessOps(static_cast<ScOps>(5), in, &out), 0);
  EXPECT_TRUE(log.has("1-ProcessOps: Invalid ops 5"));
  EXPECT_EQ(p->ProcessOps(postblend::kScModeSwAssets, in, nullptr), 0);
  EXPECT_EQ(log.countContaining("1-ProcessOps: Invalid params init_done_ 1 output "), 1);
  EXPECT_EQ(p->ProcessOps(postblend::kScModeSwAssets, in, &out), 0);
}

TEST_F(DispatchTest, PayloadsTooShortForTheirRecordAreRefused) {
  PanelCorvane* p = running();
  PanelCorvaneBase::sBrightness = 77;
  // Exactly as long as the caller says: a checker sees any read past the four bytes.
  auto four = std::make_unique<uint32_t>(0x3f000000u);
  ScPayload shortLevel = payloadFor(four.get(), 769, sizeof(uint32_t));
  EXPECT_EQ(p->SetProperty(shortLevel), 0);
  ScPayload nullLevel = payloadFor<double>(nullptr, 769);
  EXPECT_EQ(p->SetProperty(nullLevel), 0);
  EXPECT_EQ(PanelCorvaneBase::sBrightness, 77u);
  EXPECT_EQ(log.count("1-SetProperty: payload error!"), 2);

  postblend::ModeRenderInputParams request;
  request.color_mode.gamut = 1;
  request.color_mode.intent = 256;
  postblend::HwConfigOutputParams result;
  ScPayload out = payloadFor(&result);
  ScPayload shortRequest = payloadFor(&request, 0, 8);
  ScPayload noRequest = payloadFor<postblend::ModeRenderInputParams>(nullptr);
  EXPECT_EQ(p->ProcessOps(postblend::kScModeRenderIntent, shortRequest, &out), 0);
  EXPECT_EQ(p->ProcessOps(postblend::kScModeRenderIntent, noRequest, &out), 0);
  EXPECT_EQ(log.count("1-ProcessModeRenderIntent: payload error!"), 2);
  EXPECT_EQ(p->previousMode(), -1) << "a refused request is not a frame";
}

TEST_F(DispatchTest, PropertyHandlersCheckTheirRecords) {
  PanelCorvane* p = running("LogLevel=6\n");
  PanelCorvaneBase::sDebug = 6;

  ColorModeList list;
  ScPayload modes = payloadFor(&list, 1);
  EXPECT_EQ(p->GetProperty(&modes), 0);
  ASSERT_EQ(list.list.size(), 1u);
  EXPECT_EQ(list.list[0].name, "standard");
  EXPECT_TRUE(log.has("1-GetModeList: start"));
  ScPayload shortModes = payloadFor(&list, 1, 8);
  p->GetProperty(&shortModes);
  EXPECT_TRUE(log.has("1-GetModeList: payload error!"));

  bool flag = true;
  ScPayload tonemap = payloadFor(&flag, 9);
  p->GetProperty(&tonemap);
  EXPECT_FALSE(flag);
  flag = true;
  ScPayload wideTonemap = payloadFor(&flag, 9, 4);
  p->GetProperty(&wideTonemap);
  EXPECT_TRUE(flag);
  EXPECT_TRUE(log.has("1-GetSupportTonemap: payload ERROR!"));

  // A brightness change asks for a new frame; the flag stays up until a frame is processed.
  bool needs = false;
  ScPayload update = payloadFor(&needs, 2);
  p->GetProperty(&update);
  EXPECT_FALSE(needs);
  EXPECT_TRUE(log.has("1-GetNeedsUpdate: 0"));
  PanelCorvaneBase::sBrightness = 4000;
  p->GetProperty(&update);
  EXPECT_TRUE(needs);
  EXPECT_TRUE(log.has("1-GetNeedsUpdate: brightness changed!"));
  PanelCorvaneBase::sBrightness = 0;
  p->GetProperty(&update);
  EXPECT_TRUE(needs);
}

TEST_F(DispatchTest, RefreshReachesTheDisplayServiceWithCommand20) {
  auto display = addDisplayService();
  PanelCorvane* p = running();
  ASSERT_TRUE(pctest::waitFor([&] { return log.has("1-onHelpServiceInit: Qservice done!"); }));
  p->refresh();
  ASSERT_TRUE(pctest::waitFor([&] { return display->count() == 1; }));
  EXPECT_EQ(display->calls[0].command, 20u);
  EXPECT_EQ(display->calls[0].arg, 1);

  PanelCorvane* idle = make();
  idle->refresh();  // never initialised: no queue, nothing sent
  EXPECT_EQ(display->count(), 1u);
}

}  // namespace
