// Is the fitted panel the one the factory calibrated? The panel's serial number carries its
// production time stamp; the factory wrote the same stamp beside the calibration data.
//
// Serial number: 40 characters; from position 25 a hexadecimal number whose bit fields are
// year - 2011 (56-59), month (48-51), day (40-44), hour (32-36), minute (24-29), second (16-21)
// and tenths (0-15). Stamp: "YYYY/MM/DD_hh:mm:ss_T.T", e.g. 2020/03/07_08:05:09_1.2.
#define LOG_TAG "PanelCorvaneBE"

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "backend/PanelCorvaneBE.h"
#include "base/DeviceIo.h"
#include "base/Log.h"
#include "tarnu_display/panel_ioctl.h"

namespace postblend {

namespace {

using tarnu_display::kPanelIoctlGetSerialNumber;
using tarnu_display::kSerialArgSize;
constexpr size_t kSerialLength = 40;
constexpr size_t kSerialWithNewline = 41;
constexpr size_t kStampOffset = 25;
constexpr int kDriverAttempts = 10;
constexpr int kSysfsPasses = 5;
constexpr size_t kBuf = PanelCorvaneBE::kTextBufSize;

size_t boundedLen(const char* s) { return s == nullptr ? 0 : strnlen(s, kBuf); }

// A terminated copy for logging: the 256-character buffers need not hold a terminator.
struct Printable {
  explicit Printable(const char* s) {
    const size_t n = boundedLen(s);
    if (n != 0) std::memcpy(text, s, n);
    text[n] = '\0';
  }
  char text[kBuf + 1];
};

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

const char* identityStampPath(uint32_t panelIndex) {
  return panelIndex == 0 ? "/mnt/vendor/persist/display/panel_id"
                         : "/mnt/vendor/persist/display/panel_id_d1";
}

bool PanelCorvaneBE::isPaneIdMatched() {
  // One spare byte each keeps a full 256-character read terminated.
  char sn[kBuf + 1] = {};
  char factoryId[kBuf + 1] = {};
  if (!readFactorPanelId(factoryId)) return false;
  if (!getSnByHidl(sn)) return false;
  return transferAndCmp(sn, factoryId);
}

bool PanelCorvaneBE::readFactorPanelId(char* out) {
  if (out == nullptr) return false;
  FILE* f = devio::fopen(identityStampPath(panelIndex()), "r");
  if (f == nullptr) {
    PC_LOGE("failed to open panel_id!\n");
    return false;
  }
  const size_t n = fread(out, 1, kBuf, f);
  (void)n;  // the caller zeroed the buffer; an empty file is still an answer
  PC_LOGD("%s\n", Printable(out).text);
  fclose(f);
  return true;
}

bool PanelCorvaneBE::getSnByHidl(char* out) {
  if (out == nullptr) return false;
  const uint32_t panel = panelIndex();
  unsigned char arg[kSerialArgSize];
  int attempt = 0;
  for (;; ++attempt) {
    int fd = devio::open("/dev/tarnu_display", O_RDWR | O_CLOEXEC);
    if (fd < 0) {
      PC_LOGD("Fail to open /dev/tarnu_display!\n");
    } else {
      std::memset(arg, 0, sizeof(arg));
      std::memcpy(arg, &panel, sizeof(panel));
      devio::ioctl(fd, kPanelIoctlGetSerialNumber, arg);  // the answer is judged by its length
      close(fd);
      arg[kSerialArgSize - 1] = 0;
      const size_t len = strlen(reinterpret_cast<const char*>(arg));
      if (dbgOn(kDbgVerbose)) PC_LOGD("%d:%d\n", static_cast<int>(panel), attempt);
      if (len >= kSerialLength) break;
    }
    if (attempt + 1 >= kDriverAttempts) {
      PC_LOGE("PANEL_IOCTL_GET_SERIAL_NUMBER error.\n");
      return false;
    }
    devio::sleepSeconds(1);
  }
  const char* serial = reinterpret_cast<const char*>(arg);
  PC_LOGD("%d:%d-%s\n", static_cast<int>(panel), attempt, serial);
  std::memset(out, 0, kBuf);
  std::memcpy(out, serial, strlen(serial));
  return true;
}

// Part of the interface; nothing calls it: the serial comes from the ioctl.
bool PanelCorvaneBE::readSysSn(char* out) {
  if (out == nullptr) return false;
  for (int pass = 0; pass < kSysfsPasses; ++pass) {
    // Checked before the read on purpose: a buffer already holding a serial is refused.
    if (boundedLen(out) == kSerialWithNewline) {
      PC_LOGE("Failed to read psn from sysfs.\n");
      return false;
    }
    int fd = devio::open("/sys/kernel/tarnu_display/panel_serial_number", O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
      const ssize_t n = read(fd, out, kBuf);
      if (n >= 0 && static_cast<size_t>(n) < kBuf) out[n] = '\0';
      close(fd);
    }
    if (boundedLen(out) == kSerialWithNewline) {
      PC_LOGD("%s\n", out);
      return true;
    }
    devio::sleepSeconds(1);
  }
  PC_LOGE("Failed to read psn from sysfs.\n");
  return false;
}

bool PanelCorvaneBE::transferAndCmp(char* sn, char* factoryId) {
  const size_t snLen = boundedLen(sn);
  if (snLen < kSerialLength) {
    PC_LOGE("PSN_ERROR!\n");
    return false;
  }
  uint64_t v = 0;
  for (size_t i = kStampOffset; i < snLen; ++i) {
    const int d = hexDigit(sn[i]);
    if (d < 0) break;
    // Saturates like the C library's conversion when there are more than 16 digits.
    v = v > (UINT64_MAX >> 4) ? UINT64_MAX : (v << 4) | static_cast<uint64_t>(d);
  }
  const long year = static_cast<long>((v >> 56) & 0xF) + 2011;
  const long month = static_cast<long>((v >> 48) & 0xF);
  const long day = static_cast<long>((v >> 40) & 0x1F);
  const long hour = static_cast<long>((v >> 32) & 0x1F);
  const long minute = static_cast<long>((v >> 24) & 0x3F);
  const long second = static_cast<long>((v >> 16) & 0x3F);
  const float tenths = static_cast<float>(v & 0xFFFF) / 10.0f;  // single precision, as stamped

  char stamp[kBuf];
  snprintf(stamp, sizeof(stamp), "%04ld/%02ld/%02ld_%02ld:%02ld:%02ld_%0.1f", year, month, day,
           hour, minute, second, static_cast<double>(tenths));
  const size_t stampLen = strlen(stamp);
  const Printable id(factoryId);
  const size_t idLen = strlen(id.text);
  PC_LOGD("device: %s(%d) -> %s(%d)\n", stamp, static_cast<int>(stampLen), id.text,
          static_cast<int>(idLen));
  if (idLen < stampLen) {
    PC_LOGE("PSN_ERROR.\n");
    return false;
  }
  // Only the stamp's length is compared: the identity file may end with a line feed.
  for (size_t i = 0; i < stampLen; ++i) {
    if (stamp[i] != id.text[i]) {
      PC_LOGD("%c <> %c (%d)\n", stamp[i], id.text[i], static_cast<int>(i));
      return false;
    }
  }
  PC_LOGE("PSN_OK.\n");
  return true;
}

}  // namespace postblend
