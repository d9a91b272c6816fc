// Which rule refuses a table cache, in the order the plugin's loader and the workbench apply them.
#include <gtest/gtest.h>

#include <functional>

#include "cache/CacheAcceptance.h"

namespace {

using postblend::CacheCheck;
using postblend::CacheRefusal;

TEST(CacheAcceptance, TheFirstBrokenRuleRefusesTheCache) {
  CacheCheck good;
  good.fileBytes = good.fwVersion = 707584;
  good.complete = true;
  good.storedCheckSum = good.computedCheckSum = 0x1234;
  good.paramVersion = good.expectedParamVersion = 3;
  good.matched = true;
  const struct {
    const char* fault;
    std::function<void(CacheCheck&)> spoil;
    CacheRefusal refusal;
  } rows[] = {
      {"none: a matched panel's local cache", [](CacheCheck&) {}, CacheRefusal::None},
      {"none: an unmatched panel's golden cache",
       [](CacheCheck& c) { c.matched = false, c.source = 1; }, CacheRefusal::None},
      {"a byte longer than FWVersion", [](CacheCheck& c) { c.fileBytes += 1; },
       CacheRefusal::Length},
      {"a byte shorter, unread", [](CacheCheck& c) { c.fileBytes -= 1, c.complete = false; },
       CacheRefusal::Length},
      {"a short read", [](CacheCheck& c) { c.complete = false; }, CacheRefusal::Truncated},
      {"a changed bit", [](CacheCheck& c) { c.computedCheckSum ^= 1; }, CacheRefusal::CheckSum},
      {"another ParamVersion", [](CacheCheck& c) { c.expectedParamVersion = 4; },
       CacheRefusal::ParamVersion},
      {"local data, panel not matched", [](CacheCheck& c) { c.matched = false; },
       CacheRefusal::Source},
      {"golden data, panel matched", [](CacheCheck& c) { c.source = 1; }, CacheRefusal::Source},
      {"golden although matched, matched", [](CacheCheck& c) { c.source = 2; },
       CacheRefusal::Source},
      {"golden although matched, unmatched", [](CacheCheck& c) { c.source = 2, c.matched = false; },
       CacheRefusal::Source},
  };
  for (const auto& row : rows) {
    CacheCheck c = good;
    row.spoil(c);
    EXPECT_EQ(postblend::cacheRefusal(c), row.refusal) << row.fault;
  }
}

}  // namespace
