// Every type of fixed size through the type manager: what holds of all of them, by the
// rows of golden/types.txt.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "nxbase.h"
#include "nxconv.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypevl.h"
#include "nxtypmgr.h"
#include "support/block.h"
#include "support/strings.h"
#include "support/terms.h"
#include "support/typerows.h"

namespace {

template <class T>
int Order(const unsigned char* a, const unsigned char* b) {
  T x, y;
  std::memcpy(&x, a, sizeof x);
  std::memcpy(&y, b, sizeof y);
  return x < y ? -1 : x > y;
}

int OrderOfField(char kind, const unsigned char* a, const unsigned char* b) {
  using Function = int (*)(const unsigned char*, const unsigned char*);
  static const char kKinds[] = "bBhHiIfd";
  static const Function kOrders[] = {Order<signed char>,    Order<unsigned char>, Order<short>,
                                     Order<unsigned short>, Order<int>,           Order<unsigned>,
                                     Order<float>,          Order<double>};
  return kOrders[std::strchr(kKinds, kind) - kKinds](a, b);
}

bool IsStored(unsigned char format) { return (format & kFormatCodeMask) != kFormatMemory; }

class Types : public testing::TestWithParam<TypeRow> {
 protected:
  unsigned Below(unsigned n) { return static_cast<unsigned>(random()) % n; }
  unsigned long SizeIn(unsigned char format) const { return IsStored(format) ? row.ImageSize() : row.size; }

  /// Values at the ends of their fields, few enough to meet; never a wildcard, and what is
  /// not stored is 0.
  Block Values(unsigned long n);
  bool IsNull(const unsigned char* value) const;
  /// The values with what is not stored made 0.
  Block Plain(const Block& values) const;

  Block Image(const Block& values, unsigned char format) const;
  Block In(unsigned char format, const Block& values) const {
    return IsStored(format) ? Image(values, format) : values;
  }

  int Compare(const unsigned char* a, const unsigned char* b, unsigned char format);
  /// Elements before the first that differs, and how that one orders.
  std::pair<unsigned long, int> FirstDifference(const Block& a, const Block& b, unsigned char format);

  const TypeRow& row = GetParam();
  const char id = row.id;
  const unsigned long size = row.size;
  NxTypeMgr mgr{5};
  std::mt19937 random{static_cast<unsigned>(row.id)};
};

Block Types::Values(unsigned long n) {
  static const unsigned char kEnds[] = {0, 1, 0x7F, 0x80, 2, 0xFE};
  Block values(n * size);
  CopyBytes(values.Data(), std::string(n * size, '\0').data(), n * size);
  for (unsigned char* value = values.Data(); value != values.Data() + values.Size(); value += size) {
    for (const TypeRow::Field& field : row.image)
      for (unsigned long i = 0; i < field.width; ++i)
        value[field.offset + i] = kEnds[Below(3) ? Below(2) : Below(6)];
    if (row.Has('o')) *value &= 1;  // other bytes have no order among themselves
    if (row.Has('n')) value[row.image[0].offset] = 0;
    if (row.Nullable() && Below(4) == 0) row.MakeNull(value);
  }
  return values;
}

bool Types::IsNull(const unsigned char* value) const {
  for (unsigned long i = 0; row.Nullable() && i < size; ++i) {
    const std::string byte = row.null.substr(2 * i, 2);
    if (byte != ".." && byte != "zz" && value[i] != std::stoi(byte, nullptr, 16)) return false;
  }
  return row.Nullable();
}

Block Types::Plain(const Block& values) const {
  Block plain(values.Size());
  for (unsigned long i = 0; i < values.Size(); ++i) {
    const bool stored = std::any_of(row.image.begin(), row.image.end(), [&](const TypeRow::Field& f) {
      return i % size >= f.offset && i % size < f.offset + f.width;
    });
    plain.Data()[i] = stored ? values.Data()[i] : 0;
  }
  return plain;
}

/// What Store is to write.
Block Types::Image(const Block& values, unsigned char format) const {
  Block image(values.Size() / size * row.ImageSize());
  std::vector<TypeRow::Field> fields = row.image;
  if (row.Has('n') && (format & 8)) std::rotate(fields.begin(), fields.begin() + 1, fields.end());
  const bool swaps = row.bigEndian || (format & kFormatCodeMask) == kFormatBigEndian;
  unsigned char* at = image.Data();
  for (const unsigned char* v = values.Data(); v != values.Data() + values.Size(); v += size)
    for (const TypeRow::Field& field : fields) {
      std::memcpy(at, v + field.offset, field.width);
      if (swaps) std::reverse(at, at + field.width);
      at += field.width;
    }
  return image;
}

/// How two values order, by the row; where it says nothing, as the type has it.
int Types::Compare(const unsigned char* a, const unsigned char* b, unsigned char format) {
  const std::string& order = IsStored(format) ? row.stored : row.order;
  if (order == "-") {
    const Block x = In(format, Block(a, size)), y = In(format, Block(b, size));
    return Sign(mgr.Cmp(id, x.Data(), y.Data(), kWildcardsOff, 1, format));
  }
  if (row.Has('n') && (IsNull(a) || IsNull(b))) return IsNull(b) - IsNull(a);
  for (unsigned long i = 0; i < order.size();) {
    std::size_t digits = 0;
    const unsigned long at = std::stoul(order.substr(i + 1), &digits);
    if (const int result = OrderOfField(order[i], a + at, b + at)) return result;
    i += 1 + digits;
  }
  return 0;
}

std::pair<unsigned long, int> Types::FirstDifference(const Block& a, const Block& b, unsigned char format) {
  for (unsigned long i = 0; i < a.Size() / size; ++i)
    if (const int order = Compare(a.Data() + i * size, b.Data() + i * size, format)) return {i, order};
  return {a.Size() / size, 0};
}

TEST_P(Types, ImagesAndTheirSizesUnderEveryFormatByte) {
  for (unsigned format = 0; format < 256; ++format)
    for (unsigned long n : {0UL, 1UL, 2UL, 19UL}) {
      const auto code = static_cast<unsigned char>(format);
      const Block values = Values(n), expected = Image(values, code);
      const int bytes = static_cast<int>(expected.Size());
      Block image(expected.Size()), back(values.Size());
      ASSERT_EQ(mgr.Store(id, image.Data(), values.Data(), code, n), bytes);
      ASSERT_TRUE(image == expected) << format;
      ASSERT_EQ(mgr.Load(id, back.Data(), image.Data(), code, n), bytes);
      ASSERT_TRUE(Plain(back) == values) << format;
      for (unsigned char form : {0, 8})
        ASSERT_EQ(mgr.DiskLenGet(id, form ? values.Data() : image.Data(), code, n, form), bytes);
      MemFile file(image.Data(), expected.Size());
      ASSERT_EQ(mgr.DiskLenGetFromMemFile(id, &file, code, n), bytes);
      ASSERT_EQ(mgr.table[static_cast<int>(id)]->NullSizeGet(n), bytes);
    }
}

TEST_P(Types, TranslationToEveryLength) {
  for (unsigned char format : {1, 2, 3, 0xE1, 0xE2})
    for (unsigned long n : {1UL, 3UL}) {
      const Block values = Values(n), expected = Image(values, format);
      const unsigned long bytes = expected.Size();
      Block image(bytes), back(values.Size()), copy(values.Size());
      ASSERT_EQ(mgr.Translate(id, image.Data(), format, bytes, values.Data(), 8, 0, n), bytes);
      ASSERT_TRUE(image == expected);
      ASSERT_EQ(mgr.Translate(id, back.Data(), 8, 0, image.Data(), format, bytes, n), bytes);
      ASSERT_EQ(mgr.Translate(id, copy.Data(), 8, 0, values.Data(), 8, 0, n), values.Size());
      ASSERT_TRUE(Plain(back) == values && Plain(copy) == values);
      for (unsigned long length = 0; length < bytes + 3; ++length) {  // resizing converts nothing
        Block resized(length);
        std::string cut(reinterpret_cast<char*>(image.Data()), bytes);
        cut.resize(length);
        ASSERT_EQ(mgr.Translate(id, resized.Data(), format, length, image.Data(), 1, bytes, n),
                  std::min(bytes, length));
        ASSERT_TRUE(resized == Block(cut.data(), length));
      }
    }
}

TEST_P(Types, LifeAndNull) {
  for (unsigned long n : {0UL, 1UL, 2UL, 5UL}) {
    EXPECT_EQ(mgr.Delete(id, mgr.Create(id, n), n), 0);
    Block values = Values(n), place(n * size + 1);
    for (auto function : {mgr.AssignmentPtrGet(id), mgr.CopyPtrGet(id)}) {
      Block all(n * size), filled(n * size);
      function(all.Data(), values.Data(), n, 0);
      function(filled.Data(), values.Data(), n, 1);
      EXPECT_TRUE(Plain(all) == values);
      for (unsigned long i = 0; i < n; ++i)
        EXPECT_TRUE(Plain(Block(filled.Data() + i * size, size)) == Block(values.Data(), size));
    }
    for (unsigned char* byte = place.Data(); byte != place.Data() + place.Size(); ++byte) *byte = 0xEE;
    mgr.ConstructorPtrGet(id)(place.Data(), n, 0);
    EXPECT_EQ(place.Data()[n * size], 0xEE);
    if (row.Has('z')) {
      EXPECT_TRUE(Block(place.Data(), n * size) == Block(std::string(n * size, '\0').data(), n * size));
    }
    mgr.DestructorPtrGet(id)(place.Data(), n, 0);
    for (int asNull : {0, 1}) {
      auto* made = static_cast<unsigned char*>(mgr.DefaultValue(id, n, asNull));
      ASSERT_TRUE(made || n == 0);
      for (unsigned long i = 0; i < n; ++i) {
        EXPECT_EQ(mgr.GetArrayElement(id, made, i, n), made + i * size);
        if (asNull || row.Has('n')) {
          EXPECT_EQ(mgr.IsNullValue(id, made + i * size) != 0, row.Nullable());
        }
        if (row.Has('z')) {
          EXPECT_TRUE(Block(made + i * size, size) == Block(std::string(size, '\0').data(), size));
        }
      }
      mgr.Delete(id, made, n);
    }
  }
  EXPECT_EQ(mgr.Delete(id, nullptr, 1) + mgr.Delete(id, nullptr, 2), 0);
  for (int round = 0; round < 200; ++round) {
    Block value = Values(1), expected = value;
    EXPECT_EQ(mgr.IsNullValue(id, value.Data()) != 0, IsNull(value.Data()));
    if (!row.Nullable() && !row.Has('z')) continue;
    if (row.Nullable()) {
      row.MakeNull(expected.Data());
    } else {
      std::memset(expected.Data(), 0, size);
    }
    EXPECT_EQ(mgr.SetNullValue(id, value.Data()), 0);
    EXPECT_TRUE(value == expected);
  }
}

TEST_P(Types, OrderOfArraysAndTheirCutBuffers) {
  for (int round = 0; round < 3000; ++round) {
    const unsigned long n = 1 + Below(3);
    const Block a = Values(n), b = Below(3) ? Values(n) : Block(a);
    for (unsigned char format : {8, 1, 2, 3}) {
      const Block x = In(format, a), y = In(format, b);
      const auto [first, expected] = FirstDifference(a, b, format);
      int error = 77;
      const long result =
          mgr.Cmp(id, x.Size(), x.Data(), y.Size(), y.Data(), kWildcardsOff, n, format, error);
      ASSERT_EQ(Sign(result), expected) << int{format};
      ASSERT_EQ(error, 0);
      ASSERT_EQ(mgr.Cmp(id, x.Data(), y.Data(), kWildcardsOff, n, format), result);
      ASSERT_EQ(Sign(mgr.Cmp(id, y.Data(), x.Data(), kWildcardsOff, n, format)), -expected);
      // What a cut buffer holds is looked at, and the way to the next element.
      const Block cut(x.Data(), 1 + Below(static_cast<unsigned>(x.Size())));
      const unsigned long element = SizeIn(format), held = cut.Size() / element;
      const bool stops =
          first < n && (first >= held || (first + 1 < n && cut.Size() <= (first + 1) * element));
      const long answer =
          mgr.Cmp(id, cut.Size(), cut.Data(), y.Size(), y.Data(), kWildcardsOff, n, format, error);
      ASSERT_EQ(Sign(answer), first < held ? expected : 0) << int{format};
      ASSERT_EQ(error, stops || (first == n && held < n) ? kPastBuffer : 0) << int{format};
    }
  }
}

TEST_P(Types, OrderIsTransitive) {
  for (int round = 0; round < 3000; ++round)
    for (unsigned char format : {8, 1, 2}) {
      const Block a = Values(1), b = Values(1), c = Values(1);
      const int ab = Compare(a.Data(), b.Data(), format), bc = Compare(b.Data(), c.Data(), format);
      if (row.order == "f0" || row.order == "d0" || ab > 0 || bc > 0) continue;  // no numbers equal all
      ASSERT_EQ(Compare(a.Data(), c.Data(), format), ab < 0 || bc < 0 ? -1 : 0);
    }
}

TEST_P(Types, HashIsThatOfTheElements) {
  constexpr unsigned long kMultiplier = 1103515245, kInverse = 0xEEB9EB65;
  for (int round = 0; round < 1000; ++round) {
    const unsigned long n = Below(4);
    const Block a = Values(n);
    for (unsigned char format : {8, 1, 2, 3}) {
      const Block x = In(format, a), y(x);
      const unsigned long element = SizeIn(format);
      int error = 77, cutError = 77;
      const unsigned long hash = mgr.Hash(id, x.Size(), x.Data(), n, format, error);
      ASSERT_EQ(error, 0);
      ASSERT_EQ(mgr.Hash(id, 0, y.Data(), n, format, error), hash);
      unsigned long each = 0, ofCut = 0;
      const Block cut(x.Data(), n == 0 ? 0 : 1 + Below(static_cast<unsigned>(x.Size())));
      for (unsigned long i = 0; i < n; ++i) {
        unsigned long word = mgr.Hash(id, element, x.Data() + i * element, 1, format, error);
        if (!row.Has('n')) word *= kInverse;
        each ^= word;
        if (i < cut.Size() / element) ofCut ^= word;
      }
      ASSERT_EQ(hash, row.Has('n') ? each : each * kMultiplier);
      if (n == 0) continue;
      ASSERT_EQ(mgr.Hash(id, cut.Size(), cut.Data(), n, format, cutError),
                row.Has('n') ? ofCut : ofCut * kMultiplier);
      ASSERT_EQ(cutError, cut.Size() / element == n ? 0 : kPastBuffer);
    }
  }
}

TEST_P(Types, BoundsAndShares) {
  using Bound = std::unique_ptr<void, decltype(&std::free)>;
  for (int round = 0; round < 500; ++round)
    for (unsigned char format : {1, 2}) {
      Block ends[3] = {Values(1), Values(1), Values(1)};
      std::sort(ends, ends + 3,
                [&](const Block& a, const Block& b) { return Compare(a.Data(), b.Data(), format) < 0; });
      const Block low = Image(ends[0], format), key = Image(ends[1], format), high = Image(ends[2], format);
      const auto length = static_cast<unsigned char>(key.Size());
      NxIdxBounds range = {low.Data(), high.Data(), length, length};
      float share[7] = {};
      for (unsigned short relation = 1; relation <= 6; ++relation) {
        NxIdxBounds bounds{};
        unsigned short word = relation;
        share[relation] = mgr.EvalAndBound(id, &range, word, key.Data(), format, 1, &bounds, nullptr);
        const Bound lower(bounds.lower, std::free), upper(bounds.upper, std::free);
        ASSERT_EQ(word, relation);
        ASSERT_EQ(lower != nullptr, row.Has('k') && !(relation & kRelationLess));
        ASSERT_EQ(upper != nullptr, row.Has('k') && !(relation & kRelationGreater));
        ASSERT_TRUE(!lower || Block(lower.get(), bounds.lowerLen) == key);
        ASSERT_TRUE(!upper || Block(upper.get(), bounds.upperLen) == key);
      }
      if (!row.Has('c')) continue;
      ASSERT_NEAR(share[2] + share[1] + share[4], 1, 1e-5);
      ASSERT_NEAR(share[3], share[2] + share[1], 1e-6);
      ASSERT_NEAR(share[5], share[4] + share[1], 1e-6);
      ASSERT_NEAR(share[6], share[4] + share[2], 1e-6);
      ASSERT_GT(share[1], 0);
      ASSERT_EQ(share[2] == 0, Compare(ends[0].Data(), ends[1].Data(), 8) == 0);
      ASSERT_EQ(share[4] == 0, Compare(ends[2].Data(), ends[1].Data(), 8) == 0);
    }
}

TEST_P(Types, SortKeysOrderAsTheImagesDo) {
  // Any image whose order is total: the truth values, and no floating field that is no number.
  const auto pick = [&] {
    Block image(row.ImageSize());
    for (unsigned long i = 0; i < image.Size(); ++i)
      image.Data()[i] = "\0\1\x7f\x80\xff\xfe\2"[Below(Below(2) ? 7 : 2)];
    if (row.Has('o')) *image.Data() = "\0\1\xff"[Below(3)];
    if (row.order[0] == 'f' || row.order[0] == 'd') image.Data()[image.Size() - 1] &= 0xC0;
    return image;
  };
  for (int round = 0; round < 10000; ++round) {
    const Block a = pick(), b = pick();
    const auto order = [&](unsigned short op) {
      int error;
      return Sign(mgr.Cmp(id, a.Size(), a.Data(), b.Size(), b.Data(), op, 1, 1, error));
    };
    const std::string keyA = KeyOf(id, a.Data(), 1, a.Size()), keyB = KeyOf(id, b.Data(), 1, b.Size());
    ASSERT_EQ(Sign(keyA.compare(keyB)), order(kWildcardsOff));
    ASSERT_FALSE(IsPrefix(keyA, keyB) || IsPrefix(keyB, keyA));
    const unsigned short relation = 1 + Below(6), op = Below(2) * kWildcardsOff;
    NxSortKeyRange range;
    ASSERT_EQ(NxSortKeyBounds(id, b.Data(), 1, b.Size(), relation | op, range), 1);
    ASSERT_TRUE(!Selects(order(op), relation) || LiesWithin(range, keyA));
    std::free(range.lower);
    std::free(range.upper);
    const Block value(size), swapped(a.Size());
    mgr.Load(id, value.Data(), a.Data(), 1, 1);
    mgr.Store(id, swapped.Data(), value.Data(), 2, 1);
    ASSERT_EQ(KeyOf(id, value.Data(), 8), keyA);
    ASSERT_EQ(KeyOf(id, swapped.Data(), 2, swapped.Size()), keyA);
  }
}

TEST_P(Types, SortKeysNeedWholeImages) {
  for (int round = 0; round < 20; ++round)
    for (unsigned char format : {1, 2}) {
      const Block image = Image(Values(1), format);
      for (unsigned long length = 1; length <= image.Size(); ++length) {
        const Block cut(image.Data(), length);
        NxSortKeyRange range;
        ASSERT_EQ(NxSortKey(id, cut.Data(), format, length, 0, nullptr, 0) != 0, length == image.Size());
        ASSERT_EQ(NxSortKeyBounds(id, cut.Data(), format, length, kRelationEqual, range),
                  length == image.Size());
        ASSERT_EQ(range.lower && range.upper, length == image.Size());
        std::free(range.lower);
        std::free(range.upper);
      }
    }
}

TEST_P(Types, TextsComeBack) {
  for (int round = 0; round < 300; ++round) {
    const Block values = Values(2);
    if (row.Has('t')) {
      const std::unique_ptr<NxTypeConvertData> texts(mgr.ConvertTo(id, values.Data(), 2));
      auto* back = static_cast<unsigned char*>(mgr.ConvertFrom(id, texts.get(), 2));
      for (unsigned long i = 0; i < 2 * size; i += size)
        ASSERT_TRUE(IsNull(values.Data() + i)
                        ? mgr.IsNullValue(id, back + i) != 0
                        : Plain(Block(back + i, size)) == Block(values.Data() + i, size))
            << texts->GetString(0)->StrGet();
      mgr.Delete(id, back, 2);
    }
    if (!row.Has('p')) continue;
    NxString out;
    mgr.PrintToNxString(id, out, values.Data(), nullptr, 1);
    Block scanned = Values(1);
    mgr.ScanFromNxString(id, scanned.Data(), out, nullptr, 1);
    ASSERT_TRUE(Plain(scanned) == Block(values.Data(), size)) << out.StrGet();
  }
}

/// The types of fixed size that have their operations.
std::vector<TypeRow> FixedTypes() {
  std::vector<TypeRow> rows = AllTypeRows();
  rows.erase(std::remove_if(rows.begin(), rows.end(),
                            [](const TypeRow& row) {
                              return row.image.empty() ||
                                     NxNewtypetab[static_cast<int>(row.id)]->Store == NxIllegalTab.Store;
                            }),
             rows.end());
  return rows;
}
INSTANTIATE_TEST_SUITE_P(All, Types, testing::ValuesIn(FixedTypes()),
                         [](const auto& info) { return info.param.name; });

// ---------------------------------------------------------------------------
// Bounds of fixed size that are not made anew

TEST(Boundaries, ThatAreThereStay) {
  unsigned char key[] = {1, 2, 3}, present = 9;
  SetBoundaries(nullptr, key, kRelationEqual, 3);
  NxIdxBounds bounds{&present, nullptr, 1, 0};
  SetBoundaries(&bounds, key, kRelationEqual, 2);
  EXPECT_EQ(bounds.lower, &present);
  EXPECT_EQ(bounds.lowerLen, 1);
  EXPECT_EQ(static_cast<unsigned char*>(bounds.upper)[1], 2);
  std::free(bounds.upper);
}

TEST(Dates, ImagesTooShortStay) {
  Bytes key(4, 0xFF);
  for (unsigned long length : {1UL, 3UL, 4UL}) {
    Bytes lower(length, 7), upper(length, 7);
    NxIdxBounds bounds{lower.data(), upper.data(), static_cast<unsigned char>(length),
                       static_cast<unsigned char>(length)};
    unsigned short relation = kRelationEqual;
    DateEvalAndBound(nullptr, relation, key.data(), 1, 1, &bounds);
    EXPECT_EQ(lower[0] == 7, length < 4);
    EXPECT_EQ(upper[0] == 7, length < 4);
  }
  NxIdxBounds bounds{};
  unsigned short relation = kRelationEqual;
  DateEvalAndBound(nullptr, relation, key.data(), 1, 0, &bounds);  // images of no date
  std::free(bounds.lower);
  std::free(bounds.upper);
}

}  // namespace
