// The display driver's panel serial-number request on "/dev/tarnu_display", as its kernel
// header gives it: the caller puts the panel index (u32) at the start of a 41-byte buffer, the
// driver answers with the panel's 40-character serial number, NUL-terminated.
#pragma once

#include <cstddef>

namespace tarnu_display {

constexpr unsigned long kPanelIoctlGetSerialNumber = 0xC0296F0EUL;  // _IOWR('o', 14, 41 bytes)
constexpr size_t kSerialArgSize = 41;

}  // namespace tarnu_display
