// The factory's calibration files as the front end and the workbench read them: optical data
// (.odf, CRC-checked), a mode's target parameters and the error-check file. Input: one byte (bit
// 0 gamma correction on, bits 1-2 which reader), then the file.
#include <string>

#include "base/PanelCorvaneBase.h"
#include "frontend/PanelCorvaneFE.h"
#include "fuzz/support/FuzzSupport.h"
#include "tools/lib/calibration/CalibrationFiles.h"

using postblend::PanelCorvaneBase;
using postblend::PanelCorvaneFE;

constexpr const char* kDevicePath = "/mnt/vendor/persist/display/fuzz_input";

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  PanelCorvaneBase::sIsGammaCorrectionOn = (data[0] & 1) != 0;
  const int reader = (data[0] >> 1) & 3;
  pcfuzz::writeDeviceFile(kDevicePath, data + 1, size - 1);
  const std::string hostPath = pcfuzz::quietPlatform() + kDevicePath;

  PanelCorvaneBase owner;
  PanelCorvaneFE fe(&owner, 0);
  std::string error;
  if (reader == 0) {
    PanelCorvaneBase::OpticalDataFile odf{};
    fe.readODF(odf, kDevicePath);
    pctool::OdfCheck check;
    pctool::readOdfFile(hostPath, odf, check, error);
  } else if (reader == 1) {
    PanelCorvaneBase::TargetParm target{};
    fe.readTargetParm(target, kDevicePath);
    int count = 0;
    pctool::readTargetFile(hostPath, target, count, error);
  } else {
    PanelCorvaneBase::ODFErrorCheck check{};
    fe.readODFCheck(kDevicePath, &check);
  }
  pcfuzz::removeDeviceFile(kDevicePath);
  return 0;
}
