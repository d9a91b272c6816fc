// A device tree copied into an output folder (`simulate`'s OUT/device), and the record beside it
// of which tree it was copied from and what that tree held then. A later run takes the copy only
// for the same tree, unchanged: a copy of another device, or of an older state of this one,
// would give answers that look like the device asked for.
#pragma once

#include <cstdint>
#include <string>

namespace pctool {

// The record's file name in the output folder.
constexpr const char* kDeviceOriginFile = "device-origin.txt";

struct DeviceOrigin {
  std::string source;        // the tree copied, as an absolute path
  uint64_t fingerprint = 0;  // its files' paths and bytes then
};

// The content of a folder tree as one number: every file's path below `dir` and its bytes.
// False with a reason without the path when a folder or file cannot be read.
bool treeFingerprint(const std::string& dir, uint64_t& out, std::string& error);

// The origin of `device` as it is now.
bool deviceOrigin(const std::string& device, DeviceOrigin& out, std::string& error);

// The record in `path`; false with a reason without the path when it is missing or malformed.
bool readDeviceOrigin(const std::string& path, DeviceOrigin& out, std::string& error);
bool writeDeviceOrigin(const std::string& path, const DeviceOrigin& origin, std::string& error);

}  // namespace pctool
