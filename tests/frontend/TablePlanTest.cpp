#include <gtest/gtest.h>

#include <string>

#include "frontend/TablePlan.h"

namespace {

namespace fe = postblend::fe;

// The rows the workbench and the report rely on: measurement set and target file per table.
TEST(TablePlan, EachTableTakesItsRow) {
  const struct {
    const char* odf;
    const char* target;
    const char* target100;
  } rows[fe::kMaxTables] = {
      {"_2_100nit.odf", "_Vivid.txt", "_Vivid_100nits.txt"},
      {"_2_max.odf", "_Vivid.txt", "_Vivid.txt"},
      {"_1_100nit.odf", "_Nature.txt", "_Nature_100nits.txt"},
      {"_1_max.odf", "_Nature.txt", "_Nature.txt"},
      {"_1_100nit.odf", "_Cinema.txt", "_Cinema_100nits.txt"},
      {"_1_max.odf", "_Cinema.txt", "_Cinema.txt"},
      {"_2_100nit.odf", "_LsRGB.txt", "_LsRGB_100nits.txt"},
      {"_2_max.odf", "_LsRGB.txt", "_LsRGB.txt"},
  };
  for (int i = 0; i < fe::kMaxTables; ++i) {
    for (bool use100 : {false, true}) {
      const fe::TableInputs in = fe::tableInputs(i, use100);
      EXPECT_EQ(std::string(fe::kGoldenOdfSuffix[in.odf]), rows[i].odf) << i;
      EXPECT_EQ(std::string(fe::kTargetSuffix[in.target]),
                use100 ? rows[i].target100 : rows[i].target)
          << i << " " << use100;
      // The local file of the same set for both panels.
      const std::string set =
          std::string(rows[i].odf).substr(0, std::string(rows[i].odf).size() - 4);
      EXPECT_NE(std::string(fe::kLocalOdf[0][in.odf]).find(set + ".odf"), std::string::npos) << i;
      EXPECT_NE(std::string(fe::kLocalOdf[1][in.odf]).find(set + "_d1.odf"), std::string::npos)
          << i;
    }
  }
}

}  // namespace
