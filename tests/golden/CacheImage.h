// A panel's table cache file as the plugin writes it, read with this harness's own copy of the
// layout so that moving the plugin's sources and headers leaves the harness alone:
//   N records of 117928 bytes: 4 header words, then 4913 entries of 6 u32 words
//                              (input codes r g b, output codes r g b; entry n = 289b + 17g + r)
//   16 bytes                   trailer: source, panelId, paramVersion, checkSum
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace golden {

constexpr size_t kGrid = 17;
constexpr size_t kEntries = kGrid * kGrid * kGrid;
constexpr size_t kHeaderWords = 4;
constexpr size_t kEntryWords = 6;
constexpr size_t kTableBytes = (kHeaderWords + kEntries * kEntryWords) * sizeof(uint32_t);
constexpr size_t kTrailerBytes = 16;
constexpr size_t kMaxTables = 8;
static_assert(kTableBytes == 117928, "one lut3d_info record");

using Codes = std::array<uint32_t, 3>;

class CacheImage {
 public:
  // Reads PATH; false with a reason when it cannot be read or its length is not
  // 16 + N x 117928 with 1 <= N <= 8.
  bool read(const std::string& path, std::string& why);

  size_t tableCount() const { return mTables.size(); }
  const std::string& tableBytes(size_t table) const { return mTables[table]; }
  const std::string& trailerBytes() const { return mTrailer; }
  Codes inputCodes(size_t table, size_t entry) const { return codes(table, entry, 0); }
  Codes outputCodes(size_t table, size_t entry) const { return codes(table, entry, 3); }
  uint32_t trailerWord(size_t k) const;

 private:
  Codes codes(size_t table, size_t entry, size_t first) const;
  std::vector<std::string> mTables;
  std::string mTrailer;
};

// 64-bit FNV-1a: a fingerprint that makes any change of a table visible, not a security hash.
uint64_t fingerprint(const std::string& bytes);
std::string hex64(uint64_t value);

}  // namespace golden
