// The panel identity: the factory's stamp file and the serial numbers the display driver answers
// with, read and compared as the backend does before every table load. Input: one byte of
// switches (bit 0 panel, bit 1 the driver is missing), the stamp file, a NUL, then the driver's
// text (line k is panel k's serial number).
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "backend/PanelCorvaneBE.h"
#include "fuzz/support/FuzzSupport.h"

using postblend::PanelCorvaneBE;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const unsigned panel = data[0] & 1;
  const std::string rest(reinterpret_cast<const char*>(data + 1), size - 1);
  const size_t split = rest.find('\0');
  const std::string stamp = rest.substr(0, split);
  const std::string serials = split == std::string::npos ? "" : rest.substr(split + 1);
  const auto bytes = [](const std::string& s) {
    return reinterpret_cast<const uint8_t*>(s.data());
  };
  pcfuzz::writeDeviceFile(panel == 0 ? "/mnt/vendor/persist/display/panel_id"
                                     : "/mnt/vendor/persist/display/panel_id_d1",
                          bytes(stamp), stamp.size());
  const bool driverMissing = (data[0] & 2) != 0;
  driverMissing ? pcfuzz::removeDeviceFile("/dev/tarnu_display")
                : pcfuzz::writeDeviceFile("/dev/tarnu_display", bytes(serials), serials.size());
  postblend::PanelCorvaneBase owner;
  owner.mPanelIndex = panel;
  PanelCorvaneBE be(&owner);
  be.isPaneIdMatched();

  // The comparison on its own, with the backend's 256-character buffers, not terminated.
  std::vector<char> sn(PanelCorvaneBE::kTextBufSize), id(PanelCorvaneBE::kTextBufSize);
  std::memcpy(sn.data(), serials.data(), std::min(serials.size(), sn.size()));
  std::memcpy(id.data(), stamp.data(), std::min(stamp.size(), id.size()));
  be.transferAndCmp(sn.data(), id.data());
  return 0;
}
