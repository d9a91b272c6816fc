#include "tools/lib/TableSource.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "backend/LutTextFile.h"
#include "cache/Lut3DCacheManager.h"
#include "tools/lib/CalibrationFiles.h"
#include "tools/lib/DeviceGrid.h"
#include "tools/lib/FileAccess.h"

namespace pctool {

using snapdragoncolor::lut3d_info;
using snapdragoncolor::Lut3DCacheManager;

namespace {

constexpr size_t kHeadBytes = 4096;

std::string baseName(const std::string& path) {
  size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string extension(const std::string& path) {
  std::string name = baseName(path);
  size_t dot = name.find_last_of('.');
  std::string ext = dot == std::string::npos ? "" : name.substr(dot);
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext;
}

std::string hex32(uint32_t v) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08x", v);
  return buf;
}

bool isCubeKeyword(const std::string& tok) {
  static const char* const kWords[] = {"TITLE", "LUT_3D_SIZE", "LUT_1D_SIZE", "DOMAIN_MIN", "DOMAIN_MAX",
                                       "LUT_3D_INPUT_RANGE", "LUT_1D_INPUT_RANGE"};
  for (const char* w : kWords)
    if (tok == w) return true;
  return false;
}

// Reads at most `limit` + 1 bytes so callers can tell an oversized file.
bool slurp(const std::string& path, size_t limit, std::string& out, std::string& error) {
  if (!checkInputFile(path, error)) return false;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot open: " + std::string(std::strerror(errno));
    return false;
  }
  out.assign(limit + 1, '\0');
  in.read(&out[0], static_cast<std::streamsize>(out.size()));
  out.resize(static_cast<size_t>(in.gcount()));
  return true;
}

}  // namespace

const char* kindName(FileKind kind) {
  switch (kind) {
    case FileKind::Odf: return "optical data (.odf)";
    case FileKind::Cache: return "table cache";
    case FileKind::LutText: return "LUT text file";
    case FileKind::Cube: return ".cube table";
    case FileKind::Target: return "mode target";
    case FileKind::Unknown: break;
  }
  return "unknown";
}

uint32_t cacheTableCount(uint64_t fileBytes) {
  for (uint32_t n = 1; n <= kMaxCacheTables; ++n)
    if (Lut3DCacheManager::fileSizeFor(n) == fileBytes) return n;
  return 0;
}

FileKind detectKind(const std::string& path, std::string& error) {
  if (!checkInputFile(path, error)) return FileKind::Unknown;
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) {
    error = "cannot open: " + std::string(std::strerror(errno));
    return FileKind::Unknown;
  }
  const uint64_t size = static_cast<uint64_t>(in.tellg());
  in.seekg(0);
  std::string head(static_cast<size_t>(size < kHeadBytes ? size : kHeadBytes), '\0');
  in.read(&head[0], static_cast<std::streamsize>(head.size()));
  const std::string ext = extension(path);
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
        if (!std::isdigit(static_cast<unsigned char>(c)) && !std::strchr("+-.eE", c)) number = false;
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
  if (!checkInputFile(path, error)) return false;
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) {
    error = "cannot open: " + std::string(std::strerror(errno));
    return false;
  }
  out = CacheContents{};
  out.fileBytes = static_cast<uint64_t>(in.tellg());
  out.count = cacheTableCount(out.fileBytes);
  if (out.count == 0) {
    error = "wrong size: " + std::to_string(out.fileBytes) +
            " bytes; a table cache has 16 + N x 117928 bytes (707584 for 6 tables, 943440 for 8)";
    return false;
  }
  in.seekg(0);
  out.tables.resize(out.count);
  uint32_t trailer[4];
  in.read(reinterpret_cast<char*>(out.tables.data()), static_cast<std::streamsize>(out.count * sizeof(lut3d_info)));
  in.read(reinterpret_cast<char*>(trailer), sizeof trailer);
  if (!in) {
    error = "read failed";
    return false;
  }
  out.source = trailer[0];
  out.panelId = trailer[1];
  out.paramVersion = trailer[2];
  out.storedCheckSum = trailer[3];
  out.computedCheckSum =
      Lut3DCacheManager::checkSum(out.tables.data(), out.count, out.source, out.panelId, out.paramVersion);
  return true;
}

bool readLutText(const std::string& path, lut3d_info& lut, uint32_t lutId, LutTextCheck& check,
                 std::string& error) {
  using snapdragoncolor::LutTextFile;
  check = LutTextCheck{};
  std::string text;
  if (!slurp(path, kMaxLutTextBytes, text, error)) return false;
  if (text.size() > kMaxLutTextBytes) {
    error = "too large for a LUT text file (over " + std::to_string(kMaxLutTextBytes >> 20) + " MiB)";
    return false;
  }
  size_t line = 1, i = 0;
  std::vector<uint32_t> entryLine(kEntries, 0);  // where each entry starts, for the order check
  while (i < text.size()) {
    char c = text[i];
    if (std::isspace(static_cast<unsigned char>(c))) {
      if (c == '\n') ++line;
      ++i;
      continue;
    }
    size_t end = i;
    while (end < text.size() && !std::isspace(static_cast<unsigned char>(text[end]))) ++end;
    // Only the numbers the plugin reads must be codes; anything after them is ignored, as there.
    if (check.values < static_cast<uint32_t>(LutTextFile::kValueCount)) {
      if (check.values % LutTextFile::kValuesPerEntry == 0)
        entryLine[check.values / LutTextFile::kValuesPerEntry] = static_cast<uint32_t>(line);
      std::string tok = text.substr(i, end - i);
      bool digits = true;
      for (char d : tok) digits = digits && std::isdigit(static_cast<unsigned char>(d));
      if (!digits) {
        error = "line " + std::to_string(line) + " malformed: '" + tok.substr(0, 20) + "' is not a 12-bit code";
        return false;
      }
      if (tok.size() > 4 || std::stoul(tok) > 4095) {
        error = "line " + std::to_string(line) + " malformed: " + tok.substr(0, 20) + " is above 4095";
        return false;
      }
    }
    ++check.values;
    i = end;
  }
  if (check.values < static_cast<uint32_t>(LutTextFile::kValueCount)) {
    error = "not a LUT: " + std::to_string(check.values) + " of 29478 numbers";
    return false;
  }
  std::memset(&lut, 0, sizeof lut);
  int got = LutTextFile::readFile(path.c_str(), &lut);
  if (got < LutTextFile::kValueCount) {
    error = "read failed after " + std::to_string(got < 0 ? 0 : got) + " numbers";
    return false;
  }
  lut.flags = 0;
  lut.lut3d_id = lutId;
  lut.uniform = 1;
  lut.num_entries = kEntries;
  // The plugin takes entries as they come; a file in another order would put every output on
  // the wrong node without a word, so the inputs must be the device grid in entry order.
  for (uint32_t n = 0; n < kEntries; ++n) {
    const auto& e = lut.entries[n];
    const uint32_t want[3] = {gridCode(n % kGrid), gridCode(n / kGrid % kGrid), gridCode(n / (kGrid * kGrid))};
    if (e.in[0] == want[0] && e.in[1] == want[1] && e.in[2] == want[2]) continue;
    char buf[240];
    std::snprintf(buf, sizeof buf,
                  "entries out of order: entry %u (line %u) has inputs %u %u %u, expected %u %u %u "
                  "(red fastest: entry n = 289 b + 17 g + r)",
                  n, entryLine[n], e.in[0], e.in[1], e.in[2], want[0], want[1], want[2]);
    error = buf;
    const auto& second = lut.entries[1];
    if (second.in[0] == 0 && second.in[1] == 0 && second.in[2] == gridCode(1))
      error += "; the file lists blue fastest";
    return false;
  }
  return true;
}

bool loadTables(const std::string& path, std::vector<LoadedTable>& out, std::string& error) {
  out.clear();
  const std::string name = baseName(path);
  FileKind kind = detectKind(path, error);
  switch (kind) {
    case FileKind::Cache: {
      CacheContents cache;
      if (!readCacheFile(path, cache, error)) return false;
      if (!cache.checkSumOk()) {
        error = "checksum mismatch: stored " + hex32(cache.storedCheckSum) + ", computed " +
                hex32(cache.computedCheckSum);
        return false;
      }
      for (uint32_t k = 0; k < cache.count; ++k) {
        LoadedTable t;
        t.kind = kind;
        t.label = name + " table " + std::to_string(k) + " of " + std::to_string(cache.count);
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
      if (check.values > static_cast<uint32_t>(snapdragoncolor::LutTextFile::kValueCount))
        t.notes.push_back(std::to_string(check.values - 29478) + " numbers after the 29478th are ignored");
      out.push_back(std::move(t));
      return true;
    }
    case FileKind::Cube: {
      LoadedTable t;
      t.kind = kind;
      t.label = name;
      t.lut = std::make_shared<lut3d_info>();
      CubeReadInfo info;
      if (!CubeFile::readFile(path, *t.lut, 0, info, error)) return false;
      if (info.clamped > 0) t.notes.push_back(std::to_string(info.clamped) + " values outside 0..1 were clamped");
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
  snapdragoncolor::LutTextFile::write(mem, lut);
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
