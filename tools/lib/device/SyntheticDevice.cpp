#include "tools/lib/device/SyntheticDevice.h"

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "backend/PanelCorvaneBE.h"
#include "cache/CacheAcceptance.h"
#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "frontend/TablePlan.h"
#include "tools/lib/common/FileAccess.h"

namespace pctool {

namespace {

// Deterministic on every platform (library distributions are not).
class SplitMix {
 public:
  explicit SplitMix(uint64_t seed) : s_(seed) {}
  uint64_t next() {
    uint64_t z = (s_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  double symmetric() { return (next() >> 11) * (2.0 / 9007199254740992.0) - 1.0; }  // [-1, 1)
  unsigned below(unsigned n) { return static_cast<unsigned>(next() % n); }

 private:
  uint64_t s_;
};

uint64_t streamSeed(unsigned seed, int a, int b = 0, int c = 0) {
  return (static_cast<uint64_t>(seed) << 20) ^ (static_cast<uint64_t>(a) << 12) ^
         (static_cast<uint64_t>(b) << 6) ^ static_cast<uint64_t>(c);
}

struct Chroma {
  double xy[4][2];
};
constexpr Chroma kP3 = {{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, {0.3127, 0.3290}}};
constexpr Chroma kSrgb = {{{0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}, {0.3127, 0.3290}}};
constexpr Chroma kOled = {{{0.678, 0.310}, {0.246, 0.712}, {0.140, 0.052}, {0.3100, 0.3260}}};

double det3(const double a[3], const double b[3], const double c[3]) {
  return a[0] * (b[1] * c[2] - b[2] * c[1]) - b[0] * (a[1] * c[2] - a[2] * c[1]) +
         c[0] * (a[1] * b[2] - a[2] * b[1]);
}

// XYZ of the primaries at full drive so that they add up to the white of luminance whiteY.
void primariesXyz(const Chroma& c, double whiteY, OdfMeasurements* m) {
  double col[4][3];
  for (int p = 0; p < 4; ++p) {
    const double x = c.xy[p][0], y = c.xy[p][1];
    col[p][0] = x / y;
    col[p][1] = 1.0;
    col[p][2] = (1.0 - x - y) / y;
  }
  const double d = det3(col[0], col[1], col[2]);
  const double s[3] = {det3(col[3], col[1], col[2]) / d, det3(col[0], col[3], col[2]) / d,
                       det3(col[0], col[1], col[3]) / d};
  double* out[3] = {m->red, m->green, m->blue};
  for (int p = 0; p < 3; ++p)
    for (int k = 0; k < 3; ++k) out[p][k] = col[p][k] * s[p] * whiteY;
  for (int k = 0; k < 3; ++k) m->white[k] = col[3][k] * whiteY;
}

bool writeText(const std::filesystem::path& p, const std::string& text, std::string* error) {
  std::string why;
  if (makeFolders(p.parent_path().string(), why) && writeWholeFile(p.string(), text, why)) return true;
  if (error) *error = p.string() + ": " + why;
  return false;
}

bool writeOdf(const std::filesystem::path& p, const OdfMeasurements& m, std::string* error) {
  std::string why;
  if (!makeFolders(p.parent_path().string(), why)) {
    if (error) *error = p.parent_path().string() + ": " + why;
    return false;
  }
  OdfValues v;
  placeMeasurements(m, &v);
  return writeOdfFile(p.string(), v, error);
}

struct Stamp {
  unsigned year, month, day, hour, minute, second, tenths;
};

Stamp stampFor(unsigned seed, int panel) {
  SplitMix r(streamSeed(seed, 7, panel));
  return {2019 + r.below(6), 1 + r.below(12), 1 + r.below(28), r.below(24),
          r.below(60),       r.below(60),     r.below(600)};
}

std::string formatStamp(const Stamp& s) {
  char buf[96];
  snprintf(buf, sizeof(buf), "%04u/%02u/%02u_%02u:%02u:%02u_%0.1f", s.year, s.month, s.day, s.hour,
           s.minute, s.second, static_cast<double>(static_cast<float>(s.tenths) / 10.0f));
  return buf;
}

}  // namespace

const char* const kDeviceTreeParts[4] = {"odm/etc/PanelCorvane", "mnt/vendor/persist/display", "dev/tarnu_display",
                                         "data/vendor/display"};

bool clearDeviceTree(const std::string& dir, std::vector<std::string>* removed, std::string* error) {
  namespace fs = std::filesystem;
  for (const char* part : kDeviceTreeParts) {
    const fs::path p = fs::path(dir) / part;
    std::error_code ec;
    if (!fs::exists(fs::symlink_status(p, ec))) continue;
    size_t files = 0;
    if (fs::is_directory(fs::symlink_status(p, ec))) {
      std::error_code entryEc;
      for (fs::recursive_directory_iterator it(p, ec), end; !ec && it != end; it.increment(ec))
        if (!it->is_directory(entryEc)) ++files;
    } else {
      files = 1;
    }
    fs::remove_all(p, ec);
    if (ec) {
      if (error) *error = p.string() + ": cannot remove: " + ec.message();
      return false;
    }
    if (removed)
      removed->push_back(std::string(part) + ": " + std::to_string(files) + (files == 1 ? " file" : " files") +
                         (part == kDeviceTreeParts[3] ? " (the old tree's table cache and dumps)" : ""));
  }
  return true;
}

OdfMeasurements syntheticMeasurements(unsigned seed, int panel, int set, bool low, bool golden) {
  return syntheticMeasurements(seed, seed, panel, set, low, golden);
}

OdfMeasurements syntheticMeasurements(unsigned typeSeed, unsigned unitSeed, int panel, int set, bool low,
                                      bool golden) {
  // The panel type (golden) varies with seed and panel; each unit deviates a little from it.
  SplitMix type(streamSeed(typeSeed, 1, panel));
  SplitMix unit(streamSeed(unitSeed, 2, panel, set * 2 + (low ? 1 : 0)));
  Chroma c = kOled;
  for (auto& p : c.xy)
    for (double& v : p) v += 0.004 * type.symmetric() + (golden ? 0.0 : 0.0015 * unit.symmetric());
  double whiteY = low ? 100.0 + 3.0 * type.symmetric() : 560.0 + 30.0 * type.symmetric();
  if (set == 2) whiteY *= 1.02;
  if (!golden) whiteY *= 1.0 + 0.01 * unit.symmetric();
  const double gamma = 2.2 + 0.05 * type.symmetric() + (set == 2 ? 0.01 : 0.0);

  OdfMeasurements m;
  primariesXyz(c, whiteY, &m);
  // A little wobble per knot; with these sizes the ramp stays strictly increasing.
  for (int k = 0; k < 7; ++k) {
    const double level = kOdfGreyLevels[k] / 4095.0;
    const double g = gamma + 0.01 * type.symmetric() + (golden ? 0.0 : 0.005 * unit.symmetric());
    m.greyY[k] = whiteY * std::pow(level, g);
  }
  return m;
}

std::string syntheticTargetText(unsigned seed, int mode, bool nits100) {
  SplitMix r(streamSeed(seed, 3, mode, nits100 ? 1 : 0));
  const Chroma& c = (mode == 0 || mode == 2) ? kP3 : kSrgb;
  double v[20];
  for (int k = 0; k < 4; ++k) {
    v[2 * k] = c.xy[k][0] + 0.001 * r.symmetric();
    v[2 * k + 1] = c.xy[k][1] + 0.001 * r.symmetric();
  }
  v[8] = 1.0 / (2.2 + 0.02 * r.symmetric());
  v[9] = 0.03 * r.symmetric();
  v[10] = 0.02 * r.symmetric();
  for (int k = 11; k <= 14; ++k) v[k] = 0.01 * r.symmetric();
  v[15] = 1.0 / (2.2 + 0.02 * r.symmetric());
  for (int k = 16; k <= 19; ++k) v[k] = 0.01 * r.symmetric();
  std::string text;
  char buf[32];
  for (int k = 0; k < 20; ++k) {
    snprintf(buf, sizeof(buf), "%.6f%s", v[k], (k % 4 == 3 || k == 19) ? "\n" : " ");
    text += buf;
  }
  return text;
}

std::string syntheticSerial(unsigned seed, int panel) {
  static const char kAlnum[] = "0123456789ABCDEFGHJKLMNPRSTUVWXYZ";
  SplitMix r(streamSeed(seed, 5, panel));
  std::string s = "PCSYN";
  while (s.size() < 25) s += kAlnum[r.below(sizeof(kAlnum) - 1)];
  const Stamp st = stampFor(seed, panel);
  const uint64_t fields = (static_cast<uint64_t>(st.year - 2011) << 56) |
                          (static_cast<uint64_t>(st.month) << 48) |
                          (static_cast<uint64_t>(st.day) << 40) |
                          (static_cast<uint64_t>(st.hour) << 32) |
                          (static_cast<uint64_t>(st.minute) << 24) |
                          (static_cast<uint64_t>(st.second) << 16) | st.tenths;
  char hex[24];
  snprintf(hex, sizeof(hex), "%015" PRIX64, fields);
  return s + hex;
}

std::string stampOfSerial(const std::string& serial) {
  if (serial.size() < 40) return "";
  const uint64_t f = std::strtoull(serial.c_str() + 25, nullptr, 16);
  Stamp s{static_cast<unsigned>(((f >> 56) & 0xF) + 2011), static_cast<unsigned>((f >> 48) & 0xF),
          static_cast<unsigned>((f >> 40) & 0x1F),        static_cast<unsigned>((f >> 32) & 0x1F),
          static_cast<unsigned>((f >> 24) & 0x3F),        static_cast<unsigned>((f >> 16) & 0x3F),
          static_cast<unsigned>(f & 0xFFFF)};
  return formatStamp(s);
}

bool writeSyntheticDevice(const std::string& dir, const SyntheticDeviceOptions& o,
                          std::string* error) {
  if (o.tables != 6 && o.tables != 8) {
    if (error) *error = "tables must be 6 or 8";
    return false;
  }
  namespace fs = std::filesystem;
  namespace fe = postblend::fe;
  const fs::path root(dir);
  auto at = [&](const std::string& devicePath) { return fs::path(dir + devicePath); };
  const bool eight = o.tables == 8;
  const unsigned typeSeed = o.typeSeed != 0 ? o.typeSeed : o.seed;

  std::string prop = "LogLevel=1\nParamVersion=" + std::to_string(o.paramVersion) + "\n";
  prop += "FWVersion=" + std::to_string(postblend::Lut3DCacheManager::fileSizeFor(postblend::tableSlots(eight))) + "\n";
  prop += std::string("CMDebug=") + (eight ? "1" : "0") + "\n";
  prop += "PanelCalibration=1\nPanelNitsCalibration=1\n";
  prop += std::string("GammaCorrection=") + (o.gammaCorrection ? "1" : "0") + "\n";
  prop += std::string("inParam100nits=") + (o.in100nits ? "1" : "0") + "\n";
  prop += o.primaryName + "=0\n" + (o.secondary ? o.secondaryName + "=100\n" : "");
  if (!writeText(at(postblend::Prop::kPath), prop, error)) return false;

  std::string serials;
  for (int panel = 0; panel < (o.secondary ? 2 : 1); ++panel) {
    const std::string& name = panel == 0 ? o.primaryName : o.secondaryName;
    for (int mode = 0; mode < (eight ? 4 : 3); ++mode) {
      for (bool nits : {false, true}) {
        const std::string path = fe::targetPath(name, mode + (nits ? fe::kModes : 0));
        if (!writeText(at(path), syntheticTargetText(typeSeed, mode, nits), error)) return false;
      }
    }
    for (int k = 0; k < fe::kOdfSets; ++k) {
      const int set = k % 2 + 1;
      const bool low = k >= 2;
      if (!writeOdf(at(fe::opticalDataPath(fe::OdfOrigin::Golden, panel, name, k)),
                    syntheticMeasurements(typeSeed, o.seed, panel, set, low, true), error))
        return false;
      if (o.localData && !writeOdf(at(fe::opticalDataPath(fe::OdfOrigin::Local, panel, name, k)),
                                   syntheticMeasurements(typeSeed, o.seed, panel, set, low, false), error))
        return false;
    }
    const std::string serial = syntheticSerial(o.seed, panel);
    std::string stamp = stampOfSerial(serial);
    if (!o.matched) stamp[stamp.size() - 1] = stamp.back() == '9' ? '8' : '9';
    serials += serial + "\n";
    if (!writeText(at(postblend::identityStampPath(static_cast<uint32_t>(panel))), stamp + "\n", error))
      return false;
  }
  return writeText(root / "dev/tarnu_display", serials, error);
}

}  // namespace pctool
