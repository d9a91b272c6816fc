// The workbench's readers of what engineers hand it: .cube files, session scripts, the
// measurement text of `odf write`, `inspect`, which must name any file's kind
// (cache, LUT text, .odf, .cube or unknown) and read it as that kind, and CGATS colorimeter
// files (.ti3) through to an .odf and a measured verification, and the colour lists `apply`
// takes. Input: one byte choosing the reader (0 .cube, 1 session, 2 measurement text, 3 inspect,
// 4 CGATS, 5 colour list), then the text or bytes.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/support/FuzzSupport.h"
#include "postblend/color_records.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/device/FileInfo.h"
#include "tools/lib/device/Session.h"
#include "tools/lib/measurements/OdfFromMeasurements.h"
#include "tools/lib/tables/ColourCsv.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/TableSource.h"
#include "tools/lib/verify/MeasuredVerify.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  pcfuzz::quietPlatform();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int reader = data[0] % 6;
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  std::string error;
  switch (reader) {
    case 0: {
      std::istringstream in(text);
      auto lut = std::make_unique<postblend::lut3d_info>();
      pctool::CubeReadInfo info;
      pctool::CubeFile::parse(in, *lut, 0, info, error);
      break;
    }
    case 1: {
      std::vector<pctool::SessionStep> steps;
      pctool::parseSession(text, &steps, &error);
      break;
    }
    case 2: {
      std::istringstream in(text);
      pctool::OdfValues values;
      pctool::parseOdfText(in, "fuzz", &values, &error);
      break;
    }
    case 4: {
      pctool::CgatsFile file;
      pctool::Measurements m;
      if (!pctool::parseCgats(text, "fuzz", &file, &error) || !pctool::measurementsFromCgats(file, "fuzz", &m, &error))
        break;
      pctool::OdfValues values;
      std::vector<std::string> warnings;
      pctool::odfFromMeasurements(m, &values, &warnings, &error);
      pctool::TargetParm target{};
      const float srgb[9] = {0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3290f, 0.4545f};
      std::copy(srgb, srgb + 9, target.values);
      pctool::MeasuredCheck check;
      pctool::checkMeasured(m, target, &check, &error);
      break;
    }
    case 5: {
      pctool::ColourList list;
      if (!pctool::ColourCsv::parse(text, list, error)) break;
      auto lut = std::make_unique<postblend::lut3d_info>();
      pctool::setDeviceGrid(*lut, 0);
      pctool::ColourCsv::apply(list, *lut, pctool::Interp::Tetrahedral, pctool::NodeGrid::Device);
      break;
    }
    case 3:
    default: {
      // inspect and the table loader open files by path: the input goes through a file.
      const std::string path = pcfuzz::quietPlatform() + "/inspect-input";
      {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
      }
      std::string info;
      pctool::inspectFile(path, info, error);
      std::vector<pctool::LoadedTable> tables;
      pctool::loadTables(path, tables, error);
      std::remove(path.c_str());
      break;
    }
  }
  return 0;
}
