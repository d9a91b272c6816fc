#include "tools/lib/CubeFile.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "tools/lib/CubeResample.h"
#include "tools/lib/FileAccess.h"
#include "tools/lib/TextLines.h"

namespace pctool {

using snapdragoncolor::lut3d_info;

namespace {

std::string lineError(size_t line, const std::string& what) {
  return "line " + std::to_string(line) + " " + what;
}

// Reads exactly `count` finite numbers from `s` with nothing after them.
bool parseNumbers(const char* s, double* out, int count) {
  for (int i = 0; i < count; ++i) {
    char* end = nullptr;
    errno = 0;
    double v = std::strtod(s, &end);
    if (end == s || errno == ERANGE || !std::isfinite(v)) return false;
    // A number must be followed by a blank or the end of the line.
    if (*end != '\0' && *end != ' ' && *end != '\t') return false;
    out[i] = v;
    s = end;
  }
  while (*s == ' ' || *s == '\t') ++s;
  return *s == '\0';
}

std::string cleanTitle(const std::string& t) {
  std::string out;
  for (char c : t) out += (c == '"' || c == '\n' || c == '\r') ? '\'' : c;
  return out;
}

}  // namespace

void CubeFile::write(std::ostream& os, const lut3d_info& lut, const std::string& title) {
  os << "# PanelCorvane 3D table, 17 x 17 x 17; values are 12-bit output codes / 4095.\n"
        "# The device grid puts level i at code 256*i and level 16 at 4095: its last interval\n"
        "# is 255 codes rather than 256. Node values carry over exactly; positions between the\n"
        "# two top levels differ slightly from this file's uniform grid.\n";
  os << "TITLE \"" << cleanTitle(title) << "\"\n";
  os << "LUT_3D_SIZE 17\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n";
  char buf[96];
  for (const auto& e : lut.entries) {
    // Six decimals keep code / 4095 within 0.003 codes: reading back rounds to the same code.
    std::snprintf(buf, sizeof buf, "%.6f %.6f %.6f\n", e.out[0] / kFullScale, e.out[1] / kFullScale,
                  e.out[2] / kFullScale);
    os << buf;
  }
}

bool CubeFile::writeFile(const std::string& path, const lut3d_info& lut, const std::string& title,
                         std::string& error) {
  std::ostringstream os;
  write(os, lut, title);
  return writeWholeFile(path, os.str(), error);
}

std::string CubeReadInfo::note() const {
  return resampled ? resampleNote(dims, size, interp) : std::string();
}

bool CubeFile::parse(std::istream& is, lut3d_info& lut, uint32_t lutId, CubeReadInfo& info,
                     std::string& error, Interp interp) {
  std::string text;
  {
    std::vector<char> buf(64 * 1024);
    while (is && text.size() <= kMaxFileBytes) {
      is.read(buf.data(), static_cast<std::streamsize>(buf.size()));
      text.append(buf.data(), static_cast<size_t>(is.gcount()));
    }
  }
  if (text.size() > kMaxFileBytes) {
    error = "larger than " + std::to_string(kMaxFileBytes >> 20) + " MiB: not a .cube of at most " +
            std::to_string(kMax3dSize) + " nodes";
    return false;
  }
  if (text.find('\0') != std::string::npos) {
    error = "binary data: not a .cube text file";
    return false;
  }

  setDeviceGrid(lut, lutId);
  info = CubeReadInfo{};
  info.interp = interp;
  CubeTable cube;
  bool haveTitle = false, haveMin = false, haveMax = false;
  uint64_t expected = 0;  // rows the size line announced; 0 before it
  uint64_t rows = 0;
  TextLines lines(text, kMaxLineBytes);
  std::string line;
  error.clear();
  while (lines.next(line, error)) {
    const size_t lineNo = lines.lineNo();
    size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos || line[first] == '#') continue;
    const char* s = line.c_str() + first;

    if (std::isupper(static_cast<unsigned char>(*s))) {
      const char* kwEnd = s;
      while (*kwEnd && *kwEnd != ' ' && *kwEnd != '\t') ++kwEnd;
      std::string kw(s, kwEnd);
      if (rows > 0) {
        error = lineError(lineNo, "malformed: keyword " + kw + " after table data");
        return false;
      }
      const char* arg = kwEnd;
      while (*arg == ' ' || *arg == '\t') ++arg;
      if (kw == "TITLE") {
        if (haveTitle) return error = lineError(lineNo, "malformed: second TITLE"), false;
        haveTitle = true;
        std::string t(arg);
        if (t.size() >= 2 && t.front() == '"') {
          size_t q = t.find('"', 1);
          if (q == std::string::npos) return error = lineError(lineNo, "malformed: unterminated TITLE"), false;
          t = t.substr(1, q - 1);
        }
        info.title = t;
      } else if (kw == "LUT_3D_SIZE" || kw == "LUT_1D_SIZE") {
        const uint32_t dims = kw == "LUT_3D_SIZE" ? 3 : 1;
        if (expected > 0) {
          error = lineError(lineNo, dims == cube.dims ? "malformed: second " + kw
                                                      : "unsupported: both LUT_1D_SIZE and LUT_3D_SIZE");
          return false;
        }
        char* e = nullptr;
        errno = 0;
        long n = std::strtol(arg, &e, 10);
        while (e && (*e == ' ' || *e == '\t')) ++e;
        if (e == arg || *e != '\0' || errno == ERANGE) return error = lineError(lineNo, "malformed"), false;
        const long most = dims == 3 ? kMax3dSize : kMax1dSize;
        if (n < static_cast<long>(kMinCubeSize) || n > most) {
          error = lineError(lineNo, "unsupported: " + kw + " " + std::to_string(n) + " (" +
                                        std::to_string(kMinCubeSize) + ".." + std::to_string(most) + ")");
          return false;
        }
        cube.dims = dims;
        cube.size = static_cast<uint32_t>(n);
        expected = cubeRows(cube.dims, cube.size);
        cube.values.reserve(static_cast<size_t>(expected) * 3);
      } else if (kw == "DOMAIN_MIN" || kw == "DOMAIN_MAX") {
        bool isMin = kw == "DOMAIN_MIN";
        bool& seen = isMin ? haveMin : haveMax;
        if (seen) return error = lineError(lineNo, "malformed: second " + kw), false;
        seen = true;
        double v[3];
        if (!parseNumbers(arg, v, 3)) return error = lineError(lineNo, "malformed"), false;
        double want = isMin ? 0.0 : 1.0;
        if (v[0] != want || v[1] != want || v[2] != want) {
          error = lineError(lineNo, std::string("unsupported: ") + kw + " must be " +
                                        (isMin ? "0 0 0" : "1 1 1"));
          return false;
        }
      } else if (kw == "LUT_3D_INPUT_RANGE" || kw == "LUT_1D_INPUT_RANGE") {
        double v[2];
        if (!parseNumbers(arg, v, 2)) return error = lineError(lineNo, "malformed"), false;
        if (v[0] != 0.0 || v[1] != 1.0)
          return error = lineError(lineNo, "unsupported: " + kw + " must be 0 1"), false;
      } else {
        error = lineError(lineNo, "malformed: unknown keyword " + kw);
        return false;
      }
      continue;
    }

    if (expected == 0) {
      error = lineError(lineNo, "malformed: table data before LUT_3D_SIZE");
      return false;
    }
    if (rows >= expected) {
      error = lineError(lineNo, "malformed: more than " + std::to_string(expected) + " table lines");
      return false;
    }
    double v[3];
    if (!parseNumbers(s, v, 3)) {
      error = lineError(lineNo, "malformed");
      return false;
    }
    ++rows;
    for (double x : v) {
      if (x < 0.0 || x > 1.0) {
        ++info.clamped;
        x = x < 0.0 ? 0.0 : 1.0;
      }
      cube.values.push_back(x);
    }
  }
  if (!error.empty()) return false;
  if (expected == 0) {
    error = "not a .cube table (no LUT_3D_SIZE or LUT_1D_SIZE line)";
    return false;
  }
  if (rows < expected) {
    error = "too short: " + std::to_string(rows) + " of " + std::to_string(expected) + " table lines";
    return false;
  }
  info.dims = cube.dims;
  info.size = cube.size;
  info.resampled = !(cube.dims == 3 && cube.size == kGrid);
  if (info.resampled) {
    resampleCube(cube, interp, lut);
    return true;
  }
  // Node for node: the device grid's levels are this file's nodes.
  for (uint32_t n = 0; n < kEntries; ++n)
    for (int c = 0; c < 3; ++c)
      lut.entries[n].out[c] = static_cast<uint32_t>(std::lround(cube.values[3 * n + c] * kFullScale));
  return true;
}

bool CubeFile::readFile(const std::string& path, lut3d_info& lut, uint32_t lutId, CubeReadInfo& info,
                        std::string& error, Interp interp) {
  if (!checkInputFile(path, error)) return false;
  std::ifstream is(path, std::ios::binary);
  if (!is) {
    error = "cannot open: " + std::string(std::strerror(errno));
    return false;
  }
  return parse(is, lut, lutId, info, error, interp);
}

}  // namespace pctool
