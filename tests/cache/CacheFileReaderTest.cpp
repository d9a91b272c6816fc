#include "cache/CacheFileReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "base/MemoryStream.h"
#include "cache/Lut3DCacheManager.h"

using postblend::CacheProblem;
using postblend::lut3d_info;

namespace {

// The image of `n` tables whose words count up, with a consistent trailer.
std::string image(uint32_t n, uint32_t source = 1, uint32_t paramVersion = 9) {
  std::vector<lut3d_info> t(n);
  uint32_t* words = reinterpret_cast<uint32_t*>(t.data());
  for (size_t i = 0; i < n * sizeof(lut3d_info) / 4; ++i) words[i] = static_cast<uint32_t>(i * 7);
  const uint32_t sum = postblend::Lut3DCacheManager::checkSum(t.data(), n, source, 0, paramVersion);
  const uint32_t trailer[4] = {source, 0, paramVersion, sum};
  return std::string(reinterpret_cast<const char*>(t.data()), n * sizeof(lut3d_info)) +
         std::string(reinterpret_cast<const char*>(trailer), sizeof trailer);
}

std::string wrongSize(const char* bytes) {
  return std::string("wrong size: ") + bytes +
         " bytes; a table cache has 16 + N x 117928 bytes (707584 for 6 tables, 943440 for 8)";
}

TEST(CacheFileReader, ImagesByClass) {
  std::string flipped = image(6);
  flipped[1000] ^= 0x10;
  const struct {
    const char* name;
    std::string data;
    CacheProblem problem;
    uint32_t count;
    std::string message;
  } cases[] = {
      {"six tables", image(6), CacheProblem::None, 6, ""},
      {"one table", image(1), CacheProblem::None, 1, ""},
      {"empty", "", CacheProblem::WrongLength, 0, wrongSize("0")},
      {"one byte short", image(6).substr(1), CacheProblem::WrongLength, 0, wrongSize("707583")},
      {"nine tables", image(9), CacheProblem::WrongLength, 0, wrongSize("1061368")},
      {"a table word changed", flipped, CacheProblem::CheckSumMismatch, 6, "checksum mismatch: stored "},
  };
  for (const auto& c : cases) {
    std::vector<lut3d_info> tables;
    const auto r = postblend::readCacheImage(reinterpret_cast<const uint8_t*>(c.data.data()), c.data.size(), tables);
    EXPECT_EQ(r.diagnosis.problem, c.problem) << c.name;
    EXPECT_EQ(r.count, c.count) << c.name;
    EXPECT_EQ(tables.size(), c.count) << c.name;
    EXPECT_EQ(r.diagnosis.message.substr(0, c.message.size()), c.message) << c.name;
    EXPECT_EQ(r.trailer.checkSum != r.computedCheckSum, c.problem == CacheProblem::CheckSumMismatch) << c.name;
  }
}

TEST(CacheFileReader, AShortStreamFillsTheCallersArrayAsFarAsItGoesAndSaysSo) {
  const std::string whole = image(2, 0, 4);
  std::vector<lut3d_info> tables(2);
  std::memset(tables.data(), 0xAB, 2 * sizeof(lut3d_info));
  const size_t cut = sizeof(lut3d_info) + 100;  // the length said two tables
  postblend::MemoryStream in(whole.data(), cut);
  const auto r = postblend::readCacheTables(in, 2, tables.data());
  EXPECT_EQ(r.diagnosis.problem, CacheProblem::Truncated);
  EXPECT_EQ(r.diagnosis.message, "truncated: 118028 of 235872 bytes");
  EXPECT_FALSE(r.complete);
  EXPECT_EQ(0, std::memcmp(tables.data(), whole.data(), cut));
  EXPECT_EQ(0xABu, reinterpret_cast<const uint8_t*>(tables.data())[cut]) << "the rest untouched";
  EXPECT_EQ(r.trailer.checkSum, 0u) << "a trailer never read is zero";

  postblend::MemoryStream full(whole.data(), whole.size());
  const auto ok = postblend::readCacheTables(full, 2, tables.data());
  EXPECT_TRUE(ok.diagnosis.ok() && ok.complete);
  EXPECT_EQ(ok.trailer.paramVersion, 4u);
}

}  // namespace
