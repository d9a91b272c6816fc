#include "tools/lib/colour/Ciede2000.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

// The published pairs travel with the project (source named in the file's header).
std::string sharmaPath() { return std::string(PC_SOURCE_DIR) + "/tests/data/tools/ciede2000-sharma2005.tsv"; }

TEST(Ciede2000, ReproducesTheSharmaWuDalalPairs) {
  std::ifstream in(sharmaPath());
  ASSERT_TRUE(in) << "reference pairs not found at " << sharmaPath();
  std::string line;
  int pairs = 0;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#' || line[0] == 'L') continue;
    std::istringstream ss(line);
    pctool::Lab p, q;
    double expected = 0;
    ASSERT_TRUE(ss >> p.L >> p.a >> p.b >> q.L >> q.a >> q.b >> expected) << line;
    ++pairs;
    EXPECT_NEAR(pctool::ciede2000(p, q), expected, 0.5e-4) << "pair " << pairs << ": " << line;
    EXPECT_NEAR(pctool::ciede2000(q, p), expected, 0.5e-4) << "pair " << pairs << " reversed";
  }
  EXPECT_EQ(pairs, 34);
}

TEST(Ciede2000, LabOfWhiteBlackAndGrey) {
  pctool::Lab white = pctool::xyzToLab(pctool::kD65, pctool::kD65);
  EXPECT_NEAR(white.L, 100.0, 1e-9);
  EXPECT_NEAR(white.a, 0.0, 1e-9);
  EXPECT_NEAR(white.b, 0.0, 1e-9);
  EXPECT_NEAR(pctool::xyzToLab(pctool::Xyz{}, pctool::kD65).L, 0.0, 1e-9);
  // 18 % grey sits near L* 49.5; sRGB white through the matrix is the D65 white.
  pctool::Xyz grey{0.18 * pctool::kD65.X, 0.18, 0.18 * pctool::kD65.Z};
  EXPECT_NEAR(pctool::xyzToLab(grey, pctool::kD65).L, 49.496, 1e-3);
  pctool::Xyz w = pctool::linearSrgbToXyz(1, 1, 1);
  EXPECT_NEAR(w.X, pctool::kD65.X, 1e-6);
  EXPECT_NEAR(w.Z, pctool::kD65.Z, 1e-6);
}

}  // namespace
