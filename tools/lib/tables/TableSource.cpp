#include "tools/lib/tables/TableSource.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "backend/LutTextFile.h"
#include "cache/CacheFileReader.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/TableIndex.h"

namespace pctool {

using postblend::lut3d_info;

namespace {

constexpr size_t kHeadBytes = 4096;

bool isCubeKeyword(const std::string& tok) {
  static const char* const kWords[] = {
      "TITLE",      "LUT_3D_SIZE",        "LUT_1D_SIZE",       "DOMAIN_MIN",
      "DOMAIN_MAX", "LUT_3D_INPUT_RANGE", "LUT_1D_INPUT_RANGE"};
  for (const char* w : kWords)
    if (tok == w) return true;
  return false;
}

}  // namespace

const char* kindName(FileKind kind) {
  switch (kind) {
    case FileKind::Odf:
      return "optical data (.odf)";
    case FileKind::Cache:
      return "table cache";
    case FileKind::LutText:
      return "LUT text file";
    case FileKind::Cube:
      return ".cube table";
    case FileKind::Target:
      return "mode target";
    case FileKind::Unknown:
      break;
  }
  return "unknown";
}

FileKind detectKind(const std::string& path, std::string& error) {
  std::ifstream in;
  uint64_t size = 0;
  if (!openInputFile(path, in, size, error)) return FileKind::Unknown;
  std::string head(static_cast<size_t>(size < kHeadBytes ? size : kHeadBytes), '\0');
  in.read(&head[0], static_cast<std::streamsize>(head.size()));
  const std::string ext = lowerExtension(path);
  if (size == 0) {
    error = "not a LUT: empty file";
    return FileKind::Unknown;
  }

  bool binary = false;
  for (unsigned char c : head)
    if (c == 0 || (c < 32 && !std::isspace(c))) binary = true;
  if (ext == ".odf" || (binary && size == kOdfBytes)) return FileKind::Odf;
  if (binary) {
    if (cacheTableCount(size) > 0 || ext == ".fw") return FileKind::Cache;
    error = "not a LUT: binary file of " + std::to_string(size) +
            " bytes (a table cache has 16 + N x 117928 bytes, an .odf 510)";
    return FileKind::Unknown;
  }
  if (ext == ".cube") return FileKind::Cube;

  // Text: look at the tokens of the head, skipping comment lines; the last token may be cut.
  bool numbers = true, firstWhole = false;
  size_t tokens = 0, whole = 0;
  size_t pos = 0;
  while (pos < head.size()) {
    size_t nl = head.find('\n', pos);
    std::string line = head.substr(pos, nl == std::string::npos ? std::string::npos : nl - pos);
    pos = nl == std::string::npos ? head.size() : nl + 1;
    size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos) continue;
    if (line[first] == '#') return FileKind::Cube;
    size_t i = first;
    while (i < line.size()) {
      size_t end = line.find_first_of(" \t\r", i);
      if (end == std::string::npos) end = line.size();
      std::string tok = line.substr(i, end - i);
      if (tokens == 0 && isCubeKeyword(tok)) return FileKind::Cube;
      ++tokens;
      bool digits = !tok.empty(), number = !tok.empty();
      for (char c : tok) {
        if (!std::isdigit(static_cast<unsigned char>(c))) digits = false;
        if (!std::isdigit(static_cast<unsigned char>(c)) && !std::strchr("+-.eE", c))
          number = false;
      }
      if (tokens == 1) firstWhole = digits;
      whole += digits ? 1 : 0;
      numbers = numbers && number;
      i = line.find_first_not_of(" \t\r", end);
      if (i == std::string::npos) break;
    }
  }
  // Mostly whole numbers is a LUT text file, damaged perhaps: its reader then names the line.
  if (tokens > 0 && firstWhole && whole * 10 >= tokens * 9) return FileKind::LutText;
  if (tokens > 0 && numbers && size <= kMaxTargetBytes) return FileKind::Target;
  error = "not a LUT: text that is neither a LUT text file (whole numbers) nor a .cube";
  return FileKind::Unknown;
}

bool readCacheFile(const std::string& path, CacheContents& out, std::string& error) {
  out = CacheContents{};
  std::ifstream in;
  uint64_t size = 0;
  if (!openInputFile(path, in, size, error)) return false;
  // Only a length some table count fits is read; anything else is refused unread.
  std::string bytes;
  if (cacheTableCount(size) > 0) {
    bytes.assign(static_cast<size_t>(size), '\0');
    in.read(&bytes[0], static_cast<std::streamsize>(size));
    bytes.resize(static_cast<size_t>(in.gcount()));
  }
  const uint8_t* data = reinterpret_cast<const uint8_t*>(bytes.data());
  const postblend::CacheRead read =
      bytes.empty() ? postblend::readCacheImage(nullptr, size, out.tables)
                    : postblend::readCacheImage(data, bytes.size(), out.tables);
  out.fileBytes = size;
  if (read.diagnosis.problem == postblend::CacheProblem::WrongLength ||
      read.diagnosis.problem == postblend::CacheProblem::Truncated) {
    error = read.diagnosis.message;
    out.tables.clear();
    return false;
  }
  out.count = read.count;
  out.source = read.trailer.source;
  out.panelId = read.trailer.panelId;
  out.paramVersion = read.trailer.paramVersion;
  out.storedCheckSum = read.trailer.checkSum;
  out.computedCheckSum = read.computedCheckSum;
  out.checkSumMessage = read.diagnosis.message;
  return true;
}

bool readLutText(const std::string& path, lut3d_info& lut, uint32_t lutId, LutTextCheck& check,
                 std::string& error) {
  using postblend::LutTextFile;
  check = LutTextCheck{};
  std::string text;
  if (!readInputFile(path, LutTextFile::kMaxBytes, text, error)) return false;
  const postblend::LutTextRead read = LutTextFile::parse(text.data(), text.size(), &lut);
  check.values = read.tokens;
  if (!read.diagnosis.ok()) {
    error = read.diagnosis.message;
    return false;
  }
  lut.flags = 0;
  lut.lut3d_id = lutId;
  lut.uniform = 1;
  lut.num_entries = kEntries;
  return true;
}

bool loadTables(const std::string& path, std::vector<LoadedTable>& out, std::string& error,
                Interp cubeInterp) {
  out.clear();
  const std::string name = fileName(path);
  FileKind kind = detectKind(path, error);
  switch (kind) {
    case FileKind::Cache: {
      CacheContents cache;
      if (!readCacheFile(path, cache, error)) return false;
      if (!cache.checkSumOk()) {
        error = cache.checkSumMessage;
        return false;
      }
      for (uint32_t k = 0; k < cache.count; ++k) {
        LoadedTable t;
        t.kind = kind;
        t.label = name + " table " + std::to_string(k) + " of " + std::to_string(cache.count) + " (" +
                  tableModeName(k) + ")";
        t.lut = std::make_shared<lut3d_info>(cache.tables[k]);
        out.push_back(std::move(t));
      }
      return true;
    }
    case FileKind::LutText: {
      LoadedTable t;
      t.kind = kind;
      t.label = name;
      t.lut = std::make_shared<lut3d_info>();
      LutTextCheck check;
      if (!readLutText(path, *t.lut, 0, check, error)) return false;
      if (check.values > static_cast<uint32_t>(postblend::LutTextFile::kValueCount))
        t.notes.push_back(std::to_string(check.values - 29478) +
                          " numbers after the 29478th are ignored");
      out.push_back(std::move(t));
      return true;
    }
    case FileKind::Cube: {
      LoadedTable t;
      t.kind = kind;
      t.label = name;
      t.lut = std::make_shared<lut3d_info>();
      CubeReadInfo info;
      if (!CubeFile::readFile(path, *t.lut, 0, info, error, cubeInterp)) return false;
      if (info.resampled) t.notes.push_back(info.note());
      if (info.clamped > 0)
        t.notes.push_back(std::to_string(info.clamped) + " values outside 0..1 were clamped");
      if (!info.title.empty()) t.label += " (\"" + info.title + "\")";
      out.push_back(std::move(t));
      return true;
    }
    case FileKind::Odf:
      error = "not a LUT: optical data (.odf)";
      return false;
    case FileKind::Target:
      error = "not a LUT: a mode target file";
      return false;
    case FileKind::Unknown:
      break;
  }
  return false;
}

std::string lutTextImage(const lut3d_info& lut) {
  char* buf = nullptr;
  size_t size = 0;
  FILE* mem = open_memstream(&buf, &size);
  if (mem == nullptr) return "";
  postblend::LutTextFile::write(mem, lut);
  fclose(mem);
  std::string out(buf, size);
  free(buf);
  return out;
}

bool loadTable(const std::string& path, int index, LoadedTable& out, std::string& error) {
  std::vector<LoadedTable> all;
  if (!loadTables(path, all, error)) return false;
  if (index < 0 || static_cast<size_t>(index) >= all.size()) {
    error = "no table " + std::to_string(index) + ": the file holds " + std::to_string(all.size());
    return false;
  }
  out = all[static_cast<size_t>(index)];
  return true;
}

}  // namespace pctool
