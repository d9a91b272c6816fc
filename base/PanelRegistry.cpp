#include "base/PanelRegistry.h"

#include "base/PanelCorvaneBase.h"

namespace postblend {

std::mutex PanelRegistry::sLock;
std::condition_variable PanelRegistry::sUnpinned;

namespace {
std::atomic<PanelCorvaneBase*>* slotOf(uint32_t index) {
  if (index == 0) return &PanelCorvaneBase::sPrimaryPanel;
  if (index == 1) return &PanelCorvaneBase::sSecondaryPanel;
  return nullptr;
}

// Under the registry's lock.
void freeSlotsOf(PanelCorvaneBase* panel) {
  for (uint32_t index = 0; index < 2; ++index) {
    PanelCorvaneBase* expected = panel;
    slotOf(index)->compare_exchange_strong(expected, nullptr, std::memory_order_relaxed);
  }
}
}  // namespace

PanelRegistry::Pin::~Pin() {
  if (mPanel == nullptr) return;
  std::lock_guard<std::mutex> lock(sLock);
  if (--mPanel->mPins == 0) sUnpinned.notify_all();
}

PanelRegistry::Pin PanelRegistry::pin(int index) {
  std::atomic<PanelCorvaneBase*>* slot = index < 0 ? nullptr : slotOf(static_cast<uint32_t>(index));
  if (slot == nullptr) return Pin();
  std::lock_guard<std::mutex> lock(sLock);
  PanelCorvaneBase* panel = slot->load(std::memory_order_relaxed);
  if (panel == nullptr || panel->mWithdrawn) return Pin();
  ++panel->mPins;
  return Pin(panel);
}

PanelRegistry::Pin PanelRegistry::pinSelf(PanelCorvaneBase* panel) {
  std::lock_guard<std::mutex> lock(sLock);
  if (panel == nullptr || panel->mWithdrawn) return Pin();
  ++panel->mPins;
  return Pin(panel);
}

bool PanelRegistry::claim(uint32_t index, PanelCorvaneBase* panel) {
  std::atomic<PanelCorvaneBase*>* slot = slotOf(index);
  if (slot == nullptr) return false;
  std::lock_guard<std::mutex> lock(sLock);
  PanelCorvaneBase* expected = nullptr;
  return slot->compare_exchange_strong(expected, panel, std::memory_order_relaxed);
}

bool PanelRegistry::holds(uint32_t index, const PanelCorvaneBase* panel) {
  std::atomic<PanelCorvaneBase*>* slot = slotOf(index);
  std::lock_guard<std::mutex> lock(sLock);
  return slot != nullptr && slot->load(std::memory_order_relaxed) == panel;
}

void PanelRegistry::release(PanelCorvaneBase* panel) {
  std::lock_guard<std::mutex> lock(sLock);
  freeSlotsOf(panel);
}

void PanelRegistry::withdraw(PanelCorvaneBase* panel) {
  std::unique_lock<std::mutex> lock(sLock);
  panel->mWithdrawn = true;
  freeSlotsOf(panel);
  sUnpinned.wait(lock, [panel] { return panel->mPins == 0; });
}

}  // namespace postblend
