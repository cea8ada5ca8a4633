// Life cycle, stored images and translation of the fixed-size types, through their
// records.

#include "nxtypes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "nxcomp.h"
#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;

NxTypeTab* const kFixedTypes[] = {&NxCharTab,    &NxShortTab,   &NxLongTab, &NxDoubleTab, &NxFloatTab,
                                  &NxWordTab,    &NxDWordTab,   &NxIntTab,  &NxEnumTab,   &NxUnsignedTab,
                                  &NxByteTab,    &NxBlockIdTab, &NxDateTab, &NxTimeTab,   &NxInt64Tab,
                                  &NxBooleanTab, &NxSealTab};

unsigned long SizeOf(const NxTypeTab& type) { return type.flags & 0xFFFF; }

Bytes RandomBytes(std::size_t n) {
  static std::minstd_rand random(1);
  Bytes bytes(n);
  for (unsigned char& b : bytes) b = static_cast<unsigned char>(random() >> 8);
  return bytes;
}

TEST(LifeCycle, AssignAndCopyAnywhere) {
  for (const NxTypeTab* type : kFixedTypes) {
    SCOPED_TRACE(type->name);
    const unsigned long size = SizeOf(*type);
    for (unsigned long n : {0UL, 1UL, 3UL, 100UL}) {
      for (auto function : {type->Assignment, type->Copy}) {
        Bytes src = RandomBytes(n * size + 1), dst(n * size + 2, 0xEE);
        function(&dst[1], &src[1], n, 0);  // neither is aligned
        EXPECT_TRUE(std::equal(src.begin() + 1, src.end(), dst.begin() + 1));
        EXPECT_EQ(dst.front(), 0xEE);
        EXPECT_EQ(dst.back(), 0xEE);
        function(&dst[1], &src[1], n, 1);
        for (unsigned long i = 0; i < n * size; ++i) ASSERT_EQ(dst[1 + i], src[1 + i % size]);
        EXPECT_EQ(dst.back(), 0xEE);
      }
    }
  }
}

TEST(LifeCycle, ConstructedAndDefaultValues) {
  for (const NxTypeTab* type : kFixedTypes) {
    SCOPED_TRACE(type->name);
    const unsigned long size = SizeOf(*type);
    if (type != &NxDateTab && type != &NxTimeTab) {
      Bytes place(3 * size + 1, 0xEE);
      type->Constructor(place.data(), 3, 0);
      EXPECT_EQ(place, [&] {
        Bytes zeros(3 * size + 1);
        zeros.back() = 0xEE;
        return zeros;
      }());
      type->Destructor(place.data(), 3, 0);
    }
    for (unsigned long n : {0UL, 1UL, 2UL, 5UL}) {
      EXPECT_EQ(type->Delete(type->Create(n), n), 0);
      for (int asNull : {0, 1}) {
        void* values = type->DefaultValue(n, asNull);
        ASSERT_NE(values, nullptr);
        for (unsigned long i = 0; i < n; ++i) {
          void* value = static_cast<char*>(values) + i * size;
          EXPECT_EQ(type->IsNull(value) != 0, asNull && type->SetNull);
          const Bytes bytes(static_cast<unsigned char*>(value), static_cast<unsigned char*>(value) + size);
          if (!type->SetNull) {
            EXPECT_EQ(bytes, Bytes(size)) << "an empty text is 0";
          }
        }
        type->Delete(values, n);
      }
    }
    EXPECT_EQ(type->Delete(nullptr, 1), 0);
    EXPECT_EQ(type->Delete(nullptr, 2), 0);
  }
  auto* chars = static_cast<unsigned char*>(CharCreate(4));
  EXPECT_EQ(Bytes(chars, chars + 4), Bytes(4));
  CharDelete(chars, 4);
}

TEST(LifeCycle, DatesBeginToday) {
  auto* dates = static_cast<NxDate*>(NxDateCreate(3));
  EXPECT_TRUE(dates[2].IsDate() && dates[2].year > 2000);
  NxDateDelete(dates, 3);
  NxDate date(0L);
  NxDateConstructor(&date, 1, 0);
  EXPECT_GT(date.year, 2000);
  NxTime time(-1L);
  NxTimeConstructor(&time, 1, 0);
  EXPECT_TRUE(time.IsTime());
}

TEST(Images, Bytes) {
  struct Row {
    const NxTypeTab& type;
    Bytes value, little, big;
  };
  const Row rows[] = {
      {NxCharTab, {0x80}, {0x80}, {0x80}},
      {NxShortTab, {1, 2}, {1, 2}, {2, 1}},
      {NxDWordTab, {1, 2, 3, 4}, {1, 2, 3, 4}, {4, 3, 2, 1}},
      {NxDoubleTab, {1, 2, 3, 4, 5, 6, 7, 8}, {1, 2, 3, 4, 5, 6, 7, 8}, {8, 7, 6, 5, 4, 3, 2, 1}},
      {NxDateTab, {0xD4, 0x07, 3, 15}, {0xD4, 0x07, 3, 15}, {0x07, 0xD4, 3, 15}},
      {NxTimeTab, {23, 59, 58}, {23, 59, 58}, {23, 59, 58}},
      {NxInt64Tab, {1, 0, 0, 0, 2, 0, 0, 0}, {1, 0, 0, 0, 2, 0, 0, 0}, {0, 0, 0, 1, 0, 0, 0, 2}},
      {NxBooleanTab, {255}, {255}, {255}},
      {NxSealTab, {2, 1, 4, 3, 6, 5}, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.type.name);
    for (unsigned char format : {1, 2, 3, 8, 0xE1, 0xE2}) {
      Bytes image(row.value.size());
      EXPECT_EQ(row.type.Store(image.data(), row.value.data(), format, 1), static_cast<int>(image.size()));
      EXPECT_EQ(image, (format & 15) == 2 ? row.big : row.little);
    }
  }
}

// Every type, format and alignment: what is stored loads again, and the sizes that
// are told are the sizes written.
TEST(Images, RoundTripsAndSizes) {
  for (const NxTypeTab* type : kFixedTypes) {
    SCOPED_TRACE(type->name);
    const unsigned long size = SizeOf(*type);
    for (unsigned char format : {1, 2, 3, 8}) {
      for (unsigned long n : {0UL, 1UL, 2UL, 67UL}) {
        const Bytes values = RandomBytes(n * size + 1);
        Bytes image(n * size + 2, 0xEE), back(n * size + 2, 0xEE);
        const int bytes = static_cast<int>(n * size);
        EXPECT_EQ(type->Store(&image[1], &values[1], format, n), bytes);
        EXPECT_EQ(type->Load(&back[1], &image[1], format, n), bytes);
        EXPECT_TRUE(std::equal(values.begin() + 1, values.end(), back.begin() + 1));
        EXPECT_EQ(image.back(), 0xEE);
        EXPECT_EQ(back.back(), 0xEE);
        EXPECT_EQ(type->SizeGet(values.data(), 8, format, n), bytes);
        EXPECT_EQ(type->SizeGet(nullptr, 0, format, n), bytes);
        EXPECT_EQ(type->NullSizeGet(n), bytes);
        EXPECT_EQ(type->SizeGetFromMemFile(nullptr, format, n), bytes);
      }
    }
  }
}

TEST(Translate, BetweenMemoryAndImages) {
  for (const NxTypeTab* type : kFixedTypes) {
    SCOPED_TRACE(type->name);
    const int bytes = static_cast<int>(2 * SizeOf(*type));
    Bytes values = RandomBytes(bytes), image(bytes), expected(bytes), back(bytes);
    for (unsigned char code : {1, 2}) {
      type->Store(expected.data(), values.data(), code, 2);
      EXPECT_EQ(type->Translate(image.data(), code | 0xE0, bytes, values.data(), 8, 0, 2), bytes);
      EXPECT_EQ(image, expected);
      EXPECT_EQ(type->Translate(back.data(), 8, 0, image.data(), code, bytes, 2), bytes);
      EXPECT_EQ(back, values);
    }
    std::fill(back.begin(), back.end(), 0);
    EXPECT_EQ(type->Translate(back.data(), 8, 0, values.data(), 8, 0, 2), bytes);
    EXPECT_EQ(back, values);
  }
}

TEST(Translate, ResizesImages) {
  struct Row {
    unsigned long from, to;
    int result;
    Bytes image;
  };
  const Row rows[] = {{4, 8, 4, {1, 2, 3, 4, 0, 0, 0, 0, 0xEE}},
                      {4, 2, 2, {1, 2, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}},
                      {4, 4, 4, {1, 2, 3, 4, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}},
                      {0, 3, 0, {0, 0, 0, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}},
                      {4, 0, 0, {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}}};
  for (const NxTypeTab* type : kFixedTypes) {
    for (const Row& row : rows) {
      Bytes src = {1, 2, 3, 4}, dst(9, 0xEE);
      // The byte orders differ, and nothing is converted.
      EXPECT_EQ(type->Translate(dst.data(), 2, row.to, src.data(), 1, row.from, 1), row.result);
      EXPECT_EQ(dst, row.image) << type->name;
    }
  }
}

TEST(Illegal, DoesNothing) {
  int error = 7;
  unsigned char byte = 0xEE;
  EXPECT_EQ(NxIllegalTab.Create(3), nullptr);
  EXPECT_EQ(NxIllegalTab.Store(&byte, &byte, 1, 1), 0);
  NxIllegalTab.Constructor(&byte, 1, 0);
  EXPECT_EQ(NxIllegalTab.Compare(1, 0, &byte, 0, &byte, 0, 1, error), 0);
  EXPECT_EQ(error, 7);
  EXPECT_EQ(byte, 0xEE);
}

}  // namespace
