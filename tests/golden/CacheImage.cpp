#include "CacheImage.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace golden {

bool CacheImage::read(const std::string& path, std::string& why) {
  mTables.clear();
  mTrailer.clear();
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    why = path + ": cannot be read";
    return false;
  }
  // A cache file of eight tables is under 1 MB; one larger than that is not a cache file.
  constexpr size_t kMaxBytes = kMaxTables * kTableBytes + kTrailerBytes;
  std::string bytes(kMaxBytes + 1, '\0');
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<size_t>(in.gcount()));
  const size_t n = bytes.size() < kTrailerBytes ? 0 : (bytes.size() - kTrailerBytes) / kTableBytes;
  if (n == 0 || n > kMaxTables || bytes.size() != n * kTableBytes + kTrailerBytes) {
    why = path + ": " + std::to_string(bytes.size()) + " bytes is not 16 + N x 117928, N 1..8";
    return false;
  }
  for (size_t t = 0; t < n; ++t) mTables.push_back(bytes.substr(t * kTableBytes, kTableBytes));
  mTrailer = bytes.substr(n * kTableBytes);
  return true;
}

uint32_t CacheImage::trailerWord(size_t k) const {
  uint32_t w = 0;
  std::memcpy(&w, mTrailer.data() + k * sizeof w, sizeof w);
  return w;
}

Codes CacheImage::codes(size_t table, size_t entry, size_t first) const {
  Codes c{};
  const size_t word = kHeaderWords + entry * kEntryWords + first;
  std::memcpy(c.data(), mTables[table].data() + word * sizeof(uint32_t), sizeof c);
  return c;
}

uint64_t fingerprint(const std::string& bytes) {
  uint64_t h = 0xcbf29ce484222325ull;
  for (unsigned char b : bytes) {
    h ^= b;
    h *= 0x100000001b3ull;
  }
  return h;
}

std::string hex64(uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%016" PRIx64, value);
  return text;
}

}  // namespace golden
