// The front end's log lines and debug dump files of the table arithmetic, written from the
// values the arithmetic returns. Each line names the operation it has always named, so the log
// reads the same whichever layer writes it.
#pragma once

#include <string>

#include "base/PanelCorvaneBase.h"
#include "frontend/ColorMath.h"
#include "frontend/GammaTable.h"
#include "frontend/Lut3dGeneration.h"
#include "postblend/color_records.h"

namespace postblend {
namespace felog {

// inverseMatrix: the source, and the inverse unless the source was singular (nullptr).
void inversion(const fe::Mat3& src, const fe::Mat3* inverse);
// RGB2XYZ_Matrix: the three rows of the result.
void rgbToXyz(const fe::Mat3& m);
// RGB2XYZ_Matrix with the inversion it logs inside, as one call of it writes them.
void rgbToXyzSteps(const fe::Mat3& primaries, const fe::Mat3& primariesInverse, bool regular,
                   const fe::Mat3& result);
// GammaCorrection: the knots and the target exponent of the intermediate pass.
void gammaKnots(const fe::GammaKnots& k);
// GammaCorrection's dump, /data/vendor/display/gamma-4096.txt.
void dumpGammaTable(const fe::GammaTable& table);
// generateLut3D: the chromaticities and matrices of the conversion (verbose), the conversion
// matrix's elements (`entry`).
void conversion(const fe::Conversion& c, const PanelCorvaneBase::OpticalDataFile& odf, bool verbose,
                bool entry);
// generateLut3D: the grey axis before or after the protect-white pass.
void greyAxis(const lut3d_info& lut, bool after);
// A table as text, one entry a line; `path` is a device path.
void dumpLut(const std::string& path, const lut3d_info& lut);

}  // namespace felog
}  // namespace postblend
