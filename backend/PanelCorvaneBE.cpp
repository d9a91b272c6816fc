#include "backend/PanelCorvaneBE.h"

#include <cstring>

namespace postblend {

PanelCorvaneBE::PanelCorvaneBE(PanelCorvaneBase* owner)
    : mOwner(owner),
      mHookLut(new lut3d_info[kNumHooks]()),
      mScratchGamut(new GamutConfig()),
      mDebugLut(new lut3d_info()) {
  if (owner != nullptr) {
    mPanelIndex = owner->mPanelIndex.load();
    std::memcpy(mName, owner->mName, sizeof(mName));
  }
}

PanelCorvaneBE::~PanelCorvaneBE() = default;

GamutConfig& PanelCorvaneBE::scratchGamut() {
  // As fresh as a new one: version set, disabled, table zeroed.
  mScratchGamut->version = sizeof(GamutConfig);
  mScratchGamut->enabled = false;
  std::memset(&mScratchGamut->gamut_info, 0, sizeof(lut3d_info));
  return *mScratchGamut;
}

// Read through the owner on every use: its Init may set the index after creating us.
uint32_t PanelCorvaneBE::panelIndex() const {
  return mOwner != nullptr ? mOwner->mPanelIndex : mPanelIndex;
}

const char* PanelCorvaneBE::displayName() const {
  return mOwner != nullptr ? mOwner->mName : mName;
}

}  // namespace postblend
