#include "tools/lib/tables/ImageColour.h"

#ifdef PC_HAVE_LCMS
#include <lcms2.h>
#endif

namespace pctool {

namespace {
// An untagged image, or one tagged as the table's own space, needs no conversion.
bool asItIs(const PngColour& from, const RgbSpace& to, std::string& summary) {
  if (from.tagged() && !(from.srgb && from.icc.empty() && to.name == "sRGB" && to.decodePower == 0)) return false;
  summary = "colours: " + from.text() + ", taken as the table's input space (" + to.name + ") as they are";
  return true;
}
}  // namespace

RgbSpace srgbSpace() {
  return {"sRGB", {{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}, {0.3127, 0.3290}}, 0};
}

RgbSpace targetSpace(const TargetParm& t, const std::string& name) {
  RgbSpace s;
  s.name = name;
  for (int i = 0; i < 4; ++i)
    for (int k = 0; k < 2; ++k) s.xy[i][k] = t.values[2 * i + k];
  s.decodePower = 1.0 / t.values[8];
  return s;
}

#ifdef PC_HAVE_LCMS

namespace {
void lcmsError(cmsContext ctx, cmsUInt32Number, const char* text) {
  *static_cast<std::string*>(cmsGetContextUserData(ctx)) = text;
}
}  // namespace

struct ImageConversion::Lcms {
  std::string message;  // Little CMS's last error
  cmsContext ctx = cmsCreateContext(nullptr, &message);
  cmsHTRANSFORM transform = nullptr;
  Lcms() { cmsSetLogErrorHandlerTHR(ctx, lcmsError); }
  ~Lcms() {
    if (transform != nullptr) cmsDeleteTransform(transform);
    cmsDeleteContext(ctx);
  }
  cmsHPROFILE rgbProfile(const RgbSpace& s) {
    cmsToneCurve* curve = nullptr;
    if (s.decodePower > 0) {
      curve = cmsBuildGamma(ctx, s.decodePower);
    } else {
      const cmsFloat64Number srgb[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
      curve = cmsBuildParametricToneCurve(ctx, 4, srgb);
    }
    const cmsCIExyY white = {s.xy[3][0], s.xy[3][1], 1.0};
    const cmsCIExyYTRIPLE primaries = {{s.xy[0][0], s.xy[0][1], 1.0}, {s.xy[1][0], s.xy[1][1], 1.0},
                                       {s.xy[2][0], s.xy[2][1], 1.0}};
    cmsToneCurve* curves[3] = {curve, curve, curve};
    cmsHPROFILE p = curve ? cmsCreateRGBProfileTHR(ctx, &white, &primaries, curves) : nullptr;
    if (curve) cmsFreeToneCurve(curve);
    return p;
  }
};

ImageConversion::ImageConversion() : lcms_(std::make_unique<Lcms>()) {}
ImageConversion::~ImageConversion() = default;

bool ImageConversion::prepare(const PngColour& from, const RgbSpace& to, std::string& error) {
  if (asItIs(from, to, summary_)) return true;
  Lcms& l = *lcms_;
  std::string assumed;
  cmsHPROFILE source = nullptr;
  if (!from.icc.empty()) {
    source = cmsOpenProfileFromMemTHR(l.ctx, from.icc.data(), static_cast<cmsUInt32Number>(from.icc.size()));
    if (source != nullptr && cmsGetColorSpace(source) != cmsSigRgbData) {
      cmsCloseProfile(source);
      error = from.text() + " is not an RGB profile: only RGB profiles are converted";
      return false;
    }
  } else if (from.srgb) {
    source = cmsCreate_sRGBProfileTHR(l.ctx);
  } else {
    RgbSpace s = srgbSpace();
    s.decodePower = from.gamma > 0 ? 1.0 / from.gamma : 0;
    if (from.hasChrm) {
      const int order[4] = {1, 2, 3, 0};  // cHRM lists the white first
      for (int i = 0; i < 4; ++i)
        for (int k = 0; k < 2; ++k) s.xy[i][k] = from.chrm[2 * order[i] + k];
    }
    if (!from.hasChrm) assumed = "; no cHRM: sRGB's primaries and white assumed";
    if (from.gamma <= 0) assumed = "; no gAMA: sRGB's curve assumed";
    source = l.rgbProfile(s);
  }
  cmsHPROFILE target = l.rgbProfile(to);
  if (source != nullptr && target != nullptr)
    l.transform = cmsCreateTransformTHR(l.ctx, source, TYPE_RGB_DBL, target, TYPE_RGB_DBL,
                                        INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE);
  if (source != nullptr) cmsCloseProfile(source);
  if (target != nullptr) cmsCloseProfile(target);
  if (l.transform == nullptr) {
    error = "Little CMS cannot convert from " + from.text() + " to " + to.name +
            (l.message.empty() ? "" : " (" + l.message + ")");
    return false;
  }
  summary_ = "colours: converted from " + from.text() + " to the table's input space (" + to.name +
             ") by Little CMS, relative colorimetric" + assumed;
  return true;
}

size_t ImageConversion::convert(double* rgb, size_t pixels) {
  if (lcms_->transform == nullptr) return 0;
  cmsDoTransform(lcms_->transform, rgb, rgb, static_cast<cmsUInt32Number>(pixels));
  size_t outside = 0;
  constexpr double kSlack = 0.5 / 4095;
  for (size_t i = 0; i < pixels; ++i, rgb += 3) {
    bool out = false;
    for (int c = 0; c < 3; ++c) out = out || rgb[c] < -kSlack || rgb[c] > 1 + kSlack;
    outside += out ? 1 : 0;
  }
  return outside;
}

#else

struct ImageConversion::Lcms {};
ImageConversion::ImageConversion() = default;
ImageConversion::~ImageConversion() = default;

bool ImageConversion::prepare(const PngColour& from, const RgbSpace& to, std::string& error) {
  if (asItIs(from, to, summary_)) return true;
  error = "tagged " + from.text() + ", and this build has no Little CMS (install liblcms2-dev and rebuild) to convert it";
  return false;
}

size_t ImageConversion::convert(double*, size_t) { return 0; }

#endif

}  // namespace pctool
