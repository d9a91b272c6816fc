#include "tools/lib/calibration/CalibrationFiles.h"

#include <algorithm>
#include <fstream>

#include "frontend/OdfLayout.h"
#include "frontend/OdfReader.h"
#include "tools/lib/common/FileAccess.h"

namespace pctool {

std::string odfLengthWarning(const OdfCheck& check) {
  if (check.fileBytes <= postblend::odf::kBytes) return "";
  return "warning: " + std::to_string(check.fileBytes) + " bytes, padded beyond the " +
         std::to_string(postblend::odf::kBytes) + " of an optical data file: the plugin reads the first " +
         std::to_string(postblend::odf::kBytes) + " (127 floats and the CRC) and ignores the other " +
         std::to_string(check.fileBytes - postblend::odf::kBytes);
}

bool readOdfFile(const std::string& path, OpticalDataFile& odf, OdfCheck& check,
                 std::string& error) {
  check = OdfCheck{};
  std::ifstream in;
  if (!openInputFile(path, in, check.fileBytes, error)) return false;
  uint8_t bytes[postblend::odf::kBytes];
  in.read(reinterpret_cast<char*>(bytes), sizeof bytes);
  odf = OpticalDataFile{};
  const postblend::OdfRead read =
      postblend::readOdf(bytes, static_cast<size_t>(in.gcount()), odf);
  check.whole = read.bytes == postblend::odf::kBytes;
  check.stored = read.storedCrc;
  check.computed = read.computedCrc;
  if (!read.diagnosis.ok()) {
    error = read.diagnosis.message;
    return false;
  }
  return true;
}

bool parseTarget(const std::string& text, TargetParm& target, int& count, std::string& error) {
  const postblend::TargetRead read = postblend::readTarget(text);
  target = TargetParm{};
  std::copy(read.values, read.values + read.count, target.values);
  count = read.count;
  if (!read.diagnosis.ok()) {
    error = read.diagnosis.message;
    return false;
  }
  return true;
}

bool readTargetFile(const std::string& path, TargetParm& target, int& count, std::string& error) {
  std::string text;
  return readInputFile(path, kMaxTargetBytes, text, error) && parseTarget(text, target, count, error);
}

}  // namespace pctool
