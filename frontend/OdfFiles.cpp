// The front end's readers of its calibration inputs: the files opened at their device paths and
// handed to the format readers (OdfReader.h, TargetReader.h, OdfCheckReader.h), which say what
// is wrong with them; the plugin takes their lenient result and writes its own log lines.
#define LOG_TAG "PanelCorvaneFE"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>

#include "base/DeviceIo.h"
#include "base/Log.h"
#include "frontend/OdfCheckReader.h"
#include "frontend/OdfLayout.h"
#include "frontend/OdfReader.h"
#include "frontend/PanelCorvaneFE.h"
#include "frontend/TargetReader.h"

namespace postblend {

int PanelCorvaneFE::readODF(OpticalDataFile& odf, const char* path) {
  std::ifstream in(devio::path(path), std::ios::in | std::ios::binary);
  if (!in.is_open()) {
    PC_LOGE("open %s failed!\n", path);
    return -1;
  }
  uint8_t bytes[odf::kBytes];
  in.read(reinterpret_cast<char*>(bytes), odf::kBytes);
  const OdfRead read = readOdf(bytes, static_cast<size_t>(in.gcount()), odf);
  PC_LOGD("open %s\n", path);
  PC_LOGD("panel R %f, %f, %f\n", odf.values[106], odf.values[107], odf.values[108]);
  PC_LOGD("panel G %f, %f, %f\n", odf.values[82], odf.values[83], odf.values[84]);
  PC_LOGD("panel B %f, %f, %f\n", odf.values[118], odf.values[119], odf.values[120]);
  in.close();

  // A short file is judged by its CRC alone, over the record as the read left it.
  if (read.crcOk()) return 0;
  PC_LOGE("CRC CHECK:%#x ?= %#x\n", static_cast<unsigned>(read.storedCrc),
          static_cast<unsigned>(read.computedCrc));
  return -1;
}

int PanelCorvaneFE::readTargetParm(TargetParm& target, const char* path) {
  std::ifstream file(devio::path(path));
  if (!file.is_open()) {
    PC_LOGE("read %s failed\n", path);
    return -1;
  }
  std::string text(kMaxTargetBytes, '\0');
  file.read(&text[0], static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(file.gcount()));
  file.close();
  const TargetRead read = readTarget(text);
  // Nine numbers, or all twenty with gamma correction; a number that failed to extract ends
  // the reading, and the fields from it on keep what they held.
  const int wanted = targetValuesUsed(sIsGammaCorrectionOn);
  float* v = target.values;
  std::copy(read.values, read.values + std::min(read.count, wanted), v);

  PC_LOGD("%s\n", path);
  PC_LOGD("%f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f, %f,\n", v[0],
          v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], v[11], v[12], v[13], v[14],
          v[15], v[16], v[17], v[18], v[19]);
  return 0;
}

// Part of the interface; no flow of the plugin calls it.
int PanelCorvaneFE::readODFCheck(const char* path, ODFErrorCheck* check) {
  if (check == nullptr) return 0;
  FILE* f = devio::fopen(path, "r");
  if (f == nullptr) return 0;
  std::string text(kMaxOdfCheckBytes + 1, '\0');
  text.resize(fread(&text[0], 1, text.size(), f));
  readOdfCheck(text, *check);
  return fclose(f);
}

}  // namespace postblend
