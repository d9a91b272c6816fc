// Data records that the colour manager passes through ScPayload::payload.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace postblend {

constexpr uint32_t kLut3dGridSize = 17;
constexpr uint32_t kLut3dEntries = kLut3dGridSize * kLut3dGridSize * kLut3dGridSize;  // 4913

// One node of a 3D table: 12-bit input and output codes, red, green, blue.
struct lut3d_entry {
  uint32_t in[3];
  uint32_t out[3];
};

// Entry n = 289*b + 17*g + r (red fastest); grid level i is code 256*i, 4095 for i = 16.
struct lut3d_info {
  uint32_t flags;
  uint32_t lut3d_id;
  uint32_t uniform;
  uint32_t num_entries;
  lut3d_entry entries[kLut3dEntries];
};
static_assert(sizeof(lut3d_info) == 117928, "lut3d_info layout is fixed by the hardware");

// Transfer-free description of a colour mode offered or requested.
struct ColorMode {
  uint32_t gamut = 0;   // colour primaries: 1 BT.709/sRGB, 12 DCI-P3
  uint32_t gamma = 0;   // transfer
  uint32_t intent = 0;  // render intent
  std::vector<std::string> hw_assets;
  std::string name;
};

// Property 1 target: a header word and the mode vector.
struct ColorModeList {
  uint32_t version = 0;
  std::vector<ColorMode> list;
};
static_assert(sizeof(ColorModeList) == 32, "GetModeList checks len against this size");

// Colour metadata of the content; only logged by the plugin.
struct ColorMetaData {
  uint32_t range = 0;
  uint32_t transfer = 0;
  uint32_t colorPrimaries = 0;
  bool dynamicMetaDataValid = false;
};

// Op 0 input: what the content wants.
struct ModeRenderInputParams {
  ColorMode color_mode;
  bool valid_meta_data = false;
  ColorMetaData meta_data;
};

// Every hardware asset configuration begins with these two fields.
struct HwConfigPayload {
  uint32_t version = 0;
  bool enabled = false;
  virtual ~HwConfigPayload() = default;
};

// Configuration record of the "PostBlendGamut" asset.
struct GamutConfig : HwConfigPayload {
  GamutConfig() { version = sizeof(GamutConfig); }
  lut3d_info gamut_info{};
};

// Op 0 output: the assets the colour manager offers, each with its configuration record.
struct HwConfigOutputParams {
  std::vector<std::pair<std::string, std::shared_ptr<HwConfigPayload>>> payload;
};

}  // namespace postblend
