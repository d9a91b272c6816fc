#include "cache/CacheAcceptance.h"

namespace postblend {

uint32_t tableSlots(bool cmDebug) { return cmDebug ? 8 : 6; }

CacheRefusal cacheRefusal(const CacheCheck& c) {
  if (!cacheLengthAccepted(c.fileBytes, c.fwVersion)) return CacheRefusal::Length;
  if (!c.complete) return CacheRefusal::Truncated;
  if (c.storedCheckSum != c.computedCheckSum) return CacheRefusal::CheckSum;
  if (c.paramVersion != c.expectedParamVersion) return CacheRefusal::ParamVersion;
  if (c.source != (c.matched ? 0u : 1u)) return CacheRefusal::Source;
  return CacheRefusal::None;
}

}  // namespace postblend
