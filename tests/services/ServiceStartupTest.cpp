#include <aidl/vendor/tarnu/hardware/display/MixLut3D/IMixLut3D.h>
#include <android/binder_manager.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "core/PanelCorvane.h"
#include "services/MixLut3DAidl.h"
#include "tests/core/CoreFixture.h"

using aidl::vendor::tarnu::hardware::display::MixLut3D::IMixLut3D;
using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;
using vendor::display::PanelCorvane::V1_0::IPanelCorvane;

namespace {

class ServiceStartupTest : public pctest::CoreTest {
 protected:
  std::shared_ptr<IMixLut3D> aidl() {
    std::string name = std::string(IMixLut3D::descriptor) + "/default";
    return IMixLut3D::fromBinder(ndk::SpAIBinder(AServiceManager_checkService(name.c_str())));
  }
  int failedAcquisitions() {
    return log.count("1-onHelpServiceInit: Failed to acquire display.qservice");
  }
};

// Every object of panel index 0 starts the services on its own worker, and a panel may start
// them again: they must be published once however the workers interleave (TSan saw two of them
// write the AIDL service at once).
TEST_F(ServiceStartupTest, ObjectsOfThePrimaryIndexPublishBothServicesOnce) {
  writeProps("a=10\nb=20\nc=30\n");
  for (int round = 0; round < 10; ++round) {
    std::vector<PanelCorvane*> objects;
    for (const char* name : {"primary", "a", "b", "c", "secondary"}) {
      objects.push_back(make());
      objects.back()->Init(name);
    }
    objects[0]->initHelpService();
    ASSERT_TRUE(pctest::settle());
    SCOPED_TRACE("round " + std::to_string(round));
    EXPECT_EQ(failedAcquisitions(), 30) << "no display service: five attempts in each job";
    EXPECT_GE(log.count("1-initAidlService: AIDL:start"), 5) << "every primary job tries";
    EXPECT_EQ(log.count("1-initHidlService: register hidl done!"), 1);
    EXPECT_EQ(pchost::registrationStats(pchost::ServiceRegistry::Hidl).attempts, 1);
    EXPECT_EQ(log.countContaining("IMixLut3D/default OK!"), 1);
    EXPECT_EQ(pchost::registrationStats(pchost::ServiceRegistry::Ndk).attempts, 1);
    auto hidl = IPanelCorvane::getService("default");
    EXPECT_NE(std::find(objects.begin(), objects.begin() + 4, hidl.get()), objects.begin() + 4);
    if (round == 9) break;  // the last round's services are called below
    for (PanelCorvane* p : objects) p->DeInit();
    pchost::clearServices();
    resetAidl();
    PanelCorvaneBase::sIsHidlRegitsered = false;
    log.clear();
  }

  // Through the service manager, as an outside client: set() reaches the panel, sencept()
  // answers into the elements the caller supplied and never beyond them.
  auto service = aidl();
  ASSERT_NE(service, nullptr);
  int32_t ret = 5;
  EXPECT_TRUE(service->set(0, 10001, &ret).isOk());
  EXPECT_EQ(ret, 0);
  EXPECT_TRUE(PanelCorvaneBase::sIsByPass);
  std::vector<int32_t> hello(2);
  std::memcpy(hello.data(), "Hello", 6);
  auto answer = [&](const std::vector<int32_t>& in, size_t room) {
    std::vector<int32_t> out(room);
    EXPECT_TRUE(service->sencept(0, 0, in, &out, &ret).isOk());
    return std::string(reinterpret_cast<const char*>(out.data()), 4 * room);
  };
  EXPECT_EQ(answer(hello, 4).substr(0, 14), "You say world!");
  EXPECT_TRUE(log.has("1-sencept: Hello"));
  EXPECT_EQ(answer({}, 2), "You say ");
  EXPECT_EQ(answer(hello, 0), "") << "an empty answer vector (found by fuzzing)";
}

TEST_F(ServiceStartupTest, WithoutPropertyFileInitBypassesAndRetriesHidlFiveTimes) {
  pchost::failNextRegistrations(pchost::ServiceRegistry::Hidl, 5);
  pchost::failNextRegistrations(pchost::ServiceRegistry::Ndk, 1);
  PanelCorvane* p = make();
  EXPECT_EQ(p->Init("primary"), 0);  // no property file: bypass registers on the calling thread
  EXPECT_TRUE(PanelCorvaneBase::sIsByPass);
  EXPECT_TRUE(log.has("1-Init: bypass!"));
  EXPECT_EQ(p->queue(), nullptr) << "no worker in bypass";
  EXPECT_STREQ(p->mName, "NULL") << "the name is not taken in bypass";
  EXPECT_EQ(log.count("1-initHidlService: Failed to register hidl!"), 5);
  EXPECT_FALSE(PanelCorvaneBase::sIsHidlRegitsered);

  pchost::failNextRegistrations(pchost::ServiceRegistry::Hidl, 1);
  log.clear();
  p->Init("primary");
  EXPECT_EQ(log.count("1-initHidlService: Failed to register hidl!"), 1);
  EXPECT_TRUE(log.has("1-initHidlService: register hidl done!"));

  // With a property file the AIDL service comes too; a failed registration is not retried.
  p->DeInit();
  writeProps();
  p->Init("primary");
  ASSERT_TRUE(pctest::settle());
  EXPECT_EQ(log.countContaining("IMixLut3D/default ERROR!"), 1);
  EXPECT_EQ(pchost::registrationStats(pchost::ServiceRegistry::Ndk).attempts, 1);
}

}  // namespace
