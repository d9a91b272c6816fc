// Which of the panel's tables a render mode shows: 0..7 show their own, 309 and 310 show tables 5
// and 1 without the PA and dither switches; any other mode shows none of the panel's tables (-1).
#pragma once

namespace postblend {

constexpr int kModeCinemaNoPa = 309;
constexpr int kModeVividNoPa = 310;

constexpr int tableOfMode(int mode) {
  if (mode == kModeCinemaNoPa) return 5;
  if (mode == kModeVividNoPa) return 1;
  return mode >= 0 && mode <= 7 ? mode : -1;
}

}  // namespace postblend
