#include <gtest/gtest.h>

#include <sstream>

#include "frontend/OdfReader.h"
#include "frontend/PanelCorvaneFE.h"
#include "tests/support/TestSupport.h"
#include "tools/lib/calibration/OdfWriter.h"

namespace {

using pctool::OdfValues;

const char kGood[] =
    "# measured at the line\n"
    "red 40.1 20.5 1.0\ngreen 30 70 10\nblue 18 8 95\nwhite 88.1 98.5 106\n"
    "grey 3584 73.1\ngrey 3072 52.2\ngrey 2560 35.0\ngrey 2048 21.4\n"
    "grey 1536 11.3\ngrey 1024 4.8\ngrey 512 1.1\nvalue 0 7.5\n";

TEST(OdfWriter, TextBecomesAnImageThePluginAccepts) {
  std::istringstream in(kGood);
  OdfValues v;
  std::string error;
  ASSERT_TRUE(pctool::parseOdfText(in, "m.txt", &v, &error)) << error;
  EXPECT_EQ(v.v[106], 40.1f);
  EXPECT_EQ(v.v[5], 98.5f);
  EXPECT_EQ(v.v[47], 1.1f);
  EXPECT_EQ(v.v[0], 7.5f);

  pctest::resetSharedState();
  pctest::TempRoot root;
  const pctool::OdfImage img = pctool::encodeOdf(v);
  root.writeBytes("/odm/etc/a.odf", img.data(), img.size());
  postblend::PanelCorvaneFE fe(nullptr, 0);
  postblend::PanelCorvaneBase::OpticalDataFile odf{};
  EXPECT_EQ(fe.readODF(odf, "/odm/etc/a.odf"), 0);
  EXPECT_EQ(odf.values[84], 10.0f);

  postblend::PanelCorvaneBase::OpticalDataFile back{};
  const postblend::OdfRead read = postblend::readOdf(img.data(), img.size(), back);
  ASSERT_TRUE(read.diagnosis.ok());
  EXPECT_TRUE(read.crcOk());
  EXPECT_EQ(back.values[118], 18.0f);
  postblend::PanelCorvaneBase::OpticalDataFile shortOne{};
  EXPECT_FALSE(postblend::readOdf(img.data(), 509, shortOne).diagnosis.ok());
  error = postblend::readOdf(img.data(), 509, shortOne).diagnosis.message;
  EXPECT_EQ(error, "509 bytes, an optical data file holds 510");
}

TEST(OdfWriter, MalformedTextNamesFileAndLine) {
  const std::string fine = "red 1 2 3\ngreen 1 2 3\nblue 1 2 3\nwhite 1 2 3\n";
  const struct {
    std::string text, message;
  } cases[] = {
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
  for (const auto& c : cases) {
    std::istringstream in(c.text);
    OdfValues v;
    std::string error;
    EXPECT_FALSE(pctool::parseOdfText(in, "m.txt", &v, &error));
    EXPECT_EQ(error, c.message);
  }
}

}  // namespace
