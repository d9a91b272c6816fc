// The in-process service registries: binder (with the display service and parcels), HIDL and
// the binder NDK, with the host's test controls.
#include <IQService.h>
#include <aidl/vendor/tarnu/hardware/display/MixLut3D/BnMixLut3D.h>
#include <android/binder_manager.h>
#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <gtest/gtest.h>
#include <pchost/services.h>
#include <vendor/display/PanelCorvane/1.0/IPanelCorvane.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using android::sp;
using android::String16;
using pchost::ServiceRegistry;

class Services : public ::testing::Test {
 protected:
  void SetUp() override { pchost::clearServices(); }
  void TearDown() override { pchost::clearServices(); }
};

// --- binder and the display service ---

class FakeQService : public qService::BnQService {
 public:
  android::status_t dispatch(uint32_t command, const android::Parcel* in,
                             android::Parcel* out) override {
    lastCommand = command;
    lastArg = in->readInt32();
    out->writeInt32(99);
    return android::OK;
  }
  uint32_t lastCommand = 0;
  int32_t lastArg = 0;
};

TEST_F(Services, DisplayServiceIsFoundAndDispatches) {
  auto sm = android::defaultServiceManager();
  EXPECT_EQ(nullptr, sm->getService(String16("display.qservice"))) << "absent: null at once";
  EXPECT_EQ(nullptr, android::interface_cast<qService::IQService>(nullptr));

  auto service = sp<FakeQService>::make();
  ASSERT_EQ(android::OK, sm->addService(String16("display.qservice"), service));
  auto q = android::interface_cast<qService::IQService>(
      sm->getService(String16("display.qservice")));
  ASSERT_NE(nullptr, q);
  android::Parcel in, reply;
  in.writeInt32(1);
  in.setDataPosition(0);
  EXPECT_EQ(android::OK, q->dispatch(qService::IQService::SCREEN_REFRESH, &in, &reply));
  EXPECT_EQ(20u, service->lastCommand);
  EXPECT_EQ(1, service->lastArg);

  // The same call as a transaction on the binder.
  in.setDataPosition(0);
  reply.freeData();
  EXPECT_EQ(android::OK, android::IInterface::asBinder(q)->transact(20, in, &reply));
  EXPECT_EQ(99, reply.readInt32());
}

TEST_F(Services, BinderOfAnotherInterfaceDoesNotCast) {
  auto sm = android::defaultServiceManager();
  ASSERT_EQ(android::OK, sm->addService(String16("plain"), sp<android::BBinder>::make()));
  EXPECT_NE(nullptr, sm->checkService(String16("plain")));
  EXPECT_EQ(nullptr, android::interface_cast<qService::IQService>(sm->checkService(String16("plain"))));
}

TEST_F(Services, BinderRegistryForcedFailuresAndConcurrentUse) {
  auto sm = android::defaultServiceManager();
  pchost::failNextRegistrations(ServiceRegistry::Binder, 1);
  auto service = sp<FakeQService>::make();
  EXPECT_NE(android::OK, sm->addService(String16("s"), service));
  EXPECT_EQ(1, service->getStrongCount()) << "a failed registration takes no reference";
  std::vector<std::thread> threads;
  std::atomic<int> found{0};
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < 50; ++i) {
        String16 name(("svc" + std::to_string(t) + "-" + std::to_string(i)).c_str());
        sm->addService(name, sp<FakeQService>::make());
        if (sm->checkService(name) != nullptr) ++found;
      }
    });
  for (auto& th : threads) th.join();
  EXPECT_EQ(200, found.load());
  EXPECT_EQ(201, pchost::registrationStats(ServiceRegistry::Binder).attempts);
  EXPECT_EQ(200, pchost::registrationStats(ServiceRegistry::Binder).registered);
}

TEST(Parcel, ReadsAreBoundedByTheData) {
  android::Parcel p;
  p.writeInt32(7);
  p.writeString16(String16("display"));
  p.setDataPosition(0);
  EXPECT_EQ(7, p.readInt32());
  EXPECT_TRUE(String16("display") == p.readString16());
  int32_t v = -1;
  EXPECT_EQ(android::NOT_ENOUGH_DATA, p.readInt32(&v));
  EXPECT_EQ(0, p.readInt32());
  p.setDataPosition(1000);
  EXPECT_EQ(android::NOT_ENOUGH_DATA, p.readInt32(&v));

  // A forged string length larger than the data.
  android::Parcel forged;
  forged.writeInt32(0x3FFFFFFF);
  forged.writeInt32(0);
  forged.setDataPosition(0);
  String16 s;
  EXPECT_NE(android::OK, forged.readString16(&s));
  EXPECT_EQ(0u, forged.dataPosition()) << "a failed read leaves the position";
}

// --- HIDL ---

using vendor::display::PanelCorvane::V1_0::IPanelCorvane;

class FakePanel : public IPanelCorvane {
 public:
  explicit FakePanel(bool* deleted = nullptr) : mDeleted(deleted) {}
  ~FakePanel() override {
    if (mDeleted) *mDeleted = true;
  }
  android::hardware::Return<int32_t> configureSet(
      int32_t command, const android::hardware::hidl_vec<int32_t>& args) override {
    return command + static_cast<int32_t>(args.size());
  }
  android::hardware::Return<void> configureGet(int32_t type,
                                               const android::hardware::hidl_vec<int32_t>&,
                                               configureGet_cb cb) override {
    cb(type, {0});
    return android::hardware::Void();
  }

 private:
  bool* mDeleted;
};

TEST_F(Services, HidlServiceOwnedByPlainPointerSurvivesClientsAndClear) {
  bool deleted = false;
  auto* panel = new FakePanel(&deleted);  // owned like the colour manager owns the plugin
  EXPECT_EQ(nullptr, IPanelCorvane::getService());
  ASSERT_EQ(android::OK, panel->registerAsService());
  {
    sp<IPanelCorvane> client = IPanelCorvane::getService("default");
    ASSERT_EQ(panel, client.get());
    EXPECT_EQ(103, static_cast<int32_t>(client->configureSet(101, {1, 2})));
    int32_t value = 0;
    client->configureGet(911, {}, [&](int32_t v, const android::hardware::hidl_vec<int32_t>& r) {
      value = v;
      EXPECT_EQ(1u, r.size());
    });
    EXPECT_EQ(911, value);
  }
  EXPECT_EQ(nullptr, IPanelCorvane::getService("other"));
  pchost::clearServices();
  EXPECT_FALSE(deleted) << "the registry never deletes a plainly owned object";
  ASSERT_EQ(android::OK, panel->registerAsService());
  delete panel;  // deleted while registered: the registry forgets it
  EXPECT_TRUE(deleted);
  EXPECT_EQ(nullptr, IPanelCorvane::getService());
}

TEST_F(Services, HidlForcedFailuresTakeNoReference) {
  FakePanel panel;
  pchost::failNextRegistrations(ServiceRegistry::Hidl, 2);
  EXPECT_NE(android::OK, panel.registerAsService());
  EXPECT_NE(android::OK, panel.registerAsService());
  EXPECT_EQ(android::RefBase::INITIAL_STRONG_VALUE, panel.getStrongCount());
  EXPECT_EQ(nullptr, IPanelCorvane::getService());
  EXPECT_EQ(android::OK, panel.registerAsService());
  EXPECT_NE(nullptr, IPanelCorvane::getService());
  EXPECT_EQ(3, pchost::registrationStats(ServiceRegistry::Hidl).attempts);
  EXPECT_EQ(1, pchost::registrationStats(ServiceRegistry::Hidl).registered);
  pchost::clearServices();
}

TEST_F(Services, HidlServiceOwnedByStrongReferenceIsReleasedByClear) {
  bool deleted = false;
  {
    auto panel = sp<FakePanel>::make(&deleted);
    ASSERT_EQ(android::OK, panel->registerAsService("second"));
  }
  EXPECT_FALSE(deleted);
  EXPECT_NE(nullptr, IPanelCorvane::getService("second"));
  pchost::clearServices();
  EXPECT_TRUE(deleted);
}

// --- binder NDK and IMixLut3D ---

namespace mix = aidl::vendor::tarnu::hardware::display::MixLut3D;

class FakeMix : public mix::BnMixLut3D {
 public:
  ndk::ScopedAStatus set(int32_t disp, int32_t cmd, int32_t* ret) override {
    *ret = disp * 100000 + cmd;
    return ndk::ScopedAStatus(AStatus_newOk());
  }
  ndk::ScopedAStatus sencept(int32_t, int32_t, const std::vector<int32_t>&,
                             std::vector<int32_t>*, int32_t*) override {
    return ndk::ScopedAStatus::ok();
  }
};

TEST_F(Services, MixLut3DIsRegisteredFoundAndCalled) {
  const std::string name = std::string(mix::IMixLut3D::descriptor) + "/default";
  EXPECT_EQ(nullptr, AServiceManager_checkService(name.c_str()));

  auto impl = ndk::SharedRefBase::make<FakeMix>();
  EXPECT_EQ(impl->asBinder(), impl->asBinder()) << "one binder while it lives";
  EXPECT_EQ(EX_NONE, AServiceManager_addService(impl->asBinder().get(), name.c_str()));

  ndk::SpAIBinder binder(AServiceManager_checkService(name.c_str()));
  auto client = mix::IMixLut3D::fromBinder(binder);
  ASSERT_EQ(impl, client);
  int32_t ret = 0;
  EXPECT_TRUE(client->set(1, 10001, &ret).isOk());
  EXPECT_EQ(110001, ret);
  int32_t version = 0;
  std::string hash;
  client->getInterfaceVersion(&version);
  client->getInterfaceHash(&hash);
  EXPECT_EQ(1, version);
  EXPECT_EQ(40u, hash.size());
  EXPECT_EQ(std::string::npos, hash.find_first_not_of("0123456789abcdef"));
  EXPECT_FALSE(client->isRemote());
  EXPECT_EQ(STATUS_OK, client->dump(-1, nullptr, 0));
}

TEST_F(Services, MixLut3DRegistryLifetimeAndFailures) {
  auto impl = ndk::SharedRefBase::make<FakeMix>();
  pchost::failNextRegistrations(ServiceRegistry::Ndk, 1);
  EXPECT_NE(EX_NONE, AServiceManager_addService(impl->asBinder().get(), "x"));
  EXPECT_EQ(nullptr, AServiceManager_checkService("x"));
  EXPECT_EQ(EX_NONE, AServiceManager_addService(impl->asBinder().get(), "x"));
  EXPECT_EQ(EX_ILLEGAL_ARGUMENT, AServiceManager_addService(nullptr, "y"));

  // The registry's reference keeps the binder, so asBinder() gives the registered one.
  ndk::SpAIBinder registered(AServiceManager_checkService("x"));
  EXPECT_EQ(registered, impl->asBinder());
  std::weak_ptr<FakeMix> watch = impl;
  impl.reset();
  EXPECT_FALSE(watch.expired()) << "the registered binder keeps its object";
  registered = nullptr;
  pchost::clearServices();
  EXPECT_TRUE(watch.expired());
}

}  // namespace
