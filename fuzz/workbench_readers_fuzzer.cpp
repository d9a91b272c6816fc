// The workbench's readers of what engineers hand it: .cube files, session scripts, the measurement
// text of `odf write`, `inspect` (which must name any file's kind: cache, LUT text, .odf, .cube or
// unknown, and read it as that kind), CGATS colorimeter files (.ti3) through to an .odf and a
// measured verification (a chart's too), the colour lists `apply` takes, a device's property file
// through the device-folder walk that simulate's pages, `report` and a lot share (its display
// names become paths: no exception may escape), and PNG images with their colour chunks through
// the conversion `apply` makes. A measurement text that is accepted must give floats the file can
// hold. Input: one byte choosing the reader (0 .cube, 1 session, 2 measurement text, 3 inspect,
// 4 CGATS, 5 colour list, 6 property file, 7 PNG), then the bytes.
#include <cmath>
#include <cstdlib>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/support/FuzzSupport.h"
#include "postblend/color_records.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "config/Prop.h"
#include "tools/lib/device/DeviceFolder.h"
#include "tools/lib/device/FileInfo.h"
#include "tools/lib/device/Session.h"
#include "tools/lib/device/SyntheticDevice.h"
#include "tools/lib/lot/LotVerify.h"
#include "tools/lib/measurements/OdfFromMeasurements.h"
#include "tools/lib/tables/ColourCsv.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/ImageColour.h"
#include "tools/lib/tables/LutApply.h"
#include "tools/lib/tables/PngImage.h"
#include "tools/lib/tables/TableSource.h"
#include "tools/lib/verify/MeasuredVerify.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  pcfuzz::quietPlatform();
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  std::istringstream in(text);
  std::string error, info;
  auto lut = std::make_unique<postblend::lut3d_info>();
  pctool::CubeReadInfo cube;
  std::vector<pctool::SessionStep> steps;
  pctool::OdfValues values;
  pctool::ColourList list;
  std::vector<pctool::LoadedTable> tables;
  const std::string path = pcfuzz::quietPlatform() + "/inspect-input";
  const std::function<void()> readers[] = {
      [&] { pctool::CubeFile::parse(in, *lut, 0, cube, error); },
      [&] { pctool::parseSession(text, &steps, &error); },
      [&] {  // every text accepted gives floats the file can hold
        if (!pctool::parseOdfText(in, "fuzz", &values, &error)) return;
        for (float v : values.v)
          if (!std::isfinite(v)) __builtin_trap();
      },
      [&] {  // inspect and the table loader open files by path
        pcfuzz::writeDeviceFile("/inspect-input", data + 1, size - 1);
        pctool::inspectFile(path, info, error);
        pctool::loadTables(path, tables, error);
        pcfuzz::removeDeviceFile("/inspect-input");
      },
      [&] {  // a colorimeter's measurements through to an .odf and a verification against sRGB
        pctool::CgatsFile file;
        pctool::Measurements m;
        std::vector<pctool::Patch> chart;
        if (!pctool::parseCgats(text, "fuzz", &file, &error)) return;
        const bool isChart = pctool::chartPatches(file, "fuzz", &chart, &error);
        if (!pctool::measurementsFromCgats(file, "fuzz", &m, &error)) return;
        std::vector<std::string> warnings;
        pctool::odfFromMeasurements(m, &values, &warnings, &error);
        const pctool::TargetParm srgb{
            {0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3290f, 0.4545f}};
        pctool::MeasuredCheck check;
        pctool::checkMeasured(m, srgb, &check, &error);
        if (isChart) pctool::checkMeasured(m, srgb, &check, &error, &chart, "chart");
      },
      [&] {
        if (!pctool::ColourCsv::parse(text, list, error)) return;
        pctool::setDeviceGrid(*lut, 0);
        pctool::ColourCsv::apply(list, *lut, pctool::Interp::Tetrahedral, pctool::NodeGrid::Device);
      },
      [&] {
        static const bool written = pctool::writeSyntheticDevice(pcfuzz::quietPlatform() + "/walk", {}, &error);
        if (!written) std::abort();
        pcfuzz::writeDeviceFile(std::string("/walk") + postblend::Prop::kPath, data + 1, size - 1);
        try {
          std::vector<pctool::PanelReport> reports;
          std::vector<std::string> unjudged;
          pctool::collectDeviceReports(pcfuzz::quietPlatform() + "/walk", reports, unjudged, error);
          pctool::verifyPanel(pcfuzz::quietPlatform() + "/walk", pctool::kDefaultMaxDe);
        } catch (...) {
          std::abort();  // the workbench's main would report it; the walk itself must not throw
        }
      },
      [&] {
        pcfuzz::writeDeviceFile("/image.png", data + 1, size - 1);
        pctool::Image img;
        pctool::ImageConversion conversion;
        if (!pctool::PngImage::read(pcfuzz::quietPlatform() + "/image.png", img, error) ||
            !conversion.prepare(img.colour, pctool::srgbSpace(), error))
          return;
        pctool::setIdentity(*lut, 0);
        pctool::applyLutToImage(*lut, img, conversion, pctool::Interp::Tetrahedral, pctool::NodeGrid::Device);
      },
  };
  readers[data[0] % 8]();
  return 0;
}
