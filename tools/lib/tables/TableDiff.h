// Node-by-node comparison of two tables (a reviewed change, or a table against what a grading
// tool made of it): code differences per channel and the CIEDE2000 between the two outputs,
// both read as sRGB signals (code / 4095, D65), the way `verify` reads a table.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "postblend/color_records.h"

namespace pctool {

struct ChannelDiff {
  uint32_t maxAbs = 0;
  double meanAbs = 0;      // over all 4913 nodes
  uint32_t differing = 0;  // nodes whose code in this channel differs
};

struct NodeDiff {
  uint32_t index;
  uint32_t in[3];
  uint32_t a[3], b[3];  // the two outputs
  double de;
};

struct TableDiff {
  std::string labelA, labelB;
  ChannelDiff channel[3];
  uint32_t differingNodes = 0;   // nodes where any channel differs
  uint32_t inputMismatches = 0;  // nodes whose inputs differ: the tables are not on one grid
  double deMean = 0, deP95 = 0, deMax = 0;
  std::vector<NodeDiff> worst;  // at most ten differing nodes, largest dE00 first
  uint32_t maxAbs() const;
};

TableDiff diffTables(const postblend::lut3d_info& a, const postblend::lut3d_info& b);

struct DiffReport {
  std::string pathA, pathB;
  size_t countA = 0, countB = 0;  // tables in each file
  uint32_t tolerance = 0;
  std::vector<TableDiff> tables;  // the pairs compared, in order
  bool countMismatch = false;     // whole files compared and their table counts differ
  std::vector<std::string> notes;
  uint32_t maxAbs() const;
  bool withinTolerance() const { return !countMismatch && maxAbs() <= tolerance; }
  // One line for stderr when the files differ beyond the tolerance, else "".
  std::string verdict() const;
};

// Loads both files (anything loadTables reads) and compares table i with table i. With
// `index` >= 0 only table `index` of each side is compared (a file of one table gives its one).
// Without it, different table counts are a difference; the common first tables are compared.
// False with "FILE: reason" when a file cannot be read or has no table `index`.
bool diffFiles(const std::string& pathA, const std::string& pathB, int index, uint32_t tolerance,
               DiffReport& out, std::string& error);

std::string diffText(const DiffReport& r);
std::string diffJson(const DiffReport& r);

}  // namespace pctool
