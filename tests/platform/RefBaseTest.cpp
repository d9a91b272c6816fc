// Strong references: counts, hooks, conversions and deletion on the last release.
#include <gtest/gtest.h>
#include <utils/RefBase.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using android::RefBase;
using android::sp;

struct Events {
  int firstRefs = 0;
  int lastRefs = 0;
  int deletes = 0;
};

class Base : public virtual RefBase {
 public:
  explicit Base(Events* e) : mEvents(e) {}
  ~Base() override { ++mEvents->deletes; }
  void onFirstRef() override { ++mEvents->firstRefs; }
  void onLastStrongRef(const void*) override { ++mEvents->lastRefs; }

 private:
  Events* mEvents;
};

class Derived : public Base {
 public:
  explicit Derived(Events* e) : Base(e) {}
};

TEST(StrongPointer, CountsCopiesMovesAndConversions) {
  Events ev;
  auto* raw = new Derived(&ev);
  EXPECT_EQ(RefBase::INITIAL_STRONG_VALUE, raw->getStrongCount());
  {
    sp<Derived> a(raw);
    EXPECT_EQ(1, ev.firstRefs);
    EXPECT_EQ(1, raw->getStrongCount());
    sp<Base> b = a;  // converting copy
    sp<Derived> c = a;
    EXPECT_EQ(3, raw->getStrongCount());
    sp<Base> d = std::move(c);  // converting move takes over the reference
    EXPECT_EQ(nullptr, c);
    EXPECT_EQ(3, raw->getStrongCount());
    EXPECT_TRUE(b == a && d == raw && a != nullptr && static_cast<bool>(d));
    b.clear();
    d = nullptr;
    EXPECT_EQ(1, raw->getStrongCount());
    EXPECT_EQ(0, ev.deletes);
  }
  EXPECT_EQ(1, ev.firstRefs);
  EXPECT_EQ(1, ev.lastRefs);
  EXPECT_EQ(1, ev.deletes);
}

TEST(StrongPointer, MakeAndSelfAssignment) {
  Events ev;
  {
    auto p = sp<Derived>::make(&ev);
    // Self-assignment must keep the object (through a reference: the direct form is a warning).
    sp<Derived>& alias = p;
    p = alias;
    EXPECT_EQ(0, ev.deletes);
    EXPECT_EQ(1, p->getStrongCount());
    sp<Derived> q;
    EXPECT_TRUE(q == nullptr && !q);
    q = p.get();
    EXPECT_EQ(2, p->getStrongCount());
  }
  EXPECT_EQ(1, ev.deletes);
}

struct Light : android::LightRefBase<Light> {
  explicit Light(int* d) : deletes(d) {}
  ~Light() { ++*deletes; }
  int* deletes;
};

TEST(StrongPointer, LightRefBaseDeletesOnLastRelease) {
  int deletes = 0;
  {
    sp<Light> a = sp<Light>::make(&deletes);
    sp<Light> b = a;
    EXPECT_EQ(2, a->getStrongCount());
  }
  EXPECT_EQ(1, deletes);
}

TEST(StrongPointer, ConcurrentCopiesDeleteExactlyOnce) {
  Events ev;
  {
    auto p = sp<Derived>::make(&ev);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([p] {
        for (int i = 0; i < 10000; ++i) {
          sp<Base> copy = p;
          sp<Derived> again = p;
        }
      });
    for (auto& t : threads) t.join();
    EXPECT_EQ(1, p->getStrongCount());
  }
  EXPECT_EQ(1, ev.deletes);
}

}  // namespace
