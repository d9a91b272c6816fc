#include "tools/lib/colour/Ciede2000.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "tests/tools/WorkbenchFixtures.h"

namespace {

// The published pairs travel with the project (source named in the file's header).
TEST(Ciede2000, ReproducesTheSharmaWuDalalPairs) {
  std::ifstream in(pctest::dataPath("ciede2000-sharma2005.tsv"));
  ASSERT_TRUE(in) << "reference pairs not found";
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

TEST(Ciede2000, LabOfKnownColours) {
  const pctool::Xyz grey{0.18 * pctool::kD65.X, 0.18, 0.18 * pctool::kD65.Z};
  const uint32_t red[3] = {4095, 0, 0}, white[3] = {4095, 4095, 4095};
  const struct {
    const char* what;
    pctool::Lab lab, expected;
  } rows[] = {
      {"white", pctool::xyzToLab(pctool::kD65, pctool::kD65), {100, 0, 0}},
      {"18 % grey", pctool::xyzToLab(grey, pctool::kD65), {49.496, 0, 0}},
      {"12-bit white as sRGB", pctool::srgbCodeLab(white), {100, 0, 0}},
      {"12-bit red as sRGB", pctool::srgbCodeLab(red), {53.24, 80.09, 67.20}},
  };
  for (const auto& r : rows) {
    EXPECT_NEAR(r.lab.L, r.expected.L, 1e-2) << r.what;
    EXPECT_NEAR(r.lab.a, r.expected.a, 1e-2) << r.what;
    EXPECT_NEAR(r.lab.b, r.expected.b, 1e-2) << r.what;
  }
}

}  // namespace
