// Readers of the calibration input files.
//
// Optical data (.odf): exactly 510 bytes, little-endian: 127 IEEE-754 floats of colorimeter
// measurements (white XYZ at 4-6, grey-ramp luminance at 5 + 6k for levels 4095 - 512k, green
// XYZ at 82-84, red at 106-108, blue at 118-120), then the CRC-16/CCITT-FALSE of bytes 0-507.
// One raw read of at most 510 bytes; a short file leaves the record's tail as it was and is
// caught by the checksum. Longer files are read up to byte 510 only.
//
// Target (.txt): whitespace-separated decimal numbers: chromaticities x, y of red, green, blue
// and white, the target exponent parameter, and, only with gamma correction on, eleven
// gamma-correction parameters. A number that fails to extract leaves its field and every later
// one as they were. Only the first 64 KiB are looked at (a target is a few hundred bytes), so
// a runaway file cannot make one number grow without bound.
//
// Error check (.txt): 32 numbers read with "%f", kept but not interpreted.
#define LOG_TAG "PanelCorvaneFE"

#include <cstring>
#include <fstream>
#include <sstream>

#include "base/Algorithm.h"
#include "base/DeviceIo.h"
#include "base/Log.h"
#include "frontend/OdfLayout.h"
#include "frontend/PanelCorvaneFE.h"

namespace snapdragoncolor {

namespace {
constexpr std::streamsize kOdfBytes = odf::kBytes;
constexpr unsigned int kOdfCrcBytes = odf::kCrcBytes;
constexpr std::streamsize kMaxTargetBytes = 64 * 1024;
static_assert(offsetof(PanelCorvaneBase::OpticalDataFile, crc) == kOdfCrcBytes,
              "the checksum follows the 127 measurements directly");

// Reads one float into `field` only when extraction succeeds; a failed stream stays failed.
void extract(std::istream& in, float& field) {
  float v;
  if (in >> v) field = v;
}
}  // namespace

int PanelCorvaneFE::readODF(OpticalDataFile& odf, const char* path) {
  std::ifstream in(devio::path(path), std::ios::in | std::ios::binary);
  if (!in.is_open()) {
    PC_LOGE("open %s failed!\n", path);
    return -1;
  }
  in.read(reinterpret_cast<char*>(&odf), kOdfBytes);
  PC_LOGD("open %s\n", path);
  PC_LOGD("panel R %f, %f, %f\n", odf.values[106], odf.values[107], odf.values[108]);
  PC_LOGD("panel G %f, %f, %f\n", odf.values[82], odf.values[83], odf.values[84]);
  PC_LOGD("panel B %f, %f, %f\n", odf.values[118], odf.values[119], odf.values[120]);
  in.close();

  unsigned char bytes[kOdfCrcBytes];
  std::memcpy(bytes, odf.values, sizeof(bytes));
  const unsigned computed = Algorithm::crc_cal_by_bit(bytes, kOdfCrcBytes) & 0xFFFF;
  const unsigned stored = odf.crc;
  if (stored == computed) return 0;
  PC_LOGE("CRC CHECK:%#x ?= %#x\n", stored, computed);
  return -1;
}

int PanelCorvaneFE::readTargetParm(TargetParm& target, const char* path) {
  std::ifstream file(devio::path(path));
  if (!file.is_open()) {
    PC_LOGE("read %s failed\n", path);
    return -1;
  }
  std::string text(static_cast<size_t>(kMaxTargetBytes), '\0');
  file.read(&text[0], kMaxTargetBytes);
  text.resize(static_cast<size_t>(file.gcount()));
  file.close();
  std::istringstream in(text);
  float* v = target.values;
  for (int i = 0; i <= 8; ++i) extract(in, v[i]);
  // The flag is tested before each group, as the factory reader does.
  if (sIsGammaCorrectionOn) {
    extract(in, v[9]);
    extract(in, v[10]);
  }
  if (sIsGammaCorrectionOn) {
    extract(in, v[11]);
    extract(in, v[12]);
    extract(in, v[13]);
    extract(in, v[14]);
  }
  if (sIsGammaCorrectionOn) {
    for (int i = 15; i <= 19; ++i) extract(in, v[i]);
  }

  PC_LOGD("%s\n", path);
  PC_LOGD("%f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f,\n", v[0],
          v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], v[11], v[12], v[13], v[14],
          v[15], v[16], v[17], v[18], v[19]);
  return 0;
}

int PanelCorvaneFE::readODFCheck(const char* path, ODFErrorCheck* check) {
  if (check == nullptr) return 0;
  FILE* f = devio::fopen(path, "r");
  if (f == nullptr) return 0;
  // One conversion per value, count unchecked: a failed conversion leaves its value as it was.
  for (float& value : check->values) {
    int converted = fscanf(f, "%f", &value);
    (void)converted;
  }
  return fclose(f);
}

}  // namespace snapdragoncolor
