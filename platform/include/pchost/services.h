// Test controls of the host's in-process service registries (HIDL, binder service manager,
// binder NDK). Nothing of it exists on a device.
//
// The registries hold strong references, as a device's service managers do. Two host rules keep
// plain-pointer ownership safe: an object whose first strong reference is taken by a HIDL
// registration (the plugin object, owned by the colour manager) is never deleted by its count
// dropping to 0; and an object deleted directly while registered is dropped from the registries
// by its destructor.
#pragma once

namespace pchost {

enum class ServiceRegistry { Hidl, Binder, Ndk };

// The next `count` registrations in that registry fail, as while a device's service manager is
// still starting. A failed registration takes no reference.
void failNextRegistrations(ServiceRegistry registry, int count);

struct RegistrationStats {
  int attempts = 0;    // every registration call, failed ones included
  int registered = 0;  // the ones that succeeded
};
RegistrationStats registrationStats(ServiceRegistry registry);

// Empties every registry, releasing its references, and resets forced failures and counts.
void clearServices();

}  // namespace pchost
