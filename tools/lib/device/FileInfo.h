// What an engineer wants to know about a file found on or for a device: its kind and, per
// kind, the figures that matter (checksums with both values, the FWVersion a cache needs, the
// tables' headers and output ranges, measured colours, target values).
#pragma once

#include <string>

namespace pctool {

// Fills `text` with the description (also for a damaged file, as far as it could be read).
// False with a one-line reason when the file is unusable: unknown kind, wrong size, CRC or
// checksum mismatch, malformed text.
bool inspectFile(const std::string& path, std::string& text, std::string& error);

}  // namespace pctool
