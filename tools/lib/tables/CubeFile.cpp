#include "tools/lib/tables/CubeFile.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "tools/lib/common/FileAccess.h"
#include "tools/lib/common/TextLines.h"
#include "tools/lib/tables/CubeResample.h"

namespace pctool {

using postblend::lut3d_info;

namespace {

std::string lineError(size_t line, const std::string& what) {
  return "line " + std::to_string(line) + " " + what;
}

// Reads exactly `count` finite numbers from `s` with nothing after them; false with the fault.
bool parseNumbers(const char* s, double* out, int count, std::string& why) {
  int found = 0;
  for (;;) {
    while (*s == ' ' || *s == '\t') ++s;
    if (*s == '\0') break;
    const char* tokEnd = s + std::strcspn(s, " \t");
    const std::string tok(s, tokEnd);
    char* end = nullptr;
    errno = 0;
    const double v = std::strtod(tok.c_str(), &end);
    if (end == tok.c_str() || *end != '\0') {
      why = "'" + tok + "' is not a number" +
            (tok.find(',') != std::string::npos ? " (values are separated by blanks, not commas)" : "");
      return false;
    }
    if (errno == ERANGE || !std::isfinite(v)) {
      why = "'" + tok + "' is not a finite number";
      return false;
    }
    if (found < count) out[found] = v;
    ++found;
    s = tokEnd;
  }
  if (found != count) why = "want " + std::to_string(count) + " numbers, found " + std::to_string(found);
  return found == count;
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

namespace {

// Reads at most one byte beyond the limit, so an oversized file is told without holding it.
bool readBounded(std::istream& is, std::string& text, std::string& error) {
  std::vector<char> buf(64 * 1024);
  while (is && text.size() <= CubeFile::kMaxFileBytes) {
    is.read(buf.data(), static_cast<std::streamsize>(buf.size()));
    text.append(buf.data(), static_cast<size_t>(is.gcount()));
  }
  if (text.size() > CubeFile::kMaxFileBytes) {
    error = "larger than " + std::to_string(CubeFile::kMaxFileBytes >> 20) +
            " MiB: not a .cube of at most " + std::to_string(kMax3dSize) + " nodes";
    return false;
  }
  if (text.find('\0') != std::string::npos) {
    error = "binary data: not a .cube text file";
    return false;
  }
  return true;
}

// One pass over the lines: header keywords, then the table rows. Each step returns false with
// `error` naming the line.
class CubeParser {
 public:
  CubeParser(CubeReadInfo& info, std::string& error) : info_(info), error_(error) {}

  bool line(size_t lineNo, const char* s) {
    lineNo_ = lineNo;
    return std::isupper(static_cast<unsigned char>(*s)) ? keyword(s) : row(s);
  }

  // After the last line: the table complete, its values in `cube`.
  bool finish(CubeTable& cube) {
    if (expected_ == 0) return fail("not a .cube table (no LUT_3D_SIZE or LUT_1D_SIZE line)");
    if (rows_ < expected_)
      return fail("too short: " + std::to_string(rows_) + " of " + std::to_string(expected_) +
                  " table lines");
    cube = std::move(cube_);
    return true;
  }

 private:
  bool fail(const std::string& what) { return error_ = what, false; }
  bool failAt(const std::string& what) { return fail(lineError(lineNo_, what)); }

  bool keyword(const char* s) {
    const char* kwEnd = s;
    while (*kwEnd && *kwEnd != ' ' && *kwEnd != '\t') ++kwEnd;
    const std::string kw(s, kwEnd);
    if (rows_ > 0) return failAt("malformed: keyword " + kw + " after table data");
    const char* arg = kwEnd;
    while (*arg == ' ' || *arg == '\t') ++arg;
    if (kw == "TITLE") return title(arg);
    if (kw == "LUT_3D_SIZE" || kw == "LUT_1D_SIZE") return size(kw, arg);
    if (kw == "DOMAIN_MIN" || kw == "DOMAIN_MAX") return domain(kw, arg);
    if (kw == "LUT_3D_INPUT_RANGE" || kw == "LUT_1D_INPUT_RANGE") {
      double v[2];
      std::string why;
      if (!parseNumbers(arg, v, 2, why)) return failAt("malformed: " + kw + " " + why);
      if (v[0] != 0.0 || v[1] != 1.0) return failAt("unsupported: " + kw + " must be 0 1");
      return true;
    }
    return failAt("malformed: unknown keyword " + kw);
  }

  bool title(const char* arg) {
    if (haveTitle_) return failAt("malformed: second TITLE");
    haveTitle_ = true;
    std::string t(arg);
    if (t.size() >= 2 && t.front() == '"') {
      size_t q = t.find('"', 1);
      if (q == std::string::npos) return failAt("malformed: unterminated TITLE");
      t = t.substr(1, q - 1);
    }
    info_.title = t;
    return true;
  }

  bool size(const std::string& kw, const char* arg) {
    const uint32_t dims = kw == "LUT_3D_SIZE" ? 3 : 1;
    if (expected_ > 0)
      return failAt(dims == cube_.dims ? "malformed: second " + kw
                                       : "unsupported: both LUT_1D_SIZE and LUT_3D_SIZE");
    char* e = nullptr;
    errno = 0;
    long n = std::strtol(arg, &e, 10);
    while (e && (*e == ' ' || *e == '\t')) ++e;
    if (e == arg || *e != '\0' || errno == ERANGE) return failAt("malformed: " + kw + " wants a whole number");
    const long most = dims == 3 ? kMax3dSize : kMax1dSize;
    if (n < static_cast<long>(kMinCubeSize) || n > most)
      return failAt("unsupported: " + kw + " " + std::to_string(n) + " (" +
                    std::to_string(kMinCubeSize) + ".." + std::to_string(most) + ")");
    cube_.dims = dims;
    cube_.size = static_cast<uint32_t>(n);
    expected_ = cubeRows(cube_.dims, cube_.size);
    cube_.values.reserve(static_cast<size_t>(expected_) * 3);
    return true;
  }

  bool domain(const std::string& kw, const char* arg) {
    const bool isMin = kw == "DOMAIN_MIN";
    bool& seen = isMin ? haveMin_ : haveMax_;
    if (seen) return failAt("malformed: second " + kw);
    seen = true;
    double v[3];
    std::string why;
    if (!parseNumbers(arg, v, 3, why)) return failAt("malformed: " + kw + " " + why);
    const double want = isMin ? 0.0 : 1.0;
    if (v[0] != want || v[1] != want || v[2] != want)
      return failAt(std::string("unsupported: ") + kw + " must be " + (isMin ? "0 0 0" : "1 1 1"));
    return true;
  }

  bool row(const char* s) {
    if (expected_ == 0) return failAt("malformed: table data before LUT_3D_SIZE");
    if (rows_ >= expected_)
      return failAt("malformed: more than " + std::to_string(expected_) + " table lines");
    double v[3];
    std::string why;
    if (!parseNumbers(s, v, 3, why)) return failAt("malformed: " + why);
    ++rows_;
    for (double x : v) {
      if (x < 0.0 || x > 1.0) {
        ++info_.clamped;
        x = x < 0.0 ? 0.0 : 1.0;
      }
      cube_.values.push_back(x);
    }
    return true;
  }

  CubeReadInfo& info_;
  std::string& error_;
  CubeTable cube_;
  size_t lineNo_ = 0;
  bool haveTitle_ = false, haveMin_ = false, haveMax_ = false;
  uint64_t expected_ = 0;  // rows the size line announced; 0 before it
  uint64_t rows_ = 0;
};

}  // namespace

bool CubeFile::parse(std::istream& is, lut3d_info& lut, uint32_t lutId, CubeReadInfo& info,
                     std::string& error, Interp interp) {
  std::string text;
  if (!readBounded(is, text, error)) return false;
  setDeviceGrid(lut, lutId);
  info = CubeReadInfo{};
  info.interp = interp;
  error.clear();
  CubeParser parser(info, error);
  TextLines lines(text, kMaxLineBytes);
  std::string line;
  while (lines.next(line, error)) {
    const size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos || line[first] == '#') continue;
    if (!parser.line(lines.lineNo(), line.c_str() + first)) return false;
  }
  CubeTable cube;
  if (!error.empty() || !parser.finish(cube)) return false;
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
      lut.entries[n].out[c] =
          static_cast<uint32_t>(std::lround(cube.values[3 * n + c] * kFullScale));
  return true;
}

bool CubeFile::readFile(const std::string& path, lut3d_info& lut, uint32_t lutId,
                        CubeReadInfo& info, std::string& error, Interp interp) {
  std::ifstream is;
  uint64_t bytes = 0;
  return openInputFile(path, is, bytes, error) && parse(is, lut, lutId, info, error, interp);
}

}  // namespace pctool
