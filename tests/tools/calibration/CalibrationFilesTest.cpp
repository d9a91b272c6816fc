// Optical data written from measurements; data no panel or target can be, refused by field.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "frontend/OdfReader.h"
#include "tests/tools/WorkbenchFixtures.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/calibration/Plausibility.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace {

TEST(OdfWriter, TextBecomesAnImageThePluginReadsBack) {
  std::ifstream in(pctest::dataPath("inputs/m.txt"));
  pctool::OdfValues v;
  std::string error;
  ASSERT_TRUE(pctool::parseOdfText(in, "m.txt", &v, &error)) << error;
  const pctool::OdfImage img = pctool::encodeOdf(v);
  postblend::PanelCorvaneBase::OpticalDataFile back{};
  ASSERT_TRUE(postblend::readOdf(img.data(), img.size(), back).crcOk());
  // Each item at the place the plugin reads it from.
  const std::pair<int, float> places[] = {{106, 40.1f}, {84, 10.0f}, {118, 18.0f}, {5, 98.5f}, {47, 1.1f}, {0, 7.5f}};
  for (const auto& [at, value] : places) EXPECT_EQ(back.values[at], value) << at;
}

TEST(OdfWriter, MalformedTextNamesFileAndLine) {
  const std::string fine = "red 1 2 3\ngreen 1 2 3\nblue 1 2 3\nwhite 1 2 3\n";
  const std::pair<std::string, std::string> cases[] = {
      {"purple 1 2 3\n", "m.txt:1: unknown item 'purple'"},
      {"red 1 2\n", "m.txt:1: 'red' needs X Y Z"},
      {"red 1 2 3\nred 1 2 3\n", "m.txt:2: 'red' given twice"},
      {"\nred 1 nan 3\n", "m.txt:2: 'nan' is not a finite number"},
      {"grey 100 3\n", "m.txt:1: grey level must be one of 3584 3072 2560 2048 1536 1024 512"},
      {"value 127 1\n", "m.txt:1: 'value' needs INDEX (0..126) NUMBER"},
      {std::string(2000, ' ') + "\n", "m.txt:1: line longer than 1024 characters"},
      {"red 1 2 3\n", "m.txt: missing 'green'"},
      {fine, "m.txt: missing grey level 3584"},
  };
  for (const auto& [text, message] : cases) {
    std::istringstream in(text);
    pctool::OdfValues v;
    std::string error;
    EXPECT_FALSE(pctool::parseOdfText(in, "m.txt", &v, &error));
    EXPECT_EQ(error, message);
  }
}

pctool::OdfValues sampleOdf(unsigned seed = 1, bool low = false) {
  pctool::OdfValues v;
  pctool::placeMeasurements(pctool::syntheticMeasurements(seed, 0, 1, low, false), &v);
  return v;
}

pctool::TargetParm sampleTarget(int mode) {
  pctool::TargetParm t{};
  int count = 0;
  std::string err;
  EXPECT_TRUE(pctool::parseTarget(pctool::syntheticTargetText(1, mode, false), t, count, err)) << err;
  return t;
}

// No false alarm on plausible panels and targets.
TEST(Plausibility, SyntheticPanelsAndTargetsRaiseNothing) {
  for (unsigned seed = 1; seed <= 6; ++seed)
    for (bool low : {false, true}) EXPECT_TRUE(pctool::checkOpticalData(sampleOdf(seed, low).v).empty()) << seed;
  for (int mode = 0; mode < 4; ++mode) EXPECT_TRUE(pctool::checkTarget(sampleTarget(mode), 20).empty()) << mode;
}

TEST(Plausibility, ImpossibleOpticalDataIsRefusedByField) {
  using pctool::kOdfGreenAt;
  const struct {
    const char* what;
    std::function<void(float*)> spoil;
    std::string line;  // start of the first refusal
  } cases[] = {
      {"zero white", [](float* v) { v[pctool::kOdfWhiteAt + 1] = 0; }, "impossible: white Y: luminance 0"},
      {"nan red", [](float* v) { v[pctool::kOdfRedAt] = NAN; }, "impossible: red XYZ: not a finite number"},
      {"negative blue", [](float* v) { v[pctool::kOdfBlueAt + 2] = -1; }, "impossible: blue XYZ: negative"},
      {"green outside the locus", [](float* v) { v[kOdfGreenAt] = 0, v[kOdfGreenAt + 1] = 300, v[kOdfGreenAt + 2] = 0; },
       "impossible: green x y: x 0.0000 y 1.0000 lies outside the spectral locus"},
      {"green on red", [](float* v) { std::copy(v + pctool::kOdfRedAt, v + pctool::kOdfRedAt + 3, v + kOdfGreenAt); },
       "impossible: red and green: coincide"},
      {"grey ramp falls", [](float* v) { v[pctool::odfGreyYAt(3)] = v[pctool::odfGreyYAt(4)] / 2; },
       "impossible: grey 2048 Y: "},
      {"grey above white", [](float* v) { v[pctool::odfGreyYAt(0)] = 1e4f; }, "impossible: grey 3584 Y: "},
  };
  for (const auto& c : cases) {
    pctool::OdfValues v = sampleOdf();
    c.spoil(v.v);
    const auto findings = pctool::checkOpticalData(v.v);
    EXPECT_TRUE(pctool::anyRefused(findings)) << c.what;
    EXPECT_EQ(pctool::firstRefusal(findings).substr(0, c.line.size()), c.line) << c.what;
  }
}

TEST(Plausibility, TargetsThatCannotBeAreRefusedAndOddOnesWarned) {
  const struct {
    const char* what;
    int at;  // 0: red moved onto green
    float value;
    bool refused;
    std::string line;
  } cases[] = {
      {"red on green", 0, 0.0f, true, "impossible: red and green: coincide"},
      {"exponent 45.2", 8, 45.2f, true, "impossible: exponent parameter (value 9): 45.2 decodes with power 0.02212"},
      {"gamma written directly", 8, 2.2f, true, "impossible: exponent parameter (value 9): 2.2 decodes with power 0.4545"},
      {"final exponent", 15, 0.1f, true, "impossible: final exponent parameter (value 16)"},
      {"white outside", 6, 0.05f, true, "impossible: white x y"},
      {"flat gamma", 8, 0.8f, false, "warning: exponent parameter (value 9): 0.8 is gamma 1.250"},
      {"big offset", 9, 0.9f, false, "warning: gamma-correction offset (value 10): 0.9"},
  };
  for (const auto& c : cases) {
    pctool::TargetParm t = sampleTarget(0);
    if (c.at == 0) t.values[0] = t.values[2], t.values[1] = t.values[3];
    else t.values[c.at] = c.value;
    const auto findings = pctool::checkTarget(t, 20);
    ASSERT_FALSE(findings.empty()) << c.what;
    EXPECT_EQ(pctool::anyRefused(findings), c.refused) << c.what;
    EXPECT_EQ(findings[0].line().substr(0, c.line.size()), c.line) << c.what;
  }
  // Gamma-correction values are not judged in a 9-number target.
  pctool::TargetParm t = sampleTarget(1);
  t.values[15] = 0;
  EXPECT_TRUE(pctool::checkTarget(t, 9).empty());
}

TEST(Plausibility, SpectralLocusBoundsTheChromaticities) {
  EXPECT_TRUE(pctool::insideSpectralLocus(0.3127, 0.3290));
  EXPECT_TRUE(pctool::insideSpectralLocus(0.708, 0.292));  // BT.2020 red, on the locus
  EXPECT_FALSE(pctool::insideSpectralLocus(0.1, 0.9));
  EXPECT_FALSE(pctool::insideSpectralLocus(0.5, 0.1));  // below the line of purples
}

}  // namespace
