// When a panel's table cache is taken instead of generating the tables, for the plugin's loader
// and the workbench alike: the file's length must equal FWVersion (checked before a byte is
// read: the length is the file's only version mark), every byte of the panel's table slots and
// the trailer must be there, the stored checksum must be the sum of what was read, the cache
// must have been made with the configured ParamVersion, and its source word must agree with
// the identity check: 0 (local data) when the panel matched, 1 (golden data) when it did not.
// A cache of source 2 (golden data although matched) is therefore always made again.
#pragma once

#include <cstdint>

namespace postblend {

// Table slots of a panel: 8 with the colour-management debug switch on, else 6.
uint32_t tableSlots(bool cmDebug);

enum class CacheRefusal { None, Length, Truncated, CheckSum, ParamVersion, Source };

// What is known of a cache once its panel's slots and trailer have been read.
struct CacheCheck {
  uint64_t fileBytes = 0;
  uint32_t fwVersion = 0;
  bool complete = false;  // every byte of the slots and the trailer was read
  uint32_t storedCheckSum = 0, computedCheckSum = 0;
  uint32_t paramVersion = 0, expectedParamVersion = 0;
  uint32_t source = 0;
  bool matched = false;  // the identity check's result
};

inline bool cacheLengthAccepted(uint64_t fileBytes, uint32_t fwVersion) {
  return fileBytes == fwVersion;
}

// The first rule the cache breaks, in the order above; None when it is taken.
CacheRefusal cacheRefusal(const CacheCheck& c);

}  // namespace postblend
