#include "cache/CacheFileReader.h"

#include <cstdio>
#include <string>

#include "base/MemoryStream.h"
#include "cache/Lut3DCacheManager.h"

namespace postblend {

namespace {

std::string hex32(uint32_t v) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08x", v);
  return buf;
}

}  // namespace

uint32_t cacheTableCount(uint64_t bytes) {
  for (uint32_t n = 1; n <= kMaxCacheTables; ++n) {
    if (Lut3DCacheManager::fileSizeFor(n) == bytes) return n;
  }
  return 0;
}

CacheRead readCacheTables(std::istream& in, uint32_t count, lut3d_info* tables) {
  CacheRead r;
  r.count = count;
  const uint64_t tableBytes = static_cast<uint64_t>(count) * sizeof(lut3d_info);
  in.read(reinterpret_cast<char*>(tables), static_cast<std::streamsize>(tableBytes));
  uint64_t got = static_cast<uint64_t>(in.gcount());
  uint32_t words[4] = {};
  if (got == tableBytes) {
    in.read(reinterpret_cast<char*>(words), sizeof(words));
    got += static_cast<uint64_t>(in.gcount());
  }
  r.trailer = {words[0], words[1], words[2], words[3]};
  const uint64_t want = tableBytes + sizeof(words);
  r.complete = got == want;
  r.computedCheckSum = Lut3DCacheManager::checkSum(tables, count, r.trailer.source,
                                                   r.trailer.panelId, r.trailer.paramVersion);
  if (!r.complete) {
    r.diagnosis.note(
        CacheProblem::Truncated, 0,
        "truncated: " + std::to_string(got) + " of " + std::to_string(want) + " bytes");
  } else if (r.trailer.checkSum != r.computedCheckSum) {
    r.diagnosis.note(CacheProblem::CheckSumMismatch, 0,
                     "checksum mismatch: stored " + hex32(r.trailer.checkSum) + ", computed " +
                         hex32(r.computedCheckSum));
  }
  return r;
}

CacheRead readCacheImage(const uint8_t* data, size_t size, std::vector<lut3d_info>& tables) {
  const uint32_t count = cacheTableCount(size);
  if (count == 0) {
    tables.clear();
    CacheRead r;
    r.diagnosis.note(CacheProblem::WrongLength, 0,
                     "wrong size: " + std::to_string(size) +
                         " bytes; a table cache has 16 + N x 117928 bytes (707584 for 6 tables, "
                         "943440 for 8)");
    return r;
  }
  tables.resize(count);
  MemoryStream in(data, size);
  return readCacheTables(in, count, tables.data());
}

}  // namespace postblend
