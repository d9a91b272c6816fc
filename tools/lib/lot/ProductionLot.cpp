#include "tools/lib/lot/ProductionLot.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "backend/PanelCorvaneBE.h"
#include "frontend/TablePlan.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/common/ParallelFor.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace pctool {

namespace {

namespace fs = std::filesystem;

uint64_t mix(uint64_t z) {
  z += 0x9E3779B97F4A7C15ull;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

// A device path relative to the tree: lot.csv names files that way.
std::string inTree(const std::string& devicePath) { return devicePath.substr(1); }

std::string localOdf(uint64_t pick) {
  namespace fe = postblend::fe;
  return inTree(fe::opticalDataPath(fe::OdfOrigin::Local, 0, "", static_cast<int>(pick % fe::kOdfSets)));
}

// Flips one bit inside the measurements: the CRC-16 catches every single-bit error.
bool corruptByte(const fs::path& p, std::string& error) {
  std::fstream f(p, std::ios::in | std::ios::out | std::ios::binary);
  char c = 0;
  if (f && f.seekg(100) && f.get(c) && f.seekp(100) && f.put(static_cast<char>(c ^ 0x10)) && f.flush()) return true;
  error = p.string() + ": cannot corrupt the file";
  return false;
}

bool writePanel(const fs::path& root, const LotPanel& panel, std::string& error) {
  SyntheticDeviceOptions o;
  o.seed = panel.seed;
  o.typeSeed = panel.typeSeed;
  o.secondary = false;
  o.matched = panel.fault != LotFault::MismatchedStamp;
  if (!writeSyntheticDevice(root.string(), o, &error)) return false;
  if (panel.fault == LotFault::BadCrc) return corruptByte(root / panel.detail, error);
  if (panel.fault == LotFault::MissingLocal) {
    std::error_code ec;
    if (!fs::remove(root / panel.detail, ec)) {
      error = (root / panel.detail).string() + ": cannot remove: " + ec.message();
      return false;
    }
  }
  return true;
}

}  // namespace

const char* lotFaultName(LotFault fault) {
  switch (fault) {
    case LotFault::BadCrc: return "bad-crc";
    case LotFault::MismatchedStamp: return "mismatched-stamp";
    case LotFault::MissingLocal: return "missing-local";
    case LotFault::None: break;
  }
  return "none";
}

std::vector<LotPanel> planLot(unsigned count, unsigned seed) {
  std::vector<LotPanel> lot(count);
  const unsigned typeSeed = static_cast<unsigned>(mix(seed) % 0xFFFFFFFEu) + 1;
  for (unsigned i = 0; i < count; ++i) {
    char name[32];
    snprintf(name, sizeof name, "panel-%04u", i + 1);
    lot[i].name = name;
    lot[i].typeSeed = typeSeed;
    // Never 0, and far apart: neighbouring panels share nothing but the panel type.
    lot[i].seed = static_cast<unsigned>(mix((static_cast<uint64_t>(seed) << 32) | i) % 0xFFFFFFFEu) + 1;
  }
  if (count < 10) return lot;
  // About 2 %, at least one of each kind, at places drawn from the seed.
  const unsigned faulty = std::max(3u, (count * 2 + 50) / 100);
  static const LotFault kKinds[3] = {LotFault::BadCrc, LotFault::MismatchedStamp, LotFault::MissingLocal};
  uint64_t state = mix(~static_cast<uint64_t>(seed));
  for (unsigned k = 0; k < faulty; ++k) {
    size_t at = 0;
    do {
      state = mix(state);
      at = state % count;
    } while (lot[at].fault != LotFault::None);
    LotPanel& p = lot[at];
    p.fault = kKinds[k % 3];
    if (p.fault == LotFault::MismatchedStamp) p.detail = inTree(postblend::identityStampPath(0));
    else p.detail = localOdf(state >> 32);
  }
  return lot;
}

bool writeLot(const std::string& dir, const std::vector<LotPanel>& lot, unsigned threads, std::string& error,
              const std::function<void()>& done) {
  std::vector<std::string> errors(lot.size());
  parallelFor(lot.size(), threads, [&](size_t i) {
    writePanel(fs::path(dir) / lot[i].name, lot[i], errors[i]);
    if (done) done();
  });
  for (const auto& e : errors) {
    if (!e.empty()) {
      error = e;
      return false;
    }
  }
  const std::string csv = (fs::path(dir) / "lot.csv").string();
  std::string why;
  if (writeWholeFile(csv, lotCsv(lot), why)) return true;
  error = csv + ": " + why;
  return false;
}

std::string lotCsv(const std::vector<LotPanel>& lot) {
  std::string s = "panel,seed,fault,detail\n";
  for (const auto& p : lot)
    s += p.name + "," + std::to_string(p.seed) + "," + lotFaultName(p.fault) + "," + p.detail + "\n";
  return s;
}

}  // namespace pctool
