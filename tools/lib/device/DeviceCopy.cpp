#include "tools/lib/device/DeviceCopy.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include "tools/lib/common/FileAccess.h"

namespace pctool {

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kFnvOffset = 1469598103934665603ULL, kFnvPrime = 1099511628211ULL;

void mix(uint64_t& h, const char* bytes, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    h ^= static_cast<unsigned char>(bytes[i]);
    h *= kFnvPrime;
  }
}

bool fileHash(const std::string& path, uint64_t& h, std::string& error) {
  std::ifstream in;
  uint64_t bytes = 0;
  if (!openInputFile(path, in, bytes, error)) return false;
  h = kFnvOffset;
  char chunk[64 * 1024];
  while (in) {
    in.read(chunk, sizeof chunk);
    mix(h, chunk, static_cast<size_t>(in.gcount()));
  }
  if (in.bad()) error = "cannot read";
  return !in.bad();
}

}  // namespace

bool treeFingerprint(const std::string& dir, uint64_t& out, std::string& error) {
  std::vector<std::pair<std::string, uint64_t>> files;
  std::error_code ec;
  for (fs::recursive_directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code typeEc;
    if (it->is_directory(typeEc)) continue;
    uint64_t h = 0;
    if (!fileHash(it->path().string(), h, error)) return error = it->path().string() + ": " + error, false;
    files.emplace_back(it->path().lexically_relative(dir).string(), h);
  }
  if (ec) return error = "cannot list: " + ec.message(), false;
  std::sort(files.begin(), files.end());
  out = kFnvOffset;
  for (const auto& [name, h] : files) {
    mix(out, name.c_str(), name.size() + 1);
    mix(out, reinterpret_cast<const char*>(&h), sizeof h);
  }
  return true;
}

bool deviceOrigin(const std::string& device, DeviceOrigin& out, std::string& error) {
  std::error_code ec;
  const fs::path source = fs::weakly_canonical(device, ec);
  if (ec) return error = "cannot resolve the path: " + ec.message(), false;
  out.source = source.string();
  return treeFingerprint(device, out.fingerprint, error);
}

bool readDeviceOrigin(const std::string& path, DeviceOrigin& out, std::string& error) {
  std::string text;
  if (!readInputFile(path, 64 * 1024, text, error)) return false;
  const size_t src = text.find("\nsource "), fp = text.find("\nfingerprint ");
  if (src == std::string::npos || fp == std::string::npos ||
      std::sscanf(text.c_str() + fp, "\nfingerprint %" SCNx64, &out.fingerprint) != 1) {
    error = "malformed: want 'source PATH' and 'fingerprint HEX' lines";
    return false;
  }
  const size_t end = text.find('\n', src + 1);
  out.source = text.substr(src + 8, end == std::string::npos ? std::string::npos : end - src - 8);
  return true;
}

bool writeDeviceOrigin(const std::string& path, const DeviceOrigin& origin, std::string& error) {
  char fp[32];
  std::snprintf(fp, sizeof fp, "%016" PRIx64, origin.fingerprint);
  return writeWholeFile(path,
                        "# simulate copied this device tree to device/; a later run takes that copy only for the\n"
                        "# same tree, unchanged since (--fresh copies it again)\nsource " +
                            origin.source + "\nfingerprint " + fp + "\n",
                        error);
}

}  // namespace pctool
