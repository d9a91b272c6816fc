// Strong references: counts, conversions and deletion on the last release, from any thread.
#include <gtest/gtest.h>
#include <utils/RefBase.h>

#include <thread>
#include <vector>

namespace {

using android::RefBase;
using android::sp;

class Base : public virtual RefBase {
 public:
  explicit Base(int* deletes) : mDeletes(deletes) {}
  ~Base() override { ++*mDeletes; }
  void onFirstRef() override { ++firstRefs; }
  int firstRefs = 0;

 private:
  int* mDeletes;
};

class Derived : public Base {
 public:
  using Base::Base;
};

TEST(StrongPointer, CountsCopiesMovesConversionsAndSelfAssignment) {
  int deletes = 0;
  auto* raw = new Derived(&deletes);
  EXPECT_EQ(RefBase::INITIAL_STRONG_VALUE, raw->getStrongCount());
  {
    sp<Derived> a(raw);
    sp<Base> b = a;  // converting copy
    sp<Derived> c = a;
    sp<Base> d = std::move(c);  // converting move takes over the reference
    EXPECT_EQ(nullptr, c);
    EXPECT_EQ(3, raw->getStrongCount());
    EXPECT_EQ(1, raw->firstRefs);
    EXPECT_TRUE(b == a && d == raw && a != nullptr && static_cast<bool>(d));
    sp<Derived>& alias = a;  // self-assignment through a reference (the direct form warns)
    a = alias;
    b.clear();
    d = nullptr;
    EXPECT_EQ(1, raw->getStrongCount());
    EXPECT_EQ(0, deletes);
  }
  EXPECT_EQ(1, deletes);
}

TEST(StrongPointer, ConcurrentCopiesDeleteExactlyOnce) {
  int deletes = 0;
  {
    auto p = sp<Derived>::make(&deletes);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([p] {
        for (int i = 0; i < 10000; ++i) sp<Base> copy = p;
      });
    for (auto& t : threads) t.join();
    EXPECT_EQ(1, p->getStrongCount());
  }
  EXPECT_EQ(1, deletes);
}

}  // namespace
