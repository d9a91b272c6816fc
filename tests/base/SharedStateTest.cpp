#include <gtest/gtest.h>
#include <unistd.h>

#include "base/PanelCorvaneBase.h"

namespace {

// The shared state a process starts with, before any Init: checked in a process of its own (the
// death-test machinery starts one) so that no other test has touched it yet.
TEST(SharedState, StartValuesOfAFreshProcess) {
#ifdef PC_CANNOT_REEXEC
  // Under a user-mode emulator the program cannot start itself again; the fork starts from this
  // process's values, which ctest runs with this test alone.
  GTEST_FLAG_SET(death_test_style, "fast");
#else
  GTEST_FLAG_SET(death_test_style, "threadsafe");
#endif
  EXPECT_EXIT(
      {
        using B = postblend::PanelCorvaneBase;
        const bool ok = B::sDebug == 1 && B::sCFGMode == -1 && B::sDEStatus == -1 && B::sIsByPass &&
                        !B::sNeedUpdate && !B::sIsCMDebugOn && B::sBrightness == 0 && B::sCurrentPanel == 0 &&
                        B::sPrimaryPanel == nullptr && B::sProp == nullptr;
        _exit(ok ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
