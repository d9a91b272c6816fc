#include "base/PanelCorvaneBase.h"

#include <cstring>

namespace postblend {

std::atomic<uint32_t> PanelCorvaneBase::sDebug{1};
std::atomic<bool> PanelCorvaneBase::sIsByPass{true};
std::atomic<bool> PanelCorvaneBase::sIsPanelCalibrationOn{false};
std::atomic<bool> PanelCorvaneBase::sIsPanelNitsCalibrationOn{false};
std::atomic<bool> PanelCorvaneBase::sIsGammaCorrectionOn{false};
std::atomic<bool> PanelCorvaneBase::sIsCMDebugOn{false};
std::atomic<uint32_t> PanelCorvaneBase::sParamVersion{0};
std::atomic<uint32_t> PanelCorvaneBase::sFWVersion{0};
std::atomic<uint32_t> PanelCorvaneBase::sBrightness{0};
std::atomic<int32_t> PanelCorvaneBase::sCFGMode{-1};
std::atomic<int32_t> PanelCorvaneBase::sDEStatus{-1};
std::atomic<bool> PanelCorvaneBase::sNeedUpdate{false};
std::atomic<bool> PanelCorvaneBase::sIsLut3dHook{false};
std::atomic<bool> PanelCorvaneBase::sIsHidlRegitsered{false};
std::atomic<int32_t> PanelCorvaneBase::sCurrentPanel{0};
std::atomic<bool> PanelCorvaneBase::sHardenedTables{false};
std::atomic<PanelCorvaneBase*> PanelCorvaneBase::sPrimaryPanel{nullptr};
std::atomic<PanelCorvaneBase*> PanelCorvaneBase::sSecondaryPanel{nullptr};
std::atomic<Prop*> PanelCorvaneBase::sProp{nullptr};
std::mutex PanelCorvaneBase::base_lock_;

namespace {
// Nine greys from white down by 32, then yellow, cyan, green, magenta, red, blue at full and half.
constexpr uint32_t kRefColors[PanelCorvaneBase::kNumRefColors][3] = {
    {255, 255, 255}, {224, 224, 224}, {192, 192, 192}, {160, 160, 160}, {128, 128, 128},
    {96, 96, 96},    {64, 64, 64},    {32, 32, 32},    {0, 0, 0},       {255, 255, 0},
    {128, 128, 0},   {0, 255, 255},   {0, 128, 128},   {0, 255, 0},     {0, 128, 0},
    {255, 0, 255},   {128, 0, 128},   {255, 0, 0},     {128, 0, 0},     {0, 0, 255},
    {0, 0, 128},
};
}  // namespace

PanelCorvaneBase::PanelCorvaneBase() {
  std::memcpy(mRefColors, kRefColors, sizeof(mRefColors));
  std::memset(mName, 0, sizeof(mName));
  std::strcpy(mName, "NULL");
}

}  // namespace postblend
