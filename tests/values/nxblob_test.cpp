// Blobs: every member against a model over random calls, failing allocations, and the
// slots over sound and damaged images.

#include "nxblob.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <climits>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxblobx.h"
#include "nxconv.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypmgr.h"
#include "support/block.h"

namespace {

constexpr char kBlobTypeId = 18;

using Model = std::optional<std::string>;  // without a value: null

Model Content(const NxBlob& b) {
  if (b.IsNullValue()) return std::nullopt;
  return std::string(static_cast<const char*>(b.Seek(0, b.Length())), b.Length());
}

/// The bytes from pos on that there are, n at most.
std::string Part(const Model& m, long pos, long n) {
  if (!m || pos < 0 || pos > static_cast<long>(m->size()) || n < 1) return "";
  return m->substr(pos, n);
}

TEST(Blob, MembersKeepToTheModel) {
  std::mt19937 random(1);
  const auto number = [&](long low, long high) {
    return std::uniform_int_distribution<long>(low, high)(random);
  };
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes(number(0, 300), 0);
    for (char& c : bytes) c = static_cast<char>(number(0, 2));
    NxBlob b(bytes.data(), static_cast<long>(bytes.size()));
    NxBlob other(bytes.data(), number(0, static_cast<long>(bytes.size())));
    if (number(0, 9) == 0) b.SetNullValue();
    if (number(0, 9) == 0) other.SetNullValue();
    Model m = Content(b), o = Content(other);
    const long length = b.Length();
    const long pos = number(0, 15) ? number(-2, length + 2) : number(0, 1) ? LONG_MAX : LONG_MIN;
    const long n = number(0, 15) ? number(-2, length + 2) : number(0, 1) ? LONG_MAX : LONG_MIN;
    // What is put in may be the blob's own bytes.
    const std::string own = Part(m, pos, n);
    const void* p = b.Seek(pos, n);
    EXPECT_EQ(p != nullptr, length != 0 && n != 0 && pos >= 0 && pos <= length && 0LL + pos + n <= length);
    const long taken = p ? n : 0;
    EXPECT_EQ(Content(b.CopyFrom(pos, n)), own);
    EXPECT_EQ(b != other, !m || !o ? (m ? 2 : o ? -2 : 0) : (*m > *o) - (*m < *o));
    EXPECT_EQ(b == other, m == o);
    const auto place = [](const Model& in, const std::string& wanted) {
      const std::size_t found = in ? in->find(wanted) : std::string::npos;
      return found == std::string::npos ? 65535 : found;
    };
    EXPECT_EQ(b.Search(b.CopyFrom(pos, n)), place(m, own));
    EXPECT_EQ(other.Search(b), place(o, m.value_or("")));
    switch (number(0, 7)) {
      case 0:
        b.Append(p, taken);
        if (p && n > 0) m = *m + own;
        break;
      case 1:
        b.SetTo(p, taken);
        m = p ? own : "";
        break;
      case 2:
        b.Cut(pos, n);
        if (!own.empty()) m->erase(static_cast<std::size_t>(pos), own.size());
        break;
      case 3: {
        other.CopyTo(b, pos, n);
        const std::string replaced = Part(o, pos, std::min(n, length));
        if (!replaced.empty()) o->replace(pos, replaced.size(), *m, 0, replaced.size());
        break;
      }
      case 4:
        (b += b) += other;
        if (m || (o && !o->empty())) m = m.value_or("") + m.value_or("") + o.value_or("");
        break;
      case 5:
      case 6: {
        const bool expands = number(0, 1);
        if (n > 1000 || (n < 0 && !expands)) break;
        expands ? b.Expand(n) : b.Resize(n);
        if (n > length) std::memset(b.Seek(length, n - length), 0, n - length);
        m = m.value_or("");
        m->resize(std::max(n, 0L));
        break;
      }
      default:
        b.Destroy(other);
        m = o;
        if (o) o = "";
    }
    ASSERT_EQ(Content(b), m) << round;
    ASSERT_EQ(Content(other), o) << round;
    NxBlob& self = b;
    b = self;
    b.Destroy(self);
    other = b;
    ASSERT_EQ(Content(other), m) << round;
  }
}

TEST(Blob, ABufferShrinksInPlaceBy128AtMost) {
  for (const auto& [length, stays] : {std::pair(1000, true), {872, true}, {871, false}, {1001, false}}) {
    NxBlob b(1000L);
    const void* place = b.Seek(0, 1);
    NxBlob grown(2000L);
    b.SetTo(grown.Seek(0, length), length);
    EXPECT_EQ(b.Seek(0, 1) == place, stays) << length;
  }
}

TEST(Blob, TextsAndNumbers) {
  EXPECT_EQ(Content(NxBlob("abc")), std::string("abc", 4));
  EXPECT_EQ(Content(NxBlob(NxString("ab"))), std::string("ab", 3));
  EXPECT_EQ(Content(NxBlob(0x8000'0000UL)), std::string("2147483648", 11));
  EXPECT_EQ(Content(NxBlob(short{-3})), std::string("-3", 3));
  EXPECT_EQ(NxBlob(-1e308).Length(), 318);
  EXPECT_EQ(static_cast<double>(NxBlob(2.5)), 2.5);
  EXPECT_EQ(static_cast<double>(NxBlob("2.55", 3)), 2.5);
  EXPECT_EQ(static_cast<int>(NxBlob(42)), 42);
  EXPECT_EQ(static_cast<int>(NxBlob()), 0);
  EXPECT_EQ(static_cast<short>(NxBlob(65537)), 1);
  EXPECT_EQ(static_cast<long>(NxBlob("12345", 3)), 123);  // no zero behind it
  NxBlob cut("12345", 5);
  cut.Resize(3);
  EXPECT_EQ(static_cast<long>(cut), 123);
  const char counted[] = "\3\0\0\0abcd";
  NxBlob b;
  b = counted;
  EXPECT_EQ(Content(b), "abc");
  b = "\xFF\xFF\xFF\xFF";
  EXPECT_TRUE(b.IsNullValue());
  std::unique_ptr<NxBlobData> data(NxBlob::AllocData(7));
  EXPECT_EQ(data->length, 8);
  NxBlobData again("abcd", 4);
  EXPECT_TRUE(again.init("xyz", 3) && again.init("longer", 6)) << "in place, and in a new buffer";
  const NxBlobData three("abc", 3), copy(NxBlob("ab")), room(5L);
  EXPECT_EQ(std::memcmp(three.buffer, copy.buffer, 2), 0);
  EXPECT_EQ(three.length + copy.length + room.length, 3 + 3 + 5);
}

unsigned long refused;  // what the memory handler was called with

/// Runs with no memory to be had beyond small pieces.
void WithoutMemory(const std::function<void()>& run) {
  refused = 0;
  const NxMemoryHandler before = NxSetMemoryHandler([](unsigned long size) { refused = size; });
  rlimit limit;
  getrlimit(RLIMIT_AS, &limit);
  const rlimit none = {0, limit.rlim_max};
  setrlimit(RLIMIT_AS, &none);
  run();
  setrlimit(RLIMIT_AS, &limit);
  NxSetMemoryHandler(before);
}

TEST(Blob, WithoutMemoryABlobStaysAsItWas) {
  NxBlob b("abc"), null;
  null.SetNullValue();
  const auto expectRefused = [&](unsigned long size, const std::function<void()>& run) {
    WithoutMemory(run);
    EXPECT_EQ(refused, size);
    EXPECT_EQ(Content(b), std::string("abc", 4));
    EXPECT_TRUE(null.IsNullValue());
  };
  const long wide = LONG_MAX;
  expectRefused(3'000'000'000UL, [&] { b.Resize(3'000'000'000UL); });
  expectRefused(4UL + wide, [&] { b.Append("", wide); });
  expectRefused(1UL + wide, [&] { delete NxBlob::AllocData(wide); });
#ifndef NX_SANITIZED_MEMORY  // its allocator ends the process
  const long large = 100'000'000;
  const NxBlob source(large);
  NxBlob shorter(source);
  expectRefused(large, [&] { b = source; });
  expectRefused(large, [&] { null = source; });
  expectRefused(large, [&] { null.Resize(large); });
  expectRefused(large, [&] { b.Expand(large); });
  expectRefused(large + 4UL, [&] { b += source; });
  expectRefused(large - 1, [&] { shorter.Cut(1, 1); });
  EXPECT_EQ(shorter.Length(), large);
#endif
}

// ---------------------------------------------------------------------------
// Slots

Block Image(const std::vector<NxBlob>& blobs, unsigned char format) {
  const unsigned long n = blobs.size();
  Block image(BlobSizeGet(blobs.data(), kFormatMemory, format, n));
  EXPECT_EQ(BlobStore(image.Data(), blobs.data(), format, n), static_cast<int>(image.Size()));
  return image;
}

std::vector<NxBlob> Blobs(std::initializer_list<Model> contents) {
  std::vector<NxBlob> blobs;
  for (const Model& m : contents) {
    blobs.emplace_back(m ? m->data() : "", m ? static_cast<long>(m->size()) : 0);
    if (!m) blobs.back().SetNullValue();
  }
  return blobs;
}

TEST(BlobSlots, Life) {
  for (unsigned long n : {1UL, 3UL}) {
    auto* values = static_cast<NxBlob*>(NxBlobDefaultValue(n, 0));
    auto* nulls = static_cast<NxBlob*>(NxBlobDefaultValue(n, 1));
    Block raw(n * sizeof(NxBlob));
    auto* placed = reinterpret_cast<NxBlob*>(raw.Data());
    NxBlobConstructor(placed, n, 0);
    EXPECT_EQ(*placed, *values);
    EXPECT_TRUE(NxBlobIsNull(nulls));
    values->SetTo("abc", 3);
    NxBlobAssignment(placed, values, n, 1);
    for (unsigned long i = 0; i < n; ++i) EXPECT_EQ(Content(placed[i]), "abc");
    NxBlobDestructor(placed, n, 0);
    NxBlobCopy(placed, nulls, n, 0);
    EXPECT_EQ(NxBlobTranslate(placed, 8, 0, values, 8, 0, n), static_cast<int>(n * sizeof(NxBlob)));
    EXPECT_EQ(placed[n - 1], values[n - 1]);
    EXPECT_EQ(NxBlobSetNull(placed), 0);
    EXPECT_TRUE(placed->IsNullValue());
    NxBlobDestructor(placed, n, 0);
    BlobDelete(values, n);
    BlobDelete(nulls, n);
  }
  NxBlobConstructor(nullptr, 1, 0);
}

TEST(BlobSlots, ImagesInBothByteOrders) {
  const auto blobs = Blobs({"\7\10\11", std::nullopt, ""});
  EXPECT_TRUE(Image(blobs, 1) == Block("\17\0\0\0\3\0\0\0\7\10\11\xFF\xFF\xFF\xFF\0\0\0", 19));
  EXPECT_TRUE(Image(blobs, 2) == Block("\0\0\0\17\0\0\0\3\7\10\11\xFF\xFF\xFF\xFF\0\0\0", 19));
  for (unsigned char format : {1, 2, 0x82}) {
    const Block image = Image(blobs, format);
    MemFile file(image.Data(), image.Size());
    EXPECT_EQ(BlobSizeGetFromMemFile(&file, format, 3), 19);
    EXPECT_EQ(BlobSizeGet(image.Data(), format & 7, format, 3), 19);
    auto loaded = Blobs({std::nullopt, "x", std::nullopt});
    EXPECT_EQ(NxBlobTranslate(loaded.data(), 8, 0, image.Data(), format, 0, 3), 19);
    Block resized(25);
    EXPECT_EQ(NxBlobTranslate(resized.Data(), 1, 25, image.Data(), format, 19, 3), 19);
    EXPECT_EQ(resized.Data()[24], 0);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Content(loaded[i]), Content(blobs[i]));
  }
  EXPECT_EQ(BlobNullSizeGet(7), 4);
  EXPECT_EQ(BlobSizeGet("\xFF\xFF\xFF\xFF", 1, 1, 1), 4);
}

long Compare(const Block& a, const Block& b, unsigned long count, int& error, unsigned char format) {
  return BlobCompare(format, a.Size(), a.Data(), b.Size(), b.Data(), 0, count, error);
}

TEST(BlobSlots, Comparison) {
  const std::vector<Model> order = {std::nullopt, "", "\1\2", "\1\2\3", "\1\3", "\x80"};
  for (std::size_t i = 0; i < order.size(); ++i)
    for (std::size_t k = 0; k < order.size(); ++k) {
      auto a = Blobs({"same", order[i], "x"}), b = Blobs({"same", order[k], "y"});
      const long sign = i == k ? -1 : (i < k ? -1 : 1) * (i == 0 || k == 0 ? 2 : 1);
      int error = 1;
      EXPECT_EQ(BlobCompare(8, 0, a.data(), 0, b.data(), 0, 3, error), sign);
      EXPECT_EQ(BlobCompare(8, 0, a.data(), 0, b.data(), 0, 0, error), 0);
      EXPECT_EQ(error, 0);
      for (unsigned char format : {1, 2}) {
        EXPECT_EQ(Compare(Image(a, format), Image(b, format), 3, error, format), sign);
        EXPECT_EQ(Compare(Image(a, format), Image(b, format), 1, error, format), 0);
        EXPECT_EQ(error, 0);
      }
    }
}

TEST(BlobSlots, Hash) {
  auto two = Blobs({"abc", "abcdefg"});
  std::string image(reinterpret_cast<char*>(Image(two, 2).Data()), 22);
  int error = 1;
  EXPECT_EQ(BlobHash(8, 0, two.data(), 2, error), (3 ^ 7) * 1103515245UL);
  // The position passes the end behind the first: T is 18.
  EXPECT_EQ(BlobHash(2, 0, image.data(), 2, error), 18 * 1103515245UL);
  image += std::string("\0\0\0\0\0\0\0\2\0\0\0\0\0\0\0\0\0", 17);
  EXPECT_EQ(BlobHash(2, image.size(), image.data(), 2, error), ((4 + 18) ^ 6) * 1103515245UL);
  EXPECT_EQ(BlobHash(2, image.size(), image.data(), 0, error), 0UL);
  EXPECT_EQ(error, 0);
}

TEST(BlobSlots, DamagedImagesAreReadAsFarAsTheyGo) {
  const auto blobs = Blobs({"abcdef", std::nullopt, "xyz"});
  for (unsigned char format : {1, 2}) {
    const Block sound = Image(blobs, format);
    int error = 0;
    for (unsigned long size = 1; size < sound.Size(); ++size) {
      const Block cut(sound.Data(), size), stored(size);
      EXPECT_EQ(Compare(cut, sound, 3, error, format), 0) << size;
      EXPECT_EQ(error, kPastBuffer);
      BlobHash(format, size, cut.Data(), 3, error);
      EXPECT_EQ(error, kPastBuffer);
      auto loaded = Blobs({"o", "l", "d"});
      EXPECT_EQ(NxBlobTranslate(loaded.data(), 8, 12, cut.Data(), format, size, 3), static_cast<int>(size));
      EXPECT_EQ(*Content(loaded[0]), std::string("abcdef").substr(0, size < 8 ? 0 : size - 8));
      EXPECT_EQ(*Content(loaded[2]), std::string("xyz").substr(0, size < 22 ? 0 : size - 22));
      NxBlobTranslate(stored.Data(), format, size, const_cast<NxBlob*>(blobs.data()), 8, 12, 3);
      EXPECT_TRUE(stored == cut);
    }
    for (long length : {7L, 100'000L, LONG_MAX, LONG_MIN, -2L})
      for (unsigned at : {0, 4}) {
        const Block damaged = sound;
        LongStore(damaged.Data() + at, &length, format, 1);
        Compare(damaged, sound, 1, error, format);
        EXPECT_EQ(error, at == 4 && length != 7 ? kPastBuffer : 0);
        auto loaded = Blobs({"o", "l", "d"});
        NxBlobTranslate(loaded.data(), 8, 12, damaged.Data(), format, damaged.Size(), 3);
        if (at == 4 || length < 0) BlobLoad(loaded.data(), damaged.Data(), format, 3);
        for (const NxBlob& b : loaded) EXPECT_LE(b.Length(), 17);
      }
  }
}

TEST(BlobSlots, TextsAndNulls) {
  NxTypeMgr mgr(5);
  auto blobs = Blobs({std::string(300, 'x'), std::nullopt});
  NxString out("> "), other("x"), null("{NULL} and more");
  mgr.PrintToNxString(kBlobTypeId, out, blobs.data(), nullptr, 2);
  EXPECT_STREQ(out.StrGet(), "> [BLOB,len=300],{NULL}");
  mgr.PrintToNxString(kBlobTypeId, out = "", blobs.data(), "%%%x%L%", 1);
  EXPECT_STREQ(out.StrGet(), "%x300");
  mgr.ScanFromNxString(kBlobTypeId, blobs.data(), other, nullptr, 1);
  EXPECT_EQ(blobs[0].Length(), 300);
  const std::unique_ptr<NxTypeConvertData> texts(mgr.ConvertTo(kBlobTypeId, blobs.data(), 2));
  auto* back = static_cast<NxBlob*>(mgr.ConvertFrom(kBlobTypeId, texts.get(), 3));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(back[i].IsNullValue(), i != 0);
  mgr.Delete(kBlobTypeId, back, 3);
  mgr.ScanFromNxString(kBlobTypeId, blobs.data(), null, nullptr, 1);
  EXPECT_TRUE(blobs[0].IsNullValue());
}

}  // namespace
