// The in-process service registries: binder (with the display service and parcels), HIDL and
// the binder NDK, with the host's test controls. How the plugin registers and finds its
// services end to end is the core and services tests' business; these hold the registries'
// ownership rules and bounds.
#include <IQService.h>
#include <aidl/vendor/tarnu/hardware/display/MixLut3D/BnMixLut3D.h>
#include <android/binder_manager.h>
#include <binder/IServiceManager.h>
#include <gtest/gtest.h>
#include <pchost/services.h>
#include <vendor/display/PanelCorvane/1.0/IPanelCorvane.h>

#include <string>

namespace {

using android::sp;
using android::String16;
using pchost::ServiceRegistry;

class Services : public ::testing::Test {
 protected:
  void SetUp() override { pchost::clearServices(); }
  void TearDown() override { pchost::clearServices(); }
};

// The plugin's refresh through a found display service is the core tests' business.
TEST_F(Services, OnlyABinderOfTheDisplayServiceInterfaceCasts) {
  auto sm = android::defaultServiceManager();
  EXPECT_EQ(nullptr, sm->getService(String16("display.qservice"))) << "absent: null at once";
  ASSERT_EQ(android::OK,
            sm->addService(String16("display.qservice"), sp<android::BBinder>::make()));
  EXPECT_NE(nullptr, sm->checkService(String16("display.qservice")));
  EXPECT_EQ(nullptr, android::interface_cast<qService::IQService>(
                         sm->getService(String16("display.qservice"))));
}

using vendor::display::PanelCorvane::V1_0::IPanelCorvane;

class FakePanel : public IPanelCorvane {
 public:
  explicit FakePanel(bool* deleted) : mDeleted(deleted) {}
  ~FakePanel() override { *mDeleted = true; }
  android::hardware::Return<int32_t> configureSet(
      int32_t command, const android::hardware::hidl_vec<int32_t>&) override {
    return command;
  }
  android::hardware::Return<void> configureGet(int32_t, const android::hardware::hidl_vec<int32_t>&,
                                               configureGet_cb) override {
    return android::hardware::Void();
  }

 private:
  bool* mDeleted;
};

// The colour manager owns the plugin object by a plain pointer, never the registry.
TEST_F(Services, HidlRegistryDeletesOnlyWhatItOwns) {
  bool deleted = false;
  auto* panel = new FakePanel(&deleted);
  pchost::failNextRegistrations(ServiceRegistry::Hidl, 1);
  EXPECT_NE(android::OK, panel->registerAsService());
  EXPECT_EQ(android::RefBase::INITIAL_STRONG_VALUE, panel->getStrongCount());
  ASSERT_EQ(android::OK, panel->registerAsService());
  {
    sp<IPanelCorvane> client = IPanelCorvane::getService("default");
    ASSERT_EQ(panel, client.get());
    EXPECT_EQ(101, static_cast<int32_t>(client->configureSet(101, {1, 2})));
  }
  EXPECT_EQ(nullptr, IPanelCorvane::getService("other"));
  pchost::clearServices();
  EXPECT_FALSE(deleted) << "the registry never deletes a plainly owned object";
  ASSERT_EQ(android::OK, panel->registerAsService());
  delete panel;  // deleted while registered: the registry forgets it
  EXPECT_TRUE(deleted);
  EXPECT_EQ(nullptr, IPanelCorvane::getService());
}

namespace mix = aidl::vendor::tarnu::hardware::display::MixLut3D;

class FakeMix : public mix::BnMixLut3D {
 public:
  ndk::ScopedAStatus set(int32_t disp, int32_t cmd, int32_t* ret) override {
    *ret = disp * 100000 + cmd;
    return ndk::ScopedAStatus(AStatus_newOk());
  }
  ndk::ScopedAStatus sencept(int32_t, int32_t, const std::vector<int32_t>&, std::vector<int32_t>*,
                             int32_t*) override {
    return ndk::ScopedAStatus::ok();
  }
};

TEST_F(Services, MixLut3DRegistryFindsKeepsAndReleasesTheService) {
  const std::string name = std::string(mix::IMixLut3D::descriptor) + "/default";
  auto impl = ndk::SharedRefBase::make<FakeMix>();
  pchost::failNextRegistrations(ServiceRegistry::Ndk, 1);
  EXPECT_NE(EX_NONE, AServiceManager_addService(impl->asBinder().get(), name.c_str()));
  EXPECT_EQ(nullptr, AServiceManager_checkService(name.c_str()));
  EXPECT_EQ(EX_NONE, AServiceManager_addService(impl->asBinder().get(), name.c_str()));
  EXPECT_EQ(EX_ILLEGAL_ARGUMENT, AServiceManager_addService(nullptr, "y"));

  ndk::SpAIBinder registered(AServiceManager_checkService(name.c_str()));
  EXPECT_EQ(registered, impl->asBinder()) << "one binder while it lives";
  auto client = mix::IMixLut3D::fromBinder(registered);
  ASSERT_EQ(impl, client);
  int32_t ret = 0, version = 0;
  std::string hash;
  EXPECT_TRUE(client->set(1, 10001, &ret).isOk());
  EXPECT_EQ(110001, ret);
  client->getInterfaceVersion(&version);
  client->getInterfaceHash(&hash);
  EXPECT_EQ(1, version);
  EXPECT_EQ(40u, hash.size());
  EXPECT_EQ(std::string::npos, hash.find_first_not_of("0123456789abcdef"));
  EXPECT_FALSE(client->isRemote());
  EXPECT_EQ(STATUS_OK, client->dump(-1, nullptr, 0));

  std::weak_ptr<FakeMix> watch = impl;
  impl.reset();
  client.reset();
  EXPECT_FALSE(watch.expired()) << "the registered binder keeps its object";
  registered = nullptr;
  pchost::clearServices();
  EXPECT_TRUE(watch.expired());
}

}  // namespace
