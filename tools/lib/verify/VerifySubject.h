// What a verification is of, in words a page and a report can carry: the mode by name, the
// table and where it came from, the target file, and the optical data with its measurement set.
// Sets "_1_" and "_2_" are two measurements of the panel: "_2_" feeds Vivid and LsRGB, "_1_"
// Nature and Cinema; "max" the full-brightness tables, "100nit" the 100-nit ones.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/tables/TableSource.h"

namespace pctool {

struct VerifySubject {
  std::string mode;   // "Vivid, full brightness"; "" when nothing tells
  std::string table;  // "cofc.fw table 1 of 8 (table cache)"
  std::string target, odf, odfSet;
  std::vector<std::string> notes;  // the optical data is not the set the table is made from, ...
  // "mode: ...", "table: ...", "target: ...", "optical data: ..."
  std::vector<std::string> lines() const;
};

// `cacheIndex` is the table's index in a cache (-1 for another file); `mode`, when given, names
// the mode, else the cache index or the target file's name (PANEL_Vivid_100nits.txt) does.
VerifySubject describeSubject(const LoadedTable& table, int cacheIndex, const std::string& targetPath,
                              const std::string& odfPath, const std::string& mode);

}  // namespace pctool
