// Binder NDK objects on the host: statuses, classes, and local binders with strong and weak
// counts.
#include <android/binder_ibinder.h>
#include <android/binder_status.h>

#include <atomic>
#include <cstring>
#include <new>
#include <string>

struct AStatus {
  binder_exception_t exception = EX_NONE;
  int32_t serviceSpecific = 0;
  binder_status_t status = STATUS_OK;
  std::string message;
};

struct AIBinder_Class {
  std::string descriptor;
  AIBinder_Class_onCreate onCreate;
  AIBinder_Class_onDestroy onDestroy;
  AIBinder_Class_onTransact onTransact;
};

// Every strong reference together holds one weak reference, so the memory lives until the last
// weak reference goes, while the user data dies with the last strong one.
struct AIBinder {
  const AIBinder_Class* clazz = nullptr;
  void* userData = nullptr;
  std::atomic<int32_t> strong{1};
  std::atomic<int32_t> weak{1};
};

struct AIBinder_Weak {
  AIBinder* binder;
};

namespace {

AStatus* newStatus(binder_exception_t exception, int32_t serviceSpecific, binder_status_t status,
                   const char* message) {
  auto* s = new (std::nothrow) AStatus();
  if (s == nullptr) return nullptr;
  s->exception = exception;
  s->serviceSpecific = serviceSpecific;
  s->status = status;
  s->message = message ? message : "";
  return s;
}

void decWeak(AIBinder* binder) {
  if (binder->weak.fetch_sub(1, std::memory_order_acq_rel) == 1) delete binder;
}

}  // namespace

extern "C" {

AStatus* AStatus_newOk(void) { return newStatus(EX_NONE, 0, STATUS_OK, nullptr); }

AStatus* AStatus_fromExceptionCode(binder_exception_t exception) {
  return AStatus_fromExceptionCodeWithMessage(exception, nullptr);
}

AStatus* AStatus_fromExceptionCodeWithMessage(binder_exception_t exception, const char* message) {
  return newStatus(exception, 0,
                   exception == EX_TRANSACTION_FAILED ? STATUS_FAILED_TRANSACTION : STATUS_OK,
                   message);
}

AStatus* AStatus_fromServiceSpecificError(int32_t serviceSpecific) {
  return AStatus_fromServiceSpecificErrorWithMessage(serviceSpecific, nullptr);
}

AStatus* AStatus_fromServiceSpecificErrorWithMessage(int32_t serviceSpecific, const char* message) {
  return newStatus(EX_SERVICE_SPECIFIC, serviceSpecific, STATUS_OK, message);
}

AStatus* AStatus_fromStatus(binder_status_t status) {
  return status == STATUS_OK ? AStatus_newOk()
                             : newStatus(EX_TRANSACTION_FAILED, 0, status, nullptr);
}

bool AStatus_isOk(const AStatus* status) { return status != nullptr && status->exception == EX_NONE; }

binder_exception_t AStatus_getExceptionCode(const AStatus* status) {
  return status != nullptr ? status->exception : EX_NONE;
}

int32_t AStatus_getServiceSpecificError(const AStatus* status) {
  return status != nullptr ? status->serviceSpecific : 0;
}

binder_status_t AStatus_getStatus(const AStatus* status) {
  return status != nullptr ? status->status : STATUS_OK;
}

const char* AStatus_getMessage(const AStatus* status) {
  return status != nullptr ? status->message.c_str() : "";
}

void AStatus_delete(AStatus* status) { delete status; }

AIBinder_Class* AIBinder_Class_define(const char* interfaceDescriptor,
                                      AIBinder_Class_onCreate onCreate,
                                      AIBinder_Class_onDestroy onDestroy,
                                      AIBinder_Class_onTransact onTransact) {
  if (interfaceDescriptor == nullptr) return nullptr;
  return new AIBinder_Class{interfaceDescriptor, onCreate, onDestroy, onTransact};
}

const char* AIBinder_Class_getDescriptor(const AIBinder_Class* clazz) {
  return clazz != nullptr ? clazz->descriptor.c_str() : nullptr;
}

AIBinder* AIBinder_new(const AIBinder_Class* clazz, void* args) {
  if (clazz == nullptr) return nullptr;
  auto* binder = new AIBinder();
  binder->clazz = clazz;
  binder->userData = clazz->onCreate != nullptr ? clazz->onCreate(args) : args;
  return binder;
}

bool AIBinder_isRemote(const AIBinder* /*binder*/) { return false; }

bool AIBinder_isAlive(const AIBinder* binder) {
  return binder != nullptr && binder->strong.load(std::memory_order_relaxed) > 0;
}

binder_status_t AIBinder_ping(AIBinder* binder) {
  return AIBinder_isAlive(binder) ? STATUS_OK : STATUS_DEAD_OBJECT;
}

void AIBinder_incStrong(AIBinder* binder) {
  if (binder != nullptr) binder->strong.fetch_add(1, std::memory_order_relaxed);
}

void AIBinder_decStrong(AIBinder* binder) {
  if (binder == nullptr) return;
  if (binder->strong.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    if (binder->clazz->onDestroy != nullptr) binder->clazz->onDestroy(binder->userData);
    binder->userData = nullptr;
    decWeak(binder);
  }
}

int32_t AIBinder_debugGetRefCount(AIBinder* binder) {
  return binder != nullptr ? binder->strong.load(std::memory_order_relaxed) : -1;
}

bool AIBinder_associateClass(AIBinder* binder, const AIBinder_Class* clazz) {
  if (binder == nullptr || clazz == nullptr) return false;
  // Two libraries may each define the class of one interface: the descriptor decides.
  return binder->clazz == clazz || binder->clazz->descriptor == clazz->descriptor;
}

const AIBinder_Class* AIBinder_getClass(AIBinder* binder) {
  return binder != nullptr ? binder->clazz : nullptr;
}

void* AIBinder_getUserData(AIBinder* binder) { return binder != nullptr ? binder->userData : nullptr; }

AIBinder_Weak* AIBinder_Weak_new(AIBinder* binder) {
  if (binder == nullptr) return nullptr;
  binder->weak.fetch_add(1, std::memory_order_relaxed);
  return new AIBinder_Weak{binder};
}

void AIBinder_Weak_delete(AIBinder_Weak* weakBinder) {
  if (weakBinder == nullptr) return;
  decWeak(weakBinder->binder);
  delete weakBinder;
}

AIBinder* AIBinder_Weak_promote(AIBinder_Weak* weakBinder) {
  if (weakBinder == nullptr) return nullptr;
  AIBinder* binder = weakBinder->binder;
  // Never from 0 back to 1: a binder whose last strong reference went is dead for good.
  int32_t count = binder->strong.load(std::memory_order_relaxed);
  while (count > 0) {
    if (binder->strong.compare_exchange_weak(count, count + 1, std::memory_order_acquire,
                                             std::memory_order_relaxed))
      return binder;
  }
  return nullptr;
}

}  // extern "C"
