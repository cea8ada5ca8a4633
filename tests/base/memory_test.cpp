// What is answered when memory runs out: null, or the value as it was, and the handler hears.
#include <gtest/gtest.h>

#include <new>

#include "nx_utf_8.h"
#include "nxcistr.h"
#include "nxtypmgr.h"
#include "support/strings.h"

namespace {

bool exhausted = false;
int reported = 0;

void* Allocate(std::size_t size) { return exhausted ? nullptr : ::operator new(size); }

/// No memory while it lives.
struct Shortage {
  Shortage() {
    NxSetMemoryHandler([](unsigned long) { ++reported; });
    reported = 0;
    exhausted = true;
  }
  ~Shortage() {
    exhausted = false;
    NxSetMemoryHandler(nullptr);
  }
};

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete[](void* p) noexcept { ::operator delete(p); }
void operator delete[](void* p, std::size_t) noexcept { ::operator delete(p); }

namespace {

TEST(Shortage, NoTypeMakesValues) {
  NxTypeMgr mgr(5);
  for (char id = 0; id < 40; ++id)
    for (unsigned long n : {1UL, 3UL}) {
      const Shortage shortage;
      EXPECT_EQ(mgr.Create(id, n), nullptr) << int{id};
      EXPECT_GT(reported, 0) << int{id};
    }
}

TEST(Shortage, TextsStayEmptyOrAsTheyWere) {
  NxString s("abc"), copy("x");
  NxIString alpha("abc"), other("x");
  char* out = nullptr;
  long size = 77;
  const Shortage shortage;
  EXPECT_EQ(NxString2MultiByteString(s, out, size), -1);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(size, 0);
  s += NxString("");
  other = alpha;
  copy.Fill(100, 'y');
  EXPECT_EQ(Text(s), "abc");
  EXPECT_TRUE(Text(copy) == "x" || copy.IsEmpty());
  EXPECT_TRUE(!other._pStr || std::string(other._pStr) == "x");
  EXPECT_GE(reported, 3);
}

}  // namespace
