// "Any table" for the workbench: recognises the files an engineer meets around the plugin and
// loads a 17x17x17 table from a table cache (cofc.fw / cofc2.fw), a LUT text file or a .cube.
//
// Recognition looks at the content first and the extension second: a binary file whose length
// is 16 + N x 117928 (N = 1..8) is a table cache, 510 bytes (or ".odf") is optical data, text
// of whole numbers is a LUT text file, text with .cube keywords is a .cube, text of 9 or 20
// decimal numbers is a mode target.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cache/CacheFileReader.h"
#include "postblend/color_records.h"
#include "tools/lib/tables/CubeFile.h"

namespace pctool {

enum class FileKind { Unknown, Odf, Cache, LutText, Cube, Target };
const char* kindName(FileKind kind);

using postblend::cacheTableCount;  // the table count for a cache length, 0 when none fits

// Recognises `path`. Unknown comes with a reason in `error` ("not a LUT: ...", "cannot open").
FileKind detectKind(const std::string& path, std::string& error);

struct CacheContents {
  uint64_t fileBytes = 0;
  uint32_t count = 0;  // tables in the file
  uint32_t source = 0, panelId = 0, paramVersion = 0;
  uint32_t storedCheckSum = 0, computedCheckSum = 0;
  std::vector<postblend::lut3d_info> tables;
  std::string checkSumMessage;  // "checksum mismatch: stored 0x..., computed 0x..." when it is
  bool checkSumOk() const { return storedCheckSum == computedCheckSum; }
  // The FWVersion a device needs to accept this file: its length.
  uint64_t fwVersion() const { return fileBytes; }
};

// Reads a whole cache file with the plugin's reader. False on a wrong length or a short read; a
// checksum mismatch is not a failure here (see checkSumOk), so inspect can still show the
// contents.
bool readCacheFile(const std::string& path, CacheContents& out, std::string& error);

struct LutTextCheck {
  uint32_t values = 0;  // numbers in the file (only the first 29478 are used)
};

// Reads a LUT text file with the plugin's reader and refuses it on the first problem that reader
// finds: a token that is no code of 0..4095 ("line N malformed: ..."), fewer than 29478 numbers,
// or inputs that are not the device grid in entry order (red fastest), naming the first wrong
// entry, its line and the inputs expected there.
bool readLutText(const std::string& path, postblend::lut3d_info& lut, uint32_t lutId,
                 LutTextCheck& check, std::string& error);

struct LoadedTable {
  FileKind kind = FileKind::Unknown;
  std::string label;  // e.g. "cofc.fw table 3 of 8 (Nature)": a cache's table names its mode
  std::shared_ptr<postblend::lut3d_info> lut;
  std::vector<std::string> notes;  // warnings that do not stop the load
};

// Loads every table in `path` (a cache gives all of its tables, other kinds one). A cache with
// a wrong checksum fails with "checksum mismatch: stored 0x..., computed 0x...". A .cube of
// another size than 17 is resampled with `cubeInterp` and says so in the notes.
bool loadTables(const std::string& path, std::vector<LoadedTable>& out, std::string& error,
                Interp cubeInterp = Interp::Tetrahedral);

// The LUT text image of a table, exactly as the plugin's LutTextFile writes it.
std::string lutTextImage(const postblend::lut3d_info& lut);

// Loads table `index` of a cache (any index > 0 of a single-table file is an error).
bool loadTable(const std::string& path, int index, LoadedTable& out, std::string& error);

}  // namespace pctool
