// Which plugin object serves the primary and which the secondary panel, for the control
// services. A service call pins the object it reaches; an object's destructor withdraws it and
// waits until no call is pinned to it, so no service thread ever reaches a destroyed object.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace postblend {

class PanelCorvaneBase;

class PanelRegistry {
 public:
  // Keeps one registered object alive for the length of a service call; empty when no object
  // serves that panel. Pins nest: a pinned call may pin again.
  class Pin {
   public:
    Pin() = default;
    Pin(Pin&& other) noexcept : mPanel(other.mPanel) { other.mPanel = nullptr; }
    Pin& operator=(Pin&&) = delete;
    Pin(const Pin&) = delete;
    ~Pin();
    PanelCorvaneBase* get() const { return mPanel; }
    PanelCorvaneBase* operator->() const { return mPanel; }
    explicit operator bool() const { return mPanel != nullptr; }

   private:
    friend class PanelRegistry;
    explicit Pin(PanelCorvaneBase* panel) : mPanel(panel) {}
    PanelCorvaneBase* mPanel = nullptr;
  };

  // Index 0 pins the primary panel's object, 1 the secondary's; anything else pins nothing.
  static Pin pin(int index);
  // Takes the slot of `index` for `panel` if it is free; false otherwise.
  static bool claim(uint32_t index, PanelCorvaneBase* panel);
  // A call that entered through `panel` itself (the HIDL service object): pins it unless it is
  // being destroyed.
  static Pin pinSelf(PanelCorvaneBase* panel);
  // Frees every slot `panel` holds, refuses new pins of it, then waits until no call is pinned
  // to it.
  static void withdraw(PanelCorvaneBase* panel);
  // Whether `panel` holds the slot of `index`.
  static bool holds(uint32_t index, const PanelCorvaneBase* panel);
  // Frees every slot `panel` holds; calls pinned to it go on, and it may claim a slot again.
  static void release(PanelCorvaneBase* panel);

 private:
  static std::mutex sLock;  // guards the two slots and the pin counts of the objects in them
  static std::condition_variable sUnpinned;
};

}  // namespace postblend
