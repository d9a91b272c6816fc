// A synthetic production lot: N one-display device trees DIR/panel-0001 ... (mkdevice's trees:
// one panel type, so the same golden data and targets throughout, and each unit measured with
// its own seed), a few of them faulty the way panels from a line are, and
// DIR/lot.csv naming every panel's seed and fault so a test knows what to expect of each.
//
// Faults, about 2 % of the lot and at least one of each kind from 10 panels on:
//   bad-crc           one local .odf with a flipped byte: the plugin falls back to golden data
//   mismatched-stamp  panel_id does not match the serial number: golden data
//   missing-local     one local .odf missing: golden data although the identity matched
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace pctool {

enum class LotFault { None, BadCrc, MismatchedStamp, MissingLocal };
const char* lotFaultName(LotFault fault);  // "none", "bad-crc", ...

struct LotPanel {
  std::string name;  // "panel-0001"
  unsigned seed = 0;      // the unit: its own measurements and serial number
  unsigned typeSeed = 0;  // the panel type (golden data, targets), shared by the lot
  LotFault fault = LotFault::None;
  std::string detail;  // the file the fault is in, relative to the panel's tree
};

constexpr unsigned kMaxLotPanels = 100000;

// The panels of a lot of `count` from `seed`; the same arguments always give the same lot.
std::vector<LotPanel> planLot(unsigned count, unsigned seed);

// Writes every panel's tree under `dir` (`threads` at a time) and lot.csv. `done` is called
// after each panel, from any of the threads. False with "path: reason" on the first failure.
bool writeLot(const std::string& dir, const std::vector<LotPanel>& lot, unsigned threads, std::string& error,
              const std::function<void()>& done = {});

// lot.csv: header "panel,seed,fault,detail", then one row per panel.
std::string lotCsv(const std::vector<LotPanel>& lot);

}  // namespace pctool
