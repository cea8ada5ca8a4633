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
#include "support/typesubject.h"

namespace {

class Types : public TypeSubject, public testing::TestWithParam<TypeRow> {
 protected:
  Types() : TypeSubject(GetParam()) {}
  unsigned Below(unsigned n) override { return static_cast<unsigned>(random()) % n; }
  std::mt19937 random{static_cast<unsigned>(row.id)};
};

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
