#include <gtest/gtest.h>

#include <sstream>

#include "core/PanelCorvane.h"
#include "services/MixLut3DAidl.h"
#include "tests/core/CoreFixture.h"

using postblend::PanelCorvane;
using B = postblend::PanelCorvaneBase;
using Vec = PanelCorvane::hidl_vec_i32;

namespace {

class ControlInterfaceTest : public pctest::CoreTest {
 protected:
  // The state the commands act on, one "name=value" a field.
  std::string state() const {
    std::ostringstream s;
    s << "bypass=" << B::sIsByPass.load() << " brightness=" << B::sBrightness.load()
      << " debug=" << B::sDebug.load() << " cfg=" << B::sCFGMode.load()
      << " de=" << B::sDEStatus.load() << " hook=" << B::sIsLut3dHook.load()
      << " fod=" << panel->fodOn() << " need=" << B::sNeedUpdate.load();
    return s.str();
  }
  // The fields of `after` that differ from `before`.
  static std::string changed(const std::string& before, const std::string& after) {
    std::istringstream b(before), a(after);
    std::string out;
    for (std::string x, y; b >> x && a >> y;)
      if (x != y) out += (out.empty() ? "" : " ") + y;
    return out;
  }

  PanelCorvane* panel = nullptr;
};

TEST_F(ControlInterfaceTest, CommandsChangeWhatTheyShouldAndNothingElse) {
  writeProps();
  panel = make();
  panel->Init("primary");
  ASSERT_TRUE(pctest::settle());
  PanelCorvane::MixLut3DAidl aidl;
  constexpr int kNone = -999;
  for (const auto& r : pctest::dataRows("services/control_commands.txt")) {
    SCOPED_TRACE(r[0] + " " + r[1] + " (" + r[2] + ") " + r[7]);
    B::sDebug = 1 | 0x02;
    B::sBrightness = 77;
    B::sDEStatus = 5;
    B::sIsLut3dHook = false;
    panel->configureSet(919, Vec{0, r[3] == "fod" ? 1 : 0});
    B::sCFGMode = -1;
    B::sNeedUpdate = false;
    B::sIsByPass = r[3] == "bypass";
    const std::string before = state();
    std::vector<int32_t> args;
    std::istringstream list(r[2] == "-" ? "" : r[2]);
    for (int32_t v; list >> v;) args.push_back(v);
    const int cmd = std::stoi(r[1]);
    log.clear();
    int answer = kNone;
    if (r[0] == "set") {
      answer = panel->configureSet(cmd, Vec(args));
    } else if (r[0] == "get") {
      panel->configureGet(cmd, Vec(args), [&](int32_t v, const Vec& rest) {
        answer = v;
        EXPECT_EQ(rest.size(), 1u);
      });
    } else if (r[0] == "mode") {
      answer = panel->SetScreenColorMode(cmd);
    } else if (r[0] == "cmd") {
      answer = panel->set(cmd);
    } else {
      answer = 5;
      EXPECT_TRUE(aidl.set(args.at(0), cmd, &answer).isOk());
    }
    EXPECT_EQ(r[4], answer == kNone ? "none" : std::to_string(answer));
    EXPECT_EQ(r[5], changed(before, state()));
    EXPECT_EQ(std::stoi(r[6]), log.count("1-sendMessage: sendMessage 1")) << "refresh requests";
    EXPECT_TRUE(r[7] == "-" || log.countContaining(r[7]) == 1) << log.dump();
  }
}

}  // namespace
