#include "backend/PanelCorvaneBE.h"

#include <cstring>

namespace postblend {

PanelCorvaneBE::PanelCorvaneBE(PanelCorvaneBase* owner) : mOwner(owner) {
  if (owner != nullptr) {
    mPanelIndex = owner->mPanelIndex.load();
    std::memcpy(mName, owner->mName, sizeof(mName));
  }
}

PanelCorvaneBE::~PanelCorvaneBE() = default;

// Read through the owner on every use: its Init may set the index after creating us.
uint32_t PanelCorvaneBE::panelIndex() const {
  return mOwner != nullptr ? mOwner->mPanelIndex : mPanelIndex;
}

const char* PanelCorvaneBE::displayName() const {
  return mOwner != nullptr ? mOwner->mName : mName;
}

}  // namespace postblend
