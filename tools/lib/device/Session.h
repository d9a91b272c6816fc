// Session scripts for `panelcorvane simulate`: what the colour manager and the control
// services do to the plugin, one step per line.
//
//   # comment                      blank lines and text after '#' are ignored
//   init PANEL                     Init the panel's plugin object (PANEL: primary|secondary)
//   wait-tables PANEL              wait until the panel's tables are ready (bounded)
//   brightness FRACTION            SetProperty 769 with FRACTION (0.0 .. 1.0) on every panel
//   needs-update PANEL             GetProperty 2, prints the answer
//   frame PANEL GAMUT INTENT [hdr] a render-intent op; prints which table the frame got
//   hidl-set CMD [ARG...]          IPanelCorvane::configureSet
//   hidl-get TYPE [ARG...]         IPanelCorvane::configureGet, prints the answer
//   aidl-set DISP CMD              IMixLut3D::set, prints the result
//   echo TEXT                      prints TEXT
//   deinit PANEL                   DeInit the panel's plugin object
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pctool {

constexpr size_t kMaxSessionBytes = 1 << 20;

struct SessionStep {
  enum Kind { kInit, kDeInit, kWaitTables, kBrightness, kNeedsUpdate, kFrame, kHidlSet, kHidlGet,
              kAidlSet, kEcho };
  Kind kind;
  int line = 0;
  int panel = 0;            // 0 primary, 1 secondary
  std::vector<int> ints;    // numbers of the step
  double fraction = 0;      // brightness
  bool hdr = false;         // frame
  std::string text;         // echo, and the original line for the log
};

// Parses a whole script (at most kMaxSessionBytes). On error returns false and sets `error` to
// "line N: reason".
bool parseSession(const std::string& script, std::vector<SessionStep>* steps, std::string* error);

// The session `simulate` plays when none is given.
const char* defaultSession();

}  // namespace pctool
