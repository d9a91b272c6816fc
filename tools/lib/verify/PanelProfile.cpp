#include "tools/lib/verify/PanelProfile.h"

#include <algorithm>

#include "tools/lib/common/FileAccess.h"

#ifdef PC_HAVE_LCMS
#include <lcms2.h>
#endif

namespace pctool {

namespace {
constexpr int kCurvePoints = 1024;
}  // namespace

ProfileSource panelProfile(const PanelModel& panel, const std::string& description) {
  ProfileSource s;
  std::copy(std::begin(panel.chroma()), std::end(panel.chroma()), s.rgbw);
  s.whiteY = panel.whiteXyz().Y;
  for (int i = 0; i < kCurvePoints; ++i) s.curve.push_back(panel.toneCurve(4095.0 * i / (kCurvePoints - 1)));
  s.description = description;
  return s;
}

ProfileSource calibratedProfile(const Predictor& p, const std::string& description) {
  ProfileSource s;
  const Xyz white = p.colour("white", 1, 1, 1).predictedXyz;
  s.rgbw[0] = chromaOf(p.colour("red", 1, 0, 0).predictedXyz);
  s.rgbw[1] = chromaOf(p.colour("green", 0, 1, 0).predictedXyz);
  s.rgbw[2] = chromaOf(p.colour("blue", 0, 0, 1).predictedXyz);
  s.rgbw[3] = chromaOf(white);
  s.whiteY = white.Y * p.panel().whiteXyz().Y;
  for (int i = 0; i < kCurvePoints; ++i) {
    const double v = static_cast<double>(i) / (kCurvePoints - 1);
    s.curve.push_back(white.Y > 0 ? std::clamp(p.colour("grey", v, v, v).predictedXyz.Y / white.Y, 0.0, 1.0) : 0);
  }
  s.description = description;
  return s;
}

#ifndef PC_HAVE_LCMS

bool iccSupported() { return false; }

bool writeIccProfile(const std::string&, const ProfileSource&, std::string& error) {
  error = "built without Little CMS: no ICC profile";
  return false;
}

#else

bool iccSupported() { return true; }

bool writeIccProfile(const std::string& path, const ProfileSource& s, std::string& error) {
  std::vector<float> curve(s.curve.begin(), s.curve.end());
  cmsToneCurve* tone = cmsBuildTabulatedToneCurveFloat(nullptr, static_cast<cmsUInt32Number>(curve.size()), curve.data());
  const cmsCIExyY white{s.rgbw[3].x, s.rgbw[3].y, 1.0};
  const cmsCIExyYTRIPLE primaries{{s.rgbw[0].x, s.rgbw[0].y, 1.0}, {s.rgbw[1].x, s.rgbw[1].y, 1.0}, {s.rgbw[2].x, s.rgbw[2].y, 1.0}};
  cmsToneCurve* curves[3] = {tone, tone, tone};
  cmsHPROFILE h = tone ? cmsCreateRGBProfile(&white, &primaries, curves) : nullptr;
  if (tone) cmsFreeToneCurve(tone);
  if (h == nullptr) {
    error = "Little CMS made no profile of these primaries and white";
    return false;
  }
  cmsSetProfileVersion(h, 2.4);  // what every colour tool reads, ArgyllCMS's included
  cmsMLU* text = cmsMLUalloc(nullptr, 1);
  cmsMLUsetASCII(text, "en", "US", s.description.c_str());
  cmsWriteTag(h, cmsSigProfileDescriptionTag, text);
  cmsMLUsetASCII(text, "en", "US", "No copyright: measured data of one panel");
  cmsWriteTag(h, cmsSigCopyrightTag, text);
  cmsMLUfree(text);
  const cmsCIEXYZ luminance{0, s.whiteY, 0};
  cmsWriteTag(h, cmsSigLuminanceTag, &luminance);
  cmsUInt32Number size = 0;
  std::string bytes;
  if (cmsSaveProfileToMem(h, nullptr, &size) && size > 0) {
    bytes.resize(size);
    if (!cmsSaveProfileToMem(h, &bytes[0], &size)) bytes.clear();
  }
  cmsCloseProfile(h);
  if (bytes.empty()) {
    error = "Little CMS could not encode the profile";
    return false;
  }
  return writeWholeFile(path, bytes, error);
}

#endif  // PC_HAVE_LCMS

}  // namespace pctool
