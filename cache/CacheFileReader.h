// The table cache file (cofc.fw, cofc2.fw), read for the plugin and the workbench.
//
// Layout (native little-endian, no header, no padding):
//   N x 117928 bytes  the lut3d_info records, byte for byte as in memory
//   4 bytes each      source, panelId, paramVersion, checkSum
// The file's length (16 + N x 117928) is its only version mark: the plugin takes it only when
// it equals FWVersion, and checks that before reading a byte. checkSum is the wrap-around sum of
// every table word plus source, panelId and paramVersion. At most kMaxCacheTables tables.
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <vector>

#include "base/ReadDiagnosis.h"
#include "postblend/color_records.h"

namespace postblend {

constexpr uint32_t kMaxCacheTables = 8;

enum class CacheProblem {
  None,
  WrongLength,       // no table count fits the length
  Truncated,         // the input ended inside the tables or the trailer
  CheckSumMismatch,  // the stored check is not the sum of what was read
};

struct CacheTrailer {
  uint32_t source = 0;  // 0 matched/local, 1 unmatched/golden, 2 matched but golden
  uint32_t panelId = 0;
  uint32_t paramVersion = 0;
  uint32_t checkSum = 0;
};

struct CacheRead {
  uint32_t count = 0;    // tables in the input
  CacheTrailer trailer;  // the words read; a short input leaves the rest zero
  uint32_t computedCheckSum = 0;
  bool complete = false;  // every byte of the tables and the trailer was there
  ReadDiagnosis<CacheProblem> diagnosis;
};

// The table count for a file length, 0 when no count of 1..kMaxCacheTables fits.
uint32_t cacheTableCount(uint64_t bytes);

// Reads `count` tables straight into `tables` (the caller's array, which a failed read leaves
// holding what was read), then the trailer, and sums what it read.
CacheRead readCacheTables(std::istream& in, uint32_t count, lut3d_info* tables);

// A whole cache image: its length gives the table count, `tables` is sized to it.
CacheRead readCacheImage(const uint8_t* data, size_t size, std::vector<lut3d_info>& tables);

}  // namespace postblend
