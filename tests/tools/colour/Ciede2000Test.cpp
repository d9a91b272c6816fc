#include "tools/lib/colour/Ciede2000.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/colour/Cct.h"
#ifdef PC_HAVE_LCMS
#include <lcms2.h>
#endif

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

// Temperatures as Little CMS's own (Robertson's) method has them; Duv of the published whites.
TEST(Cct, WhitesOfKnownTemperatureAndTint) {
  const struct {
    const char* what;
    double x, y, kelvin, duv;
  } rows[] = {
      {"D65", 0.3127, 0.3290, 6504, 0.0032},
      {"D50", 0.3457, 0.3585, 5003, 0.0033},
      {"illuminant A", 0.44757, 0.40745, 2856, 0.0000},
  };
  for (const auto& r : rows) {
    const pctool::Cct c = pctool::cctOf(r.x, r.y);
    EXPECT_NEAR(c.kelvin, r.kelvin, 0.002 * r.kelvin) << r.what;
    EXPECT_NEAR(c.duv, r.duv, 3e-4) << r.what;
#ifdef PC_HAVE_LCMS
    double lcms = 0;
    const cmsCIExyY xyY{r.x, r.y, 1};
    ASSERT_TRUE(cmsTempFromWhitePoint(&lcms, &xyY)) << r.what;
    EXPECT_NEAR(c.kelvin, lcms, 0.002 * r.kelvin) << r.what;
#endif
  }
  EXPECT_TRUE(std::isnan(pctool::cctOf(0.17, 0.005).kelvin)) << "a violet far off the locus";
}

}  // namespace
