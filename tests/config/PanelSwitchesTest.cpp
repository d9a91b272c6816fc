// Each property key lands in its own switch with its own default, and nothing else moves.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "config/PanelSwitches.h"
#include "config/PropertyReader.h"

namespace {

using postblend::PanelSwitches;

std::string text(const PanelSwitches& s) {
  return std::to_string(s.logLevel) + " " + std::to_string(s.paramVersion) + " " +
         std::to_string(s.fwVersion) + " " + std::to_string(s.calibration) +
         std::to_string(s.nitsCalibration) + std::to_string(s.gammaCorrection) +
         std::to_string(s.cmDebug) + std::to_string(s.use100nits) +
         std::to_string(s.hardenedTables) + " v" +
         std::to_string(s.verbose());
}

TEST(PanelSwitches, EachKeySetsItsOwnSwitch) {
  const struct {
    const char* lines;
    std::function<void(PanelSwitches&)> expect;
  } rows[] = {
      {"", [](PanelSwitches&) {}},
      {"LogLevel=2\n", [](PanelSwitches& s) { s.logLevel = 2; }},
      {"LogLevel=5\n", [](PanelSwitches& s) { s.logLevel = 5; }},
      {"ParamVersion=7\n", [](PanelSwitches& s) { s.paramVersion = 7; }},
      {"FWVersion=943440\n", [](PanelSwitches& s) { s.fwVersion = 943440; }},
      {"PanelCalibration=1\n", [](PanelSwitches& s) { s.calibration = true; }},
      {"PanelNitsCalibration=1\n", [](PanelSwitches& s) { s.nitsCalibration = true; }},
      {"GammaCorrection=1\n", [](PanelSwitches& s) { s.gammaCorrection = true; }},
      {"CMDebug=1\nCMDebug=0\n", [](PanelSwitches& s) { s.cmDebug = true; }},
      {"inParam100nits=1\n", [](PanelSwitches& s) { s.use100nits = true; }},
      {"inParam100nits=2\n", [](PanelSwitches&) {}},
      {"HardenedTables=1\n", [](PanelSwitches& s) { s.hardenedTables = true; }},
  };
  for (const auto& row : rows) {
    postblend::PropertyEntries entries;
    for (auto& line : postblend::readProperties(row.lines).accepted)
      entries.emplace(line.key, line.value);
    PanelSwitches want;
    row.expect(want);
    EXPECT_EQ(text(postblend::panelSwitches(entries)), text(want)) << row.lines;
  }
}

}  // namespace
