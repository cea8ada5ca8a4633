// Memory that runs out: every allocation of an operation fails once. The handler hears of it,
// nothing is lost, and what was to change is as it was or as it was to become.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>

#include "nx_utf_8.h"
#include "nxblob.h"
#include "nxcistr.h"
#include "nxconv.h"
#include "nxsortkey.h"
#include "nxtypevl.h"
#include "nxtypmgr.h"
#include "support/strings.h"

namespace {

long live = 0;               // allocations that nobody has released
long countdown = 0;          // to the one that fails; 0: none
std::size_t refused = 0;     // its size
unsigned long reported = 0;  // what the handler heard

void* Counted(void* p) {
  live += p != nullptr;
  return p;
}
bool Refuses(std::size_t size) {
  if (countdown == 0 || --countdown != 0) return false;
  refused = size;
  return true;
}

}  // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void __real_free(void* p);
void* __wrap_malloc(std::size_t size) { return Refuses(size) ? nullptr : Counted(__real_malloc(size)); }
void __wrap_free(void* p) {
  live -= p != nullptr;
  __real_free(p);
}
}
void* operator new(std::size_t size) { return Counted(__real_malloc(size)); }
void* operator new[](std::size_t size) { return Counted(__real_malloc(size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size); }
void operator delete(void* p) noexcept { __wrap_free(p); }
void operator delete[](void* p) noexcept { __wrap_free(p); }
void operator delete(void* p, std::size_t) noexcept { __wrap_free(p); }
void operator delete[](void* p, std::size_t) noexcept { __wrap_free(p); }

namespace {

/// Lets allocation n of operate fail. False when there were fewer of them.
bool Fails(long n, const std::function<void()>& operate) {
  refused = reported = 0;
  countdown = n;
  operate();
  return std::exchange(countdown, 0) == 0;
}

class Memory : public testing::Test {
 protected:
  Memory() {
    NxSetMemoryHandler([](unsigned long size) { reported = size; });
  }
  ~Memory() override { NxSetMemoryHandler(nullptr); }

  /// A run that makes its value, changes it by way of `change`, and answers it as text.
  using Change = std::function<void(const std::function<void()>&)>;
  using Run = std::function<std::string(const Change&)>;

  /// `other` is what it may be besides the old and the new.
  static void Sweep(const std::string& what, const Run& run, const std::string& other = {}) {
    const std::string before = run([](const auto&) {});
    const std::string after = run([](const auto& operate) { operate(); });
    bool failed = true;
    for (long n = 1; failed; ++n) {
      const long held = live;
      const std::string now = run([&](const auto& operate) { failed = Fails(n, operate); });
      const long lost = live - held - (now.capacity() > std::string().capacity());  // itself
      EXPECT_TRUE(now == after || (failed && (now == before || (!other.empty() && now == other))))
          << what << ", allocation " << n << ": " << now << ", was " << before << ", becomes " << after;
      // The compiler's own count of the elements of an array is not the handler's affair.
      EXPECT_TRUE(!failed || (reported <= refused && reported + 8 >= refused)) << what << n << reported;
      EXPECT_EQ(lost, 0) << what << ", allocation " << n;
    }
  }
};

template <class T>
std::string Shown(const T& s) {
  return s._pStr ? s._pStr : "";
}
std::string Shown(const NxString& s) {
  return Buffer(s) + "/" + std::to_string(s._nCodeSet) + "," + std::to_string(s._nLanguage);
}
std::string Shown(const NxBlob& b) {
  return b.Length() ? std::string(static_cast<const char*>(b.Seek(0, b.Length())), b.Length()) : "";
}

/// Changes to a value of a class.
template <class T>
using Edits = std::vector<void (*)(T&)>;

template <class T, class Sweep>
void SweepEdits(Sweep sweep, const T& value, const Edits<T>& edits, const std::string& other = {}) {
  for (std::size_t i = 0; i < edits.size(); ++i)
    sweep(
        std::string("edit ") + std::to_string(i),
        [&](const auto& change) {
          T edited(value);
          change([&] { edits[i](edited); });
          return Shown(edited);
        },
        other);
}

const NxString kShortText("a");
const NxString kWideText = Wide(u"a longer text, Stra\u00DFe");

TEST_F(Memory, Strings) {
  const Edits<NxString> edits = {
      [](NxString& s) { s = kWideText; },
      [](NxString& s) { s = "chars"; },
      [](NxString& s) { s += kWideText; },
      [](NxString& s) { s << 17; },
      [](NxString& s) { s.Insert(kWideText, 2); },
      [](NxString& s) { s.Replace(kWideText, 1); },
      [](NxString& s) { s.ReplaceAll(kShortText, kWideText); },
      [](NxString& s) { s.ReplaceAll('a', 'x'); },
      [](NxString& s) { s.Fill(100, 'x'); },
      [](NxString& s) { s.Expand(100, 'x'); },
      [](NxString& s) { s.Cut(1, 2); },
      [](NxString& s) { s.Trim(); },
      [](NxString& s) { s.ToUpper(); },
      [](NxString& s) { s.MapToCodeSet(kCodeSetUnicode); },
      [](NxString& s) { s.SetCodeSet(kCodeSetUnicode); },
      [](NxString& s) { s.CopyMapped(kWideText, 1); },
      [](NxString& s) {
        NxMBS2NxString(
            "Stra\xC3\x9F"
            "e",
            s, -1);
      },
      [](NxString& s) {
        static_cast<void>(s.Find(kWideText) + s.Compare(kWideText) + s.Find(NxString("*b?r")));
      },
      [](NxString& s) {
        unsigned short pos = 0;
        static NxString list("one, two , three");
        static const NxString comma(",");
        NxSplitList(list, s, comma, pos);
      },
      [](NxString& s) {
        char* bytes = nullptr;
        long size = 77;
        if (NxString2MultiByteString(kWideText, bytes, size) > 0)
          s._nLanguage = 77;
        else
          s._nCodeSet = bytes || size ? 2 : 1;  // nothing handed out
        delete[] bytes;
      },
  };
  SweepEdits(Sweep, Narrow(" abracadabra \xDF "), edits);
  // Strings that are made by value are whole or empty.
  const Edits<NxString> copies = {[](NxString& s) { s = s + kWideText; },
                                  [](NxString& s) { s = s.Copy(1, 3); },
                                  [](NxString& s) { s = NxString(12345); }};
  SweepEdits(Sweep, Narrow("abracadabra", 1, 1), copies, Shown(NxString()));
}

template <class T>
class AlphaMemory : public Memory {};
using AlphaTypes = testing::Types<NxIString, NxCaseIString>;
TYPED_TEST_SUITE(AlphaMemory, AlphaTypes);

TYPED_TEST(AlphaMemory, AlphabeticStrings) {
  static const TypeParam kOther("other text");
  const Edits<TypeParam> edits = {
      [](TypeParam& s) { s = kOther; },           [](TypeParam& s) { s = "chars"; },
      [](TypeParam& s) { s += kOther; },          [](TypeParam& s) { s.Insert(kOther, 2); },
      [](TypeParam& s) { s.Replace(kOther, 1); }, [](TypeParam& s) { s.Fill(100, 'x'); },
      [](TypeParam& s) { s.Expand(100, 'x'); },   [](TypeParam& s) { s.Cut(1, 2); },
      [](TypeParam& s) { s.ToUpper(); },
  };
  SweepEdits(Memory::Sweep, TypeParam("abracadabra"), edits);
}

TEST_F(Memory, Blobs) {
  static const NxBlob kOther("bytes of another blob");
  const Edits<NxBlob> edits = {
      [](NxBlob& b) { b = kOther; },
      [](NxBlob& b) { b.Append(kOther); },
      [](NxBlob& b) { b.Append(b); },
      [](NxBlob& b) { b.SetTo("x", 1); },
      [](NxBlob& b) { b.Resize(100); },
      [](NxBlob& b) { b.Cut(1, 2); },
      [](NxBlob& b) { b.CopyTo(kOther, 1, 3); },
  };
  SweepEdits(Sweep, NxBlob("abracadabra", 11), edits);
}

/// Values of a type, released with its own Delete.
struct Values {
  ~Values() { mgr.Delete(id, data, count); }
  /// Their stored image; none of no values.
  std::string Image() const {
    if (!data) return "none";
    std::string image(static_cast<std::size_t>(mgr.DiskLenGet(id, data, 1, count, 8)), 0);
    mgr.Store(id, image.data(), data, 1, count);
    return image;
  }

  NxTypeMgr& mgr;
  const char id;
  const unsigned long count;
  void* data = nullptr;
};

class TypeMemory : public Memory, public testing::WithParamInterface<int> {
 protected:
  static constexpr unsigned long kCount = 2;
  void* FromTexts() {
    NxTypeConvertData record(kStringTypeId, kCount, texts, nullptr);
    void* values = mgr.ConvertFrom(id, &record, kCount);
    record.mgr = nullptr;  // the texts stay
    return values;
  }
  Values Source() { return {mgr, id, kCount, FromTexts()}; }

  NxTypeMgr mgr{5};
  const char id = static_cast<char>(GetParam());
  const NxTypeTab& type = *mgr.table[GetParam()];
  NxString texts[kCount] = {NxString("1"), NxString("a text that is longer than any number * ?")};
};

TEST_P(TypeMemory, WhatIsMadeIsWholeOrNone) {
  const std::vector<std::function<void*()>> makers = {
      [&] { return mgr.Create(id, 0); }, [&] { return mgr.Create(id, kCount); }, [&] { return FromTexts(); },
      [&] { return mgr.DefaultValue(id, kCount, 0); }, [&] { return mgr.DefaultValue(id, kCount, 1); }};
  for (std::size_t i = 0; i < makers.size(); ++i)
    Sweep("maker " + std::to_string(i), [&](const Change& change) {
      Values made = {mgr, id, i == 0 ? 0 : kCount};
      change([&] { made.data = makers[i](); });
      // Scalars are made without a value, dates and times of the clock.
      return i < 2 || made.data == nullptr ? std::string(made.data ? "made" : "none") : made.Image();
    });
  const Values source = Source();
  Sweep("texts", [&](const Change& change) {
    std::unique_ptr<NxTypeConvertData> made;
    change([&] { made.reset(mgr.ConvertTo(id, source.data, kCount)); });
    return made ? Shown(*made->GetString(0)) + Shown(*made->GetString(1)) : "none";
  });
  Sweep("old text", [&](const Change& change) {
    Values made = {mgr, kStringTypeId, 1};
    change([&] { made.data = mgr.ConvertToNxStringOld(source.data, id, kCount); });
    return made.Image();
  });
  Sweep("of old text", [&](const Change& change) {
    NxString text("1,20,");
    Values made = {mgr, id, kCount};
    change([&] { made.data = mgr.ConvertFromNxStringOld(&text, id, kCount); });
    return made.Image();
  });
}

TEST_P(TypeMemory, ValuesAreTheOldOrTheNewOnes) {
  const Values source = Source();
  const std::string image = source.Image();
  const auto size = static_cast<unsigned long>(image.size());
  void* const bytes = const_cast<char*>(image.data());
  NxString wide = Wide(u"a 16-bit text");
  const std::vector<std::function<void(void*)>> changes = {
      [&](void* value) { type.Assignment(value, source.data, 1, 1); },
      [&](void* value) { mgr.Load(id, value, bytes, 1, 1); },
      [&](void* value) { mgr.Translate(id, value, 8, 0, bytes, 1, size, 1); },
      [&](void* value) { mgr.Translate(id, value, 8, 0, source.data, 8, 0, 1); },
      [&](void* value) { mgr.ScanFromNxString(id, value, texts[0], nullptr, 1); },
      [&](void* value) { mgr.ScanFromNxString(id, value, wide, nullptr, 1); },
      [&](void* value) { mgr.SetNullValue(id, value); },
  };
  for (std::size_t i = 0; i < changes.size(); ++i)
    Sweep("change " + std::to_string(i), [&](const Change& change) {
      Values value = {mgr, id, kCount, FromTexts()};
      change([&] { changes[i](value.data); });
      return value.Image();
    });
}

TEST_P(TypeMemory, PrintsAndBoundsAreWhole) {
  const Values source = Source();
  const std::string image = source.Image();
  for (unsigned long n : {1UL, kCount})
    Sweep("print", [&](const Change& change) {
      NxString text("before");
      change([&] { mgr.PrintToNxString(id, text, source.data, nullptr, n); });
      return Shown(text);
    });
  Sweep("key", [&](const Change& change) {
    unsigned char key[500];
    unsigned long length = 0;
    change([&] { length = NxSortKey(id, image.data(), 1, image.size(), 0, key, sizeof key); });
    return std::string(reinterpret_cast<char*>(key), length);
  });
  for (unsigned short relation = 1; relation <= 6; ++relation) {
    Sweep("range of keys", [&](const Change& change) {
      NxSortKeyRange range = {};
      change([&] { NxSortKeyBounds(id, image.data(), 1, image.size(), relation, range); });
      const std::string shown(static_cast<char*>(range.lower), range.lowerLength);
      std::free(range.lower);
      std::free(range.upper);
      return shown;
    });
    Sweep("bounds", [&](const Change& change) {
      NxIdxBounds bounds = {}, range = {};
      change([&] {
        unsigned short word = relation;
        mgr.EvalAndBound(id, &range, word, const_cast<char*>(image.data()), 1, 1, &bounds, nullptr);
      });
      const std::string shown(static_cast<char*>(bounds.lower), bounds.lower ? bounds.lowerLen : 0);
      std::free(bounds.lower);
      std::free(bounds.upper);
      return shown;
    });
  }
}

INSTANTIATE_TEST_SUITE_P(All, TypeMemory, testing::Range(0, 40),
                         [](const auto& info) { return NxNewtypetab[info.param]->name; });

}  // namespace
